#include "ServiceBench.h"

#include "Measurements.h"
#include "json/JSONCoding.h"
#include "records/HeartbeatResponse.h"
#include "service/Envelope.h"

#include <QElapsedTimer>
#include <QProcess>

#include <algorithm>
#include <utility>

using namespace Measurements;

namespace {

constexpr qsizetype megabyte = 1 << 20;

/// The shortest of several runs, in seconds: what the code needs when nothing else runs.
template <typename Work>
double shortest(int runs, Work&& work)
{
    double seconds = 1e9;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer time;
        time.start();
        work();
        seconds = std::min(seconds, static_cast<double>(time.nsecsElapsed()) * 1e-9);
    }
    return seconds;
}

/// Seconds that `openssl` needs to encipher a megabyte.
double opensslSeconds()
{
    QProcess process;
    process.start(QStringLiteral("openssl"),
        {QStringLiteral("speed"),
            QStringLiteral("-mr"),
            QStringLiteral("-seconds"),
            QStringLiteral("2"),
            QStringLiteral("-bytes"),
            QString::number(megabyte),
            QStringLiteral("-evp"),
            QStringLiteral("aes-128-cbc")});
    if (!process.waitForFinished() || process.exitCode() != 0)
        qFatal("openssl speed fails");
    // The last line is "+F:number:name:bytes a second".
    const auto fields = process.readAllStandardOutput().trimmed().split(':');
    return static_cast<double>(megabyte) / fields.constLast().toDouble();
}

void benchEnvelope()
{
    const auto body = R"({"n":")" + QByteArray(megabyte - 8, 'x') + R"("})";
    const auto sealed = *Envelope::sealBody(body);
    const auto openssl = opensslSeconds();
    note(QStringLiteral("openssl speed -evp aes-128-cbc, MB/s"),
        static_cast<double>(megabyte) / openssl / 1e6,
        QString());
    report(QStringLiteral("sealing 1 MB, against openssl's time"),
        shortest(100, [&] { std::ignore = Envelope::sealBody(body); }) / openssl,
        2,
        QStringLiteral("x"));
    report(QStringLiteral("opening 1 MB, against openssl's time"),
        shortest(100, [&] { std::ignore = Envelope::openBody(sealed); }) / openssl,
        2,
        QStringLiteral("x"));
}

void benchDecoding()
{
    const QByteArray reply(
        R"({"status":1,"info":"ok","data":{"ct":1234,"time":{"st":3600,"vt":[1,2,3],"tt":86400},)"
        R"("msg":{"msg_bottom":{"msgid":1,"msg":"A message of some length for the bottom",)"
        R"("url":"https://service.tavelor.example/bottom","color":"#336699","back":0},)"
        R"("msg_top":{"msgid":2,"tittle":"A title","url":"https://service.tavelor.example/top",)"
        R"("color":{"show":"#336699","hover":"#6699cc","click":"#003366"},)"
        R"("point":1,"type":2,"back":0,"width":320,"height":200}},)"
        R"("upgrade":[{"url":"https://service.tavelor.example/new","ver":"1.2.3"},1,true],)"
        R"("speedlimit":0}})");
    constexpr int times = 2000;
    const auto parse = shortest(20, [&] {
        for (int i = 0; i < times; ++i)
            std::ignore = nlohmann::json::parse(reply.begin(), reply.end());
    });
    const auto decode = shortest(20, [&] {
        for (int i = 0; i < times; ++i)
            std::ignore = decodeReply<HeartbeatResponse>(reply);
    });
    report(QStringLiteral("decoding a heartbeat's answer, against parsing it"),
        decode / parse,
        1.5,
        QStringLiteral("x"));
}

} // namespace

void benchService()
{
    benchEnvelope();
    benchDecoding();
}
