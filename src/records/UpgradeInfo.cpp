#include "records/UpgradeInfo.h"

std::optional<UpgradeInfo> UpgradeInfo::fromDictionary(const std::optional<QVariantMap>& dictionary)
{
    if (!dictionary || !dictionary->contains(QStringLiteral("url")))
        return std::nullopt;
    const auto text = [&dictionary](const QString& key) {
        const auto value = dictionary->value(key);
        return value.typeId() == QMetaType::QString ? value.toString() : QString();
    };
    return UpgradeInfo{text(QStringLiteral("url")),
        text(QStringLiteral("md5")),
        text(QStringLiteral("ver")),
        text(QStringLiteral("exp"))};
}
