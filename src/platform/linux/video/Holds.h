#pragma once

#include <QObject>

/// Why nobody can see the picture. While there is a reason, no picture is decoded: a video that is
/// heard goes on without its pictures, any other one rests. What people asked for, to play or to
/// pause, is not touched. Main thread only.
class Holds : public QObject {
    Q_OBJECT

public:
    enum class Reason : unsigned {
        Unseen = 1,        ///< no surface shows it: all are covered, or there is none
        SessionLocked = 2, ///< says the login manager
        ScreenSaver = 4,   ///< one says that it is active
        Blanked = 8,       ///< the monitors sleep
    };

    void set(Reason reason, bool holds);
    /// Somebody has pressed on the picture, so the session is not locked, whoever says so, until it
    /// is locked the next time.
    void noticePerson();
    bool has(Reason reason) const { return (m_reasons & static_cast<unsigned>(reason)) != 0; }
    bool isEmpty() const { return m_reasons == 0; }

Q_SIGNALS:
    void changed();

private:
    unsigned m_reasons = 0;
};
