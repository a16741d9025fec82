#include "app/AppDelegate.h"
#include "app/CommandLine.h"
#include "app/Translation.h"
#include "menu/HelperIcon.h"

#include <QApplication>

using namespace Qt::StringLiterals;

int main(int argc, char** argv)
{
    // One name for windows (also the desktop's own, see X11DesktopWindow), status item and tasks.
    const auto name = u"TavelorHelper"_s;
    QCoreApplication::setApplicationName(name);
    QGuiApplication::setApplicationDisplayName(name);
    QGuiApplication::setDesktopFileName(name);
    if (const auto status = answerCommandLine({argv, argv + argc}))
        return *status;

    Application application(argc, argv);
    const Translation translation(Bundle::main());
    QApplication::setWindowIcon(HelperIcon::applicationIcon(Bundle::main()));
    const AppDelegate delegate(application);
    application.run();
}
