#pragma once

#include "json/JSONAny.h"
#include "json/JSONMember.h"
#include "records/ServiceReply.h"

#include <QString>
#include <QtGlobal>

#include <vector>

struct Time {
    qint64 st;
    std::vector<qint64> vt;
    qint64 tt;

    bool operator==(const Time&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(
            JSONMember("st", &Time::st), JSONMember("vt", &Time::vt), JSONMember("tt", &Time::tt));
    }
};

/// Colours as texts, for a message as it is shown, under the pointer, and pressed.
struct Color {
    QString show;
    QString hover;
    QString click;

    bool operator==(const Color&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("show", &Color::show),
            JSONMember("hover", &Color::hover),
            JSONMember("click", &Color::click));
    }
};

/// The message at the bottom.
struct MsgBottom {
    qint64 msgid;
    QString msg;
    QString url;
    QString color;
    qint64 back;

    bool operator==(const MsgBottom&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("msgid", &MsgBottom::msgid),
            JSONMember("msg", &MsgBottom::msg),
            JSONMember("url", &MsgBottom::url),
            JSONMember("color", &MsgBottom::color),
            JSONMember("back", &MsgBottom::back));
    }
};

/// The message at the top. The service does not spell it like the other one.
struct MsgTop {
    qint64 msgid;
    QString tittle; ///< the service's spelling
    QString url;
    Color color;
    qint64 point;
    qint64 type;
    qint64 back;
    qint64 width;
    qint64 height;

    bool operator==(const MsgTop&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("msgid", &MsgTop::msgid),
            JSONMember("tittle", &MsgTop::tittle),
            JSONMember("url", &MsgTop::url),
            JSONMember("color", &MsgTop::color),
            JSONMember("point", &MsgTop::point),
            JSONMember("type", &MsgTop::type),
            JSONMember("back", &MsgTop::back),
            JSONMember("width", &MsgTop::width),
            JSONMember("height", &MsgTop::height));
    }
};

struct Msg {
    MsgBottom msgBottom;
    MsgTop msgTop;

    bool operator==(const Msg&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(
            JSONMember("msg_bottom", &Msg::msgBottom), JSONMember("msg_top", &Msg::msgTop));
    }
};

struct DataBody {
    qint64 ct; ///< the service's counter
    Time time;
    Msg msg;
    std::vector<JSONAny> upgrade; ///< of no fixed shape
    qint64 speedlimit;

    bool operator==(const DataBody&) const = default;

    static constexpr auto jsonMembers()
    {
        return std::tuple(JSONMember("ct", &DataBody::ct),
            JSONMember("time", &DataBody::time),
            JSONMember("msg", &DataBody::msg),
            JSONMember("upgrade", &DataBody::upgrade),
            JSONMember("speedlimit", &DataBody::speedlimit));
    }
};

/// The reply to a heartbeat. The helper keeps it for whoever may want it; the service alone knows
/// the units of its numbers.
using HeartbeatResponse = ServiceReply<DataBody>;
