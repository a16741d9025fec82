#pragma once

#include <QString>

#include <string_view>

/// The same characters, a U+FEFF at the start among them: `QString` on its own takes that one for a
/// byte order mark, which a text inside a document cannot have.
QString textFromUtf8(std::string_view utf8);
