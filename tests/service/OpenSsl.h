#pragma once

#include <QByteArray>
#include <QString>

/// The `openssl` command line: what our own cipher and TLS are judged by.
namespace OpenSsl {

/// Base64 in one line.
QByteArray encipher(const QByteArray& text);
/// Under another key than the service's.
QByteArray encipherWithAnotherKey(const QByteArray& text);
/// Any bytes, a whole number of blocks, without padding them.
QByteArray encipherUnpadded(const QByteArray& text);
/// Empty for what does not decipher.
QByteArray decipher(const QByteArray& text);

enum class Certificate { Valid, Expired, OfAnotherHost };
/// Writes `certificate.pem` and `key.pem`, for loopback unless it shall be of another host.
void makeCertificate(const QString& directory, Certificate kind = Certificate::Valid);

} // namespace OpenSsl
