#include "companion/Commands.h"

#include <QCoreApplication>

#include <sys/stat.h>

int main(int argc, char** argv)
{
    umask(S_IRWXG | S_IRWXO); // the settings and the library are their user's own affair
    const QCoreApplication application(argc, argv);
    return static_cast<int>(runCommand(QCoreApplication::arguments().mid(1)));
}
