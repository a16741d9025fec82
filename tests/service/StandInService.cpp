#include "service/StandInService.h"

#include "service/OpenSsl.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {

constexpr auto heartbeatAnswer =
    R"({"status":1,"info":"ok","data":{"ct":7,)"
    R"("time":{"st":1,"vt":[2,3],"tt":4},"msg":{)"
    R"("msg_bottom":{"msgid":1,"msg":"Welcome","url":"","color":"#ffffff","back":0},)"
    R"("msg_top":{"msgid":2,"tittle":"Hello","url":"","color":)"
    R"({"show":"#fff","hover":"#eee","click":"#ddd"},)"
    R"("point":0,"type":1,"back":0,"width":320,"height":200}},)"
    R"("upgrade":[true,1,1.5,"text",null,{"a":[]}],"speedlimit":0}})";

/// A red and a green picture of one pixel.
constexpr auto guideAnswer =
    R"({"status":1,"info":"ok","data":{"leftPanel":[)"
    R"("data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAIAAACQd1PeAAAADElEQVQI12P4z8AAAAMBAQAY3Y2wAAAAAElFTkSuQmCC"],)"
    R"("leftPanelUrl":["https://example.com/left"],"window":[],"windowUrl":[],)"
    R"("browser":[],"browserUrl":[],"newFeature":[)"
    R"("iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAIAAACQd1PeAAAADElEQVQI12P4z8AAAAMBAQAY3Y2wAAAAAElFTkSuQmCC"],)"
    R"("newFeatureUrl":["https://example.com/new"]}})";

} // namespace

StandInService::StandInService(const QString& certificateDirectory, quint16 port)
    : m_behaviour(std::mem_fn(&StandInService::replyProperly))
{
    const auto certificates =
        QSslCertificate::fromPath(certificateDirectory + u"/certificate.pem"_s);
    QFile key(certificateDirectory + u"/key.pem"_s);
    if (certificates.isEmpty() || !key.open(QIODevice::ReadOnly))
        qFatal("cannot read the certificate in %s", qUtf8Printable(certificateDirectory));
    QSslConfiguration configuration;
    configuration.setLocalCertificateChain(certificates);
    configuration.setPrivateKey(QSslKey(&key, QSsl::Rsa));
    m_server.setSslConfiguration(configuration);
    connect(&m_server, &QTcpServer::pendingConnectionAvailable, this, &StandInService::accept);
    if (!m_server.listen(QHostAddress::LocalHost, port))
        qFatal("cannot listen: %s", qUtf8Printable(m_server.errorString()));
}

QString StandInService::origin() const
{
    return u"https://127.0.0.1:%1"_s.arg(m_server.serverPort());
}

std::vector<ServiceRequest> StandInService::requests(int function) const
{
    auto found = m_requests;
    std::erase_if(found, [function](const auto& request) { return request.function != function; });
    return found;
}

QByteArray StandInService::answer(int function) const
{
    return function == 21    ? QByteArray(heartbeatAnswer)
           : function == 214 ? QByteArray(guideAnswer)
                             : R"({"status":1,"info":"ok")" +
                                   (m_offer.isEmpty() ? "" : ",\"data\":" + m_offer) + '}';
}

void StandInService::replyProperly(QSslSocket& socket, const ServiceRequest& request) const
{
    reply(socket, OpenSsl::encipher(answer(request.function)));
}

StandInService::Behaviour StandInService::answering(const QByteArray& text)
{
    return [body = OpenSsl::encipher(text)](const StandInService&,
               QSslSocket& socket,
               const ServiceRequest&) { reply(socket, body); };
}

void StandInService::reply(
    QSslSocket& socket, const QByteArray& body, const QByteArray& status, const QByteArray& headers)
{
    socket.write("HTTP/1.1 " + status + "\r\nContent-Type: text/html\r\nConnection: close\r\n" +
                 headers + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" +
                 body);
    socket.disconnectFromHost();
}

void StandInService::accept()
{
    auto* const socket = qobject_cast<QSslSocket*>(m_server.nextPendingConnection());
    connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
    const auto receiveMore = [this, socket] { receive(*socket); };
    connect(socket, &QSslSocket::readyRead, this, receiveMore);
    receiveMore();
}

void StandInService::receive(QSslSocket& socket)
{
    const auto received = socket.peek(socket.bytesAvailable());
    const auto headEnd = received.indexOf("\r\n\r\n");
    if (headEnd < 0)
        return;
    ServiceRequest request;
    const auto lines = received.left(headEnd).split('\n');
    request.method = lines.first().split(' ').value(0);
    request.path = lines.first().split(' ').value(1);
    for (const auto& line : lines.mid(1)) {
        const auto colon = line.indexOf(':');
        request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
    }
    request.form = received.mid(headEnd + 4);
    if (request.form.size() < request.headers.value("content-length").toLongLong())
        return;
    socket.readAll();
    const QUrlQuery form(QString::fromLatin1(request.form));
    request.function = form.queryItemValue(u"f"_s).toInt();
    request.text = OpenSsl::decipher(form.queryItemValue(u"i"_s, QUrl::FullyDecoded).toLatin1());
    m_requests.push_back(request);
    Q_EMIT requested(request);
    m_behaviour(*this, socket, request);
}
