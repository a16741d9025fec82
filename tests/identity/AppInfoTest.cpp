#include "identity/AppInfo.h"

#include "support/TemporaryHome.h"

#include <QDir>
#include <QTest>

class AppInfoTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void versions_data()
    {
        QTest::addColumn<QByteArray>("information");
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("displayVersion");

        const QString fallback = QStringLiteral("1.0.0.0");
        const QString displayFallback = QStringLiteral("1.0.0");
        QTest::newRow("the bundle's own")
            << QByteArray("CFBundleShortVersionString=2.4.1\n") << "2.4.1"
            << "2.4.1";
        QTest::newRow("no information file") << QByteArray() << fallback << displayFallback;
        QTest::newRow("no such key")
            << QByteArray("CFBundleIdentifier=a.b\n") << fallback << displayFallback;
        QTest::newRow("a list instead of a string")
            << QByteArray("CFBundleShortVersionString=1, 2\n") << fallback << displayFallback;
    }

    void versions()
    {
        QFETCH(QByteArray, information);
        QFETCH(QString, version);
        QFETCH(QString, displayVersion);
        const TemporaryHome home;
        if (!information.isNull())
            TemporaryHome::writeFile(home.path() + QStringLiteral("/Info.ini"), information);

        const Bundle bundle(home.path());
        const AppInfo info(bundle);

        QCOMPARE(info.version(), version);
        QCOMPARE(info.displayVersion(), displayVersion);
    }

    void directories_lieInTheGroupContainer()
    {
        const TemporaryHome home;
        const Bundle bundle(home.path());
        const AppInfo info(bundle);

        const auto support = info.applicationSupportDirectory();
        QCOMPARE(support.toLocalFile(), home.container() + QStringLiteral("/Application Support"));
        QVERIFY(QDir(support.toLocalFile()).exists());
        QCOMPARE(info.applicationSupportDirectory(), support);
        QCOMPARE(info.directoryUrl(SearchPathDirectory::Caches).toLocalFile(),
            home.container() + QStringLiteral("/Caches"));
        QCOMPARE(info.directoryUrl(SearchPathDirectory::Preferences).toLocalFile(),
            home.container() + QStringLiteral("/Preferences"));
        constexpr auto unnamed = static_cast<SearchPathDirectory>(9);
        QCOMPARE(info.directoryUrl(unnamed).toLocalFile(), home.container());
    }

    void withoutContainer_directoriesAreTheUsersOwn()
    {
        const TemporaryHome home;
        qputenv("XDG_DATA_HOME", "not/absolute");
        qputenv("HOME", "");
        qputenv("XDG_CACHE_HOME", (home.path() + QStringLiteral("/cache")).toUtf8());
        const Bundle nameless(home.path());
        QCOMPARE(AppInfo(nameless).directoryUrl(SearchPathDirectory::Caches).toLocalFile(),
            home.path() + QStringLiteral("/cache/tavelor"));

        TemporaryHome::writeFile(
            home.path() + QStringLiteral("/Info.ini"), "CFBundleIdentifier=com.example.helper\n");
        const Bundle named(home.path());
        QCOMPARE(AppInfo(named).directoryUrl(SearchPathDirectory::Caches).toLocalFile(),
            home.path() + QStringLiteral("/cache/com.example.helper"));
        qunsetenv("XDG_CACHE_HOME");
    }

    void directoryThatCannotBeMade_isReturnedAllTheSame()
    {
        const TemporaryHome home;
        TemporaryHome::writeFile(home.container(), "a file where the folder belongs");
        const Bundle bundle(home.path());

        QCOMPARE(AppInfo(bundle).applicationSupportDirectory().toLocalFile(),
            home.container() + QStringLiteral("/Application Support"));
    }
};

QTEST_GUILESS_MAIN(AppInfoTest)
#include "AppInfoTest.moc"
