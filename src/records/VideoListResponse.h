#pragma once

#include "json/JSONMember.h"
#include "records/ServiceReply.h"
#include "records/VideoDetail.h"

#include <QString>
#include <QtGlobal>

#include <vector>

/// One page of a list.
struct TotalVideo {
    qint64 pages; ///< how many there are
    qint64 page;  ///< this one's number
    qint64 total; ///< videos in all pages
    qint64 count; ///< videos in this one
    std::vector<VideoDetail> vlist;

    bool operator==(const TotalVideo&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("pages", &TotalVideo::pages),
            JSONMember("page", &TotalVideo::page),
            JSONMember("total", &TotalVideo::total),
            JSONMember("count", &TotalVideo::count),
            JSONMember("vlist", &TotalVideo::vlist));
    }
};

/// The reply with one page of a list of videos.
using VideoListResponse = ServiceReply<TotalVideo>;
