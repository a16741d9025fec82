#include "service/JSONAny.h"

#include "service/JSONCoding.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

class JSONAnyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void value_hasTheFirstTypeThatFits_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QByteArray>("encoded");
        using Integers = std::numeric_limits<qlonglong>;
        const auto row =
            [](const QByteArray& json, const QVariant& value, const char* encoded = {}) {
                QTest::newRow(json) << json << value << (encoded ? QByteArray(encoded) : json);
            };
        row("1", 1LL);
        row("1.0", 1LL, "1");
        row("-0.0", 0LL, "0");
        row("1.5", 1.5);
        row("9223372036854775807", Integers::max());
        row("-9223372036854775808", Integers::min());
        row("9223372036854775808.0", 0x1p63, "9.223372036854776e+18");
        row("-9223372036854775809", -0x1p63, "-9.223372036854776e+18");
        row("\"1\"", u"1"_s);
        row("\"quote \\\" line\\n ü\"", u"quote \" line\n ü"_s);
        row(R"([[false,null],{"a":{"b":[]}}])",
            QVariantList{QVariantList{false, QVariant::fromValue(JSONNull())},
                QVariantMap{{u"a"_s, QVariantMap{{u"b"_s, QVariantList()}}}}});
        row(R"({"a":1,"a":"x"})", QVariantMap{{u"a"_s, u"x"_s}}, R"({"a":"x"})");
        row("{\"\ufeffa\":\"\ufeff\ufeff\"}", QVariantMap{{u"\ufeffa"_s, u"\ufeff\ufeff"_s}});
        row(R"("a\u0000b")", u"a\0b"_s);
    }

    void value_hasTheFirstTypeThatFits()
    {
        QFETCH(QByteArray, json);
        QFETCH(QVariant, value);
        QFETCH(QByteArray, encoded);

        const auto any = decodeReply<JSONAny>(json).value();

        QCOMPARE(any.value().typeId(), value.typeId());
        QCOMPARE(any.value(), value);
        QCOMPARE(std::get<QByteArray>(encodeJson(any)), encoded);
    }

    void text_thatIsNoJsonOrBeyondTheLimits_yieldsNothing()
    {
        const auto isRefused = [](const QByteArray& text) { return !decodeReply<JSONAny>(text); };
        const auto nested = [](int depth) {
            return QByteArray(depth, '[') + QByteArray(depth, ']');
        };
        QVERIFY(isRefused(""));
        QVERIFY(isRefused("{\"a\":[1,"));
        QVERIFY(isRefused("1 2"));
        QVERIFY(isRefused(QByteArray("1\0002", 3)));
        QVERIFY(isRefused("1e400"));
        QVERIFY(isRefused("\"\xff\"")); // not UTF-8
        QVERIFY(!isRefused(nested(512)));
        QVERIFY(isRefused(nested(513)));
        QVERIFY(!isRefused('"' + QByteArray("\\\",[").repeated(100'000) + '"'));
        QVERIFY(isRefused("[0" + QByteArray(",0").repeated(100'000) + ']'));
        QVERIFY(isRefused("[{}" + QByteArray(",{}").repeated(99'999) + ']'));
    }

    void kindThatIsUnknown_failsWithThePathOfItsContainer()
    {
        const nlohmann::json document{{"list", {1, {{"inner", nlohmann::json::binary({1})}}}}};
        const auto error = std::get<CodingError>(decodeJson<JSONAny>(document));
        QCOMPARE(error.kind, CodingError::Kind::TypeMismatch);
        QCOMPARE(error.expectedType, u"JSONAny"_s);
        QCOMPARE(error.debugDescription, u"Cannot decode JSONAny"_s);
        QCOMPARE(error.codingPath.at(0).stringValue(), u"list"_s);
        QCOMPARE(error.codingPath.at(1).stringValue(), u"Index 1"_s);
        QCOMPARE(error.codingPath.size(), std::size_t{2});
    }

    void valueThatJsonHasNot_isNotEncoded()
    {
        std::string text;
        std::optional<CodingError> error;
        const QVariantMap any{{u"a"_s, QVariantList{true, qInf()}}};
        JSONAny::encode(any, JSONEncoder(text, error));
        QCOMPARE(error.value().kind, CodingError::Kind::InvalidValue);
        QCOMPARE(error->debugDescription, u"Cannot encode JSONAny"_s);
        QCOMPARE(error->value, qInf());
        QCOMPARE(error->codingPath.size(), std::size_t{1});
    }

    void null_isDecodedFromNullAlone()
    {
        const auto error = std::get<CodingError>(decodeJson<JSONNull>(nlohmann::json(0)));
        QCOMPARE(error.expectedType, u"JSONNull"_s);
        QCOMPARE(error.debugDescription, u"Wrong type for JSONNull"_s);
        QCOMPARE(std::get<QByteArray>(encodeJson(decodeReply<JSONNull>("null").value())), "null");
    }
};

QTEST_APPLESS_MAIN(JSONAnyTest)
#include "JSONAnyTest.moc"
