#include "platform/common/SettingsFile.h"

#include "platform/common/RegularFile.h"

#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QThread>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qsizetype longestFile = 1 << 20;
// How long a file has to be as it is before these are believed of it.
constexpr auto timestampGrain = 100ms; // that a second change would have got another time
constexpr auto pauseInSaving = 500ms;  // that it was saved without its last line's end, or keys
constexpr auto longestSaving = 10s;    // that who has it open does not mean to go on
constexpr auto longestEmpty = 30s;     // that nobody is about to fill it
constexpr auto longestGone = 5s;       // that nobody is about to put another one in its place
// The longest wait for the lock. It is mostly held for a few milliseconds.
constexpr auto lockPatience = 40ms;
constexpr auto lockPause = 5ms;

std::chrono::nanoseconds nanoseconds(const timespec& time)
{
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// By the time of its last change of any kind, which no program can set. A file server's clock may
/// be a little ahead; a time far to come, after the clock was set back, is not young.
bool isYoungerThan(std::chrono::nanoseconds limit, const struct stat& status)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const auto age = nanoseconds(now) - nanoseconds(status.st_ctim);
    return age > -1min && age < limit;
}

const auto isWritten = u"is being written"_s;
const auto noSettings = u"is not a settings file"_s;

QString errorText(int error)
{
    if (error == EBUSY)
        return isWritten;
    return qt_error_string(error).toLower();
}

} // namespace

SettingsFile::SettingsFile(const QString& path)
    : m_path(path), m_encodedPath(QFile::encodeName(path))
{
}

QString SettingsFile::lockPath() const
{
    return m_path + u".lock"_s;
}

SettingsFile::State SettingsFile::noNews(const QString& problem)
{
    m_problem = problem;
    return m_state = State::NoNews;
}

SettingsFile::State SettingsFile::look()
{
    struct stat status {};
    if (stat(m_encodedPath.constData(), &status) != 0)
        return lookForMissing(errno);
    m_wasThere = true;
    m_sinceGone.invalidate();
    if (!S_ISREG(status.st_mode))
        return noNews(u"is not a file"_s);
    if (!isSameFile(status, m_status))
        return read();
    if (m_state != State::NoNews)
        m_problem.clear();
    return m_state;
}

SettingsFile::State SettingsFile::lookForMissing(int error)
{
    m_status = {};
    struct stat status {};
    const bool isGone = error == ENOENT && lstat(m_encodedPath.constData(), &status) != 0 &&
                        QFileInfo::exists(QFileInfo(m_path).path());
    if (!isGone) // but a link to nowhere, or in a folder that is not there or not ours
        return noNews(errorText(error));
    if (!m_sinceGone.isValid())
        m_sinceGone.start();
    if (m_wasThere && !m_sinceGone.hasExpired(std::chrono::milliseconds(longestGone).count()))
        return noNews(errorText(error));
    m_problem.clear();
    return m_state = State::Vacant;
}

SettingsFile::State SettingsFile::read()
{
    m_status = {};
    RegularFile file(m_encodedPath);
    if (!file.isOpen())
        return noNews(errorText(errno));
    m_problem.clear();
    m_state = judge(file);
    if (!isYoungerThan(m_state == State::NoNews ? longestEmpty : timestampGrain, file.status()))
        m_status = file.status();
    return m_state;
}

SettingsFile::State SettingsFile::judge(RegularFile& file)
{
    const auto& status = file.status();
    const auto bytes = file.contents(longestFile);
    if (!bytes)
        return noNews(status.st_size > longestFile ? noSettings : isWritten);
    if (isYoungerThan(longestSaving, status) && !file.holdOffWriters())
        return noNews(isWritten);
    if (bytes->isEmpty())
        return isYoungerThan(longestEmpty, status) ? noNews(u"is empty"_s) : State::Vacant;
    const auto text = *bytes == m_text.bytes() ? m_text : SettingsText::parse(*bytes);
    if (!text)
        return noNews(noSettings);
    const bool isSavedInPlace = status.st_ino == m_readInode;
    const bool isComplete =
        bytes->endsWith('\n') && (!isSavedInPlace || text->containsKeysOf(m_text));
    if (!isComplete && isYoungerThan(pauseInSaving, status))
        return noNews(isWritten);
    m_text = *text;
    m_readInode = status.st_ino;
    return State::Read;
}

