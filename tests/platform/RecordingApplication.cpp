#include "platform/Application.h"
#include "platform/Recording.h"
#include "platform/StatusBar.h"

using namespace Qt::StringLiterals;

// The application whose messages a test sends by itself, on a desktop without a status bar.

class Application::Body {};

Application::Application(int& /*argc*/, char** /*argv*/) {}
Application::~Application() = default;

QString Application::didChangeScreenParametersNotification()
{
    return u"screen parameters"_s;
}

void Application::terminate()
{
    Recording::lines().append(u"terminate"_s);
}

class StatusBar::Body {};

StatusBar::StatusBar() = default;
StatusBar::~StatusBar() = default;

StatusBar& StatusBar::shared()
{
    static StatusBar statusBar;
    return statusBar;
}

bool StatusBar::isAvailable() const
{
    return false;
}
