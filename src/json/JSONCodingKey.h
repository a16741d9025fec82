#pragma once

#include <QString>

#include <optional>
#include <utility>

/// A key of a JSON object, made at run time from any text. Keys are texts only: none comes from a
/// number.
class JSONCodingKey {
public:
    static std::optional<JSONCodingKey> fromString(QString key)
    {
        return JSONCodingKey(std::move(key));
    }
    static std::optional<JSONCodingKey> fromInteger(qint64 /*key*/) { return std::nullopt; }

    const QString& stringValue() const { return m_key; }
    std::optional<qint64> integerValue() const { return std::nullopt; }
    QString description() const
    {
        return QStringLiteral("JSONCodingKey(stringValue: \"%1\", intValue: nil)").arg(m_key);
    }

    bool operator==(const JSONCodingKey&) const = default;

private:
    explicit JSONCodingKey(QString key) : m_key(std::move(key)) {}

    QString m_key;
};
