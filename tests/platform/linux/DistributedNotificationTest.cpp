#include "platform/DistributedNotificationCenter.h"
#include "platform/linux/BusDaemon.h"

#include <QDBusMessage>
#include <QRect>
#include <QTest>

using namespace Qt::StringLiterals;

/// What other programs post on the session bus.
class DistributedNotificationTest : public QObject {
    Q_OBJECT

public:
    DistributedNotificationTest()
    {
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
        m_center.emplace();
        for (const auto& name : {u"a"_s, u"b"_s, u"last"_s})
            m_observations.push_back(
                m_center->addObserver(name, [this, name] { m_heard << name; }));
    }

private Q_SLOTS:
    void init() { m_heard.clear(); }

    void notification_isDelivered_otherSignaturesAreNot()
    {
        for (const QVariantList& arguments : {QVariantList{},
                 {u"a"_s},
                 {u"a"_s, QString(), QRect(1, 2, 3, 4)}, // a structure
                 {u"a"_s, QString(), QStringList{u"a"_s}},
                 {1, 2.0, QVariantMap()},
                 {u"a"_s, QString(), QVariantMap(), 1},
                 {u"last"_s, u"object"_s, QVariantMap{{u"key"_s, 1}}}}) {
            auto signal = QDBusMessage::createSignal(u"/com/zemra/tavelor"_s,
                u"com.zemra.tavelor.DistributedNotification"_s,
                u"Posted"_s);
            signal.setArguments(arguments);
            QVERIFY(m_bus.connection().send(signal));
        }
        QTRY_COMPARE(m_heard, QStringList{u"last"_s});
    }

    void suspended_eachNameIsDeliveredOnceWhenResumed()
    {
        m_center->setSuspended(true);
        for (const auto& name : {u"a"_s, u"b"_s, u"a"_s})
            m_center->post(name);
        // Whatever the bus delivered before the answer to this call has been handled then.
        m_center->post(u"unheard"_s);
        QCoreApplication::processEvents();
        QCOMPARE(m_heard, QStringList());
        m_center->setSuspended(false);
        m_center->post(u"last"_s);

        QTRY_COMPARE(m_heard, (QStringList{u"b"_s, u"a"_s, u"last"_s}));
    }

private:
    BusDaemon m_bus;
    std::optional<DistributedNotificationCenter> m_center;
    std::vector<Disposable> m_observations;
    QStringList m_heard;
};

QTEST_GUILESS_MAIN(DistributedNotificationTest)
#include "DistributedNotificationTest.moc"
