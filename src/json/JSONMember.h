#pragma once

#include <string_view>
#include <tuple>
#include <type_traits>

/// One member of a record and its key. A record lists its members once, in the order of their
/// declaration, and is decoded, encoded and compared by that list:
///
///     static constexpr auto jsonMembers()
///     {
///         return std::tuple(JSONMember("id", &Cate::id), JSONMember("title", &Cate::title));
///     }
///
/// All members are required. Unknown keys are ignored.
template <typename Record, typename Value>
struct JSONMember {
    using Type = std::remove_const_t<Value>;

    constexpr JSONMember(std::string_view jsonKey, Value Record::*recordMember)
        : key(jsonKey), member(recordMember)
    {
    }

    std::string_view key;
    Value Record::*member;
};