bool SettingsFile::lock(QLockFile& lockFile)
{
    QElapsedTimer waited;
    waited.start();
    while (!lockFile.tryLock(0)) {
        const bool isHeld = lockFile.error() == QLockFile::LockFailedError;
        if (!isHeld || waited.hasExpired(lockPatience.count())) {
            m_problem =
                isHeld ? u"is locked by another program"_s : u"its folder cannot be written"_s;
            return false;
        }
        QThread::msleep(lockPause.count());
    }
    return true;
}

bool SettingsFile::fail(int error)
{
    m_problem = errorText(error);
    return false;
}

bool SettingsFile::replace(const SettingsText& text)
{
    struct stat status {};
    const bool isThere = stat(m_encodedPath.constData(), &status) == 0;
    if (!isThere && m_state == State::Read) // gone this very moment
        return fail(ENOENT);
    const auto target =
        isThere ? QFile::encodeName(QFileInfo(m_path).canonicalFilePath()) : m_encodedPath;
    if (isThere && euidaccess(target.constData(), W_OK) != 0)
        return fail(errno);

    // One that a killed process has left behind would be in the way.
    const auto scratch = target + ".new";
    unlink(scratch.constData());
    const int descriptor =
        open(scratch.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0)
        return fail(errno);
    const bool isStored = write(descriptor, text.bytes(), isThere ? &status : nullptr);
    fstat(descriptor, &status);
    close(descriptor);
    const bool isDone = isStored && (isThere ? exchange(scratch, target) : add(scratch, target));
    unlink(scratch.constData());
    if (!isDone)
        return false;
    m_text = text;
    m_readInode = status.st_ino;
    m_status = {}; // somebody may have replaced it by now
    m_problem.clear();
    return true;
}

/// Puts the scratch file in the place of a file that still is what was read last. What it holds
/// decides, not its times: two changes within one tick of the file system's clock have the same.
bool SettingsFile::exchange(const QByteArray& scratch, const QByteArray& target)
{
    RegularFile file(target);
    const auto expected = m_state == State::Vacant ? QByteArray() : m_text.bytes();
    if (!file.isOpen())
        return fail(errno);
    const bool isFree = file.holdOffWriters() || !isYoungerThan(longestSaving, file.status());
    if (!isFree || file.contents(longestFile) != expected)
        return fail(EBUSY);
    const auto swap = [&] {
        return renameat2(
                   AT_FDCWD, scratch.constData(), AT_FDCWD, target.constData(), RENAME_EXCHANGE) ==
               0;
    };
    if (!swap()) // not every file system can
        return file.isWriterWaiting()
                   ? fail(EBUSY)
                   : rename(scratch.constData(), target.constData()) == 0 || fail(errno);
    // Who is held off will write to the file that was there, so that one has to stay.
    return !file.isWriterWaiting() || !swap() || fail(EBUSY);
}

/// Gives the scratch file its name, unless there is a file by now.
bool SettingsFile::add(const QByteArray& scratch, const QByteArray& target)
{
    const auto move = [&](unsigned flags) {
        return renameat2(AT_FDCWD, scratch.constData(), AT_FDCWD, target.constData(), flags) == 0;
    };
    return move(RENAME_NOREPLACE) || (errno == EINVAL && move(0)) || fail(errno);
}

bool SettingsFile::write(int descriptor, const QByteArray& bytes, const struct stat* replaced)
{
    const auto mode = replaced ? replaced->st_mode & ALLPERMS : S_IRUSR | S_IWUSR;
    // Only the system's own user may give files away; for anybody else they are theirs anyway.
    if (replaced && fchown(descriptor, replaced->st_uid, replaced->st_gid) != 0 && errno != EPERM)
        return fail(errno);
    if (fchmod(descriptor, mode) != 0)
        return fail(errno);
    const auto count =
        ::write(descriptor, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    if (count != bytes.size())
        return fail(count < 0 ? errno : ENOSPC);
    return fdatasync(descriptor) == 0 || fail(errno);
}
