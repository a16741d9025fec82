#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QSslConfiguration>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

/// Sends HTTPS requests, one independent of the other, and hands over their replies on the main
/// thread.
///
/// A reply is given up, and then is none, when nothing arrives for 2.0 seconds, when it takes
/// longer than 5 seconds in all, when it is longer than 8 MiB (after decompression), when the
/// connection ends before it does, when it is a redirection, and when the server's certificate is
/// not valid. Any other reply counts, whatever its status says. Nothing is ever logged.
/// What is held of a reply meanwhile stays near that length, but for one that comes in pieces of
/// single bytes: Qt's book-keeping of those may take up some hundred MB before the time is over.
///
/// Certificates in the file that the environment variable SSL_CERT_FILE names are trusted beside
/// the system's.
class SessionManager {
public:
    using Parameters = std::vector<std::pair<QString, QString>>;
    using Completion = std::function<void(const std::optional<QByteArray>& reply)>;

    /// The agent goes into the header "User-Agent" of every request.
    explicit SessionManager(const QString& agent);

    /// Sends the parameters as a URL-encoded form in which all but the unreserved characters of
    /// RFC 3986 is percent-escaped. The completion is called once, and not at all when this object
    /// is gone by then.
    void post(const QUrl& url, const Parameters& parameters, Completion completion);

private:
    QByteArray m_agent;
    QSslConfiguration m_tls;
    QNetworkAccessManager m_network;
};
