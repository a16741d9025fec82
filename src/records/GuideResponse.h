#pragma once

#include "json/JSONMember.h"
#include "records/ServiceReply.h"

#include <QString>
#include <QtGlobal>

#include <vector>

/// Four lists of pictures, each an image file as base64 text, and for each list one of as many
/// addresses: the n-th picture leads to the n-th address.
struct PurpleData {
    std::vector<QString> leftPanel; ///< for the left panel
    std::vector<QString> leftPanelUrl;
    std::vector<QString> window; ///< for a window
    std::vector<QString> windowUrl;
    std::vector<QString> browser; ///< for the browser
    std::vector<QString> browserUrl;
    std::vector<QString> newFeature; ///< announcing new features
    std::vector<QString> newFeatureUrl;

    bool operator==(const PurpleData&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("leftPanel", &PurpleData::leftPanel),
            JSONMember("leftPanelUrl", &PurpleData::leftPanelUrl),
            JSONMember("window", &PurpleData::window),
            JSONMember("windowUrl", &PurpleData::windowUrl),
            JSONMember("browser", &PurpleData::browser),
            JSONMember("browserUrl", &PurpleData::browserUrl),
            JSONMember("newFeature", &PurpleData::newFeature),
            JSONMember("newFeatureUrl", &PurpleData::newFeatureUrl));
    }
};

/// The reply with the guide's pictures.
using GuideResponse = ServiceReply<PurpleData>;
