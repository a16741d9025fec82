#include "service/Base64.h"

#include <array>
#include <cstring>
#include <limits>
#include <openssl/evp.h>

namespace {

constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The two characters for each 12 bits.
constexpr auto characterPairs = [] {
    std::array<std::array<char, 2>, 4096> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i)
        pairs[i] = {alphabet[i >> 6], alphabet[i & 63]};
    return pairs;
}();

constexpr qsizetype sizeLimit = std::numeric_limits<int>::max() / 2;

} // namespace

QByteArray Base64::encode(const QByteArray& bytes)
{
    QByteArray text((bytes.size() + 2) / 3 * 4, Qt::Uninitialized);
    const auto* in = reinterpret_cast<const unsigned char*>(bytes.constData());
    auto* out = text.data();
    auto left = bytes.size();
    for (; left >= 3; left -= 3, in += 3, out += 4) {
        const unsigned group = unsigned{in[0]} << 16 | unsigned{in[1]} << 8 | in[2];
        std::memcpy(out, characterPairs[group >> 12].data(), 2);
        std::memcpy(out + 2, characterPairs[group & 0xfff].data(), 2);
    }
    if (left > 0) {
        const unsigned group = unsigned{in[0]} << 16 | (left > 1 ? unsigned{in[1]} << 8 : 0);
        std::memcpy(out, characterPairs[group >> 12].data(), 2);
        out[2] = left > 1 ? characterPairs[group & 0xfff][0] : '=';
        out[3] = '=';
    }
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
