#include "platform/common/RegularFile.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace {

bool isOnNetwork(int descriptor)
{
    struct statfs status {};
    if (fstatfs(descriptor, &status) != 0)
        return false;
    constexpr auto smb2 = 0xfe534d42;
    constexpr auto cifs = 0xff534d42;
    const auto type = static_cast<std::uint32_t>(status.f_type);
    return type == NFS_SUPER_MAGIC || type == smb2 || type == cifs;
}

} // namespace

RegularFile::RegularFile(const QByteArray& path)
    : m_descriptor(open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC))
{
    if (m_descriptor < 0 || (fstat(m_descriptor, &m_status) == 0 && S_ISREG(m_status.st_mode)))
        return;
    close(m_descriptor);
    m_descriptor = -1;
    errno = EINVAL;
}

RegularFile::~RegularFile()
{
    if (m_descriptor >= 0)
        close(m_descriptor); // ends the lease, too
}

std::optional<QByteArray> RegularFile::contents(qsizetype limit) const
{
    if (m_status.st_size > limit)
        return std::nullopt;
    QByteArray bytes(m_status.st_size, Qt::Uninitialized);
    const auto count = pread(m_descriptor, bytes.data(), static_cast<std::size_t>(bytes.size()), 0);
    struct stat now {};
    if (count != bytes.size() || fstat(m_descriptor, &now) != 0 || !isSameFile(now, m_status))
        return std::nullopt;
    return bytes;
}

bool RegularFile::holdOffWriters()
{
    // Of a program that is held off the system tells by a signal, whose usual number would end
    // this process. This one is ignored.
    fcntl(m_descriptor, F_SETSIG, SIGURG);
    m_holdsLease = fcntl(m_descriptor, F_SETLEASE, F_RDLCK) == 0;
    // A server that grants no leases gives the same answer as a file that somebody writes to.
    return m_holdsLease || errno != EAGAIN || isOnNetwork(m_descriptor);
}

bool RegularFile::isWriterWaiting() const
{
    return m_holdsLease && fcntl(m_descriptor, F_GETLEASE) != F_RDLCK;
}

bool isSameFile(const struct stat& one, const struct stat& other)
{
    const auto isSameTime = [](const timespec& time, const timespec& otherTime) {
        return time.tv_sec == otherTime.tv_sec && time.tv_nsec == otherTime.tv_nsec;
    };
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino &&
           one.st_size == other.st_size && isSameTime(one.st_mtim, other.st_mtim) &&
           isSameTime(one.st_ctim, other.st_ctim);
}
