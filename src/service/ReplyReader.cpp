#include "service/ReplyReader.h"

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto bodyLimit = qint64{8} * 1024 * 1024;
constexpr auto deadline = 5s; // for a server that sends a little now and then

} // namespace

ReplyReader::ReplyReader(QNetworkReply& reply, SessionManager::Completion completion)
    : QObject(&reply), m_reply(reply), m_completion(std::move(completion))
{
    // A fast server would fill the memory before the main loop comes round to read.
    reply.setReadBufferSize(bodyLimit);
    connect(&reply, &QNetworkReply::readyRead, this, &ReplyReader::read);
    connect(&reply, &QNetworkReply::finished, this, &ReplyReader::finish);
    connect(&m_deadline, &QTimer::timeout, &reply, &QNetworkReply::abort);
    m_deadline.setSingleShot(true);
    m_deadline.start(deadline);
}

void ReplyReader::read()
{
    // A small piece may unpack to a very large one, so never all that is said to be there.
    m_body += m_reply.read(bodyLimit + 1 - m_body.size());
    if (m_body.size() > bodyLimit)
        m_reply.abort();
}

void ReplyReader::finish()
{
    if (m_reply.isReadable() && m_body.size() <= bodyLimit)
        m_body += m_reply.read(bodyLimit + 1 - m_body.size());
    m_reply.deleteLater();
    std::exchange(m_completion, nullptr)(result());
}

std::optional<QByteArray> ReplyReader::result() const
{
    if (m_body.size() > bodyLimit)
        return std::nullopt;
    const auto status = m_reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool redirects = status >= 300 && status < 400;
    if (redirects)
        return std::nullopt;
    const auto error = m_reply.error();
    if (error == QNetworkReply::NoError)
        return m_body;
    // An error page is a reply as well; Qt makes its status an error. Other errors are of the
    // network, or of a body that does not unpack.
    const bool isOfStatus =
        status >= 400 && (error >= QNetworkReply::ContentAccessDenied ||
                             error == QNetworkReply::ProxyAuthenticationRequiredError);
    return isOfStatus ? std::optional(m_body) : std::nullopt;
}
