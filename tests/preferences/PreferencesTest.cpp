#include "preferences/Preferences.h"

#include "support/TemporaryHome.h"

#include <QMetaProperty>
#include <QTest>

using namespace Qt::StringLiterals;

class PreferencesTest : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void note()
    {
        const auto signal = Preferences::staticMetaObject.method(senderSignalIndex()).name();
        const auto name = signal.chopped(static_cast<int>(qstrlen("Changed")));
        const auto value = name == "playingVideoSign"
                               ? m_preferences->playingVideoSign().value_or(u"none"_s)
                               : m_preferences->property(name.constData()).toString();
        m_changes << QString::fromLatin1(name) + u' ' + value;
    }

private Q_SLOTS:
    void init() { m_home = std::make_unique<TemporaryHome>(); }
    void cleanup() { m_home.reset(); }

    void firstStart_seedsTheDefaults()
    {
        open();

        auto lines = TemporaryHome::contents(m_home->suiteFile()).trimmed().split('\n');
        std::ranges::sort(lines);
        QCOMPARE(lines.join(' '),
            "IsOpenPlayer=true Mute=false Volume=0.5 [General] autolaunch=true isPlaying=true");
        QVERIFY(!m_preferences->playingVideoSign());
        QCOMPARE(refresh(), u""_s); // what was loaded is what was written
    }

    void handEditedValues_readAsTheirTypeOrZero_data()
    {
        QTest::addColumn<QString>("value");
        QTest::newRow("PlayModel=2x") << u"0"_s;
        QTest::newRow("PlayModel=-7") << u"-7"_s;
        QTest::newRow("ScreenIndex=1, 2") << u"0"_s;
        QTest::newRow("Mute=banana") << u"false"_s;
        QTest::newRow("Mute=YES") << u"true"_s;
        QTest::newRow("Mute=1 ; a comment") << u"true"_s;
        QTest::newRow("Volume=\"0,7\"") << u"0"_s;
        QTest::newRow("MonitorArrange=@ByteArray(1)") << u"0"_s;
        QTest::newRow("PlayModel=1\nPlayModel=2") << u"2"_s;
    }

    void handEditedValues_readAsTheirTypeOrZero()
    {
        QFETCH(QString, value);
        const QByteArray line = QTest::currentDataTag();

        open("volume=0.9\n" + line + '\n'); // another spelling is another key

        const auto key = line.left(line.indexOf('='));
        const auto property = key.left(1).toLower() + key.mid(1);
        QCOMPARE(m_preferences->volume(), property == "volume" ? 0.0F : 0.5F);
        QCOMPARE(m_preferences->property(property.constData()).toString(), value);
    }

    void setters_storeWriteAndTellEvenAnEqualValue()
    {
        open();
        QStringList seen;
        connect(m_preferences.get(), &Preferences::muteChanged, this, [&](bool value) {
            if (value && m_preferences->mute())
                seen << m_home->suiteValue(u"Mute"_s);
        });

        m_preferences->setMute(true);
        m_preferences->setMute(true);
        QCOMPARE(seen, QStringList(2, u"true"_s));

        m_preferences->setVolume(0.3F);
        m_preferences->setMonitorArrange(2);
        m_preferences->setPlayingVideoSign(u"a, ü"_s);
        QCOMPARE(m_home->suiteValue(u"Volume"_s), u"0.3"_s);
        QCOMPARE(m_home->suiteValue(u"MonitorArrange"_s), u"2"_s);
        QCOMPARE(refresh(), u""_s); // what was written reads back as the same
        m_preferences->setPlayingVideoSign(std::nullopt);
        QVERIFY(sign().isNull());
    }

    void refresh_followsAnotherWriterInOrder()
    {
        open();

        TemporaryHome::writeFile(m_home->suiteFile(),
            "[General]\nautolaunch=false\nIsOpenPlayer=true\nisPlaying=false\nMute=true\n"
            "alreadyImportVideo=true\nVolume=0.25\nPlayModel=2\nScreenIndex=1\nMonitorArrange=5\n");

        QCOMPARE(refresh(),
            u"monitorArrange 5, screenIndex 1, playModel 2, volume 0.25, mute true, "
            "alreadyImportVideo true, isPlaying false, autolaunch false"_s);
        QCOMPARE(refresh(), u""_s);
    }

    void refresh_alsoSwitchesOnAndPlays()
    {
        open();
        const auto changesBy = [this](const char* key, const QString& value) {
            m_preferences->setIsOpenPlayer(false);
            m_preferences->setIsPlaying(false);
            m_home->writeSuiteValue(QLatin1String(key), value);
            return refresh();
        };
        const auto on = u"isOpenPlayer true, isPlaying true"_s;

        QCOMPARE(changesBy("CurrentVideoSign", u"abc"_s), u"playingVideoSign abc, "_s + on);
        QCOMPARE(changesBy("CurrentVideoSign", {}), u"playingVideoSign , "_s + on); // removed
        QCOMPARE(refresh(), u""_s);
        QCOMPARE(sign(), u""_s);
        QCOMPARE(changesBy("IsOpenPlayer", u"true"_s), on);
        QCOMPARE(m_home->suiteValue(u"isPlaying"_s), u"true"_s);
    }

    void volumeThatIsNotANumber_isSetAgainEveryTime()
    {
        open("Volume=nan\n");
        QCOMPARE(refresh(), u"volume nan"_s);
        QCOMPARE(refresh(), u"volume nan"_s);
    }

    void advance_givesWayToAnotherProcessesChoice()
    {
        open("CurrentVideoSign=abc\nisPlaying=false\n");
        QVERIFY(m_preferences->advancePlayingVideoSign(u"def"_s));
        QCOMPARE(sign(), u"def"_s);

        m_home->writeSuiteValue(m_signKey, u"xyz"_s);
        QVERIFY(!m_preferences->advancePlayingVideoSign(u"ghi"_s));
        m_home->writeSuiteValue(m_signKey, u"uvw"_s);
        m_suite->synchronize(); // as when another value is written
        QVERIFY(!m_preferences->advancePlayingVideoSign(u"ghi"_s));

        QCOMPARE(m_changes.join(u", "),
            u"playingVideoSign def, playingVideoSign xyz, isPlaying true, playingVideoSign uvw"_s);
        QCOMPARE(sign(), u"uvw"_s);
    }

    void sideEffect_neverReplacesWhatAnotherProcessWritesMeanwhile()
    {
        open("IsOpenPlayer=false\nisPlaying=false\n");
        connect(m_preferences.get(), &Preferences::playingVideoSignChanged, this, [this] {
            m_home->writeSuiteValue(u"IsOpenPlayer"_s, u"0"_s);
        });
        m_home->writeSuiteValue(m_signKey, u"abc"_s);

        refresh();
        refresh();

        QCOMPARE(m_home->suiteValue(u"IsOpenPlayer"_s), u"false"_s);
        QVERIFY(!m_preferences->isOpenPlayer());
    }

    void sharedPreferences_refreshEverySecond()
    {
        Preferences::shared();
        m_home->writeSuiteValue(u"PlayModel"_s, u"2"_s);
        QTRY_COMPARE_WITH_TIMEOUT(Preferences::shared().playModel(), 2, 1500);
    }

