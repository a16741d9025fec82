#pragma once

#include "json/JSONMember.h"
#include "records/ServiceReply.h"

#include <QString>
#include <QtGlobal>

#include <vector>

/// A category of videos.
struct Cate {
    qint64 id; ///< what a request for a list of videos names
    QString title;

    bool operator==(const Cate&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("id", &Cate::id), JSONMember("title", &Cate::title));
    }
};

struct BaseInfo {
    std::vector<Cate> cate;       ///< the categories
    std::vector<QString> hottags; ///< popular tags
    std::vector<QString> hotkey;  ///< popular search words

    bool operator==(const BaseInfo&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("cate", &BaseInfo::cate),
            JSONMember("hottags", &BaseInfo::hottags),
            JSONMember("hotkey", &BaseInfo::hotkey));
    }
};

/// The reply with the catalogue of categories and what is searched for most.
using BaseInfoResponse = ServiceReply<BaseInfo>;
