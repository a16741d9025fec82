#include "platform/PreferencesSuite.h"

#include <QFile>

/// suite_writer NAME DIRECTORY KEY COUNT: stores 1 to COUNT under the key, one after the other.
int main(int argc, char** argv)
{
    if (argc != 5)
        return 2;
    const auto suite =
        PreferencesSuite::open(QFile::decodeName(argv[1]), QFile::decodeName(argv[2]));
    const int count = QByteArray(argv[4]).toInt();
    for (int i = 1; i <= count; ++i) {
        suite->setInteger(QString::fromUtf8(argv[3]), i);
        suite->synchronize();
    }
    return 0;
}
