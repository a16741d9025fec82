#pragma once

#include "json/JSONMember.h"

#include <QString>
#include <QtGlobal>

/// What every reply has around its data.
template <typename Data>
struct ServiceReply {
    qint64 status; ///< the service's; not looked at
    QString info;  ///< the same in words
    Data data;

    bool operator==(const ServiceReply&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("status", &ServiceReply::status),
            JSONMember("info", &ServiceReply::info),
            JSONMember("data", &ServiceReply::data));
    }
};
