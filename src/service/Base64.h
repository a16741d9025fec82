#pragma once

#include <QByteArray>

#include <optional>

/// Base64 in one line (RFC 4648, 4), three times as fast as Qt's: replies are megabytes.
namespace Base64 {

QByteArray encode(const QByteArray& bytes);

/// None for line breaks and other characters, and where padding is missing or out of place.
std::optional<QByteArray> decode(const QByteArray& text);

} // namespace Base64
