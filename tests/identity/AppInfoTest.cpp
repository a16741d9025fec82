#include "identity/AppInfo.h"

#include "support/TemporaryHome.h"

#include <QTest>

using namespace Qt::StringLiterals;

class AppInfoTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void versions_ofTheBundleOrTheTwoFallbacks()
    {
        const auto versions = [this](const QByteArray& information) {
            TemporaryHome::writeFile(m_information, information);
            const Bundle bundle(m_home.path());
            const AppInfo info(bundle);
            return info.version() + u' ' + info.displayVersion();
        };
        QCOMPARE(versions("CFBundleShortVersionString=2.4.1\n"), u"2.4.1 2.4.1"_s);
        QCOMPARE(versions("CFBundleIdentifier=a.b\n"), u"1.0.0.0 1.0.0"_s);
        QCOMPARE(versions("CFBundleShortVersionString=1, 2\n"), u"1.0.0.0 1.0.0"_s); // a list
    }

    void directories_lieInTheGroupContainer()
    {
        const auto container = m_home.container();
        TemporaryHome::writeFile(container, "a file where the folder belongs");
        const auto support = container + u"/Application Support"_s;
        QCOMPARE(path(SearchPathDirectory::ApplicationSupport), support); // all the same
        QFile::remove(container);

        QCOMPARE(path(SearchPathDirectory::ApplicationSupport), support);
        QCOMPARE(path(SearchPathDirectory::Caches), container + u"/Caches"_s);
        QCOMPARE(QFile::permissions(support), QFile::permissions(m_home.path())); // ours only
    }

    void withoutContainer_directoriesAreTheUsersOwn()
    {
        qputenv("XDG_DATA_HOME", "not/absolute");
        qputenv("HOME", "");
        qputenv("XDG_CACHE_HOME", (m_home.path() + u"/cache"_s).toUtf8());

        TemporaryHome::writeFile(m_information, "CFBundleIdentifier=com.example\n");
        QCOMPARE(path(SearchPathDirectory::Caches), m_home.path() + u"/cache/com.example"_s);
        QFile::remove(m_information);
        QCOMPARE(path(SearchPathDirectory::Caches), m_home.path() + u"/cache/tavelor"_s);
    }

private:
    QString path(SearchPathDirectory directory) const
    {
        const Bundle bundle(m_home.path());
        return AppInfo(bundle).directoryUrl(directory).toLocalFile();
    }

    TemporaryHome m_home;
    const QString m_information = m_home.path() + u"/Info.ini"_s;
};

QTEST_GUILESS_MAIN(AppInfoTest)
#include "AppInfoTest.moc"
