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

/// Decodes and encodes again; the reason and the path where it does not decode.
template <typename Record>
QByteArray roundTrip(const QByteArray& json)
{
    const auto decoded = decodeJson<Record>(nlohmann::json::parse(json.toStdString()));
    if (const auto* const error = std::get_if<CodingError>(&decoded)) {
        const auto* const kinds = "TNKI"; // type, null, key, invalid
        QByteArray reason(1, kinds[static_cast<int>(error->kind)]);
        for (const auto& key : error->codingPath)
            reason += ' ' + key.stringValue().toUtf8();
        return reason;
    }
    return std::get<QByteArray>(encodeJson(std::get<Record>(decoded)));
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

    void anythingMissingOrOfAnotherType_failsTheWholeReply_data()
    {
        QTest::addColumn<QByteArray>("part");
        QTest::addColumn<QByteArray>("replacement");
        QTest::addColumn<QByteArray>("reason");
        const auto row = [](const char* part, const char* replacement, const char* reason) {
            QTest::newRow(replacement)
                << QByteArray(part) << QByteArray(replacement) << QByteArray(reason);
        };
        row(R"("status":-1,)", "", "K");
        row("msg_bottom", "msgBottom", "K data msg");
        row("tittle", "title", "K data msg msg_top");
        row(R"("speedlimit":13)", R"("speedlimit":"13")", "T data speedlimit");
        row(R"("st":1)", R"("st":1.5)", "T data time st");
        row(R"("st":1)", R"("st":true)", "T data time st");
        row("9223372036854775807", "9223372036854775808", "T data ct");
        row(R"("info":"")", R"("info":0)", "T info");
        row(R"("info":"")", R"("info":null)", "N info");
        row(R"("color":"c")", R"("color":{})", "T data msg msg_bottom color");
        row(R"({"show":"a","hover":"b","click":"d"})", "\"c\"", "T data msg msg_top color");
        row("[2,3]", R"([2,"3"])", "T data time vt Index 1");
        row("[2,3]", "{}", "T data time vt");
    }

    void anythingMissingOrOfAnotherType_failsTheWholeReply()
    {
        QFETCH(QByteArray, part);
        QFETCH(QByteArray, replacement);
        QFETCH(QByteArray, reason);
        QVERIFY(heartbeat.contains(part));

        const auto json = QByteArray(heartbeat).replace(part, replacement);

        QCOMPARE(roundTrip<HeartbeatResponse>(json), reason);
        QVERIFY(!decodeReply<HeartbeatResponse>(json));
    }

    void text_keepsWhateverCharacterItStartsWith()
    {
        const auto json = QByteArray(heartbeat).replace("\"m\"", "\"\ufeffm\"");

        QCOMPARE(roundTrip<HeartbeatResponse>(json), json);
    }
};

QTEST_APPLESS_MAIN(RecordsTest)
#include "RecordsTest.moc"
