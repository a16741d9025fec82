#include "json/JSONCoding.h"
#include "records/BaseInfoResponse.h"
#include "records/GuideResponse.h"
#include "records/HeartbeatResponse.h"
#include "records/KeywordResponse.h"
#include "records/UpgradeInfo.h"
#include "records/VideoListRequest.h"
#include "records/VideoListResponse.h"
#include "service/StandInService.h"

#include <QTest>

using namespace Qt::StringLiterals;

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

    void value_hasTheFirstTypeThatFits()
    {
        const auto check =
            [](const QByteArray& json, const QVariant& value, QByteArray encoded = {}) {
                const auto any = decodeReply<JSONAny>(json).value();
                QCOMPARE(any.value().typeId(), value.typeId());
                QCOMPARE(any.value(), value);
                QCOMPARE(std::get<QByteArray>(encodeJson(any)), encoded.isNull() ? json : encoded);
            };
        check("1.0", 1LL, "1");
        check("1.5", 1.5);
        check("9223372036854775807", 0x7fff'ffff'ffff'ffffLL);
        check("-9223372036854775808", -0x7fff'ffff'ffff'ffffLL - 1);
        check("9223372036854775808.0", 0x1p63, "9.223372036854776e+18");
        check("-9223372036854775809", -0x1p63, "-9.223372036854776e+18");
        check("\"1\"", u"1"_s);
        check("\"quote \\\" line\\n ü\"", u"quote \" line\n ü"_s);
        check(R"([[false,null],{"a":{"b":[]}}])",
            QVariantList{QVariantList{false, QVariant::fromValue(JSONNull())},
                QVariantMap{{u"a"_s, QVariantMap{{u"b"_s, QVariantList()}}}}});
        check("{\"\ufeffa\":\"\ufeff\ufeff\"}", QVariantMap{{u"\ufeffa"_s, u"\ufeff\ufeff"_s}});
        check(R"("a\u0000b")", u"a\0b"_s);
    }

    void text_thatIsNoJsonOrBeyondTheLimits_yieldsNothing()
    {
        const auto isRefused = [](const QByteArray& text) { return !decodeReply<JSONAny>(text); };
        const auto nested = QByteArray(512, '[') + QByteArray(512, ']');
        QVERIFY(isRefused("{\"a\":[1,"));
        QVERIFY(isRefused(QByteArray("1\0002", 3)));
        QVERIFY(isRefused("1e400"));
        QVERIFY(!isRefused(nested));
        QVERIFY(isRefused('[' + nested + ']'));
        QVERIFY(!isRefused('"' + QByteArray("\\\",[").repeated(100'000) + '"'));
        QVERIFY(isRefused("[0" + QByteArray(",0").repeated(100'000) + ']'));
        QVERIFY(isRefused("[{}" + QByteArray(",{}").repeated(99'999) + ']'));
    }

    void failure_saysWhatItIsAndWhere()
    {
        const nlohmann::json document{{"list", {1, {{"inner", nlohmann::json::binary({1})}}}}};
        const auto unknown = std::get<CodingError>(decodeJson<JSONAny>(document));
        QCOMPARE(unknown.debugDescription, u"Cannot decode JSONAny"_s);
        QCOMPARE(unknown.codingPath.back().stringValue(), u"Index 1"_s);

        const auto notNull = std::get<CodingError>(decodeJson<JSONNull>(nlohmann::json(0)));
        QCOMPARE(notNull.debugDescription, u"Wrong type for JSONNull"_s);

        std::string text;
        std::optional<CodingError> error;
        JSONAny::encode(QVariantList{true, QVariantList{qInf()}}, JSONEncoder(text, error));
        QCOMPARE(error.value().debugDescription, u"Cannot encode JSONAny"_s);
        QCOMPARE(error->value, qInf());
        QCOMPARE(error->codingPath.size(), std::size_t{1});
    }
};

QTEST_APPLESS_MAIN(RecordsTest)
#include "RecordsTest.moc"
