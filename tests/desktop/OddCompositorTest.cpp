#include "desktop/FakeCompositor.h"
#include "desktop/HelperProcess.h"
#include "support/TestVideos.h"

#include <QTest>

using namespace Qt::StringLiterals;
using Monitors = VirtualDesktop::Monitors;

namespace {

constexpr auto lossLine = "The Wayland compositor has closed the connection; waiting for it.\n";

} // namespace

/// Compositors that lack something, break their word, or go away at the wrong moment.
class OddCompositorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_compositor = std::make_unique<FakeCompositor>();
        m_helper = std::make_unique<HelperProcess>(*m_compositor);
        m_helper->addVideo(u"r"_s, u"red"_s);
    }
    void cleanup()
    {
        m_helper.reset();
        m_compositor.reset();
    }

    void noLayerShell_isSaidAndNothingIsDecoded()
    {
        m_compositor->removeLayerShell();
        m_helper->start();
        const QByteArray problem =
            "This Wayland compositor has no layer shell and there is no X server, "
            "so the wallpaper cannot be shown.";
        QByteArray said;
        QTRY_COMPARE(said += m_helper->process().readAllStandardError(), problem + '\n');

        QProcess status;
        status.setProcessEnvironment(m_helper->process().processEnvironment());
        status.start(QStringLiteral(TAVELORCTL), {u"status"_s});
        QVERIFY(status.waitForFinished());
        const auto shown = status.readAllStandardOutput();
        QVERIFY2(
            shown.contains("\nwallpaper  cannot show here\nreason     " + problem + '\n'), shown);

        QTRY_VERIFY(processorShare() < 0.03); // it has started by then
        QCOMPARE(m_helper->process().readAllStandardError(), "");
        // What is not opened is not to blame for the end of the helper either.
        QVERIFY(!QFile::exists(m_helper->home().container() + u"/Caches/opening.json"_s));
        m_helper->process().terminate();
        QVERIFY(m_helper->waitForEnd());
        QCOMPARE(m_helper->process().exitCode(), 0);
    }

    void silentSocket_isNoDisplay()
    {
        m_compositor->setReading(false);
        m_helper->setEnvironment(u"QT_QPA_PLATFORM"_s, QString());
        m_helper->start();
        QVERIFY(m_helper->waitForEnd());
        QCOMPARE(m_helper->process().exitStatus(), QProcess::NormalExit);
        QCOMPARE(m_helper->process().exitCode(), 1);
        QCOMPARE(m_helper->process().readAllStandardError(),
            "TavelorHelper needs a display; neither WAYLAND_DISPLAY nor DISPLAY names one that "
            "answers.\n");
    }

    void configurationWithoutSize_isTheOutputs()
    {
        m_compositor->configuresWithoutSize = true;
        showRed();
    }

    void closedSurface_isMadeAgain()
    {
        showRed();
        for (int i = 2; i < 4; ++i) {
            m_compositor->closeSurface(m_compositor->output());
            QTRY_COMPARE(m_compositor->leftColour(), u"bare"_s);
            QTRY_COMPARE_WITH_TIMEOUT(m_compositor->leftColour(), u"red"_s, 2000);
            QCOMPARE(m_compositor->output().surfaceCount, i);
        }

        m_compositor->closesSurfacesAtOnce = true;
        m_compositor->closeSurface(m_compositor->output());
        const auto before = m_compositor->output().surfaceCount;
        QTest::qWait(3000);
        const auto made = m_compositor->output().surfaceCount - before;
        QVERIFY2(made >= 2 && made <= 4, qPrintable(QString::number(made)));
        m_compositor->closesSurfacesAtOnce = false;
        QTRY_COMPARE_WITH_TIMEOUT(m_compositor->leftColour(), u"red"_s, 2000);
    }

    void outputThatGoesWithAPicture_comesBack()
    {
        showRed();
        for (int i = 0; i < 3; ++i) {
            m_compositor->removesOutputAtPicture = true;
            QTRY_VERIFY(!m_compositor->output().global);
            QTest::qWait(i * 300); // at once, or when it has been noticed
            m_compositor->setMonitors(Monitors::One);
            QTRY_COMPARE(m_compositor->leftColour(), u"red"_s);
            QTRY_VERIFY(isGoingOn(m_compositor->output()));
        }
    }

    void outputWithoutFrames_holdsUpNoOther()
    {
        m_compositor->setMonitors(Monitors::TwoHalves);
        m_helper->home().writeSuiteValue(u"MonitorArrange"_s, u"1"_s);
        showRed();
        QTRY_COMPARE(m_compositor->rightColour(), u"red"_s);
        auto& right = m_compositor->output(0);
        auto& left = m_compositor->output(1);
        right.sendsFrameCallbacks = false;
        QTRY_VERIFY(!isGoingOn(right));
        QVERIFY(isGoingOn(left));

        left.sendsFrameCallbacks = false;
        QTRY_VERIFY(!isGoingOn(left));
        QVERIFY(processorShare() < 0.5);

        left.sendsFrameCallbacks = right.sendsFrameCallbacks = true;
        QTRY_VERIFY(isGoingOn(left));
        QTRY_VERIFY(isGoingOn(right));
    }

    void buffersThatAreKept_areFew()
    {
        m_compositor->releasesBuffers = false;
        showRed();
        QTest::qWait(1000);
        const auto canvases = [this] {
            const auto process = m_helper->process().processId();
            return TemporaryHome::contents(u"/proc/%1/maps"_s.arg(process)).count("tavelor-canvas");
        };
        const auto count = canvases();
        QVERIFY2(count <= 3, qPrintable(QString::number(count)));
        QVERIFY(processorShare() < 0.5);
        QCOMPARE(canvases(), count);
    }

    void endOfTheConnection_isSurvived_data()
    {
        QTest::addColumn<bool>("isComplaint");
        QTest::newRow("closed") << false;
        QTest::newRow("an error of the protocol") << true;
    }

    void endOfTheConnection_isSurvived()
    {
        QFETCH(bool, isComplaint);
        showRed();
        for (int i = 0; i < 2; ++i) {
            const auto before = m_compositor->output().surfaceCount;
            if (isComplaint)
                m_compositor->complain(m_compositor->output());
            else
                m_compositor->disconnectAll();
            QTRY_VERIFY_WITH_TIMEOUT(m_compositor->output().surfaceCount > before, 2000);
            QTRY_COMPARE(m_compositor->leftColour(), u"red"_s);
            QTRY_VERIFY(isGoingOn(m_compositor->output()));
            QCOMPARE(m_helper->process().state(), QProcess::Running);
            QCOMPARE(withoutLibraryWords(m_helper->process().readAllStandardError()), lossLine);
        }
    }

    void compositorThatStandsStill_isWaitedFor()
    {
        showRed();
        m_compositor->setReading(false);
        QVERIFY(processorShare(3000) < 0.5);
        m_compositor->setReading(true);
        QTRY_VERIFY(isGoingOn(m_compositor->output()));
        QCOMPARE(m_compositor->output().surfaceCount, 1);
    }

private:
    void showRed()
    {
        m_helper->start();
        QTRY_COMPARE(m_compositor->leftColour(), u"red"_s);
    }

    static bool isGoingOn(const FakeCompositor::Output& output)
    {
        const auto before = output.pictureCount;
        QTest::qWait(500);
        return output.pictureCount > before + 2;
    }

    /// Of one core, from now on.
    double processorShare(int milliseconds = 1000) const
    {
        const auto before = m_helper->processorSeconds();
        QTest::qWait(milliseconds);
        return (m_helper->processorSeconds() - before) * 1000 / milliseconds;
    }

    /// libwayland itself says what a compositor complains of.
    static QByteArray withoutLibraryWords(QByteArray errors)
    {
        const auto end = errors.indexOf(lossLine);
        return end > 0 && errors.contains("a test's complaint") ? errors.mid(end) : errors;
    }

    std::unique_ptr<FakeCompositor> m_compositor;
    std::unique_ptr<HelperProcess> m_helper;
};

QTEST_GUILESS_MAIN(OddCompositorTest)
#include "OddCompositorTest.moc"
