#pragma once

#include "platform/PlayerLayerView.h"

/// The view that shows the shared player in a desktop window.
class PlayerView : public PlayerLayerView {
public:
    using PlayerLayerView::PlayerLayerView;

    void drawRect(const QRect& dirtyRect) override;
    /// Writes "123" to standard output; the touch goes no further.
    void touchesBegan(const TouchEvent& event) override;
    /// Writes "mouse down" to standard output after the base class has passed the press on.
    void mouseDown(const MouseEvent& event) override;
};
