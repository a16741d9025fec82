#include "platform/Player.h"

#include "base/NotificationCenter.h"
#include "platform/linux/video/PlayerBody.h"
#include "platform/linux/x11/X11CpuPresenter.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <utility>

namespace {

/// The ways to present are told apart here and nowhere else.
std::unique_ptr<FramePresenter> makePresenter()
{
    const auto wish = qgetenv("TAVELOR_RENDERER");
    if (wish == "gpu")
        std::fputs("TAVELOR_RENDERER: this build draws with the CPU only\n", stderr);
    else if (!wish.isEmpty() && wish != "cpu")
        std::fputs("TAVELOR_RENDERER: neither \"gpu\" nor \"cpu\", ignored\n", stderr);
    return std::make_unique<X11CpuPresenter>();
}

/// What the events that answer us carry as their request's number, besides those of loads.
constexpr quint64 endQuery = 1;
constexpr quint64 firstLoad = 2;

const mpv_node* child(const mpv_node& map, const char* key)
{
    if (map.format != MPV_FORMAT_NODE_MAP)
        return nullptr;
    for (int i = 0; i < map.u.list->num; ++i) {
        if (std::strcmp(map.u.list->keys[i], key) == 0)
            return &map.u.list->values[i];
    }
    return nullptr;
}

} // namespace

Player::Player(std::unique_ptr<PlayerItem> item) : m_body(std::make_unique<Body>())
{
    QObject::connect(m_body.get(), &Body::itemFailed, m_body.get(), [this] {
        currentItem()->setStatus(PlayerItem::Status::Failed);
    });
    QObject::connect(m_body.get(), &Body::itemBecameReady, m_body.get(), [this] {
        currentItem()->setStatus(PlayerItem::Status::ReadyToPlay);
    });
    replaceCurrentItem(std::move(item));
}

Player::~Player() = default;

void Player::play()
{
    m_body->setPaused(false);
}

void Player::pause()
{
    m_body->setPaused(true);
}

void Player::setVolume(float volume)
{
    m_body->setVolume(volume);
}

float Player::volume() const
{
    return m_body->volume();
}

void Player::setMuted(bool muted)
{
    m_body->setMuted(muted);
}

bool Player::isMuted() const
{
    return m_body->isMuted();
}

void Player::setActionAtItemEnd(ActionAtItemEnd action)
{
    m_body->setActionAtItemEnd(action);
}

void Player::replaceCurrentItem(std::unique_ptr<PlayerItem> item)
{
    m_body->replaceCurrentItem(std::move(item));
}

PlayerItem* Player::currentItem() const
{
    return m_body->currentItem();
}

Player::Body::Body() : m_core(Mpv::create()), m_renderThread(m_core.get(), makePresenter)
{
    mpv_observe_property(m_core.get(), 0, "eof-reached", MPV_FORMAT_FLAG);
    mpv_set_wakeup_callback(
        m_core.get(),
        [](void* self) {
            auto* const body = static_cast<Body*>(self);
            if (!body->m_isWakeUpPosted.exchange(true))
                QMetaObject::invokeMethod(body, &Body::processEvents, Qt::QueuedConnection);
        },
        this);
}

Player::Body::~Body()
{
    mpv_set_wakeup_callback(m_core.get(), nullptr, nullptr);
}

void Player::Body::setPaused(bool paused)
{
    Mpv::setFlag(m_core.get(), "pause", paused);
}

void Player::Body::setVolume(float volume)
{
    m_volume = std::isnan(volume) ? 0.0F : std::clamp(volume, 0.0F, 1.0F);
    // libmpv's scale is cubic: half of it is an eighth of the gain.
    Mpv::setDouble(m_core.get(), "volume", 100 * std::cbrt(static_cast<double>(m_volume)));
}

void Player::Body::setMuted(bool muted)
{
    m_isMuted = muted;
    Mpv::setFlag(m_core.get(), "mute", muted);
}

void Player::Body::setActionAtItemEnd(ActionAtItemEnd action)
{
    Mpv::setFlag(m_core.get(), "keep-open-pause", action == ActionAtItemEnd::Pause);
}

