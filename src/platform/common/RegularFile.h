#pragma once

#include <QByteArray>

#include <optional>
#include <sys/stat.h>

/// A regular file, open for reading, that other programs may write to at any time. Whatever the
/// path leads to, opening it never waits; what is no regular file is not opened.
class RegularFile {
public:
    /// Sets `errno` when it fails.
    explicit RegularFile(const QByteArray& path);
    ~RegularFile();
    RegularFile(const RegularFile&) = delete;
    RegularFile& operator=(const RegularFile&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    /// As it was when it was opened.
    const struct stat& status() const { return m_status; }

    /// None when it is longer than the limit, cannot be read, or has changed since it was opened.
    std::optional<QByteArray> contents(qsizetype limit) const;

    /// Holds off programs that open the file to write to it, until this one is closed. False when
    /// one has it open already. Where the system cannot do this (a network's file system, another
    /// user's file) nobody is held off.
    bool holdOffWriters();
    /// A program is held off this very moment.
    bool isWriterWaiting() const;

private:
    int m_descriptor;
    struct stat m_status {};
    bool m_holdsLease = false;
};

/// Whether two looks at a path found the same file, unchanged.
bool isSameFile(const struct stat& one, const struct stat& other);
