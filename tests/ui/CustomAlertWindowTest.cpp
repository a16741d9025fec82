#include "ui/CustomAlertWindowController.h"
#include "ui/Warnings.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

class CustomAlertWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { failOnAnyWarning(); }

    void alert_isReusedWithTheLatestTexts()
    {
        CustomAlertWindowController alert;
        QVERIFY(!alert.isWindowLoaded());
        alert.titleLabel().setText(QStringLiteral("First"));
        QVERIFY(alert.isWindowLoaded());
        QVERIFY(!alert.window().isVisible());
        alert.showWindow();
        const auto* window = &alert.window();
        alert.close();
        QVERIFY(!window->isVisible());

        alert.loadWindow();
        alert.titleLabel().setText(QStringLiteral("You're up to date"));
        alert.infoLabel().setText(QStringLiteral("<b>1.0.0</b> is currently the newest version"));
        alert.showWindow();

        QCOMPARE(&alert.window(), window);
        QVERIFY(QTest::qWaitForWindowActive(&alert.window()));
        QCOMPARE(window->findChild<QLabel*>(QStringLiteral("titleLabel"))->text(),
            QStringLiteral("You're up to date"));
        QCOMPARE(alert.infoLabel().textFormat(), Qt::PlainText);
    }

    void window_hasOnlyACloseButton()
    {
        CustomAlertWindowController alert;

        const auto flags = alert.window().windowFlags();

        QVERIFY(flags.testFlag(Qt::WindowTitleHint));
        QVERIFY(flags.testFlag(Qt::WindowCloseButtonHint));
        QVERIFY(!(flags & (Qt::WindowMinMaxButtonsHint | Qt::WindowFullscreenButtonHint)));
    }

    void alert_closes_data()
    {
        QTest::addColumn<Qt::Key>("key");

        QTest::newRow("with a click on the button") << Qt::Key_unknown;
        QTest::newRow("with Enter") << Qt::Key_Return;
        QTest::newRow("with the space bar, on the button that has the keyboard") << Qt::Key_Space;
        QTest::newRow("with Escape") << Qt::Key_Escape;
    }

    void alert_closes()
    {
        QFETCH(Qt::Key, key);
        CustomAlertWindowController alert;
        alert.showWindow();
        QVERIFY(QTest::qWaitForWindowActive(&alert.window()));
        auto* button = alert.window().findChild<QPushButton*>();
        QCOMPARE(button->text(), QStringLiteral("OK"));

        if (key == Qt::Key_unknown)
            QTest::mouseClick(alert.window().windowHandle(),
                Qt::LeftButton,
                {},
                button->mapTo(&alert.window(), button->rect().center()));
        else
            QTest::keyClick(alert.window().windowHandle(), key);

        QVERIFY(!alert.window().isVisible());
    }

    void longTexts_areShownWhole()
    {
        CustomAlertWindowController alert;
        const auto sentence = QStringLiteral("A longer sentence than the one that it is for. ");
        alert.titleLabel().setText(sentence.repeated(3));
        alert.infoLabel().setText(sentence.repeated(6));

        alert.showWindow();

        QVERIFY(QTest::qWaitForWindowExposed(&alert.window()));
        for (auto* label : {&alert.titleLabel(), &alert.infoLabel()})
            QVERIFY(label->height() >= label->heightForWidth(label->width()));
    }
};

QTEST_MAIN(CustomAlertWindowTest)
#include "CustomAlertWindowTest.moc"
