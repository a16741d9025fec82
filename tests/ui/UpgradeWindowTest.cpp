#include "ui/ButtonWithHoverBackGround.h"
#include "ui/InfoTextView.h"
#include "ui/UpgradeWindowController.h"

#include <QElapsedTimer>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

UpgradeInfo offer(const QString& ver, const QString& exp = {}, const QString& url = {})
{
    return {url, {}, ver, exp};
}

/// A shown window; counts what it opens.
struct Shown {
    explicit Shown(const std::optional<UpgradeInfo>& upgradeInfo = {})
    {
        controller.upgradeInfo = upgradeInfo;
        controller.showWindow();
        if (!QTest::qWaitForWindowActive(&window()))
            qFatal("The window does not become active.");
    }
    QWidget& window() { return controller.window(); }

    QList<QUrl> opened;
    UpgradeWindowController controller{
        u"UpgradeWindowController"_s, [this](const QUrl& url) { opened.append(url); }};
};

} // namespace

class UpgradeWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void version_isTheWholeText()
    {
        QCOMPARE(Shown().controller.infoLabel().toPlainText(), u"Version: 1.0"_s);
        const auto version = u"<h1>%1</h1>&amp;"_s;
        Shown plain(offer(version));
        // Notes that are HTML, or not, leave neither texts nor looks.
        for (const auto& notes :
            {u"<body bgcolor=red><h1 align=right style='font-size:80px;background:lime'>New"_s,
                u"a < b <<< </p> & \xd83d <!--"_s}) {
            Shown shown(offer(version, notes));
            auto& label = shown.controller.infoLabel();
            QCOMPARE(label.toPlainText(), u"Version: "_s + version);
            QCOMPARE(label.grab().toImage(), plain.controller.infoLabel().grab().toImage());
        }
    }

    void whatTheNotesReferTo_isNotLoaded()
    {
        const QTemporaryDir directory;
        const auto picture = directory.filePath(u"red.png"_s);
        QImage image(60, 30, QImage::Format_RGB32);
        image.fill(Qt::red);
        QVERIFY(image.save(picture));
        InfoTextView view;
        view.resize(200, 100);

        view.appendNotes(u"<img src='file://%1'><img src='%1'><p>&#x2588;</p>"_s.arg(picture));
        view.document()->setLayoutEnabled(true);

        QVERIFY(view.toPlainText().contains(QChar(0x2588)));
        const auto seen = view.grab().toImage();
        for (int i = 0; i < seen.width() * seen.height(); ++i)
            QVERIFY(seen.pixelColor(i % seen.width(), i / seen.width()) != QColor(Qt::red));
    }

    void hostileOffer_isShownAtOnce()
    {
        const auto usualSize = Shown().window().size();
        for (const auto& upgradeInfo : {offer(u"1"_s, u"<table><tr><td>"_s.repeated(400'000)),
                 offer(u"1"_s, u"<ul><li>"_s.repeated(400'000)),
                 offer(u"1"_s,
                     u"<TABLE><tr><td title='>' colspan=20480>"_s + u"<tr><td>x"_s.repeated(1000)),
                 offer(QString(50'000'000, u'x'))}) {
            QElapsedTimer timer;
            timer.start();

            Shown shown(upgradeInfo);
            shown.window().grab();

            QVERIFY2(timer.elapsed() < 3000, qPrintable(upgradeInfo.exp.left(20)));
            QCOMPARE(shown.window().size(), usualSize);
        }
    }

    void upgrade_opensTheWebOnlyAndCloses()
    {
        for (const auto& [url, isOpened] : {std::pair("https://example.org/a%20b?c=d", true),
                 std::pair("HTTP://example.org", true),
                 std::pair("https:///no-host", false),
                 std::pair("https://example.org/a b", false),
                 std::pair("file://localhost/usr/bin/env", false)}) {
            Shown shown(offer(u"1.2"_s, {}, QLatin1String(url)));

            QTest::mouseClick(&shown.controller.upgradeButton(), Qt::LeftButton);

            QVERIFY(!shown.window().isVisible());
            QCOMPARE(shown.opened.size(), isOpened ? 1 : 0);
        }
    }

    void keys_goToTheControlThatHasTheKeyboard()
    {
        const auto tab = Qt::Key_Tab;
        using Keys = QList<Qt::Key>;
        for (const auto& [keys, isOpened, isClosed] :
            {std::tuple(Keys{Qt::Key_Return, Qt::Key_Space}, false, false), // none has it at first
                std::tuple(Keys{tab, Qt::Key_Enter}, false, true),
                std::tuple(Keys{tab, tab, Qt::Key_Return}, true, true),
                std::tuple(Keys{tab, tab, tab, Qt::Key_Return}, false, false), // in the text
                std::tuple(Keys{tab, tab, Qt::Key_Escape}, false, true)}) {
            Shown shown(offer({}, {}, u"https://example.org"_s));
            for (const auto key : keys)
                QTest::keyClick(shown.window().windowHandle(), key);

            QCOMPARE(!shown.opened.isEmpty(), isOpened);
            QCOMPARE(!shown.window().isVisible(), isClosed);
        }
    }

    void button_followsThePointerInItsPlace()
    {
        Shown shown;
        const auto& button = shown.controller.upgradeButton();
        const auto move = [&](const QPoint& at) {
            QTest::mouseMove(shown.window().windowHandle(), button.pos() + at);
            return shown.window().grab().toImage().pixelColor(
                button.geometry().center() - QPoint(50, 0));
        };
        QCOMPARE(move({-5, 5}), QColor(47, 111, 237));
        QCOMPARE(move({button.width() - 5, button.height() - 5}), QColor(79, 137, 248));
    }

    void background_isTheWholeWindowWithTransparentCorners()
    {
        Shown shown;
        const auto seen = shown.window().grab().toImage();
        QCOMPARE(seen.pixelColor(0, 0).alpha(), 0);
        QCOMPARE(seen.pixelColor(seen.width() / 2, 20).alpha(), 255);
        QVERIFY(seen.pixelColor(seen.width() / 2, 20) != seen.pixelColor(20, seen.height() - 40));
    }

    void window_comesToTheMiddleAndIsMovedByItsBackground()
    {
        Shown shown;
        const auto middle = shown.window().screen()->availableGeometry().center();
        QVERIFY((shown.window().geometry().center() - middle).manhattanLength() <= 2);
        const auto before = shown.window().pos();

        QTest::mousePress(shown.window().windowHandle(), Qt::LeftButton, {}, {100, 50});
        QTest::mouseMove(shown.window().windowHandle(), {130, 70});
        QTest::mouseRelease(shown.window().windowHandle(), Qt::LeftButton, {}, {100, 50});

        QCOMPARE(shown.window().pos() - before, QPoint(30, 20));
    }
};

QTEST_MAIN(UpgradeWindowTest)
#include "UpgradeWindowTest.moc"
