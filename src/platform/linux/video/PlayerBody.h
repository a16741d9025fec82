#pragma once

#include "platform/Player.h"
#include "platform/linux/video/FrameOutput.h"
#include "platform/linux/video/MpvHandle.h"
#include "platform/linux/video/RenderThread.h"
#include "platform/linux/video/UprightFilter.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <atomic>
#include <cstdint>
#include <map>
#include <optional>

/// A player on one libmpv core.
class Player::Body : public QObject {
    Q_OBJECT

public:
    Body();
    ~Body() override;

    RenderThread& renderThread() { return m_renderThread; }

    void setPaused(bool paused);
    void setVolume(float volume);
    float volume() const { return m_volume; }
    void setMuted(bool muted);
    bool isMuted() const { return m_isMuted; }
    void setActionAtItemEnd(ActionAtItemEnd action);
    void replaceCurrentItem(std::unique_ptr<PlayerItem> item);
    PlayerItem* currentItem() const { return m_item.get(); }

Q_SIGNALS:
    void itemFailed();
    void itemBecameReady();

private:
    /// What began the round that is being played: from the start of the item to its end.
    enum class Round { SinceLoad, SinceSeek };

    void changePresenter();
    bool isResting() const;
    bool isHeard() const;
    void applyHolds();
    void setDecodesPictures(bool decodes);
    void load();
    void forgetLoad();
    void leaveItem();
    void seekToZero();
    void loadInsteadOfSeeking();
    void beginRound(Round round);
    void waitForStillPicture();
    void finishRound();
    void finishRoundWithoutPicture();
    void fail();

    void processEvents();
    void handle(const mpv_event& event);
    void handleLoadAnswer(const mpv_event& event);
    void handleProperty(const mpv_event& event);
    void countDrops(quint64 request, std::int64_t count);
    void setIsAtEnd(bool isAtEnd);

    FrameOutput& m_output;
    MpvHandle m_core;
    RenderThread m_renderThread; // after the core, so that it goes first
    UprightFilter m_upright;
    std::atomic<bool> m_isWakeUpPosted = false;

    std::unique_ptr<PlayerItem> m_item;
    quint64 m_request = 0; // of the latest load; answers to earlier ones are about other items
    std::optional<qint64> m_entry; // libmpv's number of the item that is loaded
    bool m_isLoaded = false;
    bool m_hasSound = false;   // and some of it is chosen
    bool m_cannotSeek = false; // the item begins anew by being loaded again

    Round m_round = Round::SinceLoad;
    std::uint64_t m_picturesBefore = 0; // those of earlier rounds
    bool m_isAtEnd = false;
    QElapsedTimer m_roundTime;
    std::map<quint64, std::int64_t> m_drops; // libmpv's counts, by their requests' numbers
    bool m_hasLackedPictures = false;        // in this round nobody looked, for a while at least
    bool m_isStill = false;                  // the round is over but for being looked at
    QTimer m_stillPicture;                   // running meanwhile

    bool m_isPaused = true;
    bool m_canPresent = false; // while it cannot, the core rests
    bool m_decodesPictures = true;
    float m_volume = 1;
    bool m_isMuted = false;
};
