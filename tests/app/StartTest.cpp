#include "app/Translation.h"

#include <QLibraryInfo>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

/// What is decided before the helper runs: its language, and what the command line asks for.
class StartTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void language_isTheFirstThatThereIs_data()
    {
        QTest::addColumn<QByteArray>("locale"); // LANG
        QTest::addColumn<QByteArray>("list");   // LANGUAGE
        QTest::addColumn<QString>("quit");
        const auto german = u"Beenden"_s;
        const auto french = u"Quitter"_s;
        const auto spanish = u"Salir"_s;
        const auto chinese = u"退出"_s;
        const auto english = u"Quit"_s;
        const auto row = [](const char* locale, const char* list, const QString& quit) {
            QTest::addRow("%s, %s", locale, list) << QByteArray(locale) << QByteArray(list) << quit;
        };

        row("de_DE.UTF-8", "", german);
        row("de_AT.UTF-8", "", german);
        row("de_CH@euro", "", german);
        row("fr_CA.UTF-8", "", french);
        row("es_MX.UTF-8", "", spanish);
        row("zh_CN.UTF-8", "", chinese);
        row("zh_SG.UTF-8", "", chinese);
        row("zh_TW.UTF-8", "", english); // written in other characters
        row("zh_TW.UTF-8", "zh_TW:zh_CN", chinese);
        row("en_US.UTF-8", "sw:tlh:de_CH:fr", german);
        row("de_DE.UTF-8", "fr:de", french);
        row("de_DE.UTF-8", "en_GB:de", english);
        row("de_DE.UTF-8", "C:de", english);
        row("C", "de", english);
        row("POSIX", "", english);
        row("C.UTF-8", "", english);
        row("", "", english);
    }

    void language_isTheFirstThatThereIs()
    {
        QFETCH(QByteArray, locale);
        QFETCH(QByteArray, list);
        qunsetenv("LC_ALL");
        qunsetenv("LC_MESSAGES");
        qputenv("LANG", locale);
        qputenv("LANGUAGE", list);

        const Translation translation(Bundle::main());

        QTEST(QCoreApplication::translate("StatusBarManager", "Quit", "quit application"), "quit");
        if (QTest::currentDataTag() == "de_AT.UTF-8, "_ba)
            QCOMPARE(QCoreApplication::translate("QShortcut", "Ctrl"), u"Strg"_s); // the toolkit's
    }

    void commandLine_isAnsweredWithoutADisplay_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<QByteArray>("complaint");

        const QByteArray nothing;
        QTest::newRow("help") << QStringList{u"--help"_s} << 0 << "Usage: tavelorhelper"_ba
                              << nothing;
        QTest::newRow("version") << QStringList{u"--version"_s} << 0 << "TavelorHelper 1.0.0\n"_ba
                                 << nothing;
        QTest::newRow("unknown") << QStringList{u"--versions"_s} << 2 << nothing
                                 << "tavelorhelper: unknown argument \"--versions\""_ba;
        QTest::newRow("a session manager's, which is the toolkit's")
            << QStringList{u"-session"_s, u"x"_s} << 1 << nothing
            << "TavelorHelper needs an X11 display"_ba;
    }

    void commandLine_isAnsweredWithoutADisplay()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, output);
        QFETCH(QByteArray, complaint);
        qunsetenv("DISPLAY");
        QProcess helper;

        helper.start(QStringLiteral(TAVELORHELPER), arguments);

        QVERIFY(helper.waitForFinished());
        QTEST(helper.exitCode(), "status");
        QVERIFY(helper.readAllStandardOutput().startsWith(output));
        const auto lines = helper.readAllStandardError();
        QVERIFY2(lines.startsWith(complaint), lines.constData());
        QCOMPARE(lines.count('\n'), complaint.isEmpty() ? 0 : 1);
    }
};

QTEST_GUILESS_MAIN(StartTest)
#include "StartTest.moc"
