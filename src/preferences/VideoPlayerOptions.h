#pragma once

#include <QtGlobal>

#include <optional>

/// How the monitors are used. The values are what the suite stores.
enum class VideoPlayerScreenType : qint64 {
    combo = 0,   ///< one player spanning all monitors
    dynamic = 1, ///< every monitor shows the same video
    lonely = 2,  ///< one chosen monitor only
};

/// In which order videos play. The values are what the suite stores.
enum class VideoPlayerPlayModel : qint64 {
    single = 0, ///< repeat the current video
    list = 1,   ///< the library in its order
    random = 2, ///< the library in a random order
};

/// None for a raw value that is no case. `Option` is either of the two above.
template <typename Option>
constexpr std::optional<Option> optionFromRawValue(qint64 rawValue)
{
    if (rawValue < 0 || rawValue > 2)
        return std::nullopt;
    return static_cast<Option>(rawValue);
}
