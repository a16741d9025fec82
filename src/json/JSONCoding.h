#pragma once

#include "json/JSONAny.h"
#include "json/JSONCoder.h"
#include "json/JSONMember.h"

#include <QByteArray>
#include <QString>

#include <nlohmann/json.hpp>

#include <tuple>
#include <variant>
#include <vector>

/// A type that lists its members, see `JSONMember`.
template <typename Type>
concept JSONRecord = requires
{
    Type::jsonMembers();
};

/// The number as a signed 64-bit integer when that loses nothing: 1 and 1.0, but not 1.5 or 2^63.
std::optional<qint64> exactInteger(const nlohmann::json& value);

/// Each type is decoded and encoded by one specialisation. Decoding what fails yields an empty
/// value, and leaves the failure in the decoder.
template <typename Type>
struct JSONCoding {
    static_assert(JSONRecord<Type>, "neither a record nor a type that JSON has");

    static Type decode(const JSONDecoder& decoder)
    {
        if (!decoder.value().is_object())
            decoder.failForKind(QStringLiteral("an object"));
        return std::apply(
            [&decoder](const auto&... members) {
                // Braces keep the order: the first failure is the one to report.
                return Type{decodeMember(decoder, members)...};
            },
            Type::jsonMembers());
    }

    static void encode(const Type& record, const JSONEncoder& encoder)
    {
        encoder.beginObject();
        std::apply([&](const auto&... members) { (encodeMember(record, encoder, members), ...); },
            Type::jsonMembers());
        encoder.endObject();
    }

private:
    template <typename Value>
    static auto decodeMember(const JSONDecoder& decoder, const JSONMember<Type, Value>& member) ->
        typename JSONMember<Type, Value>::Type
    {
        if (decoder.failed())
            return {};
        const auto found = decoder.value().find(member.key);
        if (found == decoder.value().end()) {
            decoder.fail(CodingError::Kind::KeyNotFound,
                {},
                QStringLiteral("No value associated with key %1.")
                    .arg(QString::fromUtf8(member.key)));
            return {};
        }
        return JSONCoding<typename JSONMember<Type, Value>::Type>::decode(
            decoder.member(member.key, *found));
    }

    template <typename Value>
    static void encodeMember(
        const Type& record, const JSONEncoder& encoder, const JSONMember<Type, Value>& member)
    {
        if (!encoder.failed()) {
            JSONCoding<typename JSONMember<Type, Value>::Type>::encode(
                record.*member.member, encoder.member(member.key));
        }
    }
};

template <>
struct JSONCoding<qint64> {
    static qint64 decode(const JSONDecoder& decoder);
    static void encode(qint64 value, const JSONEncoder& encoder) { encoder.write(value); }
};

template <>
struct JSONCoding<QString> {
    static QString decode(const JSONDecoder& decoder);
    static void encode(const QString& value, const JSONEncoder& encoder) { encoder.write(value); }
};

template <>
struct JSONCoding<JSONNull> {
    static JSONNull decode(const JSONDecoder& decoder);
    static void encode(JSONNull /*value*/, const JSONEncoder& encoder) { encoder.writeNull(); }
};

template <>
struct JSONCoding<JSONAny> {
    static JSONAny decode(const JSONDecoder& decoder) { return JSONAny::decode(decoder); }
    static void encode(const JSONAny& any, const JSONEncoder& encoder)
    {
        JSONAny::encode(any.value(), encoder);
    }
};

template <typename Element>
struct JSONCoding<std::vector<Element>> {
    static std::vector<Element> decode(const JSONDecoder& decoder)
    {
        std::vector<Element> elements;
        if (!decoder.value().is_array()) {
            decoder.failForKind(QStringLiteral("an array"));
            return elements;
        }
        elements.reserve(decoder.value().size());
        for (const auto& value : decoder.value()) {
            if (decoder.failed())
                break;
            elements.push_back(
                JSONCoding<Element>::decode(decoder.element(elements.size(), value)));
        }
        return elements;
    }

    static void encode(const std::vector<Element>& elements, const JSONEncoder& encoder)
    {
        encoder.writeArray(elements, [](const JSONEncoder& place, const Element& element) {
            JSONCoding<Element>::encode(element, place);
        });
    }
};

/// Decodes a parsed document.
template <typename Type>
std::variant<Type, CodingError> decodeJson(const nlohmann::json& document)
{
    std::optional<CodingError> error;
    auto value = JSONCoding<Type>::decode(JSONDecoder(document, error));
    if (error)
        return std::move(*error);
    return value;
}

/// Decodes a whole reply from a UTF-8 text, within the limits of `parseJson`. Any failure yields
/// none; its reason is not kept.
template <typename Reply>
std::optional<Reply> decodeReply(const QByteArray& text)
{
    const auto document = parseJson({text.constData(), static_cast<std::size_t>(text.size())});
    if (!document)
        return std::nullopt;
    std::optional<CodingError> error;
    auto value = JSONCoding<Reply>::decode(JSONDecoder(*document, error));
    if (error)
        return std::nullopt;
    return value;
}

/// The value as a JSON text in UTF-8, without blanks.
template <typename Type>
std::variant<QByteArray, CodingError> encodeJson(const Type& value)
{
    std::string text;
    std::optional<CodingError> error;
    JSONCoding<Type>::encode(value, JSONEncoder(text, error));
    if (error)
        return std::move(*error);
    return QByteArray::fromStdString(text);
}
