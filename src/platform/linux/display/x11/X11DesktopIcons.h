#pragma once

#include "base/Debounce.h"
#include "base/Disposable.h"
#include "platform/linux/display/x11/X11Connection.h"
#include "platform/linux/display/x11/X11DesktopPicture.h"
#include "platform/linux/display/x11/X11ForeignDesktops.h"

#include <QObject>
#include <QRegion>
#include <QString>

#include <map>
#include <memory>

/// Where the icons are on other programs' desktops, which have to be seen through holes in windows
/// of ours that stand in front of them. While somebody wants to know.
class X11DesktopIcons : public QObject {
    Q_OBJECT

public:
    X11DesktopIcons(X11Connection& connection, X11ForeignDesktops& desktops);

    /// Until the token is released.
    [[nodiscard]] Disposable follow();

    /// While nobody can see them they are not looked for.
    void setIsPaused(bool isPaused);

    /// In root coordinates.
    const QRegion& area() const { return m_area; }
    /// Why icons are not seen, as a sentence; empty where they are. It has been so for a while.
    const QString& problem() const { return m_problem; }

Q_SIGNALS:
    void areaChanged();
    void problemChanged();

private:
    void update();
    void collect();
    QString currentProblem() const;

    X11Connection& m_connection;
    X11ForeignDesktops& m_desktops;
    bool m_isPossible; // with this server
    int m_followerCount = 0;
    bool m_isPaused = false;
    std::map<xcb_window_t, std::unique_ptr<X11DesktopPicture>> m_pictures;
    QRegion m_area;
    QString m_problem;
    Debounce m_complaint; // from a problem until it is told
};
