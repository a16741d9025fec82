#include "service/BaseInfoResponse.h"
#include "service/GuideResponse.h"
#include "service/HeartbeatResponse.h"
#include "service/JSONCoding.h"
#include "service/KeywordResponse.h"
#include "service/StandInService.h"
#include "service/UpgradeInfo.h"
#include "service/VideoListRequest.h"
#include "service/VideoListResponse.h"

#include <QTest>

namespace {

/// Whether a record is decoded from this and encoded to the same, but for what it does not know.
template <typename Record>
bool comesBack(const QByteArray& json)
{
    const auto known = decodeReply<Record>(QByteArray(json).insert(1, R"("unknown":{"a":[1]},)"));
    return known && std::get<QByteArray>(encodeJson(*known)) == json;
}

QByteArray reply(const QByteArray& data)
{
    return R"({"status":1,"info":"ok","data":)" + data + '}';
}

} // namespace

class RecordsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// The values differ, so that members that are mixed up are seen.
    void record_isDecodedAndEncodedInItsOrder()
    {
        QVERIFY(comesBack<HeartbeatResponse>(StandInService::heartbeatAnswer));
        QVERIFY(comesBack<KeywordResponse>(reply("[\"\ufeffa\",\"b\"]")));
        QVERIFY(comesBack<BaseInfoResponse>(
            reply(R"({"cate":[{"id":1,"title":"t"}],"hottags":["a"],"hotkey":[]})")));
        QVERIFY(comesBack<VideoListResponse>(
            reply(R"({"pages":1,"page":2,"total":3,"count":4,"vlist":[)"
                  R"({"id":1,"sign":"s","preurl":"p","title":"t","url":"u","description":"d",)"
                  R"("time":2,"size":3,"imgurl":"i","imgsize":4,"tags":"g","ratio":"16:9",)"
                  R"("width":5,"height":6,"frame":7,"rate":8,"audio":9,"uptime":"now",)"
                  R"("down":10,"view":11,"author":"a","avatar":"v","avatarsize":12,)"
                  R"("hp":"h","upcount":13}]})")));
        QVERIFY(comesBack<GuideResponse>(
            reply(R"({"leftPanel":["a"],"leftPanelUrl":["b"],"window":["c"],"windowUrl":["d"],)"
                  R"("browser":["e"],"browserUrl":["f"],"newFeature":["g"],)"
                  R"("newFeatureUrl":["h"]})")));
        QVERIFY(comesBack<VideoListRequest>(
            R"({"ui":"u","cate":1,"page":2,"keywords":"k","sort":3,"author":"a"})"));
        QVERIFY(comesBack<UpgradeInfo>(R"({"url":"u","md5":"m","ver":"2","exp":"e"})"));
    }

    void anythingMissingOrOfAnotherType_failsTheWholeReply()
    {
        for (const auto& [part, replacement] : {std::pair(R"("status":-1,)", ""),
                 std::pair(R"("speedlimit":13)", R"("speedlimit":"13")"),
                 std::pair(R"("st":1)", R"("st":1.5)"),
                 std::pair("9223372036854775807", "9223372036854775808"),
                 std::pair(R"("info":"")", R"("info":null)"),
                 std::pair(R"({"show":"a","hover":"b","click":"d"})", "\"c\""),
                 std::pair("[2,3]", R"([2,"3"])")}) {
            auto json = StandInService::heartbeatAnswer;
            json.replace(part, replacement);
            QVERIFY2(json != StandInService::heartbeatAnswer, part);
            QVERIFY2(!decodeReply<HeartbeatResponse>(json), replacement);
        }
    }
};

QTEST_APPLESS_MAIN(RecordsTest)
#include "RecordsTest.moc"
