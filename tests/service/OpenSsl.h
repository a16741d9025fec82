#pragma once

#include <QByteArray>
#include <QString>

/// The `openssl` command line: what our own cipher and TLS are judged by.
namespace OpenSsl {

/// Enciphers to base64 in one line; "-nopad" takes a whole number of blocks, "-d" deciphers. Empty
/// where it refuses.
QByteArray cipher(const QByteArray& text, const QString& option = {});

/// Writes `certificate.pem` and `key.pem`, for loopback.
void makeCertificate(const QString& directory);

} // namespace OpenSsl
