#include "identity/AppInfo.h"

#include "support/TemporaryHome.h"

#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class AppInfoTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void versions_data()
    {
        QTest::addColumn<QByteArray>("information");
        QTest::addColumn<QString>("versions");
        const QString fallbacks = u"1.0.0.0 1.0.0"_s;
        QTest::newRow("the bundle's own")
            << QByteArray("CFBundleShortVersionString=2.4.1\n") << u"2.4.1 2.4.1"_s;
        QTest::newRow("no such key") << QByteArray("CFBundleIdentifier=a.b\n") << fallbacks;
        QTest::newRow("a list") << QByteArray("CFBundleShortVersionString=1, 2\n") << fallbacks;
    }

    void versions()
    {
        QFETCH(QByteArray, information);
        QFETCH(QString, versions);
        TemporaryHome::writeFile(m_home->path() + u"/Info.ini"_s, information);

        const Bundle bundle(m_home->path());
        const AppInfo info(bundle);

        QCOMPARE(info.version() + u' ' + info.displayVersion(), versions);
    }

    void init() { m_home = std::make_unique<TemporaryHome>(); }
    void cleanup() { m_home.reset(); }

    void directories_lieInTheGroupContainer()
    {
        const auto path = [this](SearchPathDirectory directory) {
            const Bundle bundle(m_home->path());
            return AppInfo(bundle).directoryUrl(directory).toLocalFile();
        };
        const auto container = m_home->container();

        QCOMPARE(
            path(SearchPathDirectory::ApplicationSupport), container + u"/Application Support"_s);
        QCOMPARE(path(SearchPathDirectory::Caches), container + u"/Caches"_s);
        QCOMPARE(path(SearchPathDirectory::Preferences), container + u"/Preferences"_s);
        QCOMPARE(path(static_cast<SearchPathDirectory>(9)), container);
        struct stat status {};
        QCOMPARE(stat(QFile::encodeName(container + u"/Caches"_s).constData(), &status), 0);
        QCOMPARE(status.st_mode & ALLPERMS, 0700U);
    }

    void directoryThatCannotBeMade_isReturnedAllTheSame()
    {
        TemporaryHome::writeFile(m_home->container(), "a file where the folder belongs");
        const Bundle bundle(m_home->path());

        QCOMPARE(AppInfo(bundle).applicationSupportDirectory().toLocalFile(),
            m_home->container() + u"/Application Support"_s);
    }

    void withoutContainer_directoriesAreTheUsersOwn()
    {
        qputenv("XDG_DATA_HOME", "not/absolute");
        qputenv("HOME", "");
        qputenv("XDG_CACHE_HOME", (m_home->path() + u"/cache"_s).toUtf8());
        const auto caches = [this] {
            const Bundle bundle(m_home->path());
            return AppInfo(bundle).directoryUrl(SearchPathDirectory::Caches).toLocalFile();
        };

        QCOMPARE(caches(), m_home->path() + u"/cache/tavelor"_s);
        TemporaryHome::writeFile(
            m_home->path() + u"/Info.ini"_s, "CFBundleIdentifier=com.example\n");
        QCOMPARE(caches(), m_home->path() + u"/cache/com.example"_s);
        qunsetenv("XDG_CACHE_HOME");
    }

private:
    std::unique_ptr<TemporaryHome> m_home;
};

QTEST_GUILESS_MAIN(AppInfoTest)
#include "AppInfoTest.moc"
