#pragma once

#include <QByteArray>

#include <optional>

/// What requests and replies travel in: AES-128 in CBC mode with PKCS#7 padding (RFC 5652, 6.3)
/// under one fixed key and initialisation vector, as base64 (RFC 4648, 4). It hides the texts from
/// a casual look; that nobody reads or changes them is TLS's business.
namespace Envelope {

/// A UTF-8 text as the service expects it: every double quote in it is preceded by a backslash
/// before it is enciphered. None when that fails.
std::optional<QByteArray> sealBody(const QByteArray& body);

/// The text of a reply in UTF-8, without the NUL characters that the service may fill it up with,
/// inside the padding or instead of it. White space in the reply is ignored. None for what is not
/// base64, does not decipher, or is no UTF-8.
std::optional<QByteArray> openBody(const QByteArray& reply);

} // namespace Envelope
