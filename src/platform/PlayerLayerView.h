#pragma once

#include <QPoint>
#include <QRect>

#include <memory>

class Player;

/// How a picture whose shape differs from its frame's is fitted into it.
enum class VideoGravity { ResizeAspectFill }; ///< fills the frame, cropped, its shape kept

/// The controls that a view draws over its picture.
enum class PlayerControlsStyle { None = 0 };

struct MouseEvent {
    QPoint location; ///< in the window, desktop units
};
struct TouchEvent {
    QPoint location; ///< in the window, desktop units
};

/// A view that shows a player's picture in its frame. Views of one player share one decoder, and
/// views with frames of one size share one rendered picture. Main thread only; the picture
/// itself is drawn on a thread of its own.
class PlayerLayerView {
public:
    /// `frame` is relative to the content view's origin and may lie partly outside it, in which
    /// case the window shows the part that is inside. Desktop units, y downward.
    explicit PlayerLayerView(const QRect& frame);
    virtual ~PlayerLayerView();
    PlayerLayerView(const PlayerLayerView&) = delete;
    PlayerLayerView& operator=(const PlayerLayerView&) = delete;

    const QRect& frame() const { return m_frame; }

    /// Borrowed: the player must outlive the view.
    void setPlayer(Player& player);
    void setVideoGravity(VideoGravity gravity);
    void setControlsStyle(PlayerControlsStyle style);

    /// The window asks for `dirtyRect` (in window coordinates) to be drawn. The base class shows
    /// the latest picture again.
    virtual void drawRect(const QRect& dirtyRect);
    /// A finger touched the view. The base class passes the touch on as a press.
    virtual void touchesBegan(const TouchEvent& event);
    /// The primary button was pressed over the view. The base class passes the press on to the
    /// window.
    virtual void mouseDown(const MouseEvent& event);

    class Body;
    Body& body() { return *m_body; }

private:
    QRect m_frame;
    std::unique_ptr<Body> m_body;
};
