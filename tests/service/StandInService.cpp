#include "service/StandInService.h"

#include "service/OpenSsl.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QUrl>

#include <algorithm>
#include <iterator>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

QByteArray fileContents(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qUtf8Printable(path));
    return file.readAll();
}

qsizetype contentLength(const QByteArray& head)
{
    const auto lower = head.toLower();
    const QByteArray name("content-length:");
    const auto at = lower.indexOf(name);
    return at < 0 ? 0
                  : lower.mid(at + name.size(), lower.indexOf('\r', at) - at - name.size())
                        .trimmed()
                        .toLongLong();
}

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
    QSslConfiguration configuration;
    configuration.setLocalCertificate(
        QSslCertificate(fileContents(certificateDirectory + u"/certificate.pem"_s)));
    configuration.setPrivateKey(
        QSslKey(fileContents(certificateDirectory + u"/key.pem"_s), QSsl::Rsa));
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
    std::vector<ServiceRequest> found;
    std::copy_if(m_requests.begin(),
        m_requests.end(),
        std::back_inserter(found),
        [function](const ServiceRequest& request) { return request.function == function; });
    return found;
}

QByteArray StandInService::answer(int function) const
{
    switch (function) {
    case 21:
        return heartbeatAnswer;
    case 214:
        return guideAnswer;
    default:
        return R"({"status":1,"info":"ok")" + (m_offer.isEmpty() ? "" : ",\"data\":" + m_offer) +
               '}';
    }
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
    const auto received = std::make_shared<QByteArray>(); // lives as long as the connection
    const auto readMore = [this, socket, received] {
        *received += socket->readAll();
        const auto headEnd = received->indexOf("\r\n\r\n");
        if (headEnd < 0)
            return;
        const auto head = received->left(headEnd + 2);
        const auto form = received->mid(headEnd + 4);
        if (form.size() < contentLength(head))
            return;
        received->clear();
        receive(*socket, head, form);
    };
    connect(socket, &QSslSocket::readyRead, this, readMore);
    readMore();
}

void StandInService::receive(QSslSocket& socket, const QByteArray& head, const QByteArray& form)
{
    ServiceRequest request;
    const auto lines = head.split('\n');
    const auto words = lines.first().split(' ');
    request.method = words.value(0);
    request.path = words.value(1);
    for (const auto& line : lines.mid(1)) {
        const auto colon = line.indexOf(':');
        request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
    }
    request.form = form;
    for (const auto& field : form.split('&')) {
        const auto value = QByteArray::fromPercentEncoding(field.mid(2));
        if (field.startsWith("f="))
            request.function = value.toInt();
        else if (field.startsWith("i="))
            request.text = OpenSsl::decipher(value);
    }
    m_requests.push_back(request);
    Q_EMIT requested(request);
    m_behaviour(*this, socket, request);
}
