#include "companion/Commands.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return static_cast<int>(runCommand(QCoreApplication::arguments().mid(1)));
}
