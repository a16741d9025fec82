#pragma once

#include "base/Disposable.h"

#include <QString>

#include <functional>
#include <memory>

/// Notifications by name between the programs of one user session.
///
/// On Linux they are signals on the D-Bus session bus: path `/com/zemra/tavelor`, interface
/// `com.zemra.tavelor.DistributedNotification`, member `Posted`, signature `ssa{sv}` (name,
/// object or "", user information). Without a bus posting does nothing and nothing arrives.
class DistributedNotificationCenter {
public:
    static DistributedNotificationCenter& defaultCenter();

    DistributedNotificationCenter();
    ~DistributedNotificationCenter();
    DistributedNotificationCenter(const DistributedNotificationCenter&) = delete;
    DistributedNotificationCenter& operator=(const DistributedNotificationCenter&) = delete;

    /// Calls `observer` on the main thread for every notification of that name, whatever its
    /// object, until the token is released.
    [[nodiscard]] Disposable addObserver(const QString& name, std::function<void()> observer);

    /// While suspended, notifications wait; of several of one name the latest does. Resuming
    /// delivers them before it returns. Not suspended at first, and not by a loss of focus either:
    /// the bus delivers to every program alike, so a program that never suspends has no need to
    /// resume.
    void setSuspended(bool isSuspended);

    /// Without object and user information. The notification has left this process when the call
    /// returns, so it may be the last thing that a process does.
    void post(const QString& name);

private:
    class Body;
    std::unique_ptr<Body> m_body;
};
