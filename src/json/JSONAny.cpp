#include "json/JSONAny.h"

#include "json/JSONCoding.h"
#include "json/TextFromUtf8.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const auto typeName = u"JSONAny"_s;

/// `place` is an element or a member of `container`, or the container itself where a value stands
/// alone; a value of no known kind is the container's failure.
QVariant decodeValue(const JSONDecoder& place, const JSONDecoder& container);

QVariant decodeArray(const JSONDecoder& container)
{
    QVariantList array;
    array.reserve(static_cast<qsizetype>(container.value().size()));
    std::size_t index = 0;
    for (const auto& element : container.value()) {
        array.push_back(decodeValue(container.element(index++, element), container));
    }
    return array;
}

QVariant decodeDictionary(const JSONDecoder& container)
{
    QVariantMap dictionary;
    for (const auto& [key, member] : container.value().items()) {
        dictionary.insert(textFromUtf8(key), decodeValue(container.member(key, member), container));
    }
    return dictionary;
}

QVariant decodeValue(const JSONDecoder& place, const JSONDecoder& container)
{
    const auto& value = place.value();
    if (value.is_boolean())
        return value.get<bool>();
    if (const auto integer = exactInteger(value))
        return *integer;
    if (value.is_number())
        return value.get<double>();
    if (value.is_string())
        return textFromUtf8(value.get_ref<const std::string&>());
    if (value.is_null())
        return QVariant::fromValue(JSONNull());
    if (value.is_array())
        return decodeArray(place);
    if (value.is_object())
        return decodeDictionary(place);
    container.fail(CodingError::Kind::TypeMismatch, typeName, u"Cannot decode JSONAny"_s);
    return {};
}

void encodeValue(const QVariant& value, const JSONEncoder& place, const JSONEncoder& container)
{
    if (place.failed())
        return;
    switch (value.typeId()) {
    case QMetaType::Bool:
        return place.write(value.toBool());
    case QMetaType::LongLong:
        return place.write(value.toLongLong());
    case QMetaType::Double:
        if (std::isfinite(value.toDouble()))
            return place.write(value.toDouble());
        break; // JSON has no notation for it
    case QMetaType::QString:
        return place.write(value.toString());
    case QMetaType::QVariantList:
        return place.writeArray(
            value.toList(), [&place](const JSONEncoder& element, const QVariant& elementValue) {
                encodeValue(elementValue, element, place);
            });
    case QMetaType::QVariantMap: {
        const auto dictionary = value.toMap();
        place.beginObject();
        for (const auto& [key, member] : dictionary.asKeyValueRange())
            encodeValue(member, place.member(key.toStdString()), place);
        return place.endObject();
    }
    default:
        if (value.typeId() == qMetaTypeId<JSONNull>())
            return place.writeNull();
    }
    container.fail(value, u"Cannot encode JSONAny"_s);
}

} // namespace

JSONAny JSONAny::decode(const JSONDecoder& decoder)
{
    return JSONAny(decodeValue(decoder, decoder));
}

void JSONAny::encode(const QVariant& value, const JSONEncoder& encoder)
{
    encodeValue(value, encoder, encoder);
}