private:
    /// The helper's view of the suite's file, of which every change is written down.
    void open(const QByteArray& settings = {})
    {
        if (!settings.isNull())
            TemporaryHome::writeFile(m_home->suiteFile(), "[General]\n" + settings);
        const auto folder = m_home->container() + u"/Preferences"_s;
        m_suite = PreferencesSuite::open(u"K7ZT3QW9RB.tavelor"_s, folder);
        m_preferences = std::make_unique<Preferences>(*m_suite);
        m_changes.clear();
        const auto& type = Preferences::staticMetaObject;
        const auto slot = metaObject()->method(metaObject()->indexOfSlot("note()"));
        for (int i = type.propertyOffset(); i < type.propertyCount(); ++i)
            connect(m_preferences.get(), type.property(i).notifySignal(), this, slot);
    }
    QString refresh()
    {
        m_changes.clear();
        m_preferences->updateUserDefaultFromDisk();
        return m_changes.join(u", ");
    }
    QString sign() const { return m_home->suiteValue(m_signKey); }

    const QString m_signKey = u"CurrentVideoSign"_s;
    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<PreferencesSuite> m_suite;
    std::unique_ptr<Preferences> m_preferences;
    QStringList m_changes;
};

QTEST_GUILESS_MAIN(PreferencesTest)
#include "PreferencesTest.moc"
