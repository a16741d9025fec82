#include "service/Envelope.h"

#include "service/OpenSsl.h"

#include <QTest>

using namespace Qt::StringLiterals;

class EnvelopeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sealedBody_isWhatOpensslMakesOfTheEscapedText()
    {
        QCOMPARE(Envelope::sealBody("{\"ü\":\"漢\"🎬\"}"), OpenSsl::cipher(R"({\"ü\":\"漢\"🎬\"})"));
        QCOMPARE(Envelope::sealBody("exactly a block."), OpenSsl::cipher("exactly a block."));
    }

    void openedReply_isWhatOpensslEnciphered()
    {
        const auto opened = [](const auto& reply) { return Envelope::openBody(reply).value(); };
        const auto good = OpenSsl::cipher(QByteArray(100, 'x'));
        const QByteArray manyNuls(14, '\0');
        QCOMPARE(opened(good), QByteArray(100, 'x'));
        QCOMPARE(opened(QByteArray(good).insert(64, " \r\n") + "\t\n"), QByteArray(100, 'x'));
        QCOMPARE(opened(OpenSsl::cipher("{" + manyNuls + '}' + manyNuls)), "{}");
        QCOMPARE(opened(OpenSsl::cipher("{}" + manyNuls, u"-nopad"_s)), "{}");
    }

    void unusableReply_yieldsNothing()
    {
        const auto isRefused = [](const QByteArray& reply) { return !Envelope::openBody(reply); };
        const auto good = OpenSsl::cipher(QByteArray(100, ' '));
        QVERIFY(isRefused({}));
        QVERIFY(isRefused(QByteArray(good).replace('=', "")));
        QVERIFY(isRefused(QByteArray(good).replace(4, 4, "AA==")));
        QVERIFY(isRefused(QByteArray("-_-_") + good.mid(4)));
        QVERIFY(isRefused(QByteArray("AAAAAAAAAAA=")));
        QVERIFY(isRefused(good.left(64)));
        QVERIFY(isRefused(OpenSsl::cipher(QByteArray(15, ' ') + '\x11', u"-nopad"_s)));
        QVERIFY(isRefused(OpenSsl::cipher(QByteArray(14, ' ') + "\x01\x02", u"-nopad"_s)));
        QVERIFY(isRefused(OpenSsl::cipher("\xff\xfe")));
    }
};

QTEST_GUILESS_MAIN(EnvelopeTest)
#include "EnvelopeTest.moc"
