#include "desktop/HelperProcess.h"
#include "desktop/VirtualDesktop.h"
#include "support/TestVideos.h"

#include <QTest>

namespace {

const auto arrangeKey = QStringLiteral("MonitorArrange");
const auto indexKey = QStringLiteral("ScreenIndex");

} // namespace

/// Which part of a picture is on which monitor. The picture is red on its left half and blue on
/// its right one; a monitor is half of the desktop.
class ScreensTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_desktop.startWindowManager(); }
    void cleanup()
    {
        m_desktop.killWindowManager();
        m_desktop.setMonitors(VirtualDesktop::Monitors::One);
    }

    void pictures_followTheArrangement()
    {
        HelperProcess helper(m_desktop);
        start(helper, VirtualDesktop::Monitors::TwoHalves);
        QTRY_COMPARE(quarters(), "red red blue blue"); // one picture across both

        helper.home().writeSuiteValue(arrangeKey, QStringLiteral("1"));
        QTRY_COMPARE(quarters(), "red blue red blue"); // the same on each

        helper.home().writeSuiteValue(indexKey, QStringLiteral("1"));
        QTRY_COMPARE(quarters(), "black black red blue"); // the second one only
        helper.home().writeSuiteValue(indexKey, QStringLiteral("7"));
        QTRY_COMPARE(quarters(), "red blue black black"); // there is no eighth: the first

        helper.home().writeSuiteValue(arrangeKey, QStringLiteral("0"));
        QTRY_COMPARE(quarters(), "red red blue blue");
    }

    void unpluggedAndPluggedMonitor_isFollowedWhilePlaying_data()
    {
        QTest::addColumn<QString>("arrangement");
        QTest::addColumn<QString>("onBoth");
        QTest::addColumn<QString>("onLeft");
        QTest::newRow("one picture") << "0"
                                     << "red red blue blue"
                                     << "red blue black black";
        QTest::newRow("mirrored") << "1"
                                  << "red blue red blue"
                                  << "red blue black black";
    }

    void unpluggedAndPluggedMonitor_isFollowedWhilePlaying()
    {
        QFETCH(QString, arrangement);
        QFETCH(QString, onBoth);
        QFETCH(QString, onLeft);
        HelperProcess helper(m_desktop);
        helper.home().writeSuiteValue(arrangeKey, arrangement);
        start(helper, VirtualDesktop::Monitors::TwoHalves);

        for (int i = 0; i < 3; ++i) {
            QTRY_COMPARE(quarters(), onBoth);
            m_desktop.setMonitors(VirtualDesktop::Monitors::LeftHalf);
            QTRY_COMPARE(quarters(), onLeft);
            m_desktop.setMonitors(VirtualDesktop::Monitors::TwoHalves);
        }
        QTRY_COMPARE(quarters(), onBoth);
    }

    void monitorThatComesWhileClosed_isUsedWhenOpened()
    {
        HelperProcess helper(m_desktop);
        start(helper, VirtualDesktop::Monitors::LeftHalf);
        QTRY_COMPARE(quarters(), "red blue black black");
        helper.home().writeSuiteValue(QStringLiteral("IsOpenPlayer"), QStringLiteral("false"));
        QTRY_COMPARE(quarters(), "black black black black");

        m_desktop.setMonitors(VirtualDesktop::Monitors::TwoHalves);
        helper.home().writeSuiteValue(QStringLiteral("IsOpenPlayer"), QStringLiteral("true"));
        QTRY_COMPARE(quarters(), "red red blue blue"); // one picture across both
    }

private:
    void start(HelperProcess& helper, VirtualDesktop::Monitors monitors)
    {
        m_desktop.setMonitors(monitors);
        TestVideos::makeHalves(
            helper.videoFile(QStringLiteral("x")), QStringLiteral("red"), QStringLiteral("blue"));
        helper.addRow(QStringLiteral("x"), helper.videoFile(QStringLiteral("x")));
        helper.start();
    }

    /// The colours in the middle of the four quarters of the desktop's width.
    QString quarters() const
    {
        QStringList colours;
        for (const int x : {100, 540, 740, 1180})
            colours << m_desktop.colour({x, 360});
        return colours.join(u' ');
    }

    VirtualDesktop m_desktop;
};

QTEST_GUILESS_MAIN(ScreensTest)
#include "ScreensTest.moc"
