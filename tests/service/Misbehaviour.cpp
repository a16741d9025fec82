#include "service/Misbehaviour.h"

#include "service/OpenSsl.h"

#include <QTimer>

#include <chrono>
#include <map>
#include <memory>

using namespace std::chrono_literals;

namespace {

using Behaviour = StandInService::Behaviour;
constexpr qsizetype megabyte = 1024 * 1024;

/// The body of a proper HTTP reply.
Behaviour body(const QByteArray& body)
{
    return [body](const StandInService&, QSslSocket& socket, const ServiceRequest&) {
        StandInService::reply(socket, body);
    };
}

/// Deciphers, and then is this.
Behaviour text(const QByteArray& text)
{
    return [text](const StandInService&, QSslSocket& socket, const ServiceRequest&) {
        StandInService::reply(socket, OpenSsl::encipher(text));
    };
}

Behaviour redirection(const QByteArray& target)
{
    return [target](const StandInService&, QSslSocket& socket, const ServiceRequest&) {
        StandInService::reply(socket, "elsewhere", "302 Found", "Location: " + target + "\r\n");
    };
}

void silent(const StandInService&, QSslSocket&, const ServiceRequest&) {}

void slow(const StandInService& service, QSslSocket& socket, const ServiceRequest& request)
{
    QTimer::singleShot(
        3s, &socket, [&service, &socket, request] { service.replyProperly(socket, request); });
}

void closingMidReply(const StandInService&, QSslSocket& socket, const ServiceRequest&)
{
    socket.write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nhalf");
    socket.disconnectFromHost();
}

/// As fast as the client takes it.
void endless(const StandInService&, QSslSocket& socket, const ServiceRequest&)
{
    constexpr qsizetype total = 200 * megabyte;
    socket.write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(total) + "\r\n\r\n");
    const auto left = std::make_shared<qsizetype>(total);
    QObject::connect(&socket, &QSslSocket::encryptedBytesWritten, &socket, [&socket, left] {
        if (*left > 0 && socket.bytesToWrite() + socket.encryptedBytesToWrite() < megabyte) {
            socket.write(QByteArray(megabyte, 'A'));
            *left -= megabyte;
        }
    });
}

/// 200 MB of one letter in a few hundred kilobytes.
Behaviour bomb()
{
    const auto packed = qCompress(QByteArray(200 * megabyte, 'A')).mid(4);
    return [packed](const StandInService&, QSslSocket& socket, const ServiceRequest&) {
        StandInService::reply(socket, packed, "200 OK", "Content-Encoding: deflate\r\n");
    };
}

/// How each is made; some take a while.
const std::map<QString, std::function<Behaviour()>>& makers()
{
    static const std::map<QString, std::function<Behaviour()>> makers{
        {QStringLiteral("silent"), [] { return silent; }},
        {QStringLiteral("slow"), [] { return slow; }},
        {QStringLiteral("closing in mid-reply"), [] { return closingMidReply; }},
        {QStringLiteral("redirecting"), [] { return redirection("/elsewhere.html"); }},
        {QStringLiteral("redirecting to http"), [] { return redirection("http://127.0.0.1:9/"); }},
        {QStringLiteral("200 MB long"), [] { return endless; }},
        {QStringLiteral("compressed bomb"), bomb},
        {QStringLiteral("empty"), [] { return body(""); }},
        {QStringLiteral("not base64"), [] { return body("<html>hotel login</html>"); }},
        {QStringLiteral("another key"),
            [] { return body(OpenSsl::encipherWithAnotherKey("{\"data\":{}}")); }},
        {QStringLiteral("not UTF-8"), [] { return text("{\"data\":\"\xff\xfe\"}"); }},
    };
    return makers;
}

} // namespace

QStringList Misbehaviour::names()
{
    QStringList names;
    for (const auto& [name, make] : makers())
        names << name;
    return names;
}

StandInService::Behaviour Misbehaviour::named(const QString& name)
{
    return makers().at(name)();
}
