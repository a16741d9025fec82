#pragma once

#include "json/JSONMember.h"

#include <QString>
#include <QtGlobal>

/// One video, as the service sends it and as a row of the library holds it. Made whole, with all
/// members in this order; only the four that are not const may change afterwards.
///
/// The units of the descriptive members are those of whoever wrote them; this program carries
/// them as they are. The ones that `tavelorctl import` writes are given.
struct VideoDetail {
    const qint64 id;
    const QString sign;   ///< the video's unique key
    const QString preurl; ///< address of a preview
    const QString title;
    QString url; ///< address of the video file; a file URL for imported videos
    QString description;
    const qint64 time;    ///< imported: length in seconds
    const qint64 size;    ///< imported: bytes
    const QString imgurl; ///< address of the cover picture
    const qint64 imgsize;
    const QString tags;
    const QString ratio;  ///< imported: "16:9"
    const qint64 width;   ///< pixels
    const qint64 height;  ///< pixels
    const qint64 frame;   ///< imported: frames a second, rounded
    const qint64 rate;    ///< imported: bits a second
    const qint64 audio;   ///< imported: 1 with sound, 0 without
    const QString uptime; ///< imported: UTC, ISO 8601
    const qint64 down;
    qint64 view;
    const QString author;
    const QString avatar; ///< address of the uploader's picture
    qint64 avatarsize;
    const QString hp;
    const qint64 upcount;

    bool operator==(const VideoDetail&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("id", &VideoDetail::id),
            JSONMember("sign", &VideoDetail::sign),
            JSONMember("preurl", &VideoDetail::preurl),
            JSONMember("title", &VideoDetail::title),
            JSONMember("url", &VideoDetail::url),
            JSONMember("description", &VideoDetail::description),
            JSONMember("time", &VideoDetail::time),
            JSONMember("size", &VideoDetail::size),
            JSONMember("imgurl", &VideoDetail::imgurl),
            JSONMember("imgsize", &VideoDetail::imgsize),
            JSONMember("tags", &VideoDetail::tags),
            JSONMember("ratio", &VideoDetail::ratio),
            JSONMember("width", &VideoDetail::width),
            JSONMember("height", &VideoDetail::height),
            JSONMember("frame", &VideoDetail::frame),
            JSONMember("rate", &VideoDetail::rate),
            JSONMember("audio", &VideoDetail::audio),
            JSONMember("uptime", &VideoDetail::uptime),
            JSONMember("down", &VideoDetail::down),
            JSONMember("view", &VideoDetail::view),
            JSONMember("author", &VideoDetail::author),
            JSONMember("avatar", &VideoDetail::avatar),
            JSONMember("avatarsize", &VideoDetail::avatarsize),
            JSONMember("hp", &VideoDetail::hp),
            JSONMember("upcount", &VideoDetail::upcount));
    }
};
