#pragma once

#include "desktop/X11Desktop.h"

#include <QColor>
#include <QRect>

#include <optional>
#include <vector>

/// Another program that has a desktop of its own: a window of type desktop with its picture and its
/// icons. It has a connection of its own, and its death is as sudden as that of a killed program.
class DesktopProgram {
public:
    struct Look {
        QRect frame{0, 0, 1280, 720};
        QColor left = Qt::green; ///< of the picture's halves
        QColor right = Qt::green;
        bool hasAlpha = false;
        bool hasRootPixmap = false; ///< shows the same picture on the root window, without icons
    };
    DesktopProgram(const X11Desktop& desktop, const Look& look);

    void drawIcon(const QRect& frame, const QColor& colour);
    void removeIcon(const QRect& frame);
    /// Another picture, without icons.
    void setPicture(const QColor& left, const QColor& right);

    /// The buttons pressed on its window so far, and those released as negative numbers.
    std::vector<int> buttons();

private:
    xcb_pixmap_t makePixmap(std::uint8_t depth);
    void paint(xcb_pixmap_t pixmap, const QRect& frame, const QColor& colour);
    void paintPicture(xcb_pixmap_t pixmap, const QRect& part);
    void showChange(const QRect& frame);
    void setProperty(
        xcb_window_t window, const char* name, xcb_atom_t type, std::vector<std::uint32_t> values);

    const X11Desktop& m_desktop;
    Look m_look;
    X11ConnectionHandle m_connection;
    xcb_window_t m_window;
    xcb_gcontext_t m_graphics;
    xcb_pixmap_t m_picture; ///< with icons, as the window's background
    xcb_pixmap_t m_rootPicture = XCB_PIXMAP_NONE;
    std::vector<int> m_buttons;
};
