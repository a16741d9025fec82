#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

/// One video that a player plays or may play. Main thread only.
class PlayerItem : public QObject {
    Q_OBJECT

public:
    enum class Status { Unknown = 0, ReadyToPlay = 1, Failed = 2 };

    /// Posted on the process's default notification centre when an item was played to its end, with
    /// the item as a `QObject*`.
    static QString didPlayToEndTimeNotification();

    /// Takes a file URL; anything that is not a readable regular file fails once it is played.
    explicit PlayerItem(QUrl url);

    const QUrl& url() const { return m_url; }
    Status status() const { return m_status; }

    /// Moves to the start. Does nothing unless this is its player's item and ready to play.
    void seekToZero();

Q_SIGNALS:
    void statusChanged(PlayerItem::Status status);
    /// The player is about to open the file. It may do so later than it gets the item: while there
    /// is no display it opens none.
    void openingBegan();

    /// \name Between an item and the player that it belongs to
    /// @{
    void seekToZeroRequested();
    /// @}

private:
    friend class Player;
    void setStatus(Status status);

    QUrl m_url;
    Status m_status = Status::Unknown;
};
