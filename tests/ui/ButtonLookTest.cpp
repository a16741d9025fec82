#include "ui/ButtonFixture.h"
#include "ui/Warnings.h"

#include <QTemporaryDir>

namespace {

const QColor normal("#203040");
const QColor title("#ffff00");

/// The smallest rectangle around the pixels of that colour, more or less; null without any.
QRect extent(const QImage& image, const QColor& color)
{
    QRect found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const auto seen = image.pixelColor(x, y);
            constexpr int tolerance = 60;
            if (std::abs(seen.red() - color.red()) < tolerance &&
                std::abs(seen.green() - color.green()) < tolerance &&
                std::abs(seen.blue() - color.blue()) < tolerance)
                found |= QRect(x, y, 1, 1);
        }
    }
    return found;
}

QString text(const QString& value)
{
    return QStringLiteral("<property name=\"text\"><string>%1</string></property>").arg(value);
}

} // namespace

class ButtonLookTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { failOnAnyWarning(); }

    void interfaceFile_setsEveryProperty()
    {
        const QTemporaryDir directory;
        const auto picture = directory.filePath(QStringLiteral("picture.png"));
        QImage(8, 8, QImage::Format_RGB32).save(picture);
        const auto image = [&](const char* property) {
            return QStringLiteral("<property name=\"%1\"><iconset>%2</iconset></property>")
                .arg(QLatin1String(property), picture);
        };

        const ButtonFixture fixture(
            ButtonFixture::color("hoverColor", Qt::red) +
            ButtonFixture::color("normalColor", Qt::green) +
            ButtonFixture::color("pressedColor", Qt::blue) +
            ButtonFixture::color("titleColor", Qt::yellow) + image("hoverImage") +
            image("normalImage") +
            QStringLiteral("<property name=\"isCustomBorder\"><bool>true</bool></property>"
                           "<property name=\"cornerRadius\"><double>7.5</double></property>"));

        const auto& button = *fixture.button;
        QCOMPARE(button.hoverColor(), QColor(Qt::red));
        QCOMPARE(button.normalColor(), QColor(Qt::green));
        QCOMPARE(button.pressedColor(), QColor(Qt::blue));
        QCOMPARE(button.titleColor(), QColor(Qt::yellow));
        QCOMPARE(button.hoverImage().actualSize({8, 8}), QSize(8, 8));
        QCOMPARE(button.normalImage().actualSize({8, 8}), QSize(8, 8));
        QVERIFY(button.isCustomBorder());
        QCOMPARE(button.cornerRadius(), 7.5);
    }

    void initialLook_isThePalettes()
    {
        const ButtonFixture fixture(text(QStringLiteral("Title")));
        QCOMPARE(fixture.button->cornerRadius(), 5.0);
        QCOMPARE(fixture.background(), fixture.button->palette().color(QPalette::Base));

        // The desktop turns dark.
        fixture.window->setPalette(QPalette(Qt::darkGray, Qt::black));

        QCOMPARE(fixture.background(), fixture.button->palette().color(QPalette::Base));
        QCOMPARE(fixture.button->titleColor(), fixture.button->palette().color(QPalette::Text));
    }

    void corners_showWhatLiesBehind()
    {
        const ButtonFixture fixture(ButtonFixture::color("normalColor", normal));
        const auto behind = fixture.window->palette().color(QPalette::Window);
        QCOMPARE(fixture.pixel({0, 0}), behind);
        QCOMPARE(fixture.pixel({119, 39}), behind);
        QCOMPARE(fixture.pixel({8, 0}), normal);
        QCOMPARE(fixture.pixel({0, 20}), normal);

        fixture.button->setCornerRadius(0);
        QCOMPARE(fixture.pixel({0, 0}), normal);

        // An image that is as large as the button ends at the corners, too.
        fixture.button->setCornerRadius(12);
        QPixmap large(120, 40);
        large.fill(Qt::red);
        fixture.button->setIconSize(large.size());
        fixture.button->setIcon(large);
        QCOMPARE(fixture.pixel({60, 0}), QColor(Qt::red));
        QCOMPARE(fixture.pixel({0, 0}), behind);
    }

    void border_isDrawnWhateverIsAssigned_data()
    {
        QTest::addColumn<bool>("isCustomBorder");

        QTest::newRow("true") << true;
        QTest::newRow("false") << false;
    }

    void border_isDrawnWhateverIsAssigned()
    {
        QFETCH(bool, isCustomBorder);
        const ButtonFixture fixture(ButtonFixture::color("normalColor", Qt::black));
        QCOMPARE(fixture.pixel({60, 0}), QColor(Qt::black));

        fixture.button->setIsCustomBorder(isCustomBorder);

        // Half a pixel of light grey at the edge, and nothing further in.
        const auto edge = fixture.pixel({60, 0});
        QVERIFY2(edge.red() >= 75 && edge.red() <= 95, qPrintable(edge.name()));
        QCOMPARE(fixture.pixel({60, 1}), QColor(Qt::black));
        QCOMPARE(fixture.button->isCustomBorder(), isCustomBorder);
    }

    void title_isColoredAndCentred()
    {
        const ButtonFixture fixture(text(QStringLiteral("HHHHH")) +
                                    ButtonFixture::color("normalColor", normal) +
                                    ButtonFixture::color("titleColor", title));

        const auto seen = extent(fixture.button->grab().toImage(), title);

        QVERIFY(!seen.isNull());
        QVERIFY(std::abs(seen.center().x() - 60) <= 1);
        QVERIFY(std::abs(seen.center().y() - 20) <= 2);
    }

    void newText_losesTheTitlesLookUntilTheColorIsAssigned()
    {
        const ButtonFixture fixture(text(QStringLiteral("HHHHH")) +
                                    ButtonFixture::color("normalColor", normal) +
                                    ButtonFixture::color("titleColor", title));
        const auto seen = [&] { return extent(fixture.button->grab().toImage(), title); };

        static_cast<QPushButton*>(fixture.button)->setText(QStringLiteral("IIIII"));
        QVERIFY(seen().isNull());
        fixture.button->setText(QStringLiteral("HHHHH"));
        QVERIFY(seen().isNull());

        fixture.button->setTitleColor(title);
        QVERIFY(!seen().isNull());
    }

    void buttonMadeInCode_isAnOrdinaryOne()
    {
        QWidget window;
        window.resize(300, 160);
        QPushButton ordinary(QStringLiteral("Title"), &window);
        ordinary.setGeometry(10, 10, 120, 40);
        ButtonWithHoverBackGround button(&window);
        button.setGeometry(10, 60, 120, 40);
        button.setText(QStringLiteral("Title"));
        for (auto* either : {static_cast<QPushButton*>(&button), &ordinary})
            either->setFocusPolicy(Qt::NoFocus);
        button.setHoverColor(Qt::red);
        button.setNormalColor(Qt::green);
        button.setPressedColor(Qt::blue);
        button.setCornerRadius(10);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));

        QCOMPARE(button.cursor().shape(), Qt::PointingHandCursor);
        QCOMPARE(button.sizeHint(), ordinary.sizeHint());
        ordinary.setDown(true);
        QTest::mousePress(&button, Qt::LeftButton);
        QCOMPARE(button.grab().toImage(), ordinary.grab().toImage());

        // A border gives it a layer, without a background until one is assigned.
        button.setIsCustomBorder(true);
        QCOMPARE(
            button.grab().toImage().pixelColor(6, 20), window.palette().color(QPalette::Window));
        button.setNormalColor(normal);
        QCOMPARE(button.grab().toImage().pixelColor(6, 20), normal);
    }

    void edges_areSharpWhateverTheScale_data()
    {
        QTest::addColumn<double>("ratio");

        QTest::newRow("100 %") << 1.0;
        QTest::newRow("150 %") << 1.5;
        QTest::newRow("200 %") << 2.0;
    }

    void edges_areSharpWhateverTheScale()
    {
        QFETCH(double, ratio);
        const ButtonFixture fixture(ButtonFixture::color("normalColor", Qt::red));
        fixture.button->setGeometry(41, 43, 121, 39); // between pixels at 150 %
        fixture.button->setCornerRadius(0);
        QImage image((QSizeF(fixture.window->size()) * ratio).toSize(), QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);

        fixture.window->render(&image);

        const auto behind = fixture.window->palette().color(QPalette::Window);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const auto seen = image.pixelColor(x, y);
                QVERIFY2(seen == behind || seen == QColor(Qt::red), qPrintable(seen.name()));
            }
        }
    }
};

QTEST_MAIN(ButtonLookTest)
#include "ButtonLookTest.moc"
