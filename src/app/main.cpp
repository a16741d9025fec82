#include "app/AppDelegate.h"
#include "app/Translation.h"
#include "menu/StatusBarImage.h"

#include <QApplication>

int main(int argc, char** argv)
{
    Application application(argc, argv);
    const Translation translation(Bundle::main());
    QApplication::setWindowIcon(StatusBarImage::load(Bundle::main()));
    const AppDelegate delegate(application);
    application.run();
}
