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
    R"("msg":{"msg_bottom":{"msgid":1,"msg":"m","url":"u","color":"c","back":0},)"
    R"("msg_top":{"msgid":2,"tittle":"t","url":"u",)"
    R"("color":{"show":"a","hover":"b","click":"c"},)"
    R"("point":1,"type":2,"back":3,"width":4,"height":5}},)"
    R"("upgrade":[true,1,1.5,"x",null,{"a":[]}],"speedlimit":6}})";

QByteArray reply(const QByteArray& data)
{
    return R"({"status":1,"info":"ok","data":)" + data + '}';
}

/// Decodes and encodes again; the reason where it does not decode.
template <typename Record>
QByteArray roundTrip(const QByteArray& json)
{
    const auto decoded = decodeJson<Record>(nlohmann::json::parse(json.toStdString()));
    if (const auto* error = std::get_if<CodingError>(&decoded))
        return error->debugDescription.toUtf8();
    return std::get<QByteArray>(encodeJson(std::get<Record>(decoded)));
}

} // namespace

class RecordsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void record_isDecodedAndEncodedInItsOrder()
    {
        const auto info = reply(R"({"cate":[{"id":1,"title":"t"}],"hottags":["a"],"hotkey":[]})");
        const auto list =
            reply(R"({"pages":1,"page":2,"total":3,"count":4,"vlist":[)" + video + "]}");
        const auto words = reply(R"(["a","b"])");
        const auto guide = reply(R"({"leftPanel":["a"],"leftPanelUrl":["b"],"window":[],)"
                                 R"("windowUrl":[],"browser":[],"browserUrl":[],)"
                                 R"("newFeature":["c"],"newFeatureUrl":["d"]})");
        const QByteArray request =
            R"({"ui":"u","cate":1,"page":2,"keywords":"k","sort":3,"author":"a"})";
        const QByteArray offer = R"({"url":"u","md5":"m","ver":"2","exp":"e"})";

        QCOMPARE(roundTrip<BaseInfoResponse>(info), info);
        QCOMPARE(roundTrip<VideoDetailResponse>(reply(video)), reply(video));
        QCOMPARE(roundTrip<VideoListResponse>(list), list);
        QCOMPARE(roundTrip<KeywordResponse>(words), words);
        QCOMPARE(roundTrip<HeartbeatResponse>(heartbeat), heartbeat);
        QCOMPARE(roundTrip<GuideResponse>(guide), guide);
        QCOMPARE(roundTrip<VideoListRequest>(request), request);
        QCOMPARE(roundTrip<UpgradeInfo>(offer), offer);
    }

    void members_landWhereTheyBelong()
    {
        const auto decoded = decodeReply<HeartbeatResponse>(heartbeat).value();

        QCOMPARE(decoded.status, -1);
        QCOMPARE(decoded.data.time.vt, (std::vector<qint64>{2, 3}));
        QCOMPARE(decoded.data.msg.msgBottom.color, QStringLiteral("c"));
        QCOMPARE(decoded.data.msg.msgTop.tittle, QStringLiteral("t"));
        QCOMPARE(decoded.data.msg.msgTop.color.hover, QStringLiteral("b"));
        QCOMPARE(decoded.data.upgrade.size(), std::size_t{6});
    }

    void unknownKeys_areIgnored()
    {
        const auto json = QByteArray(video).insert(1, R"("new":{"a":[1]},)");

        QCOMPARE(roundTrip<VideoDetail>(json), video);
    }

    void anythingMissingOrOfAnotherType_failsTheWholeReply_data()
    {
        QTest::addColumn<QByteArray>("part");
        QTest::addColumn<QByteArray>("replacement");
        QTest::addColumn<CodingError::Kind>("kind");
        QTest::addColumn<QString>("path");

        using Kind = CodingError::Kind;
        const auto row =
            [](const char* name, const char* part, const char* other, Kind kind, const char* path) {
                QTest::newRow(name)
                    << QByteArray(part) << QByteArray(other) << kind << QString::fromLatin1(path);
            };
        row("no status", R"("status":-1,)", "", Kind::KeyNotFound, "");
        row("the member's name instead of its key",
            "msg_bottom",
            "msgBottom",
            Kind::KeyNotFound,
            "data.msg");
        row("the spelling corrected", "tittle", "title", Kind::KeyNotFound, "data.msg.msg_top");
        row("a text for an integer",
            R"("speedlimit":6)",
            R"("speedlimit":"6")",
            Kind::TypeMismatch,
            "data.speedlimit");
        row("a fraction for an integer",
            R"("st":1)",
            R"("st":1.5)",
            Kind::TypeMismatch,
            "data.time.st");
        row("a boolean for an integer",
            R"("st":1)",
            R"("st":true)",
            Kind::TypeMismatch,
            "data.time.st");
        row("an integer beyond 64 bits",
            "9223372036854775807",
            "9223372036854775808",
            Kind::TypeMismatch,
            "data.ct");
        row("an integer for a text", R"("info":"")", R"("info":0)", Kind::TypeMismatch, "info");
        row("null for a text", R"("info":"")", R"("info":null)", Kind::ValueNotFound, "info");
        row("an object for the plain colour",
            R"("color":"c")",
            R"("color":{"show":"a","hover":"b","click":"c"})",
            Kind::TypeMismatch,
            "data.msg.msg_bottom.color");
        row("a text for the colours",
            R"({"show":"a","hover":"b","click":"c"})",
            R"("c")",
            Kind::TypeMismatch,
            "data.msg.msg_top.color");
        row("one bad element of an array",
            "[2,3]",
            R"([2,"3"])",
            Kind::TypeMismatch,
            "data.time.vt.Index 1");
        row("an object for an array", "[2,3]", "{}", Kind::TypeMismatch, "data.time.vt");
    }

    void anythingMissingOrOfAnotherType_failsTheWholeReply()
    {
        QFETCH(QByteArray, part);
        QFETCH(QByteArray, replacement);
        QFETCH(CodingError::Kind, kind);
        QFETCH(QString, path);
        QVERIFY(heartbeat.contains(part));
        const auto json = QByteArray(heartbeat).replace(part, replacement);

        const auto decoded =
            decodeJson<HeartbeatResponse>(nlohmann::json::parse(json.toStdString()));

        const auto* const error = std::get_if<CodingError>(&decoded);
        QVERIFY(error);
        QCOMPARE(error->kind, kind);
        QStringList keys;
        for (const auto& key : error->codingPath)
            keys << key.stringValue();
        QCOMPARE(keys.join(u'.'), path);
        QVERIFY(!decodeReply<HeartbeatResponse>(json));
    }

    void integerWithAPoint_isAnInteger()
    {
        const auto json = QByteArray(heartbeat).replace("\"st\":1", "\"st\":1.0");

        QCOMPARE(decodeReply<HeartbeatResponse>(json).value().data.time.st, 1);
    }

    void offerFromADictionary_isLenient_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QStringList>("members"); // empty for no offer

        QTest::newRow("complete") << QByteArray(R"({"url":"u","md5":"m","ver":"2","exp":"e"})")
                                  << QStringList{QStringLiteral("u"),
                                         QStringLiteral("m"),
                                         QStringLiteral("2"),
                                         QStringLiteral("e")};
        QTest::newRow("an address alone")
            << QByteArray(R"({"url":"u"})") << QStringList{QStringLiteral("u"), {}, {}, {}};
        QTest::newRow("an address that is a number")
            << QByteArray(R"({"url":3,"ver":null})") << QStringList{{}, {}, {}, {}};
        QTest::newRow("no address") << QByteArray(R"({"ver":"2"})") << QStringList();
    }

    void offerFromADictionary_isLenient()
    {
        QFETCH(QByteArray, json);
        QFETCH(QStringList, members);

        const auto offer =
            UpgradeInfo::fromDictionary(decodeReply<JSONAny>(json).value().value().toMap());

        QCOMPARE(offer.has_value(), !members.isEmpty());
        if (offer)
            QCOMPARE((QStringList{offer->url, offer->md5, offer->ver, offer->exp}), members);
        QVERIFY(!UpgradeInfo::fromDictionary(std::nullopt));
    }
};

QTEST_APPLESS_MAIN(RecordsTest)
#include "RecordsTest.moc"
