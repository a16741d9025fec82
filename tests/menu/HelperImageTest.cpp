#include "menu/HelperImage.h"
#include "menu/HelperIcon.h"
#include "support/TemporaryHome.h"

#include <QColor>
#include <QDir>
#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// As the Web Content Accessibility Guidelines have it.
double luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

bool standsOut(const QColor& color, const QColor& other)
{
    const auto [dark, light] = std::minmax({luminance(color), luminance(other)});
    return light + 0.05 >= 3 * (dark + 0.05);
}

} // namespace

class HelperImageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void statusBarImage_standsOutFromEveryPanel()
    {
        for (const int size : {16, 22}) {
            const auto image = HelperImage::statusBarImage(size);
            int covered = 0;
            for (int i = 0; i < size * size; ++i) {
                const auto color = image.pixelColor(i % size, i / size);
                if (color.alpha() < 255)
                    continue; // a soft edge
                ++covered;
                for (const auto* panel : {"#ffffff", "#f0f0f0", "#2e3436", "#000000"})
                    QVERIFY2(standsOut(color, panel), panel);
            }
            QVERIFY(covered > size * size / 3); // a mark and not a few dots
        }
    }

    void icon_isNamedOnlyWhereThemesHaveIt()
    {
        const TemporaryHome home;
        const auto folder = home.path() + u"/.local/share/icons/hicolor/symbolic/apps"_s;
        qputenv("XDG_DATA_HOME", (home.path() + u"/.local/share"_s).toUtf8());
        qputenv("XDG_DATA_DIRS", home.path().toUtf8());
        QCOMPARE(HelperIcon::statusBarIcon(Bundle::main()).name(), QString());

        QVERIFY(QDir().mkpath(folder));
        TemporaryHome::writeFile(folder + u"/fendix_statusBar-symbolic.svg"_s, "<svg/>");

        const auto icon = HelperIcon::statusBarIcon(Bundle::main());
        QCOMPARE(icon.name(), u"fendix_statusBar-symbolic"_s);
        QCOMPARE(icon.pixmap(22).toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied),
            HelperImage::statusBarImage(22)); // for X11 trays, and panels that want no names
    }

    void applicationIcon_isColored()
    {
        const auto image = HelperIcon::applicationIcon(Bundle::main()).pixmap(48).toImage();

        QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
        QVERIFY(standsOut(image.pixelColor(24, 4), image.pixelColor(14, 16)));
    }
};

QTEST_MAIN(HelperImageTest)
#include "HelperImageTest.moc"
