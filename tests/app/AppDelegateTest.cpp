#include "app/AppDelegate.h"

#include "menu/StatusBarManager.h"
#include "platform/Recording.h"
#include "preferences/Preferences.h"
#include "service/OpenSsl.h"
#include "service/StandInService.h"
#include "service/WebModel.h"
#include "support/TemporaryHome.h"
#include "support/VideoRows.h"
#include "ui/InfoTextView.h"
#include "ui/UpgradeWindow.h"

#include <QApplication>
#include <QLabel>
#include <QTest>

#include <cstdio>
#include <cstdlib>
#include <memory>

/// One program, as it is started: its shared components live from the first test to the last.
class AppDelegateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        OpenSsl::makeCertificate(m_home.path());
        m_service = std::make_unique<StandInService>(m_home.path());
        qputenv("TAVELOR_SERVICE_URL", m_service->origin().toUtf8());
        qputenv("SSL_CERT_FILE", (m_home.path() + QStringLiteral("/certificate.pem")).toUtf8());
        const auto video = m_home.path() + QStringLiteral("/a.mp4");
        TemporaryHome::writeFile(video, "");
        VideoRows::createTable(m_home.databaseFile());
        VideoRows::insert(m_home.databaseFile(),
            {VideoRows::row(QStringLiteral("a"), QUrl::fromLocalFile(video).toString())});
        Recording::reset();
        Recording::screens() = {{QStringLiteral("left"), QRect(0, 0, 800, 600)}};
        m_application = std::make_unique<Application>(m_argumentCount, nullptr);
        m_delegate = std::make_unique<AppDelegate>(*m_application);

        Q_EMIT m_application->didFinishLaunching();
    }

    void init()
    {
        Preferences::shared().setIsOpenPlayer(true);
        Preferences::shared().setIsPlaying(true);
        m_service->setOffer({});
        m_service->setBehaviour(std::mem_fn(&StandInService::replyProperly));
        Recording::take();
    }

    void start_playsAndAsksForUpgradesInSilence()
    {
        QVERIFY(Recording::currentItem());
        QTRY_COMPARE(m_service->requests(24).size(), std::size_t{1});
        answerCheck(); // comes after the first one's
        QVERIFY(visibleWindows().isEmpty());
    }

    void wakeAndOcclusion_playWhatShallBePlayed_data()
    {
        QTest::addColumn<bool>("isOpen");
        QTest::addColumn<bool>("isPlaying");
        QTest::newRow("playing") << true << true;
        QTest::newRow("paused") << true << false;
        QTest::newRow("closed") << false << true;
    }

    void wakeAndOcclusion_playWhatShallBePlayed()
    {
        QFETCH(bool, isOpen);
        QFETCH(bool, isPlaying);
        Preferences::shared().setIsOpenPlayer(isOpen);
        Preferences::shared().setIsPlaying(isPlaying);
        Recording::take();

        Q_EMIT Workspace::shared().didWake();
        const auto woken = Recording::take();
        Q_EMIT m_application->didChangeOcclusionState();
        const auto uncovered = Recording::take();

        const bool plays = isOpen && isPlaying;
        QCOMPARE(woken,
            plays ? QStringList({QStringLiteral("window 1 level 18"),
                        QStringLiteral("window 1 back"),
                        QStringLiteral("player play")})
                  : QStringList());
        QCOMPARE(uncovered.contains(QStringLiteral("player play")), plays);
        QCOMPARE(uncovered.isEmpty(), !plays);
    }

    void screens_areFollowedByTheWindows()
    {
        Recording::screens() = {{QStringLiteral("left"), QRect(0, 0, 800, 600)},
            {QStringLiteral("right"), QRect(800, 0, 800, 600)}};

        Q_EMIT m_application->didChangeScreenParameters();

        QCOMPARE(Recording::take().filter(QStringLiteral(" made ")).size(), 2);
        Recording::screens().pop_back();
        Q_EMIT m_application->didChangeScreenParameters();
        QCOMPARE(Recording::take().filter(QStringLiteral(" made ")).size(), 1);
    }

    void lostFocus_letsNotificationsThrough()
    {
        Q_EMIT m_application->didResignActive();

        QCOMPARE(Recording::take(), QStringList{QStringLiteral("notifications suspended 0")});
    }

    void end_isAnnounced()
    {
        int announcements = 0;
        const auto observer = DistributedNotificationCenter::defaultCenter().addObserver(
            QStringLiteral("com.zemra.fendix.mac.ter"), [&announcements] { ++announcements; });
        Preferences::shared().setIsOpenPlayer(false);

        Q_EMIT m_application->willTerminate();

        QCOMPARE(announcements, 1);
    }

    void menu_asksTheDelegate()
    {
        StatusBarManager::shared().quitMenuItemAction();
        StatusBarManager::shared().showMainWindowMenuItemAction();

        QCOMPARE(Recording::take(),
            QStringList(
                {QStringLiteral("terminate"), QStringLiteral("launch com.zemra.tavelor.macOS")}));
    }

    void offer_isShownWhenItsTextIsGreater_data()
    {
        QTest::addColumn<QString>("version"); // ours is 1.0.0
        QTest::addColumn<bool>("isShown");
        QTest::newRow("greater") << QStringLiteral("1.0.1") << true;
        QTest::newRow("longer") << QStringLiteral("1.0.0.0") << true;
        QTest::newRow("equal") << QStringLiteral("1.0.0") << false;
        QTest::newRow("a prefix") << QStringLiteral("1.0") << false;
        QTest::newRow("less as a text") << QStringLiteral("0.10.0") << false;
        QTest::newRow("greater as a text") << QStringLiteral("1.1") << true;
        QTest::newRow("no text") << QString() << false;
    }

    void offer_isShownWhenItsTextIsGreater()
    {
        QFETCH(QString, version);
        QFETCH(bool, isShown);
        offer(version);

        m_delegate->checkUpgrade(AppDelegate::WithoutUpgrade::SaySo);

        QTRY_COMPARE(visibleWindows().size(), 1);
        auto* const window = visibleWindows().constFirst();
        QCOMPARE(qobject_cast<UpgradeWindow*>(window) != nullptr, isShown);
        QCOMPARE(texts(*window),
            isShown ? QStringList{QStringLiteral("Version: ") + version}
                    : QStringList({QStringLiteral("1.0.0 is currently the newest version"),
                          QStringLiteral("You're up to date")}));
        window->close();
    }

    void nothingNewer_isSaidOnlyWhenAsked()
    {
        m_service->setBehaviour(
            [](const StandInService&, QSslSocket& socket, const ServiceRequest&) {
                StandInService::reply(socket, "no answer");
            });

        answerCheck();
        QVERIFY(visibleWindows().isEmpty());

        StatusBarManager::shared().checkUpdates();
        QTRY_COMPARE(visibleWindows().size(), 1);
        visibleWindows().constFirst()->close();
    }

    void secondOffer_replacesTheFirst()
    {
        offer(QStringLiteral("2.0"));
        m_delegate->checkUpgrade(AppDelegate::WithoutUpgrade::Silent);
        QTRY_COMPARE(m_service->requests().back().function, 24);
        QTRY_COMPARE(visibleWindows().size(), 1);

        offer(QStringLiteral("3.0"));
        m_delegate->checkUpgrade(AppDelegate::WithoutUpgrade::Silent);
        m_delegate->checkUpgrade(AppDelegate::WithoutUpgrade::Silent);
        answerCheck();

        QCOMPARE(visibleWindows().size(), 1);
        QCOMPARE(
            texts(*visibleWindows().constFirst()), QStringList{QStringLiteral("Version: 3.0")});
        visibleWindows().constFirst()->close();
    }

private:
    void offer(const QString& version)
    {
        m_service->setOffer(
            "{\"url\":\"https://example.com/\",\"ver\":\"" + version.toUtf8() + "\"}");
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

    static QStringList texts(const QWidget& window)
    {
        if (const auto* const view = window.findChild<InfoTextView*>(QStringLiteral("infoLabel")))
            return {view->toPlainText()};
        QStringList texts;
        for (const auto* name : {"infoLabel", "titleLabel"})
            texts << window.findChild<QLabel*>(QString::fromLatin1(name))->text();
        return texts;
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
