#include "json/JSONCoding.h"

#include "json/TextFromUtf8.h"

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

std::optional<qint64> exactInteger(const nlohmann::json& value)
{
    if (value.is_number_unsigned()) {
        const auto number = value.get<std::uint64_t>();
        if (number <= static_cast<std::uint64_t>(std::numeric_limits<qint64>::max()))
            return static_cast<qint64>(number);
    } else if (value.is_number_integer()) {
        return value.get<qint64>();
    } else if (value.is_number_float()) {
        constexpr double beyond = 9223372036854775808.0; // 2^63
        const auto number = value.get<double>();
        // -2^63 as well is what longer numbers are rounded to; written as an integer it is one.
        if (number > -beyond && number < beyond && std::trunc(number) == number)
            return static_cast<qint64>(number);
    }
    return std::nullopt;
}

qint64 JSONCoding<qint64>::decode(const JSONDecoder& decoder)
{
    const auto integer = exactInteger(decoder.value());
    if (!integer)
        decoder.failForKind(u"an integer"_s);
    return integer.value_or(0);
}

QString JSONCoding<QString>::decode(const JSONDecoder& decoder)
{
    if (!decoder.value().is_string()) {
        decoder.failForKind(u"a string"_s);
        return {};
    }
    return textFromUtf8(decoder.value().get_ref<const std::string&>());
}

JSONNull JSONCoding<JSONNull>::decode(const JSONDecoder& decoder)
{
    if (!decoder.value().is_null()) {
        decoder.fail(CodingError::Kind::TypeMismatch, u"JSONNull"_s, u"Wrong type for JSONNull"_s);
    }
    return {};
}
