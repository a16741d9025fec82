#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QString>
#include <QThread>
#include <QUrl>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

/// Sends HTTPS requests, one independent of the other, and receives their replies on a thread of
/// its own, so that neither a very large reply nor one in very many pieces blocks the main thread.
///
/// A reply is given up, and then is none, when nothing arrives for 2.0 seconds, when it takes
/// longer than 10 seconds and one more for each 256 bytes of it, when it is longer than 8 MiB
/// (after decompression), when the connection ends before it does, when it redirects to plain HTTP
/// or for ever, and when the server's certificate is not valid. Other redirections are followed.
/// Any other reply counts, whatever its status says. Nothing is ever logged.
///
/// Certificates in the file that the environment variable SSL_CERT_FILE names are trusted beside
/// the system's.
class SessionManager {
public:
    using Parameters = std::vector<std::pair<QString, QString>>;
    using Reply = std::optional<QByteArray>;

    /// The agent goes into the header "User-Agent" of every request.
    explicit SessionManager(const QString& agent);
    ~SessionManager();
    SessionManager(const SessionManager&) = delete;
    SessionManager& operator=(const SessionManager&) = delete;

    /// Sends the parameters as a URL-encoded form in which all but the unreserved characters of
    /// RFC 3986 is percent-escaped.
    ///
    /// `read(const Reply&)` runs on the thread of the network; `completion` takes what it returns,
    /// on the main thread. Both are called once, or not at all when this object is gone by then.
    template <typename Read, typename Completion>
    void post(const QUrl& url, const Parameters& parameters, Read read, Completion completion)
    {
        send(url, parameters, [this, read, completion](const Reply& reply) {
            QMetaObject::invokeMethod(
                &m_mainThread,
                [completion, result = read(reply)]() mutable { completion(std::move(result)); },
                Qt::QueuedConnection);
        });
    }

private:
    using Receiver = std::function<void(const Reply& reply)>;
    void send(const QUrl& url, const Parameters& parameters, Receiver receiver);

    QByteArray m_agent;
    QObject m_mainThread; // where it lives
    QThread m_thread;
    QNetworkAccessManager* m_network; // ends with the thread, on it
};
