#include "platform/DistributedNotificationCenter.h"
#include "platform/linux/BusDaemon.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>
#include <QRect>
#include <QTest>

#include <unistd.h>

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

    void notification_isDeliveredWhateverItSays()
    {
        post({u"a"_s, u"object"_s, QVariantMap{{u"key"_s, 1}, {u"deep"_s, deepVariant(50)}}});
        QTRY_COMPARE(m_heard, QStringList{u"a"_s});
    }

    void otherSignature_isIgnored_data()
    {
        qDBusRegisterMetaType<QMap<QString, QString>>();
        qDBusRegisterMetaType<QMap<int, QStringList>>();
        QTest::addColumn<QVariantList>("arguments");
        const auto row = [](const char* name, const QVariantList& arguments) {
            QTest::newRow(name) << arguments;
        };
        row("nothing", {});
        row("a name only", {u"a"_s});
        row("no information", {u"a"_s, QString()});
        row("a{ss}",
            {u"a"_s, QString(), QVariant::fromValue(QMap<QString, QString>{{u"a"_s, u"b"_s}})});
        row("a{ias}",
            {u"a"_s, QString(), QVariant::fromValue(QMap<int, QStringList>{{1, {u"a"_s}}})});
        row("a rectangle", {u"a"_s, QString(), QRect(1, 2, 3, 4)}); // a structure
        row("more than three", {u"a"_s, QString(), QVariantMap(), 1});
        row("numbers", {1, 2.0, QVariantMap()});
        row("a list", {u"a"_s, QString(), QStringList{u"a"_s}});
        row("a variant", {u"a"_s, QString(), deepVariant(50)});
        row("variants for texts", {deepVariant(1), deepVariant(1), QVariantMap()});
        row("a path", {QVariant::fromValue(QDBusObjectPath(u"/a"_s)), QString(), QVariantMap()});
        row("a descriptor",
            {QVariant::fromValue(QDBusUnixFileDescriptor(STDIN_FILENO)), QString(), QVariantMap()});
    }

    void otherSignature_isIgnored()
    {
        QFETCH(QVariantList, arguments);
        post(arguments);
        post({u"last"_s, QString(), QVariantMap()});
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
    static QVariant deepVariant(int depth)
    {
        QVariant value(1);
        for (int i = 0; i < depth; ++i)
            value = QVariant::fromValue(QDBusVariant(value));
        return value;
    }
    void post(const QVariantList& arguments) const
    {
        auto signal = QDBusMessage::createSignal(
            u"/com/zemra/tavelor"_s, u"com.zemra.tavelor.DistributedNotification"_s, u"Posted"_s);
        signal.setArguments(arguments);
        QVERIFY(m_bus.connection().send(signal));
    }

    BusDaemon m_bus;
    std::optional<DistributedNotificationCenter> m_center;
    std::vector<Disposable> m_observations;
    QStringList m_heard;
};

QTEST_GUILESS_MAIN(DistributedNotificationTest)
#include "DistributedNotificationTest.moc"
