#include "preferences/Preferences.h"

#include "support/TemporaryHome.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTest>

#include <algorithm>
#include <cmath>

namespace {

const auto suiteName = QStringLiteral("K7ZT3QW9RB.tavelor");

/// The suite's file in a home of its own, and the helper's view of it.
struct Fixture {
    explicit Fixture(const QByteArray& contents = {})
    {
        if (!contents.isNull())
            TemporaryHome::writeFile(home.suiteFile(), contents);
        suite =
            PreferencesSuite::open(suiteName, home.container() + QStringLiteral("/Preferences"));
        preferences = std::make_unique<Preferences>(*suite);
    }

    /// Writes down every change from now on.
    QStringList& watch()
    {
        const auto note = [this](const char* name) {
            return [this, name](const auto& value) {
                changes << QStringLiteral("%1 %2").arg(
                    QLatin1String(name), QVariant::fromValue(value).toString());
            };
        };
        using P = Preferences;
        QObject::connect(preferences.get(), &P::monitorArrangeChanged, note("monitorArrange"));
        QObject::connect(preferences.get(), &P::screenIndexChanged, note("screenIndex"));
        QObject::connect(preferences.get(), &P::playModelChanged, note("playModel"));
        QObject::connect(preferences.get(), &P::volumeChanged, note("volume"));
        QObject::connect(preferences.get(), &P::muteChanged, note("mute"));
        QObject::connect(
            preferences.get(), &P::alreadyImportVideoChanged, note("alreadyImportVideo"));
        QObject::connect(preferences.get(), &P::isOpenPlayerChanged, note("isOpenPlayer"));
        QObject::connect(preferences.get(), &P::isPlayingChanged, note("isPlaying"));
        QObject::connect(preferences.get(), &P::autolaunchChanged, note("autolaunch"));
        QObject::connect(preferences.get(), &P::playingVideoSignChanged, [this](const auto& sign) {
            changes
                << QStringLiteral("playingVideoSign %1").arg(sign.value_or(QStringLiteral("none")));
        });
        return changes;
    }

    TemporaryHome home;
    std::unique_ptr<PreferencesSuite> suite;
    std::unique_ptr<Preferences> preferences;
    QStringList changes;
};

QStringList strings(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const auto* text : texts)
        list << QString::fromUtf8(text);
    return list;
}

} // namespace

class PreferencesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void firstStart_seedsTheDefaults()
    {
        const Fixture fixture;

        const auto& preferences = *fixture.preferences;
        QVERIFY(preferences.isOpenPlayer() && preferences.isPlaying() && preferences.autolaunch());
        QVERIFY(!preferences.mute() && !preferences.alreadyImportVideo());
        QCOMPARE(preferences.volume(), 0.5F);
        QCOMPARE(preferences.monitorArrange(), 0);
        QCOMPARE(preferences.screenIndex(), 0);
        QCOMPARE(preferences.playModel(), 0);
        QVERIFY(!preferences.playingVideoSign());
        auto lines = TemporaryHome::contents(fixture.home.suiteFile()).trimmed().split('\n');
        std::ranges::sort(lines);
        QCOMPARE(lines.join('\n'),
            "IsOpenPlayer=true\nMute=false\nVolume=0.5\n[General]\nautolaunch=true\nisPlaying="
            "true");
    }

    void handEditedValues_readAsTheirTypeOrZero_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QVariant>("value");

        QTest::newRow("a word is no number")
            << QByteArray("MonitorArrange=banana") << QByteArray("monitorArrange") << QVariant(0);
        QTest::newRow("half a number is none")
            << QByteArray("PlayModel=2x") << QByteArray("playModel") << QVariant(0);
        QTest::newRow("a number out of range stays")
            << QByteArray("PlayModel=-7") << QByteArray("playModel") << QVariant(-7);
        QTest::newRow("beyond 64 bits is none") << QByteArray("ScreenIndex=99999999999999999999")
                                                << QByteArray("screenIndex") << QVariant(0);
        QTest::newRow("a list is no number")
            << QByteArray("ScreenIndex=1, 2") << QByteArray("screenIndex") << QVariant(0);
        QTest::newRow("a fruit is not true")
            << QByteArray("Mute=banana") << QByteArray("mute") << QVariant(false);
        QTest::newRow("yes is true")
            << QByteArray("Mute=YES") << QByteArray("mute") << QVariant(true);
        QTest::newRow("1 is true") << QByteArray("Mute=1") << QByteArray("mute") << QVariant(true);
        QTest::newRow("an empty flag is false")
            << QByteArray("IsOpenPlayer=") << QByteArray("isOpenPlayer") << QVariant(false);
        QTest::newRow("a number of another locale is none")
            << QByteArray("Volume=\"0,7\"") << QByteArray("volume") << QVariant(0.0F);
        QTest::newRow("another spelling is another key")
            << QByteArray("volume=0.9") << QByteArray("volume") << QVariant(0.5F);
        QTest::newRow("blobs are nothing") << QByteArray("MonitorArrange=@ByteArray(1)")
                                           << QByteArray("monitorArrange") << QVariant(0);
    }

    void handEditedValues_readAsTheirTypeOrZero()
    {
        QFETCH(QByteArray, line);
        QFETCH(QByteArray, property);
        QFETCH(QVariant, value);

        const Fixture fixture("[General]\n" + line + "\n");

        QCOMPARE(fixture.preferences->property(property.constData()).toString(), value.toString());
    }

    void brokenFiles_readAsFirstStart_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("binary") << QByteArray("\x00\xff\x7f"
                                              "ELF\x01=[\n\x00[[",
            14);
        QTest::newRow("prose") << QByteArray("dear diary\ntoday I edited a file\n");
    }

    void brokenFiles_readAsFirstStart()
    {
        QFETCH(QByteArray, contents);
        const Fixture fixture(contents);

        QVERIFY(fixture.preferences->isOpenPlayer());
        QCOMPARE(fixture.preferences->volume(), 0.5F);
        QCOMPARE(fixture.home.suiteValue(QStringLiteral("IsOpenPlayer")), QStringLiteral("true"));
    }

    void setters_storeAndTellEvenAnEqualValue()
    {
        Fixture fixture;
        auto& changes = fixture.watch();
        auto& preferences = *fixture.preferences;

        preferences.setMonitorArrange(2);
        preferences.setMonitorArrange(2);
        preferences.setVolume(0.3F);
        preferences.setPlayingVideoSign(QStringLiteral("a sign, \"quoted\"; ü"));

        QCOMPARE(changes.size(), 4);
        QCOMPARE(fixture.home.suiteValue(QStringLiteral("MonitorArrange")), QStringLiteral("2"));
        QCOMPARE(fixture.home.suiteValue(QStringLiteral("Volume")), QStringLiteral("0.3"));
        preferences.updateUserDefaultFromDisk();
        QCOMPARE(changes.size(), 4); // what was written reads back as the same

        preferences.setPlayingVideoSign(std::nullopt);
        QVERIFY(fixture.home.suiteValue(QStringLiteral("CurrentVideoSign")).isNull());
    }

    void observers_findTheValueStoredAndOnDisk()
    {
        Fixture fixture;
        bool isConsistent = false;
        connect(fixture.preferences.get(), &Preferences::muteChanged, this, [&](bool value) {
            isConsistent = value && fixture.preferences->mute() &&
                           fixture.home.suiteValue(QStringLiteral("Mute")) == u"true";
        });

        fixture.preferences->setMute(true);

        QVERIFY(isConsistent);
    }

    void refresh_withoutADifference_tellsNobody()
    {
        Fixture fixture;
        const auto& changes = fixture.watch();

        fixture.preferences->updateUserDefaultFromDisk();

        QCOMPARE(changes, QStringList());
    }

    void refresh_followsAnotherWriterInOrder()
    {
        Fixture fixture;
        const auto& changes = fixture.watch();

        TemporaryHome::writeFile(fixture.home.suiteFile(),
            "[General]\nautolaunch=false\nIsOpenPlayer=true\nisPlaying=false\nMute=true\n"
            "alreadyImportVideo=true\nVolume=0.25\nPlayModel=2\nScreenIndex=1\nMonitorArrange=5\n");
        fixture.preferences->updateUserDefaultFromDisk();

        QCOMPARE(changes,
            strings({"monitorArrange 5",
                "screenIndex 1",
                "playModel 2",
                "volume 0.25",
                "mute true",
                "alreadyImportVideo true",
                "isPlaying false",
                "autolaunch false"}));
    }

    void newSign_switchesOnAndPlays()
    {
        Fixture fixture("[General]\nIsOpenPlayer=false\nisPlaying=false\n");
        const auto& changes = fixture.watch();

        fixture.home.writeSuiteValue(QStringLiteral("CurrentVideoSign"), QStringLiteral("abc"));
        fixture.preferences->updateUserDefaultFromDisk();

        QCOMPARE(changes, strings({"playingVideoSign abc", "isOpenPlayer true", "isPlaying true"}));
        QCOMPARE(fixture.home.suiteValue(QStringLiteral("IsOpenPlayer")), QStringLiteral("true"));
        QCOMPARE(fixture.home.suiteValue(QStringLiteral("isPlaying")), QStringLiteral("true"));
    }

    void advance_givesWayToAnotherProcessesChoice()
    {
        Fixture fixture("[General]\nCurrentVideoSign=abc\nisPlaying=false\n");
        QVERIFY(fixture.preferences->advancePlayingVideoSign(QStringLiteral("def")));
        QCOMPARE(fixture.home.suiteValue(QStringLiteral("CurrentVideoSign")), "def");
        const auto& changes = fixture.watch();

        fixture.home.writeSuiteValue(QStringLiteral("CurrentVideoSign"), QStringLiteral("xyz"));
        QVERIFY(!fixture.preferences->advancePlayingVideoSign(QStringLiteral("ghi")));

        QCOMPARE(changes, strings({"playingVideoSign xyz", "isPlaying true"}));
        QCOMPARE(fixture.home.suiteValue(QStringLiteral("CurrentVideoSign")), "xyz");
    }

    void removedSign_becomesTheEmptyString()
    {
        Fixture fixture("[General]\nCurrentVideoSign=abc\n");
        const auto& changes = fixture.watch();

        fixture.home.removeSuiteValue(QStringLiteral("CurrentVideoSign"));
        fixture.preferences->updateUserDefaultFromDisk();
        fixture.preferences->updateUserDefaultFromDisk();

        QCOMPARE(changes, strings({"playingVideoSign "})); // once
        QCOMPARE(fixture.home.suiteValue(QStringLiteral("CurrentVideoSign")), QStringLiteral(""));
    }

    void switchingOn_alsoPlays()
    {
        Fixture fixture("[General]\nIsOpenPlayer=false\nisPlaying=false\n");
        const auto& changes = fixture.watch();

        fixture.home.writeSuiteValue(QStringLiteral("IsOpenPlayer"), QStringLiteral("true"));
        fixture.preferences->updateUserDefaultFromDisk();

        QCOMPARE(changes, strings({"isOpenPlayer true", "isPlaying true"}));
        QCOMPARE(fixture.home.suiteValue(QStringLiteral("isPlaying")), QStringLiteral("true"));
    }

    void pausedWhileOn_staysPaused()
    {
        Fixture fixture("[General]\nIsOpenPlayer=true\nisPlaying=true\n");

        fixture.home.writeSuiteValue(QStringLiteral("isPlaying"), QStringLiteral("false"));
        fixture.preferences->updateUserDefaultFromDisk();
        fixture.preferences->updateUserDefaultFromDisk();

        QVERIFY(!fixture.preferences->isPlaying());
    }

    void valueOfTheSameLengthAtTheSameMoment_isSeen()
    {
        Fixture fixture;
        for (int i = 0; i < 200; ++i) {
            const auto value = 10 + i % 80;
            fixture.preferences->setMonitorArrange(value);
            fixture.home.writeSuiteValue(
                QStringLiteral("MonitorArrange"), QString::number(value + 1));
            fixture.preferences->updateUserDefaultFromDisk();
            QCOMPARE(fixture.preferences->monitorArrange(), value + 1);
        }
    }

    void volumeThatIsNotANumber_isSetAgainEveryTime()
    {
        Fixture fixture;
        const auto& changes = fixture.watch();
        fixture.home.writeSuiteValue(QStringLiteral("Volume"), QStringLiteral("nan"));

        fixture.preferences->updateUserDefaultFromDisk();
        fixture.preferences->updateUserDefaultFromDisk();

        QVERIFY(std::isnan(fixture.preferences->volume()));
        QCOMPARE(changes, strings({"volume nan", "volume nan"}));
    }

    void twoProcesses_loseNothingOfEachOther()
    {
        Fixture fixture;
        QProcess other;
        other.start(QCoreApplication::applicationDirPath() + QStringLiteral("/suite_writer"),
            {suiteName,
                fixture.home.container() + QStringLiteral("/Preferences"),
                QStringLiteral("theirs"),
                QStringLiteral("60")});
        QVERIFY(other.waitForStarted());

        qint64 ours = 0;
        while (!other.waitForFinished(3)) // a breath for the other one to get the lock in
            fixture.preferences->setScreenIndex(++ours);

        QCOMPARE(other.exitCode(), 0);
        QVERIFY(ours > 0);
        QCOMPARE(fixture.home.suiteValue(QStringLiteral("theirs")), QStringLiteral("60"));
        QCOMPARE(fixture.home.suiteValue(QStringLiteral("ScreenIndex")), QString::number(ours));
    }

    void suiteThatCannotBeOpened_isNone()
    {
        const TemporaryHome home;
        QDir().mkpath(home.suiteFile()); // a folder where the file belongs

        QVERIFY(
            !PreferencesSuite::open(suiteName, home.container() + QStringLiteral("/Preferences")));
    }
};

QTEST_GUILESS_MAIN(PreferencesTest)
#include "PreferencesTest.moc"
