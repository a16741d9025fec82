#include "service/StandInService.h"

#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

/// A byte each tenth of a second.
void dripping(const StandInService&, QSslSocket& socket, const ServiceRequest&)
{
    socket.write("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n");
    auto* const timer = new QTimer(&socket);
    timer->callOnTimeout(&socket, [&socket] { socket.write("A"); });
    timer->start(100);
}

/// In pieces of one byte, as fast as the client takes them.
void endless(const StandInService&, QSslSocket& socket, const ServiceRequest&)
{
    static const auto chunks = QByteArray("1\r\nA\r\n").repeated(10'000);
    const auto writeMore = [&socket] {
        if (socket.bytesToWrite() + socket.encryptedBytesToWrite() < chunks.size())
            socket.write(chunks);
    };
    QObject::connect(&socket, &QSslSocket::encryptedBytesWritten, &socket, writeMore);
    socket.write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
    writeMore();
}

/// A picture in millions of pieces, of which the last one counts.
void pieces(const StandInService& service, QSslSocket& socket, const ServiceRequest& request)
{
    auto guide = StandInService::guideAnswer;
    guide.replace("base64,", "base64," + QByteArray("a,").repeated(2'000'000));
    StandInService::answering(guide)(service, socket, request);
}

} // namespace

QMap<QString, StandInService::Behaviour> StandInService::misbehaviours()
{
    return {{u"silent"_s, [](auto&...) {}},
        {u"dripping"_s, dripping},
        {u"endless"_s, endless},
        {u"pieces"_s, pieces}};
}
