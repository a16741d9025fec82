#pragma once

#include <mpv/client.h>

#include <cstring>

/// Reading libmpv's nested values.
namespace MpvNode {

/// The member of a map under that key if it is of that format, else null.
inline const mpv_node* child(const mpv_node& map, const char* key, mpv_format format)
{
    if (map.format != MPV_FORMAT_NODE_MAP)
        return nullptr;
    for (int i = 0; i < map.u.list->num; ++i) {
        const auto& value = map.u.list->values[i];
        if (std::strcmp(map.u.list->keys[i], key) == 0)
            return value.format == format ? &value : nullptr;
    }
    return nullptr;
}

} // namespace MpvNode
