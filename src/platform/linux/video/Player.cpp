#include "platform/Player.h"

#include "base/NotificationCenter.h"
#include "platform/linux/video/MpvNode.h"
#include "platform/linux/video/PlayerBody.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// What the events that answer us carry as their request's number.
constexpr quint64 endQuery = 1;
constexpr quint64 seekRequest = 2;
constexpr quint64 decoderQuery = 3;
constexpr quint64 lateQuery = 4;    // pictures that were ready too late
constexpr quint64 skippedQuery = 5; // and those that were not even decoded
constexpr quint64 firstUprightRequest = 6;
constexpr quint64 firstLoad =
    firstUprightRequest + UprightFilter::requestCount; // and from there on

/// How long a round of a single picture lasts, by itself not a thirtieth of a second, and one of so
/// few that it is over at once. Repeating them at that rate would keep the machine busy with
/// showing the same pictures again.
constexpr std::chrono::milliseconds stillDuration = 5s;
constexpr std::uint64_t fewPictures = 5;
constexpr std::chrono::milliseconds shortRound = 100ms;

/// Whether there is a device that could decode. Where there is none, looking for decoders would
/// only load their libraries, at the cost of start-up time and memory, and print their complaints.
bool hasGraphicsDevice()
{
    const auto renderNodes = QDir(u"/dev/dri"_s).entryList({u"renderD*"_s}, QDir::System);
    return !renderNodes.isEmpty() || QFileInfo::exists(u"/dev/nvidiactl"_s);
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

Player::Body::Body()
    : m_output(FrameOutput::shared()),
      m_core(Mpv::create()),
      m_renderThread(*m_core,
          m_output.statistics(),
          [this](bool isSeen) {
              const auto tell = [this, isSeen] {
                  m_output.holds().set(Holds::Reason::Unseen, !isSeen);
              };
              QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
          }),
      m_upright(*m_core, firstUprightRequest)
{
    changePresenter();
    connect(&m_output, &FrameOutput::presentersChanged, this, &Body::changePresenter);
    connect(&m_output.holds(), &Holds::changed, this, &Body::applyHolds);
    m_stillPicture.setSingleShot(true);
    connect(&m_stillPicture, &QTimer::timeout, this, &Body::finishRound);
    mpv_observe_property(m_core.get(), 0, "eof-reached", MPV_FORMAT_FLAG);
    mpv_observe_property(m_core.get(), 0, "aid", MPV_FORMAT_INT64);
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

/// Called again when the display is lost and when it is there again.
void Player::Body::changePresenter()
{
    const bool couldPresent = m_canPresent;
    RenderThread::PresenterFactory make;
    if (m_output.canPresent())
        make = [this] { return m_output.makePresenter(); };
    const auto* decoding = m_renderThread.setPresenter(std::move(make));
    m_canPresent = decoding != nullptr;
    if (m_output.canPresent() && !m_canPresent)
        std::fputs("libmpv cannot draw here, so no video is shown.\n", stderr);
    if (decoding && hasGraphicsDevice())
        Mpv::setText(m_core.get(), "hwdec", decoding);
    applyHolds();
    const bool isWaiting = m_item && !m_isLoaded && m_item->status() != PlayerItem::Status::Failed;
    if (m_canPresent && !couldPresent && isWaiting)
        load();
}

void Player::Body::setPaused(bool paused)
{
    m_isPaused = paused;
    applyHolds();
}

/// Whether the core neither decodes nor plays, for whatever reason.
bool Player::Body::isResting() const
{
    const bool isHeld = !m_output.holds().isEmpty();
    return m_isPaused || !m_canPresent || (isHeld && m_decodesPictures);
}

bool Player::Body::isHeard() const
{
    return m_isLoaded && m_hasSound && !m_isMuted && m_volume > 0;
}

/// What is heard goes on without its pictures while nobody can see them. All else rests: libmpv
/// ends a video without sound with an error when its pictures are switched off.
void Player::Body::applyHolds()
{
    setDecodesPictures(m_output.holds().isEmpty() || !isHeard());
    Mpv::setFlag(m_core.get(), "pause", isResting());
    waitForStillPicture();
}

void Player::Body::setDecodesPictures(bool decodes)
{
    if (std::exchange(m_decodesPictures, decodes) == decodes)
        return;
    Mpv::setText(m_core.get(), "vid", decodes ? "auto" : "no");
    m_stillPicture.stop(); // a round without pictures is over as soon as somebody looks
    if (!decodes) {
        m_hasLackedPictures = true;
        m_renderThread.forgetPicture();
    }
}

void Player::Body::setVolume(float volume)
{
    m_volume = std::isnan(volume) ? 0.0F : std::clamp(volume, 0.0F, 1.0F);
    // libmpv's scale is cubic: half of it is an eighth of the gain.
    Mpv::setDouble(m_core.get(), "volume", 100 * std::cbrt(static_cast<double>(m_volume)));
    applyHolds();
}

void Player::Body::setMuted(bool muted)
{
    m_isMuted = muted;
    Mpv::setFlag(m_core.get(), "mute", muted);
    applyHolds();
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
    m_cannotSeek = false;

    if (!m_item) {
        leaveItem();
        return;
    }
    connect(m_item.get(), &PlayerItem::seekToZeroRequested, this, &Body::seekToZero);
    load();
}

/// Answers and events about what was loaded before mean nothing from now on.
void Player::Body::forgetLoad()
{
    m_entry.reset();
    m_isLoaded = false;
    applyHolds(); // nobody knows whether the next item has sound
    m_request = std::max(m_request + 1, firstLoad);
    beginRound(Round::SinceLoad);
}

void Player::Body::leaveItem()
{
    forgetLoad();
    Mpv::command(m_core.get(), {"stop"});
}

void Player::Body::load()
{
    forgetLoad();
    const auto path = m_item->url().toLocalFile();
    // libmpv would play the files of a folder and wait for ever on a pipe.
    if (!QFileInfo(path).isFile()) {
        const auto failLater = [this, request = m_request] {
            if (request == m_request)
                fail();
        };
        QMetaObject::invokeMethod(this, failLater, Qt::QueuedConnection);
        return;
    }
    if (!m_canPresent)
        return; // it is loaded when the display is there
    Q_EMIT m_item->openingBegan();
    Mpv::command(m_core.get(), {"loadfile", QFile::encodeName(path).constData()}, m_request);
}

void Player::Body::seekToZero()
{
    if (!m_isLoaded)
        return;
    if (m_cannotSeek) {
        load();
        return;
    }
    beginRound(Round::SinceSeek);
    Mpv::command(m_core.get(), {"seek", "0", "absolute+keyframes"}, seekRequest);
}

void Player::Body::beginRound(Round round)
{
    m_round = round;
    m_picturesBefore = m_renderThread.pictureCount();
    // Not observed: libmpv would look at them with every picture.
    mpv_get_property_async(m_core.get(), lateQuery, "frame-drop-count", MPV_FORMAT_INT64);
    mpv_get_property_async(
        m_core.get(), skippedQuery, "decoder-frame-drop-count", MPV_FORMAT_INT64);
    m_hasLackedPictures = !m_decodesPictures;
    m_roundTime.start();
    m_isAtEnd = false;
    m_isStill = false;
    m_stillPicture.stop();
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
    m_upright.handle(event);
    switch (event.event_id) {
    case MPV_EVENT_COMMAND_REPLY:
        if (event.reply_userdata >= firstLoad)
            handleLoadAnswer(event);
        else if (event.reply_userdata == seekRequest && event.error < 0)
            loadInsteadOfSeeking();
        break;
    case MPV_EVENT_FILE_LOADED:
        if (m_entry) {
            m_isLoaded = true;
            applyHolds();
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
    case MPV_EVENT_VIDEO_RECONFIG:
        mpv_get_property_async(m_core.get(), decoderQuery, "hwdec-current", MPV_FORMAT_STRING);
        break;
    case MPV_EVENT_GET_PROPERTY_REPLY:
    case MPV_EVENT_PROPERTY_CHANGE:
        handleProperty(event);
        break;
    case MPV_EVENT_END_FILE: {
        const auto& end = *static_cast<const mpv_event_end_file*>(event.data);
        const bool isOurs = m_entry && end.playlist_entry_id == *m_entry;
        // A file that is a list of other files is not a video.
        const bool isList = end.reason == MPV_END_FILE_REASON_REDIRECT;
        if (!isOurs || (end.reason != MPV_END_FILE_REASON_ERROR && !isList))
            break;
        if (m_hasLackedPictures)
            load(); // its sound has gone, and there was nothing else
        else
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

void Player::Body::handleProperty(const mpv_event& event)
{
    const auto& property = *static_cast<const mpv_event_property*>(event.data);
    if (std::strcmp(property.name, "aid") == 0) {
        m_hasSound = property.format == MPV_FORMAT_INT64;
        applyHolds();
    } else if (event.error < 0) {
        return; // there is none now
    } else if (property.format == MPV_FORMAT_FLAG) {
        setIsAtEnd(*static_cast<const int*>(property.data) != 0);
    } else if (property.format == MPV_FORMAT_INT64) {
        countDrops(event.reply_userdata, *static_cast<const std::int64_t*>(property.data));
    } else if (property.format == MPV_FORMAT_STRING) {
        const auto name = QString::fromUtf8(*static_cast<char* const*>(property.data));
        m_output.statistics().decoder = name == u"no" ? u"software"_s : name;
        Q_EMIT m_output.statusChanged();
    }
}

/// libmpv begins to count anew now and then.
void Player::Body::countDrops(quint64 request, std::int64_t count)
{
    const auto before = std::exchange(m_drops[request], count);
    const auto more = count < before ? count : count - before;
    m_output.statistics().dropped += static_cast<std::uint64_t>(std::max<std::int64_t>(more, 0));
}

void Player::Body::handleLoadAnswer(const mpv_event& event)
{
    if (event.reply_userdata != m_request || !m_item)
        return;
    const auto& answer = *static_cast<const mpv_event_command*>(event.data);
    if (event.error >= 0) {
        if (const auto* entry =
                MpvNode::child(answer.result, "playlist_entry_id", MPV_FORMAT_INT64))
            m_entry = entry->u.int64;
        return;
    }
    fail();
}

void Player::Body::setIsAtEnd(bool isAtEnd)
{
    const bool hasReachedEnd = isAtEnd && !m_isAtEnd;
    m_isAtEnd = isAtEnd;
    // Before the item is loaded the word is about the one before it.
    if (!hasReachedEnd || !m_isLoaded)
        return;
    const auto pictures = m_renderThread.pictureCount() - m_picturesBefore;
    m_isStill = (pictures == 1 && !m_hasLackedPictures) ||
                (pictures < fewPictures && !m_roundTime.hasExpired(shortRound.count()));
    if (pictures == 0 && !m_hasLackedPictures)
        finishRoundWithoutPicture();
    else if (m_isStill)
        waitForStillPicture();
    else
        finishRound();
}

void Player::Body::waitForStillPicture()
{
    if (!m_isStill || isResting())
        m_stillPicture.stop();
    else if (!m_stillPicture.isActive())
        m_stillPicture.start(m_hasLackedPictures && m_decodesPictures ? 0ms : stillDuration);
}

void Player::Body::finishRound()
{
    m_isStill = false;
    NotificationCenter::defaultCenter().post(
        PlayerItem::didPlayToEndTimeNotification(), QVariant::fromValue<QObject*>(m_item.get()));
}

/// A file that was cut off, emptied or cannot be read any more is over without a picture. Playing
/// it again and again would keep the machine busy with nothing.
void Player::Body::finishRoundWithoutPicture()
{
    if (m_round == Round::SinceSeek)
        loadInsteadOfSeeking();
    else
        fail();
}

/// For what cannot seek, raw streams for one. They begin anew when they are loaded again.
void Player::Body::loadInsteadOfSeeking()
{
    if (!m_isLoaded || m_round != Round::SinceSeek)
        return; // the word is about an earlier item
    m_cannotSeek = true;
    load();
}

void Player::Body::fail()
{
    leaveItem(); // a core without a file rests
    m_renderThread.clearIfNothingWasShown();
    Q_EMIT itemFailed();
}
