#include "ui/ButtonFixture.h"
#include "ui/Warnings.h"

#include <QSignalSpy>

namespace {

const QColor normal("#203040");
const QColor hover("#c04020");
const QColor pressed("#20c040");

QString threeColors()
{
    return ButtonFixture::color("normalColor", normal) + ButtonFixture::color("hoverColor", hover) +
           ButtonFixture::color("pressedColor", pressed);
}

QIcon plainIcon(const QColor& color)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(color);
    return pixmap;
}

} // namespace

class ButtonStatesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { failOnAnyWarning(); }

    void background_followsThePointerAndThePress()
    {
        const ButtonFixture fixture(threeColors());
        const QSignalSpy clicked(fixture.button, &QPushButton::clicked);
        QCOMPARE(fixture.background(), normal);

        fixture.moveTo(ButtonFixture::middle);
        QCOMPARE(fixture.background(), hover);
        fixture.press();
        QCOMPARE(fixture.background(), pressed);
        fixture.releaseAt(ButtonFixture::middle);
        QCOMPARE(fixture.background(), hover);
        QCOMPARE(clicked.count(), 1);
        fixture.moveTo(ButtonFixture::outside);
        QCOMPARE(fixture.background(), normal);
    }

    void pressThatIsReleasedOutside_endsInTheNormalLook()
    {
        const ButtonFixture fixture(threeColors());
        const QSignalSpy clicked(fixture.button, &QPushButton::clicked);

        fixture.moveTo(ButtonFixture::middle);
        fixture.press();
        fixture.moveTo(ButtonFixture::outside);
        QCOMPARE(fixture.background(), pressed);
        fixture.releaseAt(ButtonFixture::outside);

        QCOMPARE(fixture.background(), normal);
        QCOMPARE(clicked.count(), 0);
    }

    void colorThatIsMissing_leavesTheBackground()
    {
        const ButtonFixture withoutHover(ButtonFixture::color("normalColor", normal) +
                                         ButtonFixture::color("pressedColor", pressed));
        withoutHover.moveTo(ButtonFixture::middle);
        QCOMPARE(withoutHover.background(), normal);
        withoutHover.press();
        withoutHover.releaseAt(ButtonFixture::middle);
        QCOMPARE(withoutHover.background(), pressed);
        withoutHover.moveTo(ButtonFixture::outside);
        QCOMPARE(withoutHover.background(), normal);

        const ButtonFixture withoutPressed(ButtonFixture::color("normalColor", normal) +
                                           ButtonFixture::color("hoverColor", hover));
        withoutPressed.moveTo(ButtonFixture::middle);
        withoutPressed.press();
        QCOMPARE(withoutPressed.background(), hover);
    }

    void image_followsThePointer()
    {
        const ButtonFixture fixture(threeColors());
        fixture.button->setProperty("hoverImage", plainIcon(Qt::yellow));
        fixture.button->setProperty("normalImage", plainIcon(Qt::cyan));
        QVERIFY(fixture.button->icon().isNull());
        const auto shown = [&] { return fixture.pixel({60, 20}); }; // without a text, it is centred

        fixture.moveTo(ButtonFixture::middle);
        QCOMPARE(shown(), QColor(Qt::yellow));
        fixture.moveTo(ButtonFixture::outside);
        QCOMPARE(shown(), QColor(Qt::cyan));
    }

    void disabledButton_keepsItsLook()
    {
        const ButtonFixture fixture(threeColors());
        fixture.button->setEnabled(false);

        fixture.moveTo(ButtonFixture::middle);
        QCOMPARE(fixture.background(), normal);
        fixture.press();
        QCOMPARE(fixture.background(), normal);
        fixture.releaseAt(ButtonFixture::middle);
        fixture.moveTo(ButtonFixture::outside);
        QCOMPARE(fixture.background(), normal);

        fixture.button->setEnabled(true);
        fixture.moveTo(ButtonFixture::middle);
        QCOMPARE(fixture.background(), hover);
    }

    void buttonThatIsDisabledByItsAction_canBePressedAgainLater()
    {
        const ButtonFixture fixture(threeColors());
        connect(fixture.button, &QPushButton::pressed, fixture.button, [&] {
            fixture.button->setEnabled(false);
        });
        fixture.moveTo(ButtonFixture::middle);
        fixture.press();
        fixture.releaseAt(ButtonFixture::outside);

        fixture.button->setEnabled(true);
        fixture.moveTo(ButtonFixture::middle);
        QCOMPARE(fixture.background(), hover);
        fixture.moveTo(ButtonFixture::outside);
        QCOMPARE(fixture.background(), normal);
    }

    void windowThatIsClosedByTheAction_comesBackWithTheNormalLook()
    {
        const ButtonFixture fixture(threeColors());
        connect(fixture.button, &QPushButton::clicked, fixture.window.get(), &QWidget::close);
        fixture.moveTo(ButtonFixture::middle);
        fixture.press();
        fixture.releaseAt(ButtonFixture::middle);
        QVERIFY(!fixture.window->isVisible());

        fixture.window->show();

        QCOMPARE(fixture.background(), normal);
    }

    void buttonThatIsDeletedByItsAction_isGone()
    {
        const ButtonFixture fixture(threeColors());
        const QPointer<QPushButton> button(fixture.button);
        connect(
            button, &QPushButton::clicked, fixture.window.get(), [&] { delete fixture.button; });

        fixture.press();
        fixture.releaseAt(ButtonFixture::middle);

        QVERIFY(!button);
    }

    void trackingArea_staysWhenTheButtonIsResized()
    {
        const ButtonFixture fixture(threeColors());
        fixture.button->resize(240, 100);

        fixture.moveTo({200, 60}); // over the button, where it was not at first
        QCOMPARE(fixture.background(), normal);
        fixture.moveTo(ButtonFixture::middle);
        QCOMPARE(fixture.background(), hover);
        fixture.moveTo({200, 60});
        QCOMPARE(fixture.background(), normal);
    }

    void trackingArea_isTheButtonsPlaceInItsLayout()
    {
        QByteArray text(R"(<ui version="4.0"><widget class="QWidget" name="window">
            <property name="geometry"><rect><x>0</x><y>0</y><width>500</width><height>300</height></rect></property>
            <layout class="QVBoxLayout"><item><layout class="QVBoxLayout"><item>
            <widget class="ButtonWithHoverBackGround" name="button"/>
            </item></layout></item></layout></widget></ui>)");
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly);
        const auto window = UiLoader::loadInterface(buffer);
        auto* button = window->findChild<ButtonWithHoverBackGround*>();
        button->setHoverColor(hover);
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));

        QTest::mouseMove(window->windowHandle(), button->geometry().topRight() + QPoint(-8, 8));

        QCOMPARE(button->grab().toImage().pixelColor(20, 5), hover);
    }

    void keyboard_activatesIt()
    {
        const ButtonFixture fixture(threeColors());
        const QSignalSpy clicked(fixture.button, &QPushButton::clicked);
        fixture.button->setFocus(Qt::TabFocusReason);
        const auto before = fixture.window->grab().toImage();

        QTest::keyClick(fixture.window->windowHandle(), Qt::Key_Tab);
        QVERIFY(fixture.window->grab().toImage() != before); // tells where the keyboard is
        QTest::keyClick(fixture.window->windowHandle(), Qt::Key_Space);

        QCOMPARE(clicked.count(), 1);
    }
};

QTEST_MAIN(ButtonStatesTest)
#include "ButtonStatesTest.moc"
