#include "service/OpenSsl.h"
#include "service/StandInService.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>

using namespace Qt::StringLiterals;

/// The service for people who want to see what the helper says, or to try an offer.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const auto ways = StandInService::misbehaviours();
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Stands in for the service on loopback, and prints what it is asked.\n"
        "Ways to misbehave: %1."_s.arg(ways.keys().join(u", "_s)));
    parser.addHelpOption();
    const auto defaultDirectory = QDir::tempPath() + u"/tavelor-stand-in"_s;
    parser.addOptions({{u"port"_s, u"Listen here."_s, u"N"_s, u"0"_s},
        {u"certificate"_s,
            u"Directory of certificate.pem and key.pem; they are made if missing."_s,
            u"DIRECTORY"_s,
            defaultDirectory},
        {u"offer"_s, u"Offer this version."_s, u"VERSION"_s},
        {u"misbehave"_s, u"Do this instead of answering."_s, u"WAY"_s}});
    parser.process(application);

    const auto certificates = parser.value(u"certificate"_s);
    if (!QFile::exists(certificates + u"/certificate.pem"_s)) {
        QDir().mkpath(certificates);
        OpenSsl::makeCertificate(certificates);
    }
    StandInService service(certificates, parser.value(u"port"_s).toUShort());
    if (const auto version = parser.value(u"offer"_s); !version.isEmpty()) {
        const auto offer =
            uR"({"url":"https://example.com/","ver":"%1","exp":"<b>New</b> in %1"})"_s;
        service.setOffer(offer.arg(version).toUtf8());
    }
    if (const auto way = parser.value(u"misbehave"_s); !way.isEmpty()) {
        if (!ways.contains(way))
            parser.showHelp(2);
        service.setBehaviour(ways.value(way));
    }
    QObject::connect(&service, &StandInService::requested, [](const ServiceRequest& request) {
        std::printf("%d %s\n", request.function, request.text.constData());
        std::fflush(stdout);
    });
    std::printf("TAVELOR_SERVICE_URL=%s SSL_CERT_FILE=%s/certificate.pem\n",
        qUtf8Printable(service.origin()),
        qUtf8Printable(certificates));
    std::fflush(stdout);
    return QCoreApplication::exec();
}
