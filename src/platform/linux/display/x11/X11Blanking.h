#pragma once

#include "platform/linux/display/x11/X11Connection.h"

#include <QObject>
#include <QTimer>

/// Whether the server keeps the monitors dark: its screen saver runs (MIT-SCREEN-SAVER, which tells
/// of it) or they sleep (DPMS, which has to be asked, about once a second).
class X11Blanking : public QObject {
    Q_OBJECT

public:
    explicit X11Blanking(X11Connection& connection);

    bool isBlanked() const { return m_isSaving || m_isAsleep; }

Q_SIGNALS:
    void changed();

private:
    void askScreenSaver();
    void askMonitors();
    void set(bool& state, bool value);

    X11Connection& m_connection;
    bool m_isSaving = false;
    bool m_isAsleep = false;
    QTimer m_question;
};
