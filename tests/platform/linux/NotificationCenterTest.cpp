#include "platform/DistributedNotificationCenter.h"
#include "platform/linux/BusDaemon.h"

#include <QTest>

class NotificationCenterTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void suspended_eachNameIsDeliveredOnceWhenResumed()
    {
        BusDaemon bus;
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
        DistributedNotificationCenter center;
        QStringList heard;
        std::vector<Disposable> observations;
        for (const auto* const name : {"a", "b", "last"})
            observations.push_back(center.addObserver(
                QString::fromLatin1(name), [&heard, name] { heard << QString::fromLatin1(name); }));

        center.post(QStringLiteral("a"));
        QTRY_COMPARE(heard, QStringList{QStringLiteral("a")});

        center.setSuspended(true);
        for (const auto* const name : {"a", "b", "a"})
            center.post(QString::fromLatin1(name));
        // Whatever the bus delivered before the answer to this call has been handled then.
        center.post(QStringLiteral("unheard"));
        QCoreApplication::processEvents();
        QCOMPARE(heard, QStringList{QStringLiteral("a")});
        center.setSuspended(false);
        center.post(QStringLiteral("last"));

        const QStringList all{
            QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("last")};
        QTRY_COMPARE(heard, all);
    }
};

QTEST_GUILESS_MAIN(NotificationCenterTest)
#include "NotificationCenterTest.moc"
