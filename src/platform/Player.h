#pragma once

#include "platform/PlayerItem.h"

#include <memory>

/// Plays one item at a time, decoded once however many views show it. New players are paused.
///
/// No call waits for the decoder: the effects come in order, soon. A new item's file is looked up
/// at once, which takes as long as its file system takes. Main thread only.
/// On Linux the engine is libmpv; https://mpv.io/manual/ is the reference for its options.
class Player {
public:
    /// What the player does by itself when an item has ended.
    enum class ActionAtItemEnd { Pause = 1, None = 2 };

    explicit Player(std::unique_ptr<PlayerItem> item);
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    void play();
    void pause();

    /// Linear gain from 0 to 1. Values outside are limited; not-a-number is silence.
    void setVolume(float volume);
    float volume() const;
    void setMuted(bool muted);
    bool isMuted() const;

    void setActionAtItemEnd(ActionAtItemEnd action);

    /// Keeps playing or pausing as before. The last picture stays until the new item's first one.
    /// Null: no item, and the picture becomes black. The old item is destroyed a little later, so
    /// this may be called from its own signal.
    void replaceCurrentItem(std::unique_ptr<PlayerItem> item);
    PlayerItem* currentItem() const;

    class Body;
    Body& body() { return *m_body; }

private:
    std::unique_ptr<Body> m_body;
};
