#include "player/PlayerView.h"

#include <cstdio>

void PlayerView::drawRect(const QRect& dirtyRect)
{
    PlayerLayerView::drawRect(dirtyRect);
}

void PlayerView::touchesBegan(const TouchEvent& /*event*/)
{
    std::puts("123");
    std::fflush(stdout);
}

void PlayerView::mouseDown(const MouseEvent& event)
{
    PlayerLayerView::mouseDown(event);
    std::puts("mouse down");
    std::fflush(stdout);
}
