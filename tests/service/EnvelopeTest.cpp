#include "service/Envelope.h"

#include "service/OpenSsl.h"

#include <QTest>

class EnvelopeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sealedBody_isWhatOpensslMakesOfTheEscapedText_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("escaped");
        QTest::newRow("a request") << QByteArray(R"({"ui":"A","v":"1.0"})")
                                   << QByteArray(R"({\"ui\":\"A\",\"v\":\"1.0\"})");
        QTest::newRow("a quote inside a value")
            << QByteArray(R"({"v":"a"b"})") << QByteArray(R"({\"v\":\"a\"b\"})");
        QTest::newRow("a whole block") << QByteArray(16, 'x') << QByteArray(16, 'x');
        QTest::newRow("beyond ASCII") << QByteArray("ü漢🎬") << QByteArray("ü漢🎬");
        QTest::newRow("nothing") << QByteArray() << QByteArray();
    }

    void sealedBody_isWhatOpensslMakesOfTheEscapedText()
    {
        QFETCH(QByteArray, body);
        QFETCH(QByteArray, escaped);

        QCOMPARE(Envelope::sealBody(body).value(), OpenSsl::encipher(escaped));
    }

    void openedReply_isWhatOpensslEnciphered()
    {
        const auto opened = [](const QByteArray& text) {
            return Envelope::openBody(OpenSsl::encipher(text)).value();
        };
        QCOMPARE(opened("{\"a\":\"ü\"}"), "{\"a\":\"ü\"}");
        QCOMPARE(opened(QByteArray("{}") + QByteArray(20, '\0')), "{}");
        QCOMPARE(opened(QByteArray("a\0b", 3)), "ab");
        QCOMPARE(opened(""), "");
        const auto filledUp = OpenSsl::encipherUnpadded(QByteArray("{}") + QByteArray(14, '\0'));
        QCOMPARE(Envelope::openBody(filledUp).value(), "{}");
    }

    void unusableReply_yieldsNothing_data()
    {
        QTest::addColumn<QByteArray>("reply");
        const auto good = OpenSsl::encipher(QByteArray(100, ' '));
        QVERIFY(good.endsWith('='));
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no base64") << QByteArray("<html></html>");
        QTest::newRow("a line break") << QByteArray(good).insert(64, '\n');
        QTest::newRow("a blank at its end") << good + ' ';
        QTest::newRow("no padding characters") << QByteArray(good).replace('=', "");
        QTest::newRow("padding characters inside") << QByteArray(good).replace(4, 4, "AA==");
        QTest::newRow("the alphabet of URLs") << QByteArray("-_-_") + good.mid(4);
        QTest::newRow("half a block") << QByteArray("AAAAAAAAAAA=");
        QTest::newRow("cut off") << good.left(64);
        QTest::newRow("another key") << OpenSsl::encipherWithAnotherKey(QByteArray(100, ' '));
        QTest::newRow("padding of 17 bytes")
            << OpenSsl::encipherUnpadded(QByteArray(15, ' ') + '\x11');
        QTest::newRow("not UTF-8") << OpenSsl::encipher("\xff\xfe");
    }

    void unusableReply_yieldsNothing()
    {
        QFETCH(QByteArray, reply);

        QVERIFY(!Envelope::openBody(reply));
    }
};

QTEST_GUILESS_MAIN(EnvelopeTest)
#include "EnvelopeTest.moc"
