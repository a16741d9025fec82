#include "service/Envelope.h"

#include "service/Base64.h"

#include <QUtf8StringView>

#include <limits>
#include <memory>
#include <openssl/evp.h>
#include <utility>

namespace {

constexpr unsigned char key[] = "Pq7Rt2VbXn4LmZ8c";
constexpr unsigned char initialisationVector[] = "h5Jd9KsWf3TaYe6u";
constexpr int blockSize = 16;

enum class Direction : int { Decipher = 0, Encipher = 1 };

/// In place: a megabyte more is a megabyte of fresh pages.
std::optional<QByteArray> cipher(QByteArray bytes, Direction direction)
{
    if (bytes.size() > std::numeric_limits<int>::max() - blockSize)
        return std::nullopt;
    const auto inputSize = static_cast<int>(bytes.size());
    bytes.resize(bytes.size() + blockSize);
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(
        EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
    auto* const data = reinterpret_cast<unsigned char*>(bytes.data());
    int length = 0;
    int finalLength = 0;
    // What replies end with is looked at below.
    const bool pads = direction == Direction::Encipher;
    const bool done = context &&
                      EVP_CipherInit_ex(context.get(),
                          EVP_aes_128_cbc(),
                          nullptr,
                          key,
                          initialisationVector,
                          static_cast<int>(direction)) &&
                      EVP_CIPHER_CTX_set_padding(context.get(), pads ? 1 : 0) &&
                      EVP_CipherUpdate(context.get(), data, &length, data, inputSize) &&
                      EVP_CipherFinal_ex(context.get(), data + length, &finalLength);
    if (!done)
        return std::nullopt;
    bytes.truncate(length + finalLength);
    return bytes;
}

/// Takes the padding of PKCS#7 away; false when it is wrong. A tail of zeros is no padding.
bool removePadding(QByteArray& text)
{
    if (text.isEmpty())
        return false;
    const auto last = static_cast<unsigned char>(text.back());
    if (last == 0)
        return true;
    if (last > blockSize || !text.endsWith(QByteArray(last, text.back())))
        return false;
    text.chop(last);
    return true;
}

/// Lines may be broken and ended as with any other text.
QByteArray withoutWhiteSpace(QByteArray text)
{
    text.removeIf([](char character) {
        return character == ' ' || (character >= '\t' && character <= '\r');
    });
    return text;
}

QByteArray withEscapedQuotes(const QByteArray& text)
{
    QByteArray escaped;
    escaped.reserve(text.size() + text.size() / 8 + blockSize); // a guess; counting costs more
    qsizetype start = 0;
    for (auto quote = text.indexOf('"'); quote >= 0; quote = text.indexOf('"', start)) {
        escaped.append(QByteArrayView(text).sliced(start, quote - start)).append("\\\"");
        start = quote + 1;
    }
    return escaped.append(QByteArrayView(text).sliced(start));
}

} // namespace

std::optional<QByteArray> Envelope::sealBody(const QByteArray& body)
{
    const auto sealed = cipher(withEscapedQuotes(body), Direction::Encipher);
    return sealed ? Base64::encode(*sealed) : std::nullopt;
}

std::optional<QByteArray> Envelope::openBody(const QByteArray& reply)
{
    auto sealed = Base64::decode(reply);
    if (!sealed) // rarely, so nobody else pays for it
        sealed = Base64::decode(withoutWhiteSpace(reply));
    if (!sealed)
        return std::nullopt;
    auto text = cipher(std::move(*sealed), Direction::Decipher);
    if (!text || !removePadding(*text) || !QUtf8StringView(*text).isValidUtf8())
        return std::nullopt;
    if (text->contains('\0'))
        text->removeIf([](char character) { return character == '\0'; });
    return text;
}
