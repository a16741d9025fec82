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
    const auto& ways = StandInService::misbehaviours();
    QStringList names;
    for (const auto& [name, way] : ways)
        names << name;
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Stands in for the service on loopback, and prints what it is asked.\n"
        "Ways to misbehave: %1."_s.arg(names.join(u", "_s)));
    parser.addHelpOption();
    const QCommandLineOption port(u"port"_s, u"Listen here."_s, u"N"_s, u"0"_s);
    const QCommandLineOption directory(u"certificate"_s,
        u"Directory of certificate.pem and key.pem; they are made if missing."_s,
        u"DIRECTORY"_s,
        QDir::tempPath() + u"/tavelor-stand-in"_s);
    const QCommandLineOption offer(u"offer"_s, u"Offer this version."_s, u"VERSION"_s);
    const QCommandLineOption misbehave(
        u"misbehave"_s, u"Do this instead of answering."_s, u"WAY"_s);
    const QCommandLineOption answer(
        u"answer"_s, u"Answer everything with the text in this file."_s, u"FILE"_s);
    parser.addOptions({port, directory, offer, misbehave, answer});
    parser.process(application);

    const auto certificates = parser.value(directory);
    if (!QFile::exists(certificates + u"/certificate.pem"_s)) {
        QDir().mkpath(certificates);
        OpenSsl::makeCertificate(certificates);
    }
    StandInService service(certificates, parser.value(port).toUShort());
    if (parser.isSet(offer)) {
        constexpr auto json =
            R"({"url":"https://example.com/","ver":"%1","exp":"<b>New</b> in %1"})";
        service.setOffer(QString::fromLatin1(json).arg(parser.value(offer)).toUtf8());
    }
    if (parser.isSet(misbehave)) {
        if (!ways.contains(parser.value(misbehave)))
            parser.showHelp(2);
        service.setBehaviour(StandInService::misbehaviours().at(parser.value(misbehave)));
    }
    if (parser.isSet(answer)) {
        QFile file(parser.value(answer));
        if (!file.open(QIODevice::ReadOnly))
            qFatal("cannot read %s", qUtf8Printable(file.fileName()));
        service.setBehaviour(StandInService::answering(file.readAll()));
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
