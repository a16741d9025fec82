#pragma once

#include <QSet>
#include <QString>

#include <optional>

/// Remembers, beyond the life of the process, which video was being opened when the process ended
/// without a word. Such a video has probably ended it and would do so at every start, so it is left
/// out until somebody chooses it.
///
/// A small file that the helper and its companion share: {"opening": SIGN, "suspects": [SIGN]}.
/// One that is missing or damaged, or that cannot be written, suspects nobody. Main thread only.
class OpeningRecord {
public:
    /// Reads nothing yet: no video is a suspect before one of the calls below has read the file.
    explicit OpeningRecord(QString path);
    /// The helper's, at its place among the group's caches.
    static OpeningRecord& shared();

    /// The video that an earlier process opened and did not get to play, a suspect from now on.
    std::optional<QString> takeUnfinished();

    /// Before a video is opened. Costs nothing for one that has played in this process.
    void begin(const QString& sign);
    /// What was opened plays, or does not: it failed, or this process ends as it should.
    enum class Outcome { Plays, DoesNotPlay };
    void finish(Outcome outcome);

    bool isSuspect(const QString& sign) const { return m_suspects.contains(sign); }
    /// Somebody wants to see it all the same. Whether it was a suspect.
    bool forgive(const QString& sign);
    /// Reads whom others have forgiven.
    void refresh();

private:
    void write() const;

    QString m_path;
    QString m_opening; // empty for none
    QSet<QString> m_suspects;
    QSet<QString> m_proven; // have played in this process
};
