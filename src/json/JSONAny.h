#pragma once

#include "json/JSONCoder.h"
#include "json/JSONNull.h"

#include <QVariant>

#include <utility>

/// Any value that JSON can hold, for members of a reply that have no fixed shape. Made by decoding
/// only, and never changed.
class JSONAny {
public:
    /// Exactly one of `bool`, `qlonglong`, `double`, `QString`, `JSONNull`, a `QVariantList` and a
    /// `QVariantMap` of such values.
    const QVariant& value() const { return m_value; }

    bool operator==(const JSONAny&) const = default;

    /// Booleans are tried first, then integers (a number without a fraction that fits 64 bits,
    /// however it is written), then doubles, texts, null, arrays and objects.
    static JSONAny decode(const JSONDecoder& decoder);
    /// A value of any other type is an invalid one.
    static void encode(const QVariant& value, const JSONEncoder& encoder);

private:
    explicit JSONAny(QVariant value) : m_value(std::move(value)) {}

    QVariant m_value;
};
