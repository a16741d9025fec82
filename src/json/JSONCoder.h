#pragma once

#include "json/CodingError.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <string_view>

/// A JSON value that is to be decoded, where it stands, and whether decoding has failed.
///
/// Decoding never throws: the first failure is kept, and the document as a whole yields it instead
/// of a value. Borrows the document.
class JSONDecoder {
public:
    JSONDecoder(const nlohmann::json& value, std::optional<CodingError>& error)
        : m_value(value), m_error(error)
    {
    }

    const nlohmann::json& value() const { return m_value; }
    const CodingPath& path() const { return m_path; }
    bool failed() const { return m_error.has_value(); }

    JSONDecoder member(std::string_view key, const nlohmann::json& value) const
    {
        return {value, m_error, CodingPath(m_path, key)};
    }
    JSONDecoder element(std::size_t index, const nlohmann::json& value) const
    {
        return {value, m_error, CodingPath(m_path, index)};
    }

    /// Keeps the error unless there is one already.
    void fail(
        CodingError::Kind kind, const QString& expectedType, const QString& description) const;
    /// The value is of another kind than a record's member is declared with.
    void failForKind(const QString& expectedType) const;

private:
    JSONDecoder(
        const nlohmann::json& value, std::optional<CodingError>& error, const CodingPath& path)
        : m_value(value), m_error(error), m_path(path)
    {
    }

    const nlohmann::json& m_value;
    std::optional<CodingError>& m_error;
    CodingPath m_path;
};

/// Writes a JSON text, piece by piece, and knows where in it the next value stands. Members keep
/// the order in which they are written. Failures are kept as the decoder keeps them. Borrows the
/// text.
class JSONEncoder {
public:
    JSONEncoder(std::string& text, std::optional<CodingError>& error) : m_text(text), m_error(error)
    {
    }

    bool failed() const { return m_error.has_value(); }

    void writeNull() const { m_text += "null"; }
    void write(bool value) const { m_text += value ? "true" : "false"; }
    void write(qint64 value) const;
    /// A finite number.
    void write(double value) const;
    void write(const QString& value) const;

    /// `writeElement(encoder, element)` writes one element of `array`.
    template <typename Array, typename WriteElement>
    void writeArray(const Array& array, WriteElement&& writeElement) const
    {
        m_text += '[';
        std::size_t index = 0;
        for (const auto& element : array) {
            if (index != 0)
                m_text += ',';
            writeElement(JSONEncoder(m_text, m_error, CodingPath(m_path, index++)), element);
        }
        m_text += ']';
    }

    void beginObject() const { m_text += '{'; }
    /// Writes a key; the value comes next, through the encoder that is returned.
    JSONEncoder member(std::string_view key) const;
    void endObject() const { m_text += '}'; }

    void fail(const QVariant& value, const QString& description) const;

private:
    JSONEncoder(std::string& text, std::optional<CodingError>& error, const CodingPath& path)
        : m_text(text), m_error(error), m_path(path)
    {
    }

    std::string& m_text;
    std::optional<CodingError>& m_error;
    CodingPath m_path;
};

/// Parses a UTF-8 text. None for what is no JSON, and for a text nested deeper than 512 levels or
/// of more than 100,000 values, which no honest reply comes near: the memory that a hostile one can
/// claim stays below some 40 MB beside its text. Of equal keys in one object the last one counts.
std::optional<nlohmann::json> parseJson(std::string_view text);
