#include "json/CodingError.h"

#include "json/TextFromUtf8.h"

#include <algorithm>

using namespace Qt::StringLiterals;

std::vector<JSONCodingKey> CodingPath::keys() const
{
    std::vector<JSONCodingKey> keys;
    for (const auto* link = this; link->m_parent != nullptr; link = link->m_parent) {
        const auto name = link->m_key.data() != nullptr ? textFromUtf8(link->m_key)
                                                        : u"Index %1"_s.arg(link->m_index);
        keys.push_back(*JSONCodingKey::fromString(name));
    }
    std::reverse(keys.begin(), keys.end());
    return keys;
}
