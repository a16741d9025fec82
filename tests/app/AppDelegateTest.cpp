#include "app/AppDelegate.h"

#include "menu/StatusBarManager.h"
#include "platform/Recording.h"
#include "preferences/Preferences.h"
#include "service/OpenSsl.h"
#include "service/StandInService.h"
#include "service/WebModel.h"
#include "support/TemporaryHome.h"
#include "support/VideoRows.h"

#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTextEdit>

#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace Qt::StringLiterals;

/// One program, as it is started: its shared components live from the first test to the last.
class AppDelegateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        OpenSsl::makeCertificate(m_home.path());
        m_service = std::make_unique<StandInService>(m_home.path());
        qputenv("TAVELOR_SERVICE_URL", m_service->origin().toUtf8());
        qputenv("SSL_CERT_FILE", (m_home.path() + u"/certificate.pem"_s).toUtf8());
        const auto video = m_home.path() + u"/a.mp4"_s;
        TemporaryHome::writeFile(video, "");
        VideoRows::createTable(m_home.databaseFile());
        VideoRows::insert(
            m_home.databaseFile(), {VideoRows::row(u"a"_s, QUrl::fromLocalFile(video).toString())});
        Recording::reset();
        Recording::screens() = {{u"left"_s, QRect(0, 0, 800, 600)}};
        m_application = std::make_unique<Application>(m_argumentCount, nullptr);
        m_delegate = std::make_unique<AppDelegate>(*m_application);

        Q_EMIT m_application->didFinishLaunching();
    }

    void init()
    {
        Preferences::shared().setIsOpenPlayer(true);
        Preferences::shared().setIsPlaying(true);
        Recording::take();
    }

    void start_playsAndAsksForUpgradesInSilence()
    {
        QVERIFY(Recording::currentItem());
        QTRY_COMPARE(m_service->requests(24).size(), std::size_t{1});
        answerCheck(); // comes after the first one's
        QVERIFY(visibleWindows().isEmpty());
    }

    void wakeAndOcclusion_playWhatShallBePlayed()
    {
        for (const auto& [isOpen, isPlaying] :
            {std::pair(true, true), std::pair(true, false), std::pair(false, true)}) {
            Preferences::shared().setIsOpenPlayer(isOpen);
            Preferences::shared().setIsPlaying(isPlaying);
            Recording::take();
            Q_EMIT Workspace::shared().didWake();
            const auto woken = Recording::take();
            Q_EMIT m_application->didChangeOcclusionState();
            const auto uncovered = Recording::take();

            QCOMPARE(woken.contains(u"player play"_s), isOpen && isPlaying);
            QVERIFY(!woken.contains(u"item a.mp4"_s)); // it goes on where it was
            QCOMPARE(uncovered.contains(u"item a.mp4"_s), isOpen && isPlaying); // from the start
        }
    }

    void otherMessages_arePassedOn()
    {
        Recording::screens().push_back({u"right"_s, QRect(800, 0, 800, 600)});
        Q_EMIT m_application->didChangeScreenParameters();
        QCOMPARE(Recording::take().filter(u" made "_s).size(), 2);

        Q_EMIT m_application->didResignActive();
        StatusBarManager::shared().quitMenuItemAction();
        QCOMPARE(Recording::take(), QStringList({u"notifications suspended 0"_s, u"terminate"_s}));

        bool isAnnounced = false;
        const auto observer = DistributedNotificationCenter::defaultCenter().addObserver(
            u"com.zemra.fendix.mac.ter"_s, [&isAnnounced] { isAnnounced = true; });
        Q_EMIT m_application->willTerminate();
        QVERIFY(isAnnounced);
    }

    void offer_isShownWhenItsTextIsGreater()
    {
        const auto offered = u"New Version Available, Version: %1"_s;
        const auto none = u"You're up to date, 1.0.0 is currently the newest version"_s;
        for (const auto& [version, texts] : {std::pair("1.0.1", offered.arg(u"1.0.1")),
                 std::pair("1.0.00", offered.arg(u"1.0.00")), // a longer text, no higher numbers
                 std::pair("01.0.1", none),
                 std::pair("1.0.0", none),
                 std::pair("9\"", none)}) { // which is no record

            offer(version);
            StatusBarManager::shared().checkUpdates();

            QTRY_COMPARE(visibleWindows().size(), 1);
            QCOMPARE(closeAndRead(), texts);
        }
    }

    void secondOffer_replacesTheFirst()
    {
        offer("2.0");
        m_delegate->checkUpgrade(AppDelegate::WithoutUpgrade::Silent);
        QTRY_COMPARE(visibleWindows().size(), 1);

        offer("3.0");
        m_delegate->checkUpgrade(AppDelegate::WithoutUpgrade::Silent);
        answerCheck();

        QCOMPARE(visibleWindows().size(), 1);
        QVERIFY(closeAndRead().endsWith(u"Version: 3.0"));
    }

private:
    void offer(const QByteArray& version)
    {
        m_service->setOffer("{\"url\":\"https://example.com/\",\"ver\":\"" + version + "\"}");
    }

    /// Asks once more, and returns when that answer and those before it have been handled.
    static void answerCheck()
    {
        bool answered = false;
        WebModel::shared().checkUpgrade([&answered](const auto&) { answered = true; });
        QTRY_VERIFY(answered);
        QCoreApplication::processEvents();
    }

    static QWidgetList visibleWindows()
    {
        auto windows = QApplication::topLevelWidgets();
        windows.removeIf([](const QWidget* window) { return !window->isVisible(); });
        return windows;
    }

    static QString closeAndRead()
    {
        auto* const window = visibleWindows().constFirst();
        window->close();
        const auto* const title = window->findChild<QLabel*>(u"titleLabel"_s);
        const auto* const info = window->findChild<QWidget*>(u"infoLabel"_s);
        const auto* const view = qobject_cast<const QTextEdit*>(info);
        return title->text() + u", "_s +
               (view ? view->toPlainText() : info->property("text").toString());
    }

    TemporaryHome m_home;
    std::unique_ptr<StandInService> m_service;
    int m_argumentCount = 0;
    std::unique_ptr<Application> m_application;
    std::unique_ptr<AppDelegate> m_delegate;
};

/// Ends as the program does, whose shared components are not taken down either.
int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    AppDelegateTest test;
    const int result = QTest::qExec(&test, argc, argv);
    std::fflush(nullptr);
    std::_Exit(result);
}

#include "AppDelegateTest.moc"
