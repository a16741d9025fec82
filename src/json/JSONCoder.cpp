#include "json/JSONCoder.h"

#include <nlohmann/json.hpp>

namespace {

constexpr int nestingLimit = 512;
constexpr int valueLimit = 100'000;

/// Looks at the structure alone and does not care whether the text is JSON.
bool withinLimits(std::string_view text)
{
    int depth = 0;
    int values = 1;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char character = text[i];
        if (inString) {
            if (character == '\\')
                ++i;
            else if (character == '"')
                inString = false;
            continue;
        }
        switch (character) {
        case '"':
            inString = true;
            break;
        case '[':
        case '{':
            // The first value inside counts, too.
            if (++values > valueLimit || ++depth > nestingLimit)
                return false;
            break;
        case ']':
        case '}':
            --depth;
            break;
        case ',':
            if (++values > valueLimit)
                return false;
            break;
        default:
            break;
        }
    }
    return true;
}

} // namespace

void JSONDecoder::fail(
    CodingError::Kind kind, const QString& expectedType, const QString& description) const
{
    if (!m_error)
        m_error = CodingError{kind, expectedType, m_path.keys(), description};
}

void JSONDecoder::failForKind(const QString& expectedType) const
{
    if (m_value.is_null()) {
        fail(CodingError::Kind::ValueNotFound,
            expectedType,
            QStringLiteral("Expected %1 but found null instead.").arg(expectedType));
        return;
    }
    fail(CodingError::Kind::TypeMismatch,
        expectedType,
        QStringLiteral("Expected to decode %1 but found %2 instead.")
            .arg(expectedType, QString::fromUtf8(m_value.type_name())));
}

void JSONEncoder::write(qint64 value) const
{
    m_text += std::to_string(value);
}

void JSONEncoder::write(double value) const
{
    m_text += nlohmann::json(value).dump(); // the shortest text that reads back as the same
}

void JSONEncoder::write(const QString& value) const
{
    m_text += nlohmann::json(value.toStdString()).dump();
}

JSONEncoder JSONEncoder::member(std::string_view key) const
{
    if (m_text.back() != '{')
        m_text += ',';
    m_text += nlohmann::json(key).dump();
    m_text += ':';
    return {m_text, m_error, CodingPath(m_path, key)};
}

void JSONEncoder::fail(const QVariant& value, const QString& description) const
{
    if (!m_error) {
        m_error =
            CodingError{CodingError::Kind::InvalidValue, {}, m_path.keys(), description, value};
    }
}

std::optional<nlohmann::json> parseJson(std::string_view text)
{
    // The parser would take a NUL for the end, whatever follows.
    if (text.find('\0') != std::string_view::npos || !withinLimits(text))
        return std::nullopt;
    auto document = nlohmann::json::parse(text, nullptr, false);
    if (document.is_discarded())
        return std::nullopt;
    return document;
}
