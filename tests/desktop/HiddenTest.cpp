#include "desktop/HelperProcess.h"
#include "desktop/X11Desktop.h"
#include "support/TestVideos.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QTest>

#include <optional>

using namespace Qt::StringLiterals;
using Extent = VirtualDesktop::Extent;

namespace {

const auto saver = u"org.gnome.ScreenSaver"_s;

} // namespace

/// What nobody can see costs nothing, and the helper says so.
class HiddenTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_helper = std::make_unique<HelperProcess>(*m_desktop); }
    void cleanup()
    {
        show(u"covered"_s);
        if (x11())
            show(u"blanked"_s);
        m_locker.reset();
        m_helper.reset();
    }

    void unseenVideo_rests_data()
    {
        QTest::addColumn<QString>("state");
        QTest::newRow("covered") << u"covered"_s;
        QTest::newRow("locked") << u"locked"_s;
        if (x11())
            QTest::newRow("blanked") << u"blanked"_s;
    }

    void unseenVideo_rests()
    {
        QFETCH(QString, state);
        m_helper->addVideo(u"r"_s, u"red"_s);
        m_helper->start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);
        QTRY_COMPARE(wallpaper(), u"playing"_s);
        const auto frames = [this] { return m_helper->status(u"framesShown"_s).toULongLong(); };
        QTRY_VERIFY(frames() > 0);

        hide(state);
        QTRY_COMPARE(wallpaper(), state);
        QTest::qWait(500); // what has begun goes on for a moment
        const auto framesBefore = frames();
        QVERIFY(m_helper->comesToRest());
        QCOMPARE(frames(), framesBefore);

        show(state);
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);
        QTRY_COMPARE(wallpaper(), u"playing"_s);
        QTRY_VERIFY(frames() > framesBefore + 30);
    }

    void heardVideo_goesOnWithoutItsPictures_silentOneDoesNot()
    {
        TemporaryHome::writeFile(m_helper->home().path() + u"/asound.conf"_s,
            "</usr/share/alsa/alsa.conf>\npcm.!default { type null }\n");
        m_helper->setEnvironment(
            u"ALSA_CONFIG_PATH"_s, m_helper->home().path() + u"/asound.conf"_s);
        for (const auto& [sign, colour] : {std::pair(u"r"_s, u"red"_s), {u"g"_s, u"lime"_s}}) {
            const auto file = m_helper->videoFile(sign);
            // This sound card takes all that there is at once, and a round of a moment is repeated
            // late: so there is much.
            TestVideos::make(file,
                u"-f lavfi -i color=c=%1:s=64x64:r=30:d=1 -f lavfi -i sine=d=600 -pix_fmt yuv420p"_s
                    .arg(colour)
                    .split(u' '));
            m_helper->addRow(sign, file);
        }
        m_helper->home().writeSuiteValue(u"PlayModel"_s, u"1"_s);
        m_helper->home().writeSuiteValue(u"Volume"_s, u"1"_s);
        m_helper->start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);

        hide(u"locked"_s);
        QTRY_COMPARE(wallpaper(), u"locked"_s);
        for (const auto& sign : {u"r"_s, u"g"_s, u"r"_s, u"g"_s})
            QTRY_COMPARE(playing(), sign);

        m_helper->home().writeSuiteValue(u"Mute"_s, u"true"_s);
        QTest::qWait(2500);
        const auto sign = playing();
        QVERIFY(m_helper->comesToRest());
        QCOMPARE(playing(), sign);

        show(u"locked"_s);
        QTRY_VERIFY(playing() != sign);
    }

    void lockerThatEnds_orIsNotTrue_isForgotten()
    {
        m_helper->addVideo(u"r"_s, u"red"_s);
        m_helper->start();
        QTRY_COMPARE(wallpaper(), u"playing"_s);

        hide(u"locked"_s);
        QTRY_COMPARE(wallpaper(), u"locked"_s);
        m_locker.reset();
        QTRY_COMPARE(wallpaper(), u"playing"_s);

        hide(u"locked"_s);
        QTRY_COMPARE(wallpaper(), u"locked"_s);
        m_desktop->click({300, 300});
        QTRY_COMPARE(wallpaper(), u"playing"_s);
    }

    void status_tellsWhatIsSetAndWhy()
    {
        m_helper->addVideo(u"r"_s, u"red"_s);
        m_helper->start();
        QTRY_COMPARE(wallpaper(), u"playing"_s);
        QCOMPARE(m_helper->status(u"sign"_s).toString(), u"r"_s);
        QTRY_COMPARE(m_helper->status(u"decoder"_s).toString(), u"software"_s);

        m_helper->home().writeSuiteValue(u"isPlaying"_s, u"false"_s);
        QTRY_COMPARE(wallpaper(), u"paused"_s);
        m_helper->home().writeSuiteValue(u"IsOpenPlayer"_s, u"false"_s);
        QTRY_COMPARE(wallpaper(), u"closed"_s);
        m_helper->home().writeSuiteValue(u"isPlaying"_s, u"true"_s);
        QFile::remove(m_helper->videoFile(u"r"_s));
        m_helper->home().writeSuiteValue(u"IsOpenPlayer"_s, u"true"_s);
        QTRY_COMPARE(wallpaper(), u"nothing to play"_s);
        QVERIFY(m_helper->status(u"reason"_s).toString().contains(u"missing"));
    }

private:
    X11Desktop* x11() const { return dynamic_cast<X11Desktop*>(m_desktop.get()); }
    QString wallpaper() const { return m_helper->status(u"state"_s).toString(); }
    QString playing() const { return m_helper->status(u"sign"_s).toString(); }

    void hide(const QString& state)
    {
        if (state == u"covered")
            m_desktop->cover(Qt::blue, Extent::All);
        else if (state == u"locked")
            m_locker.emplace(m_desktop->busAddress());
        else
            force(XCB_SCREEN_SAVER_ACTIVE);
    }
    void show(const QString& state)
    {
        if (state == u"covered")
            m_desktop->uncover();
        else if (state == u"locked")
            m_locker->tell(false);
        else
            force(XCB_SCREEN_SAVER_RESET);
    }
    void force(std::uint8_t mode) const
    {
        xcb_force_screen_saver(x11()->connection(), mode);
        xcb_flush(x11()->connection());
    }

    /// Says at once that it is active.
    class Locker {
    public:
        explicit Locker(const QString& address)
            : m_bus(QDBusConnection::connectToBus(address, saver))
        {
            m_bus.registerService(saver);
            tell(true);
        }
        ~Locker() { QDBusConnection::disconnectFromBus(saver); }
        Locker(const Locker&) = delete;
        Locker& operator=(const Locker&) = delete;

        void tell(bool isActive)
        {
            auto signal =
                QDBusMessage::createSignal(u"/org/gnome/ScreenSaver"_s, saver, u"ActiveChanged"_s);
            signal << isActive;
            m_bus.send(signal);
        }

    private:
        QDBusConnection m_bus;
    };

    std::unique_ptr<VirtualDesktop> m_desktop = VirtualDesktop::create();
    std::unique_ptr<HelperProcess> m_helper;
    std::optional<Locker> m_locker;
};

QTEST_GUILESS_MAIN(HiddenTest)
#include "HiddenTest.moc"
