#include "service/ReplyReader.h"

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto silenceLimit = 2000ms;
constexpr auto bodyLimit = qint64{8} * 1024 * 1024;

// A server that sends a little now and then keeps nobody waiting for ever.
constexpr auto headStart = 10s;
constexpr qint64 smallestRate = 256; // bytes a second

/// What may lie between Qt's threads. That may be an object for each byte.
constexpr auto readBufferSize = qint64{256} * 1024;

} // namespace

ReplyReader::ReplyReader(QNetworkReply& reply, Receiver receiver)
    : QObject(&reply), m_reply(reply), m_receiver(std::move(receiver))
{
    reply.setReadBufferSize(readBufferSize);
    connect(&reply, &QNetworkReply::readyRead, this, &ReplyReader::read);
    // Packed data may come for long before any of it is unpacked.
    connect(&reply, &QNetworkReply::downloadProgress, this, &ReplyReader::read);
    connect(&reply, &QNetworkReply::redirected, this, &ReplyReader::read);
    connect(&reply, &QNetworkReply::finished, this, &ReplyReader::finish);
    // Qt's own time-out is a coarse one.
    connect(&m_silence, &QTimer::timeout, &reply, &QNetworkReply::abort);
    m_silence.setSingleShot(true);
    m_silence.setTimerType(Qt::PreciseTimer);
    m_silence.start(silenceLimit);
    m_sinceRequest.start();
}

void ReplyReader::read()
{
    if (!m_reply.isReadable()) // giving up tells of progress as well
        return;
    m_silence.start();
    // A small piece may unpack to a very large one, so never all that is said to be there.
    m_body += m_reply.read(bodyLimit + 1 - m_body.size());
    if (isTooLong() || isTooSlow())
        m_reply.abort();
}

void ReplyReader::finish()
{
    m_silence.stop();
    if (m_reply.isReadable() && !isTooLong())
        m_body += m_reply.read(bodyLimit + 1 - m_body.size());
    m_reply.deleteLater();
    std::exchange(m_receiver, nullptr)(result());
}

bool ReplyReader::isTooLong() const
{
    return m_body.size() > bodyLimit;
}

bool ReplyReader::isTooSlow() const
{
    const std::chrono::milliseconds elapsed(m_sinceRequest.elapsed());
    return elapsed > headStart + 1s * m_body.size() / smallestRate;
}

SessionManager::Reply ReplyReader::result() const
{
    if (isTooLong())
        return std::nullopt;
    const auto error = m_reply.error();
    if (error == QNetworkReply::NoError)
        return m_body;
    // An error page is a reply as well; Qt makes its status an error. Other errors are of the
    // network, or of a body that does not unpack.
    const auto status = m_reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool isOfStatus =
        status >= 400 && (error >= QNetworkReply::ContentAccessDenied ||
                             error == QNetworkReply::ProxyAuthenticationRequiredError);
    return isOfStatus ? std::optional(m_body) : std::nullopt;
}
