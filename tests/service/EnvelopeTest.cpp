#include "service/Envelope.h"

#include "service/OpenSsl.h"

#include <QTest>

class EnvelopeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sealedBody_isWhatOpensslMakesOfTheEscapedText()
    {
        const auto* const escaped = R"({\"v\":\"a\"b\"})";
        const auto sealed = [](const char* body) { return Envelope::sealBody(body).value(); };
        QCOMPARE(sealed("{\"v\":\"a\"b\"}"), OpenSsl::encipher(escaped));
        QCOMPARE(sealed("exactly a block."), OpenSsl::encipher("exactly a block."));
        QCOMPARE(sealed("ü漢🎬"), OpenSsl::encipher("ü漢🎬"));
    }

    void openedReply_isWhatOpensslEnciphered()
    {
        const auto opened = [](const QByteArray& reply) {
            return Envelope::openBody(reply).value();
        };
        const auto good = OpenSsl::encipher(QByteArray(100, 'x'));
        const QByteArray manyNuls(14, '\0');
        QCOMPARE(opened(good), QByteArray(100, 'x'));
        QCOMPARE(
            opened(QByteArray(good).insert(64, "\r\n").insert(5, ' ') + "\t\n\n"), opened(good));
        QCOMPARE(opened(OpenSsl::encipher("\ufeffü")), "\ufeffü");
        QCOMPARE(opened(OpenSsl::encipher("")), "");
        QCOMPARE(opened(OpenSsl::encipher("{" + manyNuls + '}' + manyNuls)), "{}");
        QCOMPARE(opened(OpenSsl::encipherUnpadded("{}" + manyNuls)), "{}");
    }

    void unusableReply_yieldsNothing()
    {
        const auto isRefused = [](const QByteArray& reply) { return !Envelope::openBody(reply); };
        const auto good = OpenSsl::encipher(QByteArray(100, ' '));
        QVERIFY(good.endsWith('='));
        QVERIFY(isRefused(QByteArray()));
        QVERIFY(isRefused(QByteArray(good).replace('=', "")));
        QVERIFY(isRefused(QByteArray(good).replace(4, 4, "AA==")));
        QVERIFY(isRefused(QByteArray("-_-_") + good.mid(4)));
        QVERIFY(isRefused(good + "----"));
        QVERIFY(isRefused(QByteArray("AAAAAAAAAAA=")));
        QVERIFY(isRefused(good.left(64)));
        QVERIFY(isRefused(OpenSsl::encipherUnpadded(QByteArray(15, ' ') + '\x11')));
        QVERIFY(isRefused(OpenSsl::encipherUnpadded(QByteArray(14, ' ') + "\x01\x02")));
        QVERIFY(isRefused(OpenSsl::encipher("\xff\xfe")));
    }
};

QTEST_GUILESS_MAIN(EnvelopeTest)
#include "EnvelopeTest.moc"
