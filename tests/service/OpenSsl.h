#pragma once

#include <QByteArray>
#include <QString>

/// The `openssl` command line: what our own cipher and TLS are judged by.
namespace OpenSsl {

/// Base64 in one line.
QByteArray encipher(const QByteArray& text);
/// Any bytes, a whole number of blocks, without padding them.
QByteArray encipherUnpadded(const QByteArray& text);
/// Empty for what does not decipher.
QByteArray decipher(const QByteArray& text);

/// Writes `certificate.pem` and `key.pem`, for loopback or for another host.
void makeCertificate(const QString& directory, const QString& host = QStringLiteral("127.0.0.1"));

} // namespace OpenSsl
