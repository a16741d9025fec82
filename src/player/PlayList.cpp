#include "player/PlayList.h"

#include "library/VideoUrl.h"

#include <chrono>
#include <cstdio>
#include <utility>
#include <vector>

using namespace std::chrono_literals;
using Reading = LocalVideoDBManager::Reading;

PlayList::PlayList(LocalVideoDBManager& library, OpeningRecord& openings)
    : m_library(library), m_openings(openings)
{
    m_libraryRetry.setSingleShot(true);
    connect(&m_libraryRetry, &QTimer::timeout, this, &PlayList::libraryRetryDue);
    m_openingTime.setSingleShot(true);
    m_openingTime.setInterval(5s);
    connect(&m_openingTime, &QTimer::timeout, this, [this] {
        m_openings.finish(OpeningRecord::Outcome::Plays);
    });
    connect(&m_fileWatch, &PlayableFileWatch::found, this, [this](const QString& sign) {
        m_videoList.moveToSign(sign);
        Q_EMIT playableFileFound();
    });
}

PlayList::~PlayList() = default;

void PlayList::reload(VideoPlayerPlayModel playModel, const std::optional<QString>& sign)
{
    const std::lock_guard lock(m_videoListLocker);
    auto rows = m_library.allVideos();
    const auto reading = m_library.lastReading();
    m_isUnread = reading != Reading::Complete;
    if (m_isUnread) {
        m_libraryRetry.start(reading == Reading::Busy ? 1s : 5s);
        if (reading == Reading::Busy || m_videoList.current())
            return; // the list stays meanwhile
    }
    m_videoList.clear();
    if (playModel == VideoPlayerPlayModel::random)
        rows = randomlyReordered(rows);
    for (auto& row : rows)
        m_videoList.append(std::move(row));
    m_videoList.moveToSign(sign);
}

std::optional<QString> PlayList::currentSign() const
{
    const auto* const current = m_videoList.current();
    return current ? std::optional(current->val.sign) : std::nullopt;
}

bool PlayList::advance()
{
    if (!m_videoList.current() || !m_videoList.current()->next)
        return false;
    m_videoList.advance();
    return true;
}

bool PlayList::admitChoice(const QString& sign)
{
    const auto row = m_library.video(sign);
    const auto url = row ? videoUrl(row->url) : std::nullopt;
    const bool isPresent = url && videoFileExists(*url);
    m_isChoiceUnread = !isPresent && m_library.lastReading() != Reading::Complete;
    if (isPresent)
        m_openings.forgive(sign);
    else if (m_isChoiceUnread)
        m_libraryRetry.start(1s);
    else
        m_library.deleteVideo(sign);
    return isPresent;
}

bool PlayList::takeUnreadChoice()
{
    return std::exchange(m_isChoiceUnread, false);
}

void PlayList::recallUnfinishedOpening()
{
    const auto sign = m_openings.takeUnfinished();
    if (!sign)
        return;
    const auto row = m_library.video(*sign);
    const auto name = row && !row->title.isEmpty() ? row->title : *sign;
    std::fprintf(stderr,
        "The helper ended while it was opening \"%s\"; that video is left out until it is "
        "chosen.\n",
        qUtf8Printable(name));
}

/// One full pass at most: going round and round would only keep the machine busy.
std::unique_ptr<PlayerItem> PlayList::openPlayable()
{
    for (std::size_t tried = 0; tried < m_videoList.count(); ++tried) {
        const auto& video = m_videoList.current()->val;
        const auto url = videoUrl(video.url);
        if (url && videoFileExists(*url) && !m_openings.isSuspect(video.sign) &&
            !m_failedFiles.contains(url->toLocalFile())) {
            auto item = std::make_unique<PlayerItem>(*url);
            const auto begin = [this, sign = video.sign] { m_openings.begin(sign); };
            connect(item.get(), &PlayerItem::openingBegan, this, begin, Qt::SingleShotConnection);
            m_openingTime.stop();
            m_opened.emplace(video);
            return item;
        }
        m_videoList.advance();
    }
    m_opened.reset();
    return nullptr;
}

void PlayList::noteReady()
{
    m_openingTime.start();
}

void PlayList::noteFailure(const PlayerItem& item)
{
    const auto file = item.url().toLocalFile();
    m_openings.finish(OpeningRecord::Outcome::DoesNotPlay);
    m_fileWatch.noteFailure(file);
    m_failedFiles.insert(file);
}

void PlayList::noteEnd()
{
    forgetFailures();
    m_fileWatch.forgetFailures();
    m_openings.finish(OpeningRecord::Outcome::Plays);
}

void PlayList::watchFiles(Watched watched)
{
    std::vector<PlayableFileWatch::Candidate> candidates;
    const auto add = [&](const VideoInfoNode& node) {
        const auto url = videoUrl(node.val.url);
        if (url && url->isLocalFile() && !m_openings.isSuspect(node.val.sign))
            candidates.push_back({node.val.sign, url->toLocalFile()});
    };
    const auto* const current = m_videoList.current();
    if (watched == Watched::Current) {
        if (current)
            add(*current);
    } else {
        for (const auto* node = current; node; node = node->next.get())
            add(*node);
        for (const auto* node = m_videoList.head(); node != current; node = node->next.get())
            add(*node);
    }
    m_fileWatch.watch(std::move(candidates));
}
