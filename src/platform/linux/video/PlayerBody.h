#pragma once

#include "platform/Player.h"
#include "platform/linux/video/MpvHandle.h"
#include "platform/linux/video/RenderThread.h"

#include <QObject>

#include <atomic>
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
    void load();
    void seekToZero();
    void processEvents();
    void handle(const mpv_event& event);
    void handleLoadAnswer(const mpv_event& event);
    void setIsAtEnd(bool isAtEnd);
    void fail();

    MpvHandle m_core;
    RenderThread m_renderThread; // after the core, so that it goes first
    std::atomic<bool> m_isWakeUpPosted = false;

    std::unique_ptr<PlayerItem> m_item;
    quint64 m_request = 0; // of the latest load; answers to earlier ones are about other items
    std::optional<qint64> m_entry; // libmpv's number of the item that is loaded
    bool m_isLoaded = false;
    bool m_isAtEnd = false;
    std::uint64_t m_offersBefore = 0; // pictures of earlier items

    float m_volume = 1;
    bool m_isMuted = false;
};
