#include "service/SessionManager.h"

#include "service/ReplyReader.h"

#include <QFile>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>

using namespace Qt::StringLiterals;

namespace {

QSslConfiguration trustedConfiguration()
{
    auto configuration = QSslConfiguration::defaultConfiguration();
    // Adding leaves the look-up of the system's own as it is; setting all would read hundreds.
    const auto path = QFile::decodeName(qgetenv("SSL_CERT_FILE"));
    if (!path.isEmpty())
        configuration.addCaCertificates(path);
    return configuration;
}

QByteArray formEncoded(const SessionManager::Parameters& parameters)
{
    QByteArray form;
    for (const auto& [name, value] : parameters) {
        if (!form.isEmpty())
            form += '&';
        form += QUrl::toPercentEncoding(name) + '=' + QUrl::toPercentEncoding(value);
    }
    return form;
}

} // namespace

SessionManager::SessionManager(const QString& agent)
    : m_agent(agent.toUtf8()), m_network(new QNetworkAccessManager)
{
    m_thread.setObjectName(u"service"_s);
    m_network->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, m_network, &QObject::deleteLater);
    m_thread.start();
}

SessionManager::~SessionManager()
{
    m_thread.quit();
    m_thread.wait();
}

void SessionManager::send(const QUrl& url, const Parameters& parameters, Receiver receiver)
{
    QNetworkRequest request(url);
    // One request at a time gains nothing by it, and Qt's takes whatever headers it is flooded
    // with.
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setHeader(QNetworkRequest::UserAgentHeader, m_agent);
    request.setHeader(
        QNetworkRequest::ContentTypeHeader, "application/x-www-form-urlencoded; charset=utf-8"_ba);
    QMetaObject::invokeMethod(m_network,
        [this, request, form = formEncoded(parameters), receiver = std::move(receiver)]() mutable {
            request.setSslConfiguration(trustedConfiguration());
            auto* const reply = m_network->post(request, form);
            new ReplyReader(*reply, std::move(receiver)); // owned by the reply
        });
}
