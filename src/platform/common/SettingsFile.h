#pragma once

#include "platform/common/SettingsText.h"

#include <QElapsedTimer>
#include <QString>

#include <chrono>
#include <sys/stat.h>

class QLockFile;
class RegularFile;

/// One settings file that people and other programs replace, or save in place, at any time.
///
/// Nothing is believed that is not the whole text of a settings file. Not believed are: what is no
/// regular file (it is not even opened), cannot be read, is empty or too long, has a line that is
/// no line of a settings file, or is open in a program that may still write to it; and a file
/// changed a moment ago that lacks its last line's end, or, saved in place, a key that it had.
/// Then what it held when it last read well stays what it is.
class SettingsFile {
public:
    explicit SettingsFile(const QString& path);

    enum class State {
        Read,   ///< `text()` is what the file holds
        Vacant, ///< may be written anew: never was there, or is lost
        NoNews, ///< `problem()` says why; what the file holds is somebody else's affair
    };
    /// Looks whether the file has changed, and reads it if so. One that has been gone for five
    /// seconds, or empty for thirty, is lost: nobody is about to save it any more, and writing down
    /// what this process remembers of it loses nothing.
    State look();
    const SettingsText& text() const { return m_text; }

    /// Puts a text in the place of what was read last, as a whole; a link stays a link. False when
    /// the file has changed since, is being written, or cannot be replaced: `problem()` says why.
    /// The file keeps its mode and owner; a new one is readable by its owner only. Under the lock.
    bool replace(const SettingsText& text);

    /// The lock that writers hold, QSettings' own. False when it cannot be had at once or soon.
    bool lock(QLockFile& lockFile);

    QString path() const { return m_path; }
    QString lockPath() const;
    /// Why the last look, lock or replacement has failed, for people; empty when it has not.
    const QString& problem() const { return m_problem; }

private:
    State noNews(const QString& problem);
    State lookForMissing(int error);
    State read();
    State judge(RegularFile& file);
    bool exchange(const QByteArray& scratch, const QByteArray& target);
    bool add(const QByteArray& scratch, const QByteArray& target);
    bool write(int descriptor, const QByteArray& bytes, const struct stat* replaced);
    bool fail(int error);

    QString m_path;
    QByteArray m_encodedPath;
    SettingsText m_text;
    QString m_problem;
    State m_state = State::NoNews;
    struct stat m_status {
    };                     ///< of the file as it was judged; without a size where to judge it anew
    ino_t m_readInode = 0; ///< of the file that `m_text` was read from
    QElapsedTimer m_sinceGone;
    bool m_wasThere = false;
};
