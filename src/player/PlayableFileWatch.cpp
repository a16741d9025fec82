#include "player/PlayableFileWatch.h"

#include <QElapsedTimer>
#include <QFile>
#include <QMetaObject>

#include <algorithm>
#include <sys/stat.h>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds shortestPause = 3s;
constexpr int pausePerLook = 100;
constexpr auto failureLasts = 60s;

} // namespace

PlayableFileWatch::PlayableFileWatch()
{
    m_thread.setMaxThreadCount(1);
    m_timer.setSingleShot(true);
    m_timer.setInterval(shortestPause);
    connect(&m_timer, &QTimer::timeout, this, &PlayableFileWatch::look);
}

PlayableFileWatch::~PlayableFileWatch() = default;

std::optional<PlayableFileWatch::FileState> PlayableFileWatch::stateOf(const QString& path)
{
    struct stat status {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return FileState{status.st_dev,
        status.st_ino,
        status.st_size,
        status.st_ctim.tv_sec,
        status.st_ctim.tv_nsec};
}

void PlayableFileWatch::watch(std::vector<Candidate> candidates)
{
    ++m_watch;
    m_candidates = std::make_shared<const std::vector<Candidate>>(std::move(candidates));
    m_timer.start(shortestPause);
}

void PlayableFileWatch::stop()
{
    ++m_watch;
    m_candidates.reset();
    m_timer.stop();
}

void PlayableFileWatch::noteFailure(const QString& path)
{
    m_failures[path] = {stateOf(path).value_or(FileState()), std::chrono::steady_clock::now()};
}

void PlayableFileWatch::look()
{
    m_thread.start([this, watch = m_watch, candidates = m_candidates, failures = m_failures] {
        QElapsedTimer timer;
        timer.start();
        QStringList gone;
        const auto isNews = [&](const Candidate& candidate) {
            const auto state = stateOf(candidate.path);
            const auto failure = failures.constFind(candidate.path);
            if (!state && failure != failures.constEnd())
                gone.append(candidate.path);
            const auto now = std::chrono::steady_clock::now();
            return state && (failure == failures.constEnd() || failure->state != *state ||
                                now - failure->time > failureLasts);
        };
        const auto found = std::ranges::find_if(*candidates, isNews);
        const auto sign = found == candidates->end() ? std::nullopt : std::optional(found->sign);
        const std::chrono::nanoseconds duration(timer.nsecsElapsed());
        QMetaObject::invokeMethod(
            this,
            [this, watch, sign, gone, duration] { finishLook(watch, sign, gone, duration); },
            Qt::QueuedConnection);
    });
}

void PlayableFileWatch::finishLook(quint64 watch,
    const std::optional<QString>& sign,
    const QStringList& gone,
    std::chrono::nanoseconds duration)
{
    for (const auto& path : gone) // what comes back may be read, even if it looks the same
        m_failures.remove(path);
    if (watch != m_watch)
        return;
    if (!sign) {
        const auto pause = std::chrono::ceil<std::chrono::milliseconds>(duration * pausePerLook);
        m_timer.start(std::max(shortestPause, pause));
        return;
    }
    stop();
    Q_EMIT found(*sign);
}
