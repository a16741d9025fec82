#include "ui/ButtonWithHoverBackGround.h"
#include "ui/UiLoader.h"

#include <QBuffer>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <array>

using namespace Qt::StringLiterals;

namespace {

const QColor normal("#203040");
const QColor hover("#c04020");
const QColor pressed("#20c040");

QString assign(const QString& property, const QString& value)
{
    return u"<property name=\"%1\">%2</property>"_s.arg(property, value);
}

QString color(const QString& property, const QColor& value)
{
    const auto [red, green, blue] = std::array{value.red(), value.green(), value.blue()};
    return assign(property,
        u"<color><red>%1</red><green>%2</green><blue>%3</blue></color>"_s.arg(red).arg(green).arg(
            blue));
}

const auto normalColor = color(u"normalColor"_s, normal);
const auto hoverColor = color(u"hoverColor"_s, hover);
const auto pressedColor = color(u"pressedColor"_s, pressed);
const auto threeColors = normalColor + hoverColor + pressedColor;

constexpr QPoint inside{100, 60};
constexpr QPoint outside{250, 140};

/// A shown window with one button of 120 by 40, 40 pixels from the window's edges, from an
/// interface file, and a pointer beside it.
struct ButtonFixture {
    explicit ButtonFixture(const QString& properties)
    {
        auto text = uR"(<ui version="4.0"><widget class="QWidget">
            <property name="geometry"><rect><width>300</width><height>160</height></rect></property>
            <widget class="ButtonWithHoverBackGround">
            <property name="geometry"><rect><x>40</x><y>40</y><width>120</width><height>40</height></rect></property>
            %1</widget></widget></ui>)"_s.arg(properties)
                        .toUtf8();
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly);
        window = UiLoader::loadInterface(buffer);
        button = window->findChild<ButtonWithHoverBackGround*>();
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

/// The smallest rectangle around the yellow pixels; null without any.
QRect yellowExtent(QWidget& widget)
{
    const auto image = widget.grab().toImage();
    QRegion found;
    for (int i = 0; i < image.width() * image.height(); ++i) {
        const QPoint at(i % image.width(), i / image.width());
        if (const auto seen = image.pixelColor(at); seen.green() > 195 && seen.blue() < 60)
            found += QRect(at, QSize(1, 1));
    }
    return found.boundingRect();
}

} // namespace

class ButtonTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void background_followsThePointer_data()
    {
        QTest::addColumn<QString>("colors");
        QTest::addColumn<QString>("events"); // Enter, Leave, Press, Release, Disable, enAble, Hide
        QTest::addColumn<QColor>("background");
        QTest::addColumn<int>("clicks");
        const auto withoutHover = normalColor + pressedColor;
        const auto withoutPressed = normalColor + hoverColor;

        QTest::newRow("beside it") << threeColors << "" << normal << 0;
        QTest::newRow("over it") << threeColors << "E" << hover << 0;
        QTest::newRow("pressed") << threeColors << "EP" << pressed << 0;
        QTest::newRow("released over it") << threeColors << "EPR" << hover << 1;
        QTest::newRow("left after a press") << threeColors << "EPRL" << normal << 1;
        QTest::newRow("left while pressed") << threeColors << "EPL" << pressed << 0;
        QTest::newRow("released beside it") << threeColors << "EPLR" << normal << 0;
        QTest::newRow("no hover color, over it") << withoutHover << "E" << normal << 0;
        QTest::newRow("no hover color, released") << withoutHover << "EPR" << pressed << 1;
        QTest::newRow("no hover color, left") << withoutHover << "EPRL" << normal << 1;
        QTest::newRow("no pressed color, pressed") << withoutPressed << "EP" << hover << 0;
        QTest::newRow("disabled, over it") << threeColors << "DE" << normal << 0;
        QTest::newRow("disabled, pressed") << threeColors << "DEP" << normal << 0;
        QTest::newRow("disabled and enabled again") << threeColors << "DELAE" << hover << 0;
        QTest::newRow("disabled while pressed") << threeColors << "EPDLRAE" << hover << 0;
        QTest::newRow("hidden while pressed") << threeColors << "EPH" << normal << 0;
    }

    void background_followsThePointer()
    {
        QFETCH(QString, colors);
        QFETCH(QString, events);
        const ButtonFixture fixture(colors);
        const QSignalSpy clicked(fixture.button, &QPushButton::clicked);
        auto pointer = outside;

        for (const auto event : events) {
            if (event == u'E' || event == u'L')
                fixture.moveTo(pointer = event == u'E' ? inside : outside);
            else if (event == u'P')
                fixture.press();
            else if (event == u'R')
                fixture.releaseAt(pointer);
            else if (event == u'H')
                fixture.window->hide(), fixture.window->show();
            else
                fixture.button->setEnabled(event == u'A');
        }

        QTEST(fixture.background(), "background");
        QTEST(static_cast<int>(clicked.count()), "clicks");
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
        const ButtonFixture fixture({});
        QCOMPARE(fixture.background(), fixture.button->palette().color(QPalette::Base));

        fixture.window->setPalette(QPalette(Qt::darkGray, Qt::black)); // the desktop turns dark
        QCOMPARE(fixture.background(), fixture.button->palette().color(QPalette::Base));
    }

    void corners_areRound()
    {
        const ButtonFixture fixture(normalColor);
        QVERIFY(fixture.pixel({2, 0}) != normal); // within the radius of 5
        QCOMPARE(fixture.pixel({5, 0}), normal);

        fixture.button->setCornerRadius(0);
        QCOMPARE(fixture.pixel({0, 0}), normal);
    }

    void border_isDrawnWhateverIsAssigned()
    {
        for (const auto& value : {u"<bool>true</bool>"_s, u"<bool>false</bool>"_s}) {
            const ButtonFixture fixture(
                color(u"normalColor"_s, Qt::black) + assign(u"isCustomBorder"_s, value));

            // Half a pixel of light grey at the edge, and nothing further in.
            QVERIFY(std::abs(fixture.pixel({60, 0}).red() - 85) <= 10);
            QCOMPARE(fixture.pixel({60, 1}), QColor(Qt::black));
        }
    }

    void title_isColoredAndCentredUntilTheTextChanges()
    {
        const ButtonFixture fixture(normalColor + color(u"titleColor"_s, Qt::yellow) +
                                    assign(u"text"_s, u"<string>HHHHH</string>"_s));
        const auto seen = [&] { return yellowExtent(*fixture.button); };
        QVERIFY(std::abs(seen().center().x() - 60) <= 1);
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
        button.resize(ordinary.sizeHint());
        ordinary.resize(ordinary.sizeHint());

        QCOMPARE(button.cursor().shape(), Qt::PointingHandCursor);
        QCOMPARE(button.grab().toImage(), ordinary.grab().toImage());
        button.setIsCustomBorder(true); // which gives it a layer
        button.setNormalColor(normal);
        QCOMPARE(button.grab().toImage().pixelColor(6, 20), normal);
    }
};

QTEST_MAIN(ButtonTest)
#include "ButtonTest.moc"