void Player::Body::replaceCurrentItem(std::unique_ptr<PlayerItem> item)
{
    if (m_item)
        m_item.release()->deleteLater(); // it may be in the middle of a signal of its own
    m_item = std::move(item);
    m_entry.reset();
    m_isLoaded = false;
    m_isAtEnd = false;
    m_request = std::max(m_request + 1, firstLoad);

    if (!m_item) {
        Mpv::command(m_core.get(), {"stop"});
        return;
    }
    connect(m_item.get(), &PlayerItem::seekToZeroRequested, this, &Body::seekToZero);
    load();
}

void Player::Body::load()
{
    m_offersBefore = m_renderThread.offerCount();
    const auto path = m_item->url().toLocalFile();
    // libmpv would play the files of a folder and wait for ever on a pipe.
    if (!QFileInfo(path).isFile()) {
        Mpv::command(m_core.get(), {"stop"});
        const auto fail = [this, request = m_request] {
            if (request == m_request)
                Q_EMIT itemFailed();
        };
        QMetaObject::invokeMethod(this, fail, Qt::QueuedConnection);
        return;
    }
    Mpv::command(m_core.get(), {"loadfile", QFile::encodeName(path).constData()}, m_request);
}

void Player::Body::seekToZero()
{
    if (m_isLoaded)
        Mpv::command(m_core.get(), {"seek", "0", "absolute+keyframes"});
}

void Player::Body::processEvents()
{
    m_isWakeUpPosted = false;
    for (;;) {
        const auto* event = mpv_wait_event(m_core.get(), 0);
        if (event->event_id == MPV_EVENT_NONE)
            return;
        handle(*event);
    }
}

void Player::Body::handle(const mpv_event& event)
{
    switch (event.event_id) {
    case MPV_EVENT_COMMAND_REPLY:
        if (event.reply_userdata >= firstLoad)
            handleLoadAnswer(event);
        break;
    case MPV_EVENT_FILE_LOADED:
        if (m_entry) {
            m_isLoaded = true;
            Q_EMIT itemBecameReady();
        }
        break;
    case MPV_EVENT_PLAYBACK_RESTART: {
        // After a start or a seek. A video so short that it is over again by now changes the
        // observed property there and back, of which nobody is told; so ask.
        m_isAtEnd = false;
        mpv_get_property_async(m_core.get(), endQuery, "eof-reached", MPV_FORMAT_FLAG);
        break;
    }
    case MPV_EVENT_GET_PROPERTY_REPLY:
    case MPV_EVENT_PROPERTY_CHANGE: {
        const auto& property = *static_cast<const mpv_event_property*>(event.data);
        if (property.format == MPV_FORMAT_FLAG && std::strcmp(property.name, "eof-reached") == 0)
            setIsAtEnd(*static_cast<const int*>(property.data) != 0);
        break;
    }
    case MPV_EVENT_END_FILE: {
        const auto& end = *static_cast<const mpv_event_end_file*>(event.data);
        const bool isOurs = m_entry && end.playlist_entry_id == *m_entry;
        // A file that is a list of other files is not a video.
        const bool isList = end.reason == MPV_END_FILE_REASON_REDIRECT;
        if (!isOurs || (end.reason != MPV_END_FILE_REASON_ERROR && !isList))
            break;
        if (isList)
            Mpv::command(m_core.get(), {"stop"});
        fail();
        break;
    }
    case MPV_EVENT_IDLE:
        if (!m_item)
            m_renderThread.clear();
        break;
    default:
        break;
    }
}

void Player::Body::handleLoadAnswer(const mpv_event& event)
{
    if (event.reply_userdata != m_request || !m_item)
        return;
    const auto& answer = *static_cast<const mpv_event_command*>(event.data);
    if (event.error >= 0) {
        if (const auto* entry = child(answer.result, "playlist_entry_id"))
            m_entry = entry->u.int64;
        return;
    }
    Q_EMIT itemFailed();
}

void Player::Body::setIsAtEnd(bool isAtEnd)
{
    const bool hasReachedEnd = isAtEnd && !m_isAtEnd;
    m_isAtEnd = isAtEnd;
    // Before the item is loaded the word is about the one before it.
    if (!hasReachedEnd || !m_isLoaded)
        return;
    // A file whose end has been cut off right after its head is over without a picture; playing
    // it again and again would keep the machine busy with nothing.
    if (m_renderThread.offerCount() == m_offersBefore)
        fail();
    else
        NotificationCenter::defaultCenter().post(PlayerItem::didPlayToEndTimeNotification());
}

void Player::Body::fail()
{
    m_isLoaded = false;
    m_entry.reset();
    Q_EMIT itemFailed();
}
