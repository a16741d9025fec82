#include "app/AppDelegate.h"

#include "base/Observe.h"
#include "platform/DistributedNotificationCenter.h"
#include "player/VideoPlayerManager.h"
#include "service/WebModel.h"

AppDelegate::AppDelegate(Application& application)
{
    m_messages.push_back(observe(application, &Application::didFinishLaunching, [this] {
        applicationDidFinishLaunching();
    }));
    m_messages.push_back(
        observe(application, &Application::willTerminate, [this] { applicationWillTerminate(); }));
    m_messages.push_back(observe(application, &Application::didChangeScreenParameters, [this] {
        applicationDidChangeScreenParameters();
    }));
}

void AppDelegate::applicationDidFinishLaunching()
{
    VideoPlayerManager::shared().createWindows();
    WebModel::shared().checkUpgrade([](const auto&) {});
}

void AppDelegate::applicationDidChangeScreenParameters()
{
    VideoPlayerManager::shared().screenParametersDidChange();
}

void AppDelegate::applicationWillTerminate()
{
    // Tells the companion that the helper goes away. There is nothing to save.
    DistributedNotificationCenter::defaultCenter().post(QStringLiteral("com.zemra.fendix.mac.ter"));
}
