#include "service/BaseInfoResponse.h"
#include "service/GuideResponse.h"
#include "service/HeartbeatResponse.h"
#include "service/JSONCoding.h"
#include "service/KeywordResponse.h"
#include "service/UpgradeInfo.h"
#include "service/VideoDetailResponse.h"
#include "service/VideoListRequest.h"
#include "service/VideoListResponse.h"

#include <QTest>

namespace {

const QByteArray video =
    R"({"id":1,"sign":"s","preurl":"p","title":"t","url":"u","description":"d",)"
    R"("time":2,"size":3,"imgurl":"i","imgsize":4,"tags":"g","ratio":"16:9",)"
    R"("width":5,"height":6,"frame":7,"rate":8,"audio":9,"uptime":"now",)"
    R"("down":10,"view":11,"author":"a","avatar":"v","avatarsize":12,)"
    R"("hp":"h","upcount":13})";

const QByteArray heartbeat =
    R"({"status":-1,"info":"","data":{"ct":9223372036854775807,)"
    R"("time":{"st":1,"vt":[2,3],"tt":4},)"
    R"("msg":{"msg_bottom":{"msgid":5,"msg":"m","url":"u","color":"c","back":6},)"
    R"("msg_top":{"msgid":7,"tittle":"t","url":"v",)"
    R"("color":{"show":"a","hover":"b","click":"d"},)"
    R"("point":8,"type":9,"back":10,"width":11,"height":12}},)"
    R"("upgrade":[true,1,1.5,"x",null,{"a":[]}],"speedlimit":13}})";

/// Decodes and encodes again; empty where it does not decode.
template <typename Record>
QByteArray roundTrip(const QByteArray& json)
{
    const auto decoded = decodeReply<Record>(json);
    return decoded ? std::get<QByteArray>(encodeJson(*decoded)) : QByteArray();
}

using RoundTrip = QByteArray (*)(const QByteArray& json);

} // namespace

Q_DECLARE_METATYPE(RoundTrip)

class RecordsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// The values differ, so that members that are mixed up are seen.
    void record_isDecodedAndEncodedInItsOrder_data()
    {
        QTest::addColumn<RoundTrip>("roundTrip");
        QTest::addColumn<QByteArray>("json");
        const auto row = [](const char* name, RoundTrip trip, const QByteArray& json) {
            QTest::newRow(name) << trip << json;
        };
        const auto reply = [](const QByteArray& data) {
            return R"({"status":1,"info":"ok","data":)" + data + '}';
        };
        row("catalogue",
            roundTrip<BaseInfoResponse>,
            reply(R"({"cate":[{"id":1,"title":"t"}],"hottags":["a"],"hotkey":[]})"));
        row("video", roundTrip<VideoDetailResponse>, reply(video));
        row("list",
            roundTrip<VideoListResponse>,
            reply(R"({"pages":1,"page":2,"total":3,"count":4,"vlist":[)" + video + "]}"));
        row("words", roundTrip<KeywordResponse>, reply(R"(["a","b"])"));
        row("heartbeat", roundTrip<HeartbeatResponse>, heartbeat);
        row("guide",
            roundTrip<GuideResponse>,
            reply(R"({"leftPanel":["a"],"leftPanelUrl":["b"],"window":["c"],"windowUrl":["d"],)"
                  R"("browser":["e"],"browserUrl":["f"],"newFeature":["g"],)"
                  R"("newFeatureUrl":["h"]})"));
        row("request",
            roundTrip<VideoListRequest>,
            R"({"ui":"u","cate":1,"page":2,"keywords":"k","sort":3,"author":"a"})");
        row("offer", roundTrip<UpgradeInfo>, R"({"url":"u","md5":"m","ver":"2","exp":"e"})");
    }

    void record_isDecodedAndEncodedInItsOrder()
    {
        QFETCH(RoundTrip, roundTrip);
        QFETCH(QByteArray, json);

        QCOMPARE(roundTrip(json), json);
        QCOMPARE(roundTrip(QByteArray(json).insert(1, R"("unknown":{"a":[1]},)")), json);
    }

    void anythingMissingOrOfAnotherType_failsTheWholeReply()
    {
        const std::pair<const char*, const char*> faults[] = {
            {R"("status":-1,)", ""},
            {"msg_bottom", "msgBottom"},
            {"tittle", "title"},
            {R"("speedlimit":13)", R"("speedlimit":"13")"},
            {R"("st":1)", R"("st":1.5)"},
            {R"("st":1)", R"("st":true)"},
            {"9223372036854775807", "9223372036854775808"},
            {R"("info":"")", R"("info":0)"},
            {R"("info":"")", R"("info":null)"},
            {R"({"show":"a","hover":"b","click":"d"})", "\"c\""},
            {"[2,3]", R"([2,"3"])"},
            {"[2,3]", "{}"},
        };
        for (const auto& [part, replacement] : faults) {
            QVERIFY(heartbeat.contains(part));
            const auto json = QByteArray(heartbeat).replace(part, replacement);
            QVERIFY2(!decodeReply<HeartbeatResponse>(json), replacement);
        }
    }

    void text_keepsWhateverCharacterItStartsWith()
    {
        const auto json = QByteArray(heartbeat).replace("\"m\"", "\"\ufeffm\"");

        QCOMPARE(roundTrip<HeartbeatResponse>(json), json);
    }
};

QTEST_APPLESS_MAIN(RecordsTest)
#include "RecordsTest.moc"
