#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QVariant>

/// Plays systemd-logind on a bus, as far as sleep is concerned.
class FakeLogind {
public:
    explicit FakeLogind(const QDBusConnection& bus) : m_bus(bus) { m_bus.registerService(name()); }
    ~FakeLogind() { m_bus.unregisterService(name()); }
    FakeLogind(const FakeLogind&) = delete;
    FakeLogind& operator=(const FakeLogind&) = delete;

    static QString name() { return QStringLiteral("org.freedesktop.login1"); }
    static QString interface() { return QStringLiteral("org.freedesktop.login1.Manager"); }

    void tell(bool fallsAsleep) { send(m_bus, {fallsAsleep}); }

    /// Sends the signal, whoever owns the name.
    static void send(const QDBusConnection& bus, const QVariantList& arguments)
    {
        auto signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1"),
            interface(),
            QStringLiteral("PrepareForSleep"));
        signal.setArguments(arguments);
        bus.send(signal);
    }

private:
    QDBusConnection m_bus;
};
