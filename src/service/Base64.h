#pragma once

#include <QByteArray>

#include <optional>

/// Base64 in one line (RFC 4648, 4), faster than Qt's: replies are megabytes. None for more than
/// OpenSSL can take, a gigabyte.
namespace Base64 {

std::optional<QByteArray> encode(const QByteArray& bytes);

/// None also for line breaks and other characters, and where padding is missing or out of place.
std::optional<QByteArray> decode(const QByteArray& text);

} // namespace Base64
