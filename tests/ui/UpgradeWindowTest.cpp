#include "ui/ButtonWithHoverBackGround.h"
#include "ui/CustomAlertWindowController.h"
#include "ui/InfoTextView.h"
#include "ui/UpgradeWindowController.h"
#include "ui/Warnings.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTextFrame>
#include <QUrl>

namespace {

const auto nibName = QStringLiteral("UpgradeWindowController");

UpgradeInfo offer(const QString& ver, const QString& exp = {}, const QString& url = {})
{
    return {url, QStringLiteral("md5"), ver, exp};
}

void click(QWidget& window, const QWidget& button)
{
    QTest::mouseClick(
        window.windowHandle(), Qt::LeftButton, {}, button.mapTo(&window, button.rect().center()));
}

} // namespace

class UpgradeWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { failOnAnyWarning(); }

    void version_isTheWholeText_data()
    {
        QTest::addColumn<std::optional<UpgradeInfo>>("upgradeInfo");
        QTest::addColumn<QString>("text");
        using Offer = std::optional<UpgradeInfo>;

        QTest::newRow("no offer") << Offer() << QStringLiteral("Version: 1.0");
        QTest::newRow("an offer with notes")
            << Offer(offer(QStringLiteral("1.2.0"), QStringLiteral("<h1>New</h1><ul><li>a<li>b")))
            << QStringLiteral("Version: 1.2.0");
        QTest::newRow("notes that are not HTML")
            << Offer(offer(QStringLiteral("2"), QStringLiteral("a < b <<< </p> & \xff <!--")))
            << QStringLiteral("Version: 2");
        QTest::newRow("half a character in the notes")
            << Offer(offer(QStringLiteral("2"), QString(QChar(0xd83d))))
            << QStringLiteral("Version: 2");
        QTest::newRow("a version that is HTML, and a placeholder")
            << Offer(offer(QStringLiteral("<h1>%1</h1>&amp;<img src=a>")))
            << QStringLiteral("Version: <h1>%1</h1>&amp;<img src=a>");
        QTest::newRow("no version") << Offer(offer({})) << QStringLiteral("Version: ");
    }

    void version_isTheWholeText()
    {
        QFETCH(std::optional<UpgradeInfo>, upgradeInfo);
        QFETCH(QString, text);
        UpgradeWindowController controller(nibName);
        controller.upgradeInfo = upgradeInfo;

        controller.showWindow();

        QCOMPARE(controller.infoLabel().toPlainText(), text);
    }

    void notes_leaveNoLooksToTheVersion()
    {
        UpgradeWindowController plain(nibName);
        plain.upgradeInfo = offer(QStringLiteral("1.2"));
        UpgradeWindowController gaudy(nibName);
        gaudy.upgradeInfo = offer(QStringLiteral("1.2"),
            QStringLiteral("<body bgcolor=red><h1 align=right style='font-size:80px;"
                           "color:#0c112c;background:lime'>Notes</h1></body>"));

        plain.showWindow();
        gaudy.showWindow();

        QCOMPARE(gaudy.infoLabel().grab().toImage(), plain.infoLabel().grab().toImage());
    }

    void whatTheNotesReferTo_isNotLoaded()
    {
        const QTemporaryDir directory;
        const auto file = [&](const char* name) { return directory.filePath(QLatin1String(name)); };
        QImage image(60, 30, QImage::Format_RGB32);
        image.fill(Qt::red);
        QVERIFY(image.save(file("red.png")));
        QFile style(file("style.css"));
        QVERIFY(style.open(QIODevice::WriteOnly) && style.write("p { color: #ff0000 }") > 0);
        style.close();
        InfoTextView view;
        view.resize(200, 100);

        view.appendNotes(QStringLiteral(
            "<html><head><link rel='stylesheet' type='text/css' href='file://%1'/></head>"
            "<body><img src='file://%2'><img src='%2'><p>&#x2588;&#x2588;</p></body></html>")
                             .arg(style.fileName(), file("red.png")));
        view.document()->setLayoutEnabled(true);
        view.show();

        QVERIFY(view.toPlainText().contains(QChar(0x2588)));
        const auto seen = view.grab().toImage();
        for (int y = 0; y < seen.height(); ++y) {
            for (int x = 0; x < seen.width(); ++x)
                QVERIFY(seen.pixelColor(x, y) != QColor(Qt::red));
        }
    }

    void hostileOffer_isShownAtOnce_data()
    {
        QTest::addColumn<UpgradeInfo>("upgradeInfo");

        const auto version = QStringLiteral("1.2");
        QTest::newRow("tables in tables")
            << offer(version, QStringLiteral("<table><tr><td>").repeated(400'000));
        QTest::newRow("lists in lists")
            << offer(version, QStringLiteral("<ul><li>").repeated(400'000));
        QTest::newRow("a huge word") << offer(version, QString(50'000'000, u'x'));
        QTest::newRow("a huge table") << offer(version,
            QStringLiteral("<table><tr><td colspan=99999999 rowspan=99999999 width=99999999>x"));
        QTest::newRow("a table with very many columns") << offer(version,
            QStringLiteral("<TABLE><tr><td title='>' colspan=20480>") +
                QStringLiteral("<tr><td>x").repeated(1000));
        QTest::newRow("a huge version") << offer(QString(50'000'000, u'x'));
        QTest::newRow("a version of many lines") << offer(QString(50'000'000, u'\n'));
    }

    void hostileOffer_isShownAtOnce()
    {
        QFETCH(UpgradeInfo, upgradeInfo);
        UpgradeWindowController usual(nibName);
        usual.showWindow();
        UpgradeWindowController controller(nibName);
        controller.upgradeInfo = upgradeInfo;
        QElapsedTimer timer;
        timer.start();

        controller.showWindow();
        controller.window().grab();

        QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(controller.window().size(), usual.window().size());
        QVERIFY(controller.infoLabel().toPlainText().size() < 10'000);
    }

    void upgrade_opensTheWebOnlyAndCloses_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<bool>("isOpened");

        QTest::newRow("https") << "https://example.org/a%20b?c=d" << true;
        QTest::newRow("http in capitals") << "HTTP://example.org" << true;
        QTest::newRow("nothing") << "" << false;
        QTest::newRow("no scheme") << "example.org/download" << false;
        QTest::newRow("no host") << "https:///download" << false;
        QTest::newRow("a space in it") << "https://example.org/a b" << false;
        QTest::newRow("a bad escape") << "https://example.org/%zz" << false;
        QTest::newRow("a bad port") << "https://example.org:port/" << false;
        QTest::newRow("a local file") << "file:///usr/bin/env" << false;
        QTest::newRow("another program's scheme") << "mailto:a@example.org" << false;
        QTest::newRow("a script") << "javascript:alert(1)" << false;
    }

    void upgrade_opensTheWebOnlyAndCloses()
    {
        QFETCH(QString, url);
        QFETCH(bool, isOpened);
        QList<QUrl> opened;
        UpgradeWindowController controller(nibName, [&](const QUrl& one) { opened.append(one); });
        controller.upgradeInfo = offer(QStringLiteral("1.2"), {}, url);
        controller.showWindow();
        QVERIFY(QTest::qWaitForWindowActive(&controller.window()));

        click(controller.window(), controller.upgradeButton());

        QVERIFY(!controller.window().isVisible());
        QCOMPARE(opened, isOpened ? QList<QUrl>{QUrl(url)} : QList<QUrl>{});
    }

    void upgradeWithoutAnOffer_closes()
    {
        bool isOpened = false;
        UpgradeWindowController controller(nibName, [&](const QUrl&) { isOpened = true; });
        controller.showWindow();
        QVERIFY(QTest::qWaitForWindowActive(&controller.window()));

        QTest::keyClick(controller.window().windowHandle(), Qt::Key_Return);

        QVERIFY(!controller.window().isVisible());
        QVERIFY(!isOpened);
    }

    void window_closesWithoutOpening_data()
    {
        QTest::addColumn<QList<Qt::Key>>("keys");
        using Keys = QList<Qt::Key>;

        QTest::newRow("with Escape") << Keys{Qt::Key_Escape};
        QTest::newRow("with Escape in the text") << Keys{Qt::Key_Tab, Qt::Key_Escape};
        QTest::newRow("with Enter on the close button")
            << Keys{Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Return};
        QTest::newRow("with a click on the close button") << Keys{};
    }

    void window_closesWithoutOpening()
    {
        QFETCH(QList<Qt::Key>, keys);
        bool isOpened = false;
        UpgradeWindowController controller(nibName, [&](const QUrl&) { isOpened = true; });
        controller.upgradeInfo = offer({}, {}, QStringLiteral("https://example.org"));
        controller.showWindow();
        QVERIFY(QTest::qWaitForWindowActive(&controller.window()));

        for (const auto key : keys)
            QTest::keyClick(controller.window().windowHandle(), key);
        if (keys.isEmpty())
            click(controller.window(),
                *controller.window().findChild<QWidget*>(QStringLiteral("closeButton")));

        QVERIFY(!controller.window().isVisible());
        QVERIFY(!isOpened);
    }

    void tabKey_reachesEveryControl()
    {
        UpgradeWindowController controller(nibName);
        controller.showWindow();
        QVERIFY(QTest::qWaitForWindowActive(&controller.window()));
        const auto focused = [] { return QApplication::focusWidget()->objectName(); };

        QStringList order{focused()};
        for (int i = 0; i < 3; ++i) {
            QTest::keyClick(controller.window().windowHandle(), Qt::Key_Tab);
            order.append(focused());
        }

        const QStringList expected{QStringLiteral("upgradeButton"),
            QStringLiteral("infoLabel"),
            QStringLiteral("closeButton"),
            QStringLiteral("upgradeButton")};
        QCOMPARE(order, expected);
    }

    void background_isTheWholeWindowWithTransparentCorners()
    {
        UpgradeWindowController controller(nibName);
        controller.showWindow();

        QImage seen(controller.window().size(), QImage::Format_ARGB32);
        seen.fill(Qt::transparent);
        controller.window().render(&seen, {}, {}, QWidget::DrawChildren);

        QCOMPARE(seen.pixelColor(0, 0).alpha(), 0);
        QCOMPARE(seen.pixelColor(seen.width() - 1, seen.height() - 1).alpha(), 0);
        QCOMPARE(seen.pixelColor(seen.width() / 2, 20).alpha(), 255);
        QVERIFY(seen.pixelColor(seen.width() / 2, 20) != seen.pixelColor(20, seen.height() - 40));
    }

    void dragOfTheBackground_movesTheWindow()
    {
        UpgradeWindowController controller(nibName);
        controller.showWindow();
        auto& window = controller.window();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        const auto before = window.pos();

        QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, {100, 50});
        QTest::mouseMove(window.windowHandle(), {130, 70});
        QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, {100, 50});

        QCOMPARE(window.pos() - before, QPoint(30, 20));
    }

    void brokenInstallation_endsTheProcessWithASentence_data()
    {
        QTest::addColumn<QString>("argument");
        QTest::addColumn<QByteArray>("sentence");

        QTest::newRow("no interface file")
            << "Missing" << QByteArray("The resources lack the interface file Missing.ui.");
        QTest::newRow("no outlet")
            << "CustomAlertWindowController"
            << QByteArray("The interface file CustomAlertWindowController.ui "
                          "has no UpgradeWindow \"UpgradeWindow\".");
    }

    void brokenInstallation_endsTheProcessWithASentence()
    {
        QFETCH(QString, argument);
        QFETCH(QByteArray, sentence);
        QProcess process;

        process.start(
            QCoreApplication::applicationFilePath(), {QStringLiteral("--load"), argument});

        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitStatus(), QProcess::CrashExit);
        QVERIFY2(process.readAllStandardError().contains(sentence), sentence.constData());
    }
};

/// `--load NAME` loads the window from that interface file, for the tests of how that fails.
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--load")) {
        UpgradeWindowController(arguments.value(2)).loadWindow();
        return EXIT_SUCCESS;
    }
    UpgradeWindowTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "UpgradeWindowTest.moc"
