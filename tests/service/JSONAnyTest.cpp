#include "service/JSONAny.h"

#include "service/JSONCoding.h"

#include <QTest>

#include <limits>

namespace {

QVariant decoded(const QByteArray& json)
{
    const auto any = decodeReply<JSONAny>(json);
    return any ? any->value() : QVariant(QStringLiteral("does not decode"));
}

const auto null = QVariant::fromValue(JSONNull());

} // namespace

class JSONAnyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void value_hasTheFirstTypeThatFits_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QVariant>("value");
        QTest::newRow("true") << QByteArray("true") << QVariant(true);
        QTest::newRow("integer") << QByteArray("1") << QVariant(1LL);
        QTest::newRow("integer with a point") << QByteArray("1.0") << QVariant(1LL);
        QTest::newRow("integer with an exponent") << QByteArray("12e2") << QVariant(1200LL);
        QTest::newRow("negative zero") << QByteArray("-0.0") << QVariant(0LL);
        QTest::newRow("fraction") << QByteArray("1.5") << QVariant(1.5);
        QTest::newRow("largest integer")
            << QByteArray("9223372036854775807") << QVariant(std::numeric_limits<qlonglong>::max());
        QTest::newRow("smallest integer") << QByteArray("-9223372036854775808")
                                          << QVariant(std::numeric_limits<qlonglong>::min());
        QTest::newRow("one above") << QByteArray("9223372036854775808") << QVariant(0x1p63);
        QTest::newRow("one above, with a point")
            << QByteArray("9223372036854775808.0") << QVariant(0x1p63);
        QTest::newRow("one below") << QByteArray("-9223372036854775809") << QVariant(-0x1p63);
        QTest::newRow("far below") << QByteArray("-1e300") << QVariant(-1e300);
        QTest::newRow("unsigned beyond all")
            << QByteArray("18446744073709551616") << QVariant(0x1p64);
        QTest::newRow("a digit in a text") << QByteArray("\"1\"") << QVariant(QStringLiteral("1"));
        QTest::newRow("null") << QByteArray("null") << null;
        QTest::newRow("empty array") << QByteArray("[]") << QVariant(QVariantList());
        QTest::newRow("empty object") << QByteArray("{}") << QVariant(QVariantMap());
        QTest::newRow("nested, in order")
            << QByteArray(R"([2,[false,null],{"a":{"b":[1]}}])")
            << QVariant(QVariantList{2LL,
                   QVariantList{false, null},
                   QVariantMap{{QStringLiteral("a"),
                       QVariantMap{{QStringLiteral("b"), QVariantList{1LL}}}}}});
        QTest::newRow("of equal keys the last")
            << QByteArray(R"({"a":1,"a":"x"})")
            << QVariant(QVariantMap{{QStringLiteral("a"), QStringLiteral("x")}});
    }

    void value_hasTheFirstTypeThatFits()
    {
        QFETCH(QByteArray, json);
        QFETCH(QVariant, value);

        const auto actual = decoded(json);

        QCOMPARE(actual.typeId(), value.typeId());
        QCOMPARE(actual, value);
    }

    void decodedValue_encodesToTheSameJson_data()
    {
        QTest::addColumn<QByteArray>("json");
        for (const auto* json : {"true",
                 "-7",
                 "9223372036854775807",
                 "0.1",
                 "1e+300",
                 "\"quote \\\" line\\n ü\"",
                 "null",
                 "[]",
                 "{}",
                 R"([1,[2,{"a":null,"b":[true,"x"]}],-1.5])"})
            QTest::newRow(json) << QByteArray(json);
    }

    void decodedValue_encodesToTheSameJson()
    {
        QFETCH(QByteArray, json);

        const auto encoded = encodeJson(decodeReply<JSONAny>(json).value());

        QCOMPARE(std::get<QByteArray>(encoded), json);
    }

    void text_thatIsNoJsonOrBeyondTheLimits_yieldsNothing_data()
    {
        QTest::addColumn<QByteArray>("text");
        const auto nested = [](int depth) {
            return QByteArray(depth, '[') + QByteArray(depth, ']');
        };
        QVERIFY(decodeReply<JSONAny>(nested(512)));
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("cut off") << QByteArray(R"({"a":[1,)");
        QTest::newRow("two values") << QByteArray("1 2");
        QTest::newRow("a number out of all ranges") << QByteArray("1e400");
        QTest::newRow("not UTF-8") << QByteArray("\"\xff\"");
        QTest::newRow("nested 513 deep") << nested(513);
        QTest::newRow("nested 100,000 deep") << nested(100'000);
        QTest::newRow("never closed") << QByteArray(100'000, '[');
        QTest::newRow("a million values") << "[0" + QByteArray(",0").repeated(1'000'000) + ']';
        QTest::newRow("a million objects") << "[{}" + QByteArray(",{}").repeated(1'000'000) + ']';
    }

    void text_thatIsNoJsonOrBeyondTheLimits_yieldsNothing()
    {
        QFETCH(QByteArray, text);

        QVERIFY(!decodeReply<JSONAny>(text));
    }

    void kindThatIsUnknown_failsWithThePathOfItsContainer()
    {
        const nlohmann::json document{{"list", {1, {{"inner", nlohmann::json::binary({1, 2})}}}}};

        const auto error = std::get<CodingError>(decodeJson<JSONAny>(document));

        QVERIFY(error.kind == CodingError::Kind::TypeMismatch);
        QCOMPARE(error.expectedType, QStringLiteral("JSONAny"));
        QCOMPARE(error.debugDescription, QStringLiteral("Cannot decode JSONAny"));
        QStringList path;
        for (const auto& key : error.codingPath)
            path << key.stringValue();
        QCOMPARE(path, (QStringList{QStringLiteral("list"), QStringLiteral("Index 1")}));
    }

    void valueThatJsonHasNot_isNotEncoded_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("a 32-bit integer") << QVariant(1);
        QTest::newRow("an infinite number") << QVariant(std::numeric_limits<double>::infinity());
        QTest::newRow("bytes") << QVariant(QByteArray("x"));
        QTest::newRow("no value") << QVariant();
    }

    void valueThatJsonHasNot_isNotEncoded()
    {
        QFETCH(QVariant, value);
        std::string text;
        std::optional<CodingError> error;
        JSONAny::encode(QVariantMap{{QStringLiteral("a"), QVariantList{true, value}}},
            JSONEncoder(text, error));

        QVERIFY(error.has_value());
        QVERIFY(error->kind == CodingError::Kind::InvalidValue);
        QCOMPARE(error->debugDescription, QStringLiteral("Cannot encode JSONAny"));
        QCOMPARE(error->value, value);
        QCOMPARE(error->codingPath.size(), std::size_t{1});
        QCOMPARE(error->codingPath.front().stringValue(), QStringLiteral("a"));
    }

    void null_isDecodedFromNullAlone()
    {
        QVERIFY(std::holds_alternative<JSONNull>(decodeJson<JSONNull>(nullptr)));
        for (const nlohmann::json& other : {nlohmann::json(0), nlohmann::json("")}) {
            const auto error = std::get<CodingError>(decodeJson<JSONNull>(other));
            QVERIFY(error.kind == CodingError::Kind::TypeMismatch);
            QCOMPARE(error.expectedType, QStringLiteral("JSONNull"));
            QCOMPARE(error.debugDescription, QStringLiteral("Wrong type for JSONNull"));
            QVERIFY(error.codingPath.empty());
        }
        QCOMPARE(std::get<QByteArray>(encodeJson(JSONNull())), "null");
    }

    void key_comesFromATextOnly()
    {
        QVERIFY(!JSONCodingKey::fromInteger(1));
        const auto key = JSONCodingKey::fromString(QStringLiteral("a"));
        QCOMPARE(key->stringValue(), QStringLiteral("a"));
        QVERIFY(!key->integerValue());
    }
};

QTEST_APPLESS_MAIN(JSONAnyTest)
#include "JSONAnyTest.moc"
