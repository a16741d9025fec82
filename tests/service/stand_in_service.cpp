#include "service/Misbehaviour.h"
#include "service/OpenSsl.h"
#include "service/StandInService.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>

/// The service for people who want to see what the helper says, or to try an offer.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Stands in for the service on loopback, and prints what it is asked.\n"
                       "Ways to misbehave: %1.")
            .arg(Misbehaviour::names().join(QStringLiteral(", "))));
    parser.addHelpOption();
    const QCommandLineOption port(QStringLiteral("port"),
        QStringLiteral("Listen here."),
        QStringLiteral("N"),
        QStringLiteral("0"));
    const QCommandLineOption directory(QStringLiteral("certificate"),
        QStringLiteral("Directory of certificate.pem and key.pem; they are made if missing."),
        QStringLiteral("DIRECTORY"),
        QDir::tempPath() + QStringLiteral("/tavelor-stand-in"));
    const QCommandLineOption offer(
        QStringLiteral("offer"), QStringLiteral("Offer this version."), QStringLiteral("VERSION"));
    const QCommandLineOption misbehave(QStringLiteral("misbehave"),
        QStringLiteral("Do this instead of answering."),
        QStringLiteral("WAY"));
    parser.addOptions({port, directory, offer, misbehave});
    parser.process(application);

    const auto certificates = parser.value(directory);
    if (!QFile::exists(certificates + QStringLiteral("/certificate.pem"))) {
        QDir().mkpath(certificates);
        OpenSsl::makeCertificate(certificates);
    }
    StandInService service(certificates, parser.value(port).toUShort());
    if (parser.isSet(offer)) {
        service.setOffer(QStringLiteral(
            R"({"url":"https://example.com/new","md5":"","ver":"%1","exp":"<b>New</b> in %1"})")
                             .arg(parser.value(offer))
                             .toUtf8());
    }
    if (parser.isSet(misbehave)) {
        if (!Misbehaviour::names().contains(parser.value(misbehave)))
            parser.showHelp(2);
        service.setBehaviour(Misbehaviour::named(parser.value(misbehave)));
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
