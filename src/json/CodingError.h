#pragma once

#include "json/JSONCodingKey.h"

#include <QString>
#include <QVariant>

#include <cstddef>
#include <string_view>
#include <vector>

/// Why a JSON text did not become a record, or a value did not become JSON.
struct CodingError {
    enum class Kind {
        TypeMismatch,  ///< decoding: a value of another kind than the expected type
        ValueNotFound, ///< decoding: null where the expected type has to be
        KeyNotFound,   ///< decoding: an object lacks a key
        InvalidValue,  ///< encoding: a value that JSON has no notation for
    };

    Kind kind;
    QString expectedType;                  ///< decoding; empty where no type was expected
    std::vector<JSONCodingKey> codingPath; ///< from the top to the container of the failure
    QString debugDescription;
    QVariant value = {}; ///< encoding: the offending one
};

/// The way from the top of a document to a value in it: a chain of links that borrow one another,
/// so that going down costs nothing until an error asks for the keys.
class CodingPath {
public:
    CodingPath() = default;
    CodingPath(const CodingPath& parent, std::string_view key) : m_parent(&parent), m_key(key) {}
    CodingPath(const CodingPath& parent, std::size_t index) : m_parent(&parent), m_index(index) {}

    /// An array's element is named "Index 3".
    std::vector<JSONCodingKey> keys() const;

private:
    const CodingPath* m_parent = nullptr; // none at the top
    std::string_view m_key;               // not null for an object's member
    std::size_t m_index = 0;
};
