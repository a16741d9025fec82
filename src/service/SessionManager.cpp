#include "service/SessionManager.h"

#include "service/ReplyReader.h"

#include <QFile>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds timeout{2000};

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
    : m_agent(agent.toUtf8()), m_tls(trustedConfiguration())
{
    m_network.setTransferTimeout(static_cast<int>(timeout.count()));
    m_network.setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

void SessionManager::post(const QUrl& url, const Parameters& parameters, Completion completion)
{
    QNetworkRequest request(url);
    request.setSslConfiguration(m_tls);
    // One request at a time gains nothing by it, and Qt's takes whatever headers it is flooded
    // with.
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setHeader(QNetworkRequest::UserAgentHeader, m_agent);
    request.setHeader(QNetworkRequest::ContentTypeHeader,
        QByteArrayLiteral("application/x-www-form-urlencoded; charset=utf-8"));
    auto* const reply = m_network.post(request, formEncoded(parameters));
    new ReplyReader(*reply, std::move(completion)); // owned by the reply
}
