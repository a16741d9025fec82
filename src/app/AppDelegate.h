#pragma once

#include "app/StatusReporter.h"
#include "base/Disposable.h"
#include "platform/Application.h"
#include "records/UpgradeInfo.h"
#include "ui/CustomAlertWindowController.h"
#include "ui/UpgradeWindowController.h"

#include <memory>
#include <optional>
#include <vector>

/// Starts the long-lived components, routes the system's events to them, and shows what an upgrade
/// check finds. Main thread only.
class AppDelegate {
public:
    /// Listens to the application, which must outlive it.
    explicit AppDelegate(Application& application);

    /// Asks the service for an upgrade and handles its answer.
    enum class WithoutUpgrade { Silent, SaySo };
    void checkUpgrade(WithoutUpgrade withoutUpgrade);

private:
    void applicationDidFinishLaunching();
    void applicationWillTerminate();
    void applicationDidChangeOcclusionState();
    void applicationDidChangeScreenParameters();
    void applicationDidResignActive();
    void didWakeNotification();

    void handleUpgradeAnswer(
        const std::optional<UpgradeInfo>& upgradeInfo, WithoutUpgrade withoutUpgrade);
    void showUpgrade(const UpgradeInfo& upgradeInfo);
    void showUpToDate();
    CustomAlertWindowController& upToDateWindowController();

    Application& m_application;
    std::vector<Disposable> m_messages;
    std::optional<StatusReporter> m_statusReporter; // since the launch
    std::optional<Disposable> m_wakeObserver;
    std::unique_ptr<CustomAlertWindowController> m_upToDateWindowController;
    std::unique_ptr<UpgradeWindowController> m_upgradeWC; // of the last offer
};
