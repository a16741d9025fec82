#include "ui/UpgradeBackGround.h"

#include <cstdio>
#include <cstdlib>

/// Writes `FOLDER/upgrade_back_ground.png` and, as the toolkit finds them for finer screens,
/// `upgrade_back_ground@2x.png` and `upgrade_back_ground@3x.png`.
int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: make_upgrade_back_ground FOLDER\n", stderr);
        return EXIT_FAILURE;
    }
    for (const int ratio : {1, 2, 3}) {
        const auto suffix = ratio == 1 ? QString() : QStringLiteral("@%1x").arg(ratio);
        const auto path = QString::fromLocal8Bit(argv[1]) + QStringLiteral("/upgrade_back_ground") +
                          suffix + QStringLiteral(".png");
        if (!UpgradeBackGround::image(ratio).save(path)) {
            std::fprintf(stderr, "Cannot write %s.\n", qUtf8Printable(path));
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}
