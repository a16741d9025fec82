#include "menu/HelperImage.h"

#include <QFile>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

void require(bool isWritten, const QString& path)
{
    if (isWritten)
        return;
    std::fprintf(stderr, "Cannot write %s.\n", qUtf8Printable(path));
    std::exit(EXIT_FAILURE); // NOLINT(concurrency-mt-unsafe)
}

} // namespace

/// Writes `FOLDER/fendix_statusBar_SIZE.png` and `FOLDER/fendix_application_SIZE.png` for each
/// size, and the symbolic image to FILE.
int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fputs("usage: make_helper_images FOLDER FILE\n", stderr);
        return EXIT_FAILURE;
    }
    const auto folder = QString::fromLocal8Bit(argv[1]);
    const auto save = [&folder](const QImage& image, const QString& name) {
        const auto path = u"%1/%2_%3.png"_s.arg(folder, name).arg(image.width());
        require(image.save(path), path);
    };
    for (const int size : HelperImage::statusBarSizes)
        save(HelperImage::statusBarImage(size), u"fendix_statusBar"_s);
    for (const int size : HelperImage::applicationSizes)
        save(HelperImage::applicationImage(size), u"fendix_application"_s);

    QFile symbolic(QString::fromLocal8Bit(argv[2]));
    const auto text = HelperImage::symbolicImage();
    require(symbolic.open(QIODevice::WriteOnly) && symbolic.write(text) == text.size(),
        symbolic.fileName());
    return EXIT_SUCCESS;
}
