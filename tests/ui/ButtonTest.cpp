#include "ui/ButtonWithHoverBackGround.h"

#include <QBitmap>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QColor normal("#203040");
const QColor hover("#c04020");
const QColor pressed("#20c040");

using Look = QVariantMap;
const Look withoutHover{{u"normalColor"_s, normal}, {u"pressedColor"_s, pressed}};
const Look withoutPressed{{u"normalColor"_s, normal}, {u"hoverColor"_s, hover}};
const Look threeColors{
    {u"normalColor"_s, normal}, {u"hoverColor"_s, hover}, {u"pressedColor"_s, pressed}};

constexpr QPoint inside{100, 60};
constexpr QPoint outside{250, 140};

/// A shown window with one button of 120 by 40, 40 pixels from the window's edges, that has been
/// woken, and a pointer beside it.
struct ButtonFixture {
    explicit ButtonFixture(const Look& look = {})
        : window(std::make_unique<QWidget>()), button(new ButtonWithHoverBackGround(window.get()))
    {
        window->resize(300, 160);
        button->setGeometry(40, 40, 120, 40);
        for (const auto& [name, value] : look.asKeyValueRange())
            button->setProperty(name.toLatin1().constData(), value);
        button->awakeFromNib();
        window->show();
        window->activateWindow();
        if (!QTest::qWaitForWindowActive(window.get()))
            qFatal("The window does not become active.");
        moveTo({5, 5});
    }

    void moveTo(const QPoint& point) const { QTest::mouseMove(window->windowHandle(), point); }
    void press() const { QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, inside); }
    void releaseAt(const QPoint& point) const
    {
        moveTo(point);
        QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, point);
    }
    QColor pixel(const QPoint& inButton) const
    {
        return window->grab().toImage().pixelColor(button->pos() + inButton);
    }
    QColor background() const { return pixel({6, 20}); } // between the edge and the title

    std::unique_ptr<QWidget> window;
    ButtonWithHoverBackGround* button;
};

/// Around what is light, without the corners; null without any.
QRect lightExtent(QWidget& widget)
{
    auto image = widget.grab(widget.rect().adjusted(10, 0, -10, 0)).toImage();
    image = image.convertToFormat(QImage::Format_Mono, Qt::ThresholdDither);
    image.invertPixels();
    return QRegion(QBitmap::fromImage(image)).boundingRect();
}

} // namespace

class ButtonTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void background_followsThePointer()
    {
        // Enter, Leave, Press, Release, Disable, enAble, Hide and show again.
        for (const auto& [look, events, background, clicks] :
            {std::tuple(threeColors, "E", hover, 0),
                std::tuple(threeColors, "EP", pressed, 0),
                std::tuple(threeColors, "EPR", hover, 1),
                std::tuple(threeColors, "EPL", pressed, 0),
                std::tuple(threeColors, "EPLR", normal, 0),
                std::tuple(withoutHover, "EPR", pressed, 1),
                std::tuple(withoutHover, "EPRL", normal, 1),
                std::tuple(withoutPressed, "EP", hover, 0),
                std::tuple(threeColors, "DEP", normal, 0),
                std::tuple(threeColors, "EDL", hover, 0), // keeps the look that it has
                std::tuple(threeColors, "EPDLRAE", hover, 0),
                std::tuple(threeColors, "EPH", normal, 0)}) {
            const ButtonFixture fixture(look);
            const QSignalSpy clicked(fixture.button, &QPushButton::clicked);
            auto pointer = outside;
            for (const auto event : QByteArray(events)) {
                if (event == 'E' || event == 'L')
                    fixture.moveTo(pointer = event == 'E' ? inside : outside);
                else if (event == 'P')
                    fixture.press();
                else if (event == 'R')
                    fixture.releaseAt(pointer);
                else if (event == 'H')
                    fixture.window->hide(), fixture.window->show();
                else
                    fixture.button->setEnabled(event == 'A');
            }

            QVERIFY2(fixture.background() == background, events);
            QVERIFY2(clicked.count() == clicks, events);
            fixture.releaseAt(outside); // or the next button would be told of this press
        }
    }

    void image_followsThePointer()
    {
        const ButtonFixture fixture(threeColors);
        QPixmap picture(16, 16);
        picture.fill(Qt::yellow);
        fixture.button->setProperty("hoverImage", QIcon(picture));
        picture.fill(Qt::cyan);
        fixture.button->setProperty("normalImage", QIcon(picture));

        QCOMPARE(fixture.pixel({60, 20}), normal); // none before the pointer has left
        fixture.moveTo(inside);
        QCOMPARE(fixture.pixel({60, 20}), QColor(Qt::yellow));
        fixture.moveTo(outside);
        QCOMPARE(fixture.pixel({60, 20}), QColor(Qt::cyan));
    }

    void action_mayDeleteTheButton()
    {
        const ButtonFixture fixture(threeColors);
        const QPointer<QPushButton> button(fixture.button);
        connect(
            button, &QPushButton::clicked, fixture.window.get(), [&] { delete fixture.button; });

        fixture.press();
        fixture.releaseAt(inside);

        QVERIFY(!button);
    }

    void trackingArea_staysWhenTheButtonIsResized()
    {
        const ButtonFixture fixture(threeColors);
        fixture.button->resize(240, 100);

        fixture.moveTo({200, 60}); // over the button, where it was not at first
        QCOMPARE(fixture.background(), normal);
        fixture.moveTo(inside);
        QCOMPARE(fixture.background(), hover);
    }

    void initialLook_isThePalettes()
    {
        const ButtonFixture fixture;
        QCOMPARE(fixture.background(), fixture.button->palette().color(QPalette::Base));

        fixture.window->setPalette(QPalette(Qt::darkGray, Qt::black)); // the desktop turns dark
        QCOMPARE(fixture.background(), fixture.button->palette().color(QPalette::Base));
    }

    void corners_areRound()
    {
        const ButtonFixture fixture(withoutHover);
        QVERIFY(fixture.pixel({2, 0}) != normal); // within the radius of 5
        QCOMPARE(fixture.pixel({5, 0}), normal);

        fixture.button->setCornerRadius(0);
        QCOMPARE(fixture.pixel({0, 0}), normal);
    }

    void border_isDrawnWhateverIsAssigned()
    {
        for (const bool value : {true, false}) {
            const ButtonFixture fixture(
                {{u"normalColor"_s, QColor(Qt::black)}, {u"isCustomBorder"_s, value}});

            // Half a pixel of light grey at the edge, and nothing further in.
            QVERIFY(std::abs(fixture.pixel({60, 0}).red() - 85) <= 10);
            QCOMPARE(fixture.pixel({60, 1}), QColor(Qt::black));
        }
    }

    void title_isColoredAndCentredUntilTheTextChanges()
    {
        const ButtonFixture fixture({{u"normalColor"_s, normal},
            {u"titleColor"_s, QColor(Qt::yellow)},
            {u"text"_s, u"HHHHH"_s}});
        const auto seen = [&] { return lightExtent(*fixture.button); };
        QVERIFY(std::abs(seen().center().x() - 50) <= 1);
        QVERIFY(std::abs(seen().center().y() - 20) <= 2);
        QVERIFY(seen().height() >= 9 && seen().height() <= 12); // capitals of 14 pixels

        static_cast<QPushButton*>(fixture.button)->setText(u"IIIII"_s);
        QVERIFY(seen().isNull());
        fixture.button->setTitleColor(Qt::yellow);
        QVERIFY(!seen().isNull());
    }

    void buttonMadeInCode_isAnOrdinaryOne()
    {
        QPushButton ordinary(u"Title"_s);
        ButtonWithHoverBackGround button;
        button.setText(u"Title"_s);
        button.setNormalColor(normal);

        QCOMPARE(button.cursor().shape(), Qt::PointingHandCursor);
        QCOMPARE(button.grab().toImage(), ordinary.grab().toImage());
        button.setIsCustomBorder(true); // which gives it a layer
        button.setNormalColor(normal);
        QCOMPARE(button.grab().toImage().pixelColor(6, 20), normal);
    }
};

QTEST_MAIN(ButtonTest)
#include "ButtonTest.moc"
