#include "preferences/Preferences.h"

#include "support/TemporaryHome.h"

#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const auto sign = u"CurrentVideoSign"_s;

/// The suite's file in a home of its own, and the helper's view of it.
struct Fixture {
    explicit Fixture(const QByteArray& settings = {})
    {
        if (!settings.isNull())
            TemporaryHome::writeFile(home.suiteFile(), "[General]\n" + settings);
        suite =
            PreferencesSuite::open(u"K7ZT3QW9RB.tavelor"_s, home.container() + u"/Preferences"_s);
        preferences = std::make_unique<Preferences>(*suite);
    }

    /// Writes down every change from now on.
    QStringList& watch()
    {
        const auto note = [this](const QString& name, auto signal) {
            QObject::connect(preferences.get(), signal, [this, name](const auto& value) {
                if constexpr (requires { value.has_value(); })
                    changes << name + u' ' + value.value_or(u"none"_s);
                else
                    changes << name + u' ' + QVariant(value).toString();
            });
        };
        note(u"monitorArrange"_s, &Preferences::monitorArrangeChanged);
        note(u"screenIndex"_s, &Preferences::screenIndexChanged);
        note(u"playModel"_s, &Preferences::playModelChanged);
        note(u"sign"_s, &Preferences::playingVideoSignChanged);
        note(u"volume"_s, &Preferences::volumeChanged);
        note(u"mute"_s, &Preferences::muteChanged);
        note(u"alreadyImportVideo"_s, &Preferences::alreadyImportVideoChanged);
        note(u"isOpenPlayer"_s, &Preferences::isOpenPlayerChanged);
        note(u"isPlaying"_s, &Preferences::isPlayingChanged);
        note(u"autolaunch"_s, &Preferences::autolaunchChanged);
        return changes;
    }
    QStringList refresh()
    {
        changes.clear();
        preferences->updateUserDefaultFromDisk();
        return changes;
    }

    TemporaryHome home;
    std::unique_ptr<PreferencesSuite> suite;
    std::unique_ptr<Preferences> preferences;
    QStringList changes;
};

} // namespace

class PreferencesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void firstStart_seedsTheDefaults()
    {
        const Fixture fixture;

        const auto& it = *fixture.preferences;
        QVERIFY(it.isOpenPlayer() && it.isPlaying() && it.autolaunch());
        QVERIFY(!it.mute() && !it.alreadyImportVideo() && !it.playingVideoSign());
        QVERIFY(it.monitorArrange() == 0 && it.screenIndex() == 0 && it.playModel() == 0);
        QCOMPARE(it.volume(), 0.5F);
        auto lines = TemporaryHome::contents(fixture.home.suiteFile()).trimmed().split('\n');
        std::ranges::sort(lines);
        QCOMPARE(lines.join(' '),
            "IsOpenPlayer=true Mute=false Volume=0.5 [General] autolaunch=true isPlaying=true");
    }

    void handEditedValues_readAsTheirTypeOrZero_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("value");
        const auto row = [](const char* name, const QByteArray& line, const char* value) {
            QTest::newRow(name) << line << QString::fromUtf8(value);
        };
        row("a word is no number", "MonitorArrange=banana", "0");
        row("half a number is none", "PlayModel=2x", "0");
        row("a number out of range stays", "PlayModel=-7", "-7");
        row("beyond 64 bits is none", "ScreenIndex=99999999999999999999", "0");
        row("a list is no number", "ScreenIndex=1, 2", "0");
        row("a fruit is not true", "Mute=banana", "false");
        row("yes is true", "Mute=YES", "true");
        row("1 is true", "Mute=1 ; a comment", "true");
        row("an empty flag is false", "IsOpenPlayer=", "false");
        row("a number of another locale is none", "Volume=\"0,7\"", "0");
        row("bytes are nothing", "MonitorArrange=@ByteArray(1)", "0");
        row("the last one counts", "PlayModel=1\nPlayModel=2", "2");
    }

    void handEditedValues_readAsTheirTypeOrZero()
    {
        QFETCH(QByteArray, line);
        QFETCH(QString, value);

        const Fixture fixture("volume=0.9\n" + line + '\n'); // another spelling is another key

        const auto key = line.left(line.indexOf('='));
        const auto property = key.left(1).toLower() + key.mid(1);
        QCOMPARE(fixture.preferences->volume(), property == "volume" ? 0.0F : 0.5F);
        QCOMPARE(fixture.preferences->property(property.constData()).toString(), value);
    }

    void setters_storeWriteAndTellEvenAnEqualValue()
    {
        Fixture fixture;
        auto& preferences = *fixture.preferences;
        QList<QStringList> seen;
        connect(&preferences, &Preferences::muteChanged, this, [&](bool value) {
            seen << QStringList{QVariant(value).toString(),
                QVariant(preferences.mute()).toString(),
                fixture.home.suiteValue(u"Mute"_s)};
        });

        preferences.setMute(true);
        preferences.setMute(true);
        QCOMPARE(seen, QList<QStringList>(2, QStringList(3, u"true"_s)));

        preferences.setVolume(0.3F);
        preferences.setMonitorArrange(2);
        preferences.setPlayingVideoSign(u"a, ü"_s);
        QCOMPARE(fixture.home.suiteValue(u"Volume"_s), u"0.3"_s);
        QCOMPARE(fixture.home.suiteValue(u"MonitorArrange"_s), u"2"_s);
        QCOMPARE(fixture.watch(), QStringList());
        QCOMPARE(fixture.refresh(), QStringList()); // what was written reads back as the same
        preferences.setPlayingVideoSign(std::nullopt);
        QVERIFY(fixture.home.suiteValue(sign).isNull());
    }

    void refresh_followsAnotherWriterInOrder()
    {
        Fixture fixture;
        fixture.watch();

        TemporaryHome::writeFile(fixture.home.suiteFile(),
            "[General]\nautolaunch=false\nIsOpenPlayer=true\nisPlaying=false\nMute=true\n"
            "alreadyImportVideo=true\nVolume=0.25\nPlayModel=2\nScreenIndex=1\nMonitorArrange=5\n");

        QCOMPARE(fixture.refresh().join(u", "),
            u"monitorArrange 5, screenIndex 1, playModel 2, volume 0.25, mute true, "
            "alreadyImportVideo true, isPlaying false, autolaunch false"_s);
        QCOMPARE(fixture.refresh(), QStringList());
    }

    void refresh_alsoSwitchesOnAndPlays()
    {
        const QByteArray closed =
            "Volume=0.5\nautolaunch=true\nIsOpenPlayer=false\nisPlaying=false\n";
        Fixture fixture(closed);
        fixture.watch();
        const auto changesBy = [&](const QByteArray& text) {
            TemporaryHome::writeFile(fixture.home.suiteFile(), "[General]\n" + text);
            return fixture.refresh().join(u", ");
        };

        QCOMPARE(changesBy(closed + "CurrentVideoSign=abc\n"),
            u"sign abc, isOpenPlayer true, isPlaying true"_s);
        fixture.preferences->setIsOpenPlayer(false);
        fixture.preferences->setIsPlaying(false);
        QCOMPARE(changesBy(closed), u"sign , isOpenPlayer true, isPlaying true"_s); // removed
        QCOMPARE(fixture.refresh(), QStringList());
        QCOMPARE(fixture.home.suiteValue(sign), u""_s);
        fixture.preferences->setIsOpenPlayer(false);
        fixture.preferences->setIsPlaying(false);
        fixture.home.writeSuiteValue(u"IsOpenPlayer"_s, u"true"_s);
        QCOMPARE(fixture.refresh().join(u", "), u"isOpenPlayer true, isPlaying true"_s);
        QCOMPARE(fixture.home.suiteValue(u"isPlaying"_s), u"true"_s);
    }

    void volumeThatIsNotANumber_isSetAgainEveryTime()
    {
        Fixture fixture("Volume=nan\n");
        fixture.watch();

        QVERIFY(std::isnan(fixture.preferences->volume()));
        QCOMPARE(fixture.refresh(), QStringList{u"volume nan"_s});
        QCOMPARE(fixture.refresh(), QStringList{u"volume nan"_s});
    }

    void advance_givesWayToAnotherProcessesChoice()
    {
        Fixture fixture("CurrentVideoSign=abc\nisPlaying=false\n");
        fixture.watch();
        QVERIFY(fixture.preferences->advancePlayingVideoSign(u"def"_s));
        QCOMPARE(fixture.home.suiteValue(sign), u"def"_s);

        fixture.home.writeSuiteValue(sign, u"xyz"_s);
        QVERIFY(!fixture.preferences->advancePlayingVideoSign(u"ghi"_s));
        fixture.home.writeSuiteValue(sign, u"uvw"_s);
        fixture.suite->synchronize(); // as when another value is written
        QVERIFY(!fixture.preferences->advancePlayingVideoSign(u"ghi"_s));

        QCOMPARE(fixture.changes.join(u", "), u"sign def, sign xyz, isPlaying true, sign uvw"_s);
        QCOMPARE(fixture.home.suiteValue(sign), u"uvw"_s);
    }

    void sideEffect_neverReplacesWhatAnotherProcessWritesMeanwhile()
    {
        Fixture fixture("IsOpenPlayer=false\nisPlaying=false\n");
        connect(fixture.preferences.get(), &Preferences::playingVideoSignChanged, this, [&] {
            fixture.home.writeSuiteValue(u"IsOpenPlayer"_s, u"0"_s);
        });
        fixture.home.writeSuiteValue(sign, u"abc"_s);

        fixture.preferences->updateUserDefaultFromDisk();
        fixture.preferences->updateUserDefaultFromDisk();

        QCOMPARE(fixture.home.suiteValue(u"IsOpenPlayer"_s), u"false"_s);
        QVERIFY(!fixture.preferences->isOpenPlayer());
    }

    void sharedPreferences_refreshEverySecond()
    {
        const TemporaryHome home;
        Preferences::shared();

        home.writeSuiteValue(u"PlayModel"_s, u"2"_s);

        QTRY_COMPARE_WITH_TIMEOUT(Preferences::shared().playModel(), 2, 1500);
    }
};

QTEST_GUILESS_MAIN(PreferencesTest)
#include "PreferencesTest.moc"
