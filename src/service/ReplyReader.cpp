#include "service/ReplyReader.h"

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr qint64 bodyLimit = 8 * 1024 * 1024;
constexpr auto deadline = 20s; // for a server that sends a little now and then

} // namespace

ReplyReader::ReplyReader(QNetworkReply& reply, SessionManager::Completion completion)
    : QObject(&reply), m_reply(reply), m_completion(std::move(completion))
{
    // Without this bound a fast server fills the memory before the main loop comes round to read.
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
    switch (m_reply.error()) {
    case QNetworkReply::NoError:
        break;
    case QNetworkReply::OperationCanceledError:
    case QNetworkReply::UnknownContentError: // does not unpack, or unpacks to far too much
        return std::nullopt;
    default:
        // An error page is a reply as well, and the network's own failures have no status.
        if (status < 400 || m_reply.error() < QNetworkReply::ContentAccessDenied)
            return std::nullopt;
    }
    const bool redirects = status >= 300 && status < 400;
    if (redirects)
        return std::nullopt;
    return m_body;
}
