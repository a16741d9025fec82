#include "ui/CustomAlertWindowController.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

class CustomAlertWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void alert_isReusedWithTheLatestTextsWhole()
    {
        CustomAlertWindowController alert;
        alert.titleLabel().setText(u"First"_s);
        QVERIFY(!alert.window().isVisible());
        alert.showWindow();

        const auto sentence = u"<b>A longer</b> sentence than the one that it is for. "_s;
        alert.titleLabel().setText(sentence.repeated(3));
        alert.infoLabel().setText(sentence.repeated(6));
        alert.showWindow(); // again, without having been closed

        QVERIFY(QTest::qWaitForWindowActive(&alert.window()));
        for (auto* label : {&alert.titleLabel(), &alert.infoLabel()}) {
            QCOMPARE(label->textFormat(), Qt::PlainText);
            QVERIFY(label->height() >= label->heightForWidth(label->width()));
        }
    }

    void window_closesByKeysAndButtonsOnly()
    {
        CustomAlertWindowController alert;
        const auto flags = alert.window().windowFlags();
        QVERIFY(flags.testFlag(Qt::WindowCloseButtonHint));
        QVERIFY(!(flags & (Qt::WindowMinMaxButtonsHint | Qt::WindowFullscreenButtonHint)));
        for (const auto key : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_unknown}) {
            alert.showWindow();
            QVERIFY(QTest::qWaitForWindowActive(&alert.window()));
            if (key == Qt::Key_unknown)
                QTest::mouseClick(alert.window().findChild<QPushButton*>(), Qt::LeftButton);
            else
                QTest::keyClick(alert.window().windowHandle(), key);
            QVERIFY(!alert.window().isVisible());
        }
    }
};

QTEST_MAIN(CustomAlertWindowTest)
#include "CustomAlertWindowTest.moc"
