#pragma once

#include "json/JSONMember.h"

#include <QString>
#include <QtGlobal>

/// The ways to sort a list of videos.
enum class VideoSort { newest, hottest };

/// Asks for one page of a list of videos.
struct VideoListRequest {
    const QString ui; ///< identifies the device
    qint64 cate;      ///< a category's `id`
    qint64 page;      ///< the wanted page's number
    QString keywords;
    qint64 sort;    ///< how to sort; the service numbers the ways
    QString author; ///< only videos of this one

    bool operator==(const VideoListRequest&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("ui", &VideoListRequest::ui),
            JSONMember("cate", &VideoListRequest::cate),
            JSONMember("page", &VideoListRequest::page),
            JSONMember("keywords", &VideoListRequest::keywords),
            JSONMember("sort", &VideoListRequest::sort),
            JSONMember("author", &VideoListRequest::author));
    }
};
