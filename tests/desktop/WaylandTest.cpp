#include "desktop/HelperProcess.h"
#include "desktop/SwayDesktop.h"
#include "support/TestVideos.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using Monitors = VirtualDesktop::Monitors;

namespace {

qsizetype entries(const HelperProcess& helper, const QString& folder)
{
    const auto process = helper.process().processId();
    return QDir(u"/proc/%1/%2"_s.arg(process).arg(folder))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}

} // namespace

/// What only Wayland has: outputs of any scale and rotation, and a compositor that ends without
/// ending its session.
class WaylandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_desktop = std::make_unique<SwayDesktop>();
        m_helper = std::make_unique<HelperProcess>(*m_desktop);
    }
    void cleanup()
    {
        m_helper.reset();
        m_desktop.reset();
    }

    void joinedPicture_goesAcrossOutputsOfAnyKind_data()
    {
        QTest::addColumn<QString>("secondOutput"); // right of the first, which is 1280 wide
        QTest::addColumn<int>("width");            // of both together
        QTest::newRow("a larger one") << u"mode --custom 1920x1080"_s << 3200;
        QTest::newRow("of scale 2") << u"mode --custom 2560x1440 scale 2"_s << 2560;
        QTest::newRow("of scale 1.5") << u"mode --custom 1920x1080 scale 1.5"_s << 2560;
        QTest::newRow("turned") << u"mode --custom 1280x720 transform 90"_s << 2000;
        QTest::newRow("turned, of scale 2")
            << u"mode --custom 2560x1440 scale 2 transform 270"_s << 2000;
    }

    void joinedPicture_goesAcrossOutputsOfAnyKind()
    {
        QFETCH(QString, secondOutput);
        QFETCH(int, width);
        addHalves();
        const auto place = u"position 1280 0 "_s;
        m_desktop->plug(place + secondOutput);
        m_helper->start();

        const auto colours = [this, width] {
            QStringList seen;
            for (const int x : {20, width / 2 - 40, width / 2 + 40, width - 20}) {
                for (const int y : {20, 700})
                    seen << m_desktop->colour({x, y});
            }
            return seen.join(u' ');
        };
        const auto joined = u"red red red red blue blue blue blue"_s;
        QTRY_COMPARE(colours(), joined);

        // The same while it plays, with the output as it was before in between.
        m_desktop->configure(1, place + u"mode --custom 1280x720 scale 1 transform normal"_s);
        QTRY_COMPARE(m_desktop->colour({1240, 360}) + m_desktop->colour({1320, 360}), u"redblue"_s);
        m_desktop->configure(1, place + secondOutput);
        QTRY_COMPARE(colours(), joined);
    }

    void picture_hasThePixelsOfTheOutput_data()
    {
        QTest::addColumn<QString>("output");
        QTest::newRow("of scale 1") << u"mode --custom 1280x720"_s;
        QTest::newRow("of scale 2") << u"mode --custom 1280x720 scale 2"_s;
        QTest::newRow("of scale 1.25") << u"mode --custom 1280x720 scale 1.25"_s; // 1024 by 576
    }

    /// Columns of one pixel each, black and white, survive no scaling.
    void picture_hasThePixelsOfTheOutput()
    {
        QFETCH(QString, output);
        const auto file = m_helper->videoFile(u"x"_s);
        TestVideos::make(file,
            u"-f lavfi -i nullsrc=s=1280x720:r=10:d=2,geq=lum='16+219*mod(X\\,2)':cb=128:cr=128"
            " -c:v libx264 -preset ultrafast -qp 1 -pix_fmt yuv420p"_s.split(u' '));
        m_helper->addRow(u"x"_s, file);
        m_desktop->configure(0, output);
        m_helper->start();

        const auto columns = [this] {
            const auto picture = m_desktop->picture(0);
            QString seen;
            for (int x = 600; x < 608 && x < picture.width(); ++x) {
                const auto grey = qGray(picture.pixel(x, 300));
                seen += grey < 50 ? u'_' : grey > 205 ? u'#' : u'?';
            }
            return seen;
        };
        QTRY_COMPARE(columns(), u"_#_#_#_#"_s);
    }

    void allOutputsGone_comeBackWithThePicture()
    {
        m_helper->addVideo(u"r"_s, u"red"_s);
        m_helper->start();
        for (int i = 0; i < 3; ++i) {
            QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);
            m_desktop->unplug();
            QTest::qWait(i * 300); // at once, or when it has been noticed
            m_desktop->plug(u"position 0 0 mode --custom 1280x720"_s);
        }
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);
    }

    void manyPlugs_loseNothing()
    {
        m_helper->addVideo(u"r"_s, u"red"_s);
        m_helper->home().writeSuiteValue(u"MonitorArrange"_s, u"1"_s);
        m_helper->start();
        const auto plug = [this] {
            m_desktop->setMonitors(Monitors::TwoHalves);
            QTRY_COMPARE(m_desktop->rightColour(), u"red"_s);
            m_desktop->setMonitors(Monitors::One);
            QTRY_COMPARE(m_desktop->rightColour(), u"red"_s);
        };
        plug(); // what is made once
        QTest::qWait(1000);
        const auto descriptors = entries(*m_helper, u"fd"_s);
        const auto threads = entries(*m_helper, u"task"_s);

        for (int i = 0; i < 20 && !QTest::currentTestFailed(); ++i)
            plug();

        QTRY_COMPARE(entries(*m_helper, u"fd"_s), descriptors);
        QTRY_COMPARE(entries(*m_helper, u"task"_s), threads);
    }

    void compositorThatIsStartedAgain_getsThePicture()
    {
        addHalves();
        m_desktop->setMonitors(Monitors::TwoHalves);
        m_helper->start();
        const auto colours = [this] {
            return m_desktop->colour({600, 360}) + u' ' + m_desktop->colour({680, 360});
        };
        QTRY_COMPARE(colours(), u"red blue"_s);
        for (int i = 0; i < 2; ++i) {
            m_desktop->kill();
            QTest::qWait(1500);
            const auto before = m_helper->processorSeconds();
            QTest::qWait(1000);
            QVERIFY(m_helper->processorSeconds() - before < 0.3); // nobody looks

            m_desktop->start();
            QTRY_COMPARE_WITH_TIMEOUT(colours(), u"red blue"_s, 2000);
            QCOMPARE(m_helper->process().state(), QProcess::Running);
            QCOMPARE(m_helper->process().readAllStandardError(),
                "The Wayland compositor has closed the connection; waiting for it.\n");
            m_desktop->click({300, 300});
            QTRY_COMPARE(m_helper->lines().count(u"mouse down"_s), i + 1);
        }
    }

    /// What is set meanwhile holds when it comes back.
    void settingsWithoutACompositor_areFollowed()
    {
        m_helper->addVideo(u"r"_s, u"red"_s);
        m_helper->addVideo(u"g"_s, u"lime"_s);
        m_helper->start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);

        m_desktop->kill();
        m_helper->home().writeSuiteValue(u"CurrentVideoSign"_s, u"g"_s);
        QTest::qWait(1500);
        m_desktop->start();
        QTRY_COMPARE(m_desktop->leftColour(), u"lime"_s);

        m_desktop->kill();
        m_helper->home().writeSuiteValue(u"IsOpenPlayer"_s, u"false"_s);
        QTest::qWait(1500);
        m_desktop->start();
        QTest::qWait(1000);
        QCOMPARE(m_desktop->leftColour(), u"bare"_s);
        m_helper->home().writeSuiteValue(u"IsOpenPlayer"_s, u"true"_s);
        QTRY_COMPARE(m_desktop->leftColour(), u"lime"_s);

        m_desktop->kill();
        m_helper->process().terminate();
        QVERIFY(m_helper->waitForEnd());
        QCOMPARE(m_helper->process().exitCode(), 0);
        QCOMPARE(m_helper->process().readAllStandardError().count('\n'), 3); // one a loss
    }

private:
    void addHalves()
    {
        const auto file = m_helper->videoFile(u"x"_s);
        TestVideos::makeHalves(file, u"red"_s, u"blue"_s);
        m_helper->addRow(u"x"_s, file);
    }

    std::unique_ptr<SwayDesktop> m_desktop;
    std::unique_ptr<HelperProcess> m_helper;
};

QTEST_GUILESS_MAIN(WaylandTest)
#include "WaylandTest.moc"
