#pragma once

#include "service/JSONMember.h"
#include "service/VideoDetail.h"

#include <QString>
#include <QtGlobal>

/// The reply with one video.
struct VideoDetailResponse {
    qint64 status;
    QString info;
    VideoDetail data;

    bool operator==(const VideoDetailResponse&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("status", &VideoDetailResponse::status),
            JSONMember("info", &VideoDetailResponse::info),
            JSONMember("data", &VideoDetailResponse::data));
    }
};
