#pragma once

#include <QMetaType>

/// JSON's null as a value of its own, where anything that JSON can hold is kept.
struct JSONNull {
    bool operator==(const JSONNull&) const = default;
};

Q_DECLARE_METATYPE(JSONNull)
