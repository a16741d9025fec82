#include "service/StandInService.h"

#include "service/OpenSsl.h"

#include <QFile>
#include <QRegularExpression>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

static const QByteArray redPicture =
    "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAIAAACQd1PeAAAADElEQVQI12P4z8AAAAMBAQAY3Y2wAAAAAElFTkSuQmCC";

const QByteArray StandInService::heartbeatAnswer =
    R"({"status":-1,"info":"","data":{"ct":9223372036854775807,"time":{"st":1,"vt":[2,3],"tt":4},)"
    R"("msg":{"msg_bottom":{"msgid":5,"msg":"m","url":"u","color":"c","back":6},)"
    R"("msg_top":{"msgid":7,"tittle":"t","url":"v","color":{"show":"a","hover":"b","click":"d"},)"
    R"("point":8,"type":9,"back":10,"width":11,"height":12}},)"
    R"("upgrade":[true,1,1.5,"x",null,{"a":[]}],"speedlimit":13}})";

const QByteArray StandInService::guideAnswer =
    R"({"status":1,"info":"ok","data":{"leftPanel":["data:image/png;base64,)" + redPicture +
    R"("],"leftPanelUrl":["https://example.com/left"],"window":[],"windowUrl":[],"browser":[],)"
    R"("browserUrl":[],"newFeature":[")" +
    redPicture + R"("],"newFeatureUrl":["https://example.com/new"]}})";

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

void StandInService::replyProperly(QSslSocket& socket, const ServiceRequest& request) const
{
    const auto offer = R"({"status":1)" + (m_offer.isEmpty() ? "" : ",\"data\":" + m_offer) + '}';
    const QHash<int, QByteArray> answers{{21, heartbeatAnswer}, {24, offer}, {214, guideAnswer}};
    reply(socket, OpenSsl::cipher(answers.value(request.function)));
}

StandInService::Behaviour StandInService::answering(const QByteArray& text)
{
    return [body = OpenSsl::cipher(text)](auto&, auto& socket, auto&) { reply(socket, body); };
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
    connect(socket, &QSslSocket::readyRead, this, [this, socket] { receive(*socket); });
    receive(*socket);
}

void StandInService::receive(QSslSocket& socket)
{
    const auto received = socket.peek(socket.bytesAvailable());
    const auto headEnd = received.indexOf("\r\n\r\n");
    if (headEnd < 0)
        return;
    ServiceRequest request{received.left(headEnd + 2), received.mid(headEnd + 4), 0, {}};
    static const QRegularExpression length(u"\nContent-Length: (\\d+)"_s);
    const auto head = QString::fromLatin1(request.head);
    if (request.form.size() < length.match(head).captured(1).toLongLong())
        return;
    socket.readAll();
    const QUrlQuery form(QString::fromLatin1(request.form));
    request.function = form.queryItemValue(u"f"_s).toInt();
    const auto sealed = form.queryItemValue(u"i"_s, QUrl::FullyDecoded).toLatin1();
    request.text = OpenSsl::cipher(sealed, u"-d"_s);
    m_requests.push_back(request);
    Q_EMIT requested(request);
    m_behaviour(*this, socket, request);
}
