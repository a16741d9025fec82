#pragma once

#include "service/JSONMember.h"

#include <QString>
#include <QtGlobal>

#include <vector>

/// The reply with suggestions of search words.
struct KeywordResponse {
    qint64 status;
    QString info;
    std::vector<QString> data;

    bool operator==(const KeywordResponse&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("status", &KeywordResponse::status),
            JSONMember("info", &KeywordResponse::info),
            JSONMember("data", &KeywordResponse::data));
    }
};
