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
        QTest::newRow("quotes") << QByteArray(R"({"v":"a"b"})")
                                << QByteArray(R"({\"v\":\"a\"b\"})");
        QTest::newRow("a whole block") << QByteArray(16, 'x') << QByteArray(16, 'x');
        QTest::newRow("beyond ASCII") << QByteArray("ü漢🎬") << QByteArray("ü漢🎬");
    }

    void sealedBody_isWhatOpensslMakesOfTheEscapedText()
    {
        QFETCH(QByteArray, body);
        QFETCH(QByteArray, escaped);

        QCOMPARE(Envelope::sealBody(body).value(), OpenSsl::encipher(escaped));
    }

    void openedReply_isWhatOpensslEnciphered_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QByteArray>("text");
        const auto row = [](const char* name, const QByteArray& reply, const QByteArray& text) {
            QTest::newRow(name) << reply << text;
        };
        const QByteArray text(100, 'x');
        const auto good = OpenSsl::encipher(text);
        row("plain", good, text);
        row("beyond ASCII", OpenSsl::encipher("\ufeffü"), "\ufeffü");
        row("nothing", OpenSsl::encipher(""), "");
        row("filled up with NULs", OpenSsl::encipher("{}" + QByteArray(20, '\0')), "{}");
        row("NULs inside", OpenSsl::encipher(QByteArray("a\0\0b", 4)), "ab");
        row("NULs for padding", OpenSsl::encipherUnpadded("{}" + QByteArray(14, '\0')), "{}");
        row("in lines", QByteArray(good).insert(64, "\r\n").insert(5, ' ') + "\t\n\n", text);
    }

    void openedReply_isWhatOpensslEnciphered()
    {
        QFETCH(QByteArray, reply);
        QFETCH(QByteArray, text);

        QCOMPARE(Envelope::openBody(reply), std::optional(text));
    }

    void unusableReply_yieldsNothing_data()
    {
        QTest::addColumn<QByteArray>("reply");
        const auto good = OpenSsl::encipher(QByteArray(100, ' '));
        QVERIFY(good.endsWith('='));
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no padding characters") << QByteArray(good).replace('=', "");
        QTest::newRow("padding characters inside") << QByteArray(good).replace(4, 4, "AA==");
        QTest::newRow("the alphabet of URLs") << QByteArray("-_-_") + good.mid(4);
        QTest::newRow("a hyphen at its end") << good + "---\n";
        QTest::newRow("half a block") << QByteArray("AAAAAAAAAAA=");
        QTest::newRow("cut off") << good.left(64);
        QTest::newRow("padding of 17 bytes")
            << OpenSsl::encipherUnpadded(QByteArray(15, ' ') + '\x11');
        QTest::newRow("padding of different bytes")
            << OpenSsl::encipherUnpadded(QByteArray(14, ' ') + "\x01\x02");
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
