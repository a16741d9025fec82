#include "app/Translation.h"

#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

/// What is decided before the helper runs: its language, and what the command line asks for.
class StartTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void language_isTheFirstThatThereIs()
    {
        qunsetenv("LC_ALL");
        qunsetenv("LC_MESSAGES");
        for (const auto& [locale, list, quit] : {std::tuple("de_AT.UTF-8", "", u"Beenden"_s),
                 std::tuple("de_CH@euro", "", u"Beenden"_s),
                 std::tuple("es_MX.UTF-8", "", u"Salir"_s),
                 std::tuple("zh_SG.UTF-8", "", u"退出"_s),
                 std::tuple("zh_TW.UTF-8", "", u"Quit"_s), // written in other characters
                 std::tuple("zh_TW.UTF-8", "zh_TW:zh_CN", u"退出"_s),
                 std::tuple("en_US.UTF-8", "sw:tlh:de_CH:fr", u"Beenden"_s),
                 std::tuple("de_DE.UTF-8", "fr:de", u"Quitter"_s),
                 std::tuple("de_DE.UTF-8", "en_GB:de", u"Quit"_s),
                 std::tuple("de_DE.UTF-8", "C:de", u"Quit"_s),
                 std::tuple("C", "de", u"Quit"_s),
                 std::tuple("", "", u"Quit"_s)}) {
            qputenv("LANG", locale);
            qputenv("LANGUAGE", list);
            const Translation translation(Bundle::main());
            const auto shown =
                QCoreApplication::translate("StatusBarManager", "Quit", "quit application");
            QVERIFY2(shown == quit, locale);
            const bool isToolkitGerman =
                QCoreApplication::translate("QShortcut", "Ctrl") == u"Strg";
            QCOMPARE(isToolkitGerman, quit == u"Beenden");
        }
    }

    void commandLine_isAnsweredWithoutADisplay()
    {
        qunsetenv("DISPLAY");
        qunsetenv("WAYLAND_DISPLAY");
        for (const auto& [arguments, status, output, complaint] :
            {std::tuple(u"--help"_s, 0, "Usage: tavelorhelper", ""),
                std::tuple(u"--version"_s, 0, "TavelorHelper 1.0.0\n", ""),
                std::tuple(
                    u"--versions"_s, 2, "", "tavelorhelper: unknown argument \"--versions\""),
                // A session manager's, which is the toolkit's.
                std::tuple(u"-session x"_s, 1, "", "TavelorHelper needs a display")}) {
            QProcess helper;
            helper.start(QStringLiteral(TAVELORHELPER), arguments.split(u' '));

            QVERIFY(helper.waitForFinished());
            QCOMPARE(helper.exitCode(), status);
            QVERIFY(helper.readAllStandardOutput().startsWith(output));
            const auto lines = helper.readAllStandardError();
            QVERIFY2(lines.startsWith(complaint), lines.constData());
            QCOMPARE(lines.count('\n'), status == 0 ? 0 : 1);
        }
    }
};

QTEST_GUILESS_MAIN(StartTest)
#include "StartTest.moc"
