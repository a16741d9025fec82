#include "service/CodingError.h"

#include <algorithm>

std::vector<JSONCodingKey> CodingPath::keys() const
{
    std::vector<JSONCodingKey> keys;
    for (const auto* link = this; link->m_parent != nullptr; link = link->m_parent) {
        const auto name = link->m_key.data() != nullptr
                              ? QString::fromUtf8(link->m_key)
                              : QStringLiteral("Index %1").arg(link->m_index);
        keys.push_back(*JSONCodingKey::fromString(name));
    }
    std::reverse(keys.begin(), keys.end());
    return keys;
}
