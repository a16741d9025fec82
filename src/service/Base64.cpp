#include "service/Base64.h"

#include <limits>
#include <openssl/evp.h>

namespace {

constexpr qsizetype sizeLimit = std::numeric_limits<int>::max() / 2; // OpenSSL counts in int

} // namespace

std::optional<QByteArray> Base64::encode(const QByteArray& bytes)
{
    if (bytes.isEmpty())
        return bytes;
    if (bytes.size() > sizeLimit)
        return std::nullopt;
    // OpenSSL writes a NUL behind it, where there is one.
    QByteArray text((bytes.size() + 2) / 3 * 4, Qt::Uninitialized);
    EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
        reinterpret_cast<const unsigned char*>(bytes.constData()),
        static_cast<int>(bytes.size()));
    return text;
}

std::optional<QByteArray> Base64::decode(const QByteArray& text)
{
    if (text.isEmpty())
        return text;
    if (text.size() > sizeLimit || text.size() % 4 != 0)
        return std::nullopt;
    // OpenSSL forgives padding everywhere.
    const int padding = text.endsWith("==") ? 2 : text.endsWith('=') ? 1 : 0;
    const auto firstPadding = text.indexOf('=');
    if (firstPadding >= 0 && firstPadding != text.size() - padding)
        return std::nullopt;

    QByteArray bytes(text.size() / 4 * 3, Qt::Uninitialized);
    const int length = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
        reinterpret_cast<const unsigned char*>(text.constData()),
        static_cast<int>(text.size()));
    if (length != bytes.size()) // less where it has skipped blanks or hyphens at the ends
        return std::nullopt;
    bytes.chop(padding);
    return bytes;
}
