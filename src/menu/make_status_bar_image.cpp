#include "menu/StatusBarImage.h"

#include <cstdio>
#include <cstdlib>

/// Writes `FOLDER/fendix_statusBar_SIZE.png` for each size.
int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: make_status_bar_image FOLDER\n", stderr);
        return EXIT_FAILURE;
    }
    for (const int size : StatusBarImage::sizes) {
        const auto path = QStringLiteral("%1/fendix_statusBar_%2.png")
                              .arg(QString::fromLocal8Bit(argv[1]))
                              .arg(size);
        if (!StatusBarImage::paint(size).save(path)) {
            std::fprintf(stderr, "Cannot write %s.\n", qUtf8Printable(path));
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}
