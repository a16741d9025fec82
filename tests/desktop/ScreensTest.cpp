#include "desktop/HelperProcess.h"
#include "support/TestVideos.h"

#include <QDeadlineTimer>
#include <QTest>

using namespace Qt::StringLiterals;
using Monitors = VirtualDesktop::Monitors;

/// Which part of a picture is on which monitor. The picture is red on its left half and blue on
/// its right one; a monitor is half of the desktop.
class ScreensTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_helper = std::make_unique<HelperProcess>(*m_desktop);
        TestVideos::makeHalves(m_helper->videoFile(u"x"_s), u"red"_s, u"blue"_s);
        m_helper->addRow(u"x"_s, m_helper->videoFile(u"x"_s));
    }
    void cleanup()
    {
        m_helper.reset();
        m_desktop->setMonitors(Monitors::One);
    }

    void pictures_followTheArrangement()
    {
        m_desktop->setMonitors(Monitors::TwoHalves);
        m_helper->start();
        QTRY_COMPARE(quarters(), "red red blue blue"); // one picture across both

        set("MonitorArrange", u"1"_s);
        QTRY_COMPARE(quarters(), "red blue red blue"); // the same on each

        set("ScreenIndex", u"1"_s);
        QTRY_COMPARE(quarters(), "bare bare red blue"); // the second one only
        set("ScreenIndex", u"7"_s);
        QTRY_COMPARE(quarters(), "red blue bare bare"); // there is no eighth: the first

        set("MonitorArrange", u"0"_s);
        QTRY_COMPARE(quarters(), "red red blue blue");
    }

    void rebuiltWindows_neverShowTheBareScreen()
    {
        m_desktop->setMonitors(Monitors::TwoHalves);
        m_helper->start();
        QTRY_COMPARE(quarters(), "red red blue blue");
        for (const auto* arrangement : {"1", "0"}) {
            const auto before = m_desktop->colour({540, 360});
            set("MonitorArrange", QLatin1String(arrangement));
            auto colour = before;
            for (QDeadlineTimer patience(5000); colour == before && !patience.hasExpired();) {
                colour = m_desktop->colour({540, 360});
                QVERIFY(colour != u"bare");
            }
            QVERIFY(colour != before);
        }
    }

    void unpluggedAndPluggedMonitor_isFollowedWhilePlaying_data()
    {
        QTest::addColumn<QString>("onBoth");
        QTest::newRow("0") << u"red red blue blue"_s;
        QTest::newRow("1") << u"red blue red blue"_s;
    }

    void unpluggedAndPluggedMonitor_isFollowedWhilePlaying()
    {
        QFETCH(QString, onBoth);
        set("MonitorArrange", QString::fromLatin1(QTest::currentDataTag()));
        m_desktop->setMonitors(Monitors::TwoHalves);
        m_helper->start();

        for (int i = 0; i < 3; ++i) {
            QTRY_COMPARE(quarters(), onBoth);
            m_desktop->setMonitors(Monitors::LeftHalf);
            QTRY_COMPARE(quarters(), "red blue bare bare");
            m_desktop->setMonitors(Monitors::TwoHalves);
        }
        QTRY_COMPARE(quarters(), onBoth);
    }

    void monitorThatComesWhileClosed_isUsedWhenOpened()
    {
        m_desktop->setMonitors(Monitors::LeftHalf);
        m_helper->start();
        QTRY_COMPARE(quarters(), "red blue bare bare");
        set("IsOpenPlayer", u"false"_s);
        QTRY_COMPARE(quarters(), "bare bare bare bare");

        m_desktop->setMonitors(Monitors::TwoHalves);
        set("IsOpenPlayer", u"true"_s);
        QTRY_COMPARE(quarters(), "red red blue blue");
        set("MonitorArrange", u"1"_s);
        QTRY_COMPARE(quarters(), "red blue red blue");
    }

private:
    void set(const char* key, const QString& value)
    {
        m_helper->home().writeSuiteValue(QLatin1String(key), value);
    }

    /// The colours in the middle of the four quarters of the desktop's width.
    QString quarters() const
    {
        QStringList colours;
        for (const int x : {100, 540, 740, 1180})
            colours << m_desktop->colour({x, 360});
        return colours.join(u' ');
    }

    std::unique_ptr<VirtualDesktop> m_desktop = VirtualDesktop::create();
    std::unique_ptr<HelperProcess> m_helper;
};

QTEST_GUILESS_MAIN(ScreensTest)
#include "ScreensTest.moc"
