#include "app/AppDelegate.h"

#include "base/Observe.h"
#include "identity/AppInfo.h"
#include "library/OpeningRecord.h"
#include "menu/StatusBarManager.h"
#include "platform/DistributedNotificationCenter.h"
#include "platform/Workspace.h"
#include "player/VideoPlayerManager.h"
#include "preferences/Preferences.h"
#include "service/WebModel.h"

#include <QCoreApplication>
#include <QLabel>
#include <QMetaObject>

namespace {

bool shouldBePlaying()
{
    const auto& preferences = Preferences::shared();
    return preferences.isOpenPlayer() && preferences.isPlaying();
}

/// Versions are compared as plain texts, which is how the service numbers them: 1.0.10 comes
/// before 1.0.9.
bool isNewer(const UpgradeInfo& upgradeInfo)
{
    return AppInfo::shared().version() < upgradeInfo.ver;
}

} // namespace

AppDelegate::AppDelegate(Application& application) : m_application(application)
{
    const auto route = [&](auto message, auto handler) {
        m_messages.push_back(
            observe(application, message, [this, handler] { (this->*handler)(); }));
    };
    route(&Application::didFinishLaunching, &AppDelegate::applicationDidFinishLaunching);
    route(&Application::willTerminate, &AppDelegate::applicationWillTerminate);
    route(&Application::didChangeOcclusionState, &AppDelegate::applicationDidChangeOcclusionState);
    route(&Application::didChangeScreenParameters,
        &AppDelegate::applicationDidChangeScreenParameters);
    route(&Application::didResignActive, &AppDelegate::applicationDidResignActive);
}

void AppDelegate::applicationDidFinishLaunching()
{
    VideoPlayerManager::shared().createWindows();
    auto& statusBarManager = StatusBarManager::shared();
    statusBarManager.setDelegate(
        {[this] { checkUpgrade(WithoutUpgrade::SaySo); }, [this] { m_application.terminate(); }});
    statusBarManager.buildMenu();
    m_wakeObserver =
        observe(Workspace::shared(), &Workspace::didWake, [this] { didWakeNotification(); });
    checkUpgrade(WithoutUpgrade::Silent);
    m_statusReporter.emplace(Preferences::shared(), VideoPlayerManager::shared());
}

void AppDelegate::applicationWillTerminate()
{
    // An end in good order is not the fault of the video that was just opened.
    OpeningRecord::shared().finish(OpeningRecord::Outcome::DoesNotPlay);
    // Tells the companion that the helper goes away. There is nothing else to save.
    DistributedNotificationCenter::defaultCenter().post(QStringLiteral("com.zemra.fendix.mac.ter"));
}

void AppDelegate::applicationDidChangeOcclusionState()
{
    if (shouldBePlaying())
        VideoPlayerManager::shared().openPlayer();
}

void AppDelegate::applicationDidChangeScreenParameters()
{
    VideoPlayerManager::shared().screenParametersDidChange();
    StatusBarManager::shared().teardown();
    StatusBarManager::shared().buildMenu();
}

void AppDelegate::applicationDidResignActive()
{
    DistributedNotificationCenter::defaultCenter().setSuspended(false);
}

void AppDelegate::didWakeNotification()
{
    if (shouldBePlaying())
        VideoPlayerManager::shared().setPlaying(true);
}

// -- upgrades

void AppDelegate::checkUpgrade(WithoutUpgrade withoutUpgrade)
{
    WebModel::shared().checkUpgrade([this, withoutUpgrade](const auto& upgradeInfo) {
        // Not from within the client's answer: windows run loops of their own.
        QMetaObject::invokeMethod(
            &m_application,
            [this, upgradeInfo, withoutUpgrade] {
                handleUpgradeAnswer(upgradeInfo, withoutUpgrade);
            },
            Qt::QueuedConnection);
    });
}

void AppDelegate::handleUpgradeAnswer(
    const std::optional<UpgradeInfo>& upgradeInfo, WithoutUpgrade withoutUpgrade)
{
    if (upgradeInfo && isNewer(*upgradeInfo))
        showUpgrade(*upgradeInfo);
    else if (withoutUpgrade == WithoutUpgrade::SaySo)
        showUpToDate();
}

void AppDelegate::showUpgrade(const UpgradeInfo& upgradeInfo)
{
    if (m_upgradeWC)
        m_upgradeWC->close();
    m_upgradeWC =
        std::make_unique<UpgradeWindowController>(QStringLiteral("UpgradeWindowController"),
            [](const QUrl& url) { Workspace::shared().openUrl(url); });
    m_upgradeWC->upgradeInfo = upgradeInfo;
    m_upgradeWC->showWindow();
}

void AppDelegate::showUpToDate()
{
    auto& controller = upToDateWindowController();
    if (!controller.isWindowLoaded())
        controller.loadWindow();
    controller.titleLabel().setText(
        QCoreApplication::translate("AppDelegate", "You're up to date", "no newer version"));
    controller.infoLabel().setText(QCoreApplication::translate(
        "AppDelegate", "%1 is currently the newest version", "display version")
                                       .arg(AppInfo::shared().displayVersion()));
    controller.showWindow();
}

CustomAlertWindowController& AppDelegate::upToDateWindowController()
{
    if (!m_upToDateWindowController) {
        m_upToDateWindowController = std::make_unique<CustomAlertWindowController>(
            QStringLiteral("CustomAlertWindowController"));
    }
    return *m_upToDateWindowController;
}
