#pragma once

#include "base/Disposable.h"
#include "platform/Application.h"

#include <vector>

/// Starts the long-lived components and routes the system's events to them.
class AppDelegate {
public:
    /// Listens to the application, which must outlive it.
    explicit AppDelegate(Application& application);

private:
    void applicationDidFinishLaunching();
    void applicationDidChangeScreenParameters();
    void applicationWillTerminate();

    std::vector<Disposable> m_messages;
};
