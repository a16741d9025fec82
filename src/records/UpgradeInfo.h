#pragma once

#include "json/JSONMember.h"

#include <QString>
#include <QVariantMap>

#include <optional>

/// An offered upgrade.
struct UpgradeInfo {
    QString url; ///< where the new version is fetched
    QString md5; ///< of the package, as text
    QString ver; ///< the new version
    QString exp; ///< what is new, for people; may be HTML

    bool operator==(const UpgradeInfo&) const = default;

    /// None without a dictionary, and without a key "url" in it. Any member whose key is missing
    /// or holds no text, "url" among them, is the empty text.
    static std::optional<UpgradeInfo> fromDictionary(const std::optional<QVariantMap>& dictionary);

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("url", &UpgradeInfo::url),
            JSONMember("md5", &UpgradeInfo::md5),
            JSONMember("ver", &UpgradeInfo::ver),
            JSONMember("exp", &UpgradeInfo::exp));
    }
};
