#include "service/OpenSsl.h"

#include <QProcess>
#include <QStringList>

#include <optional>

namespace {

/// None when it refuses.
std::optional<QByteArray> tryOpenssl(const QStringList& arguments, const QByteArray& input)
{
    QProcess process;
    process.start(QStringLiteral("openssl"), arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished() || process.exitCode() != 0)
        return std::nullopt;
    return process.readAllStandardOutput();
}

QByteArray openssl(const QStringList& arguments, const QByteArray& input = {})
{
    const auto output = tryOpenssl(arguments, input);
    if (!output)
        qFatal("openssl %s fails", qUtf8Printable(arguments.first()));
    return *output;
}

QStringList cipherArguments(const QByteArray& key = "Pq7Rt2VbXn4LmZ8c")
{
    return {QStringLiteral("enc"),
        QStringLiteral("-aes-128-cbc"),
        QStringLiteral("-K"),
        QString::fromLatin1(key.toHex()),
        QStringLiteral("-iv"),
        QString::fromLatin1(QByteArray("h5Jd9KsWf3TaYe6u").toHex()),
        QStringLiteral("-a"),
        QStringLiteral("-A")};
}

} // namespace

QByteArray OpenSsl::encipher(const QByteArray& text)
{
    return openssl(cipherArguments(), text);
}

QByteArray OpenSsl::encipherWithAnotherKey(const QByteArray& text)
{
    return openssl(cipherArguments("another key of16"), text);
}

QByteArray OpenSsl::encipherUnpadded(const QByteArray& text)
{
    return openssl(cipherArguments() << QStringLiteral("-nopad"), text);
}

QByteArray OpenSsl::decipher(const QByteArray& text)
{
    return tryOpenssl(cipherArguments() << QStringLiteral("-d"), text).value_or(QByteArray());
}

void OpenSsl::makeCertificate(const QString& directory, Certificate kind)
{
    const auto key = directory + QStringLiteral("/key.pem");
    const auto request = directory + QStringLiteral("/request.pem");
    const auto names = kind == Certificate::OfAnotherHost
                           ? QStringLiteral("DNS:elsewhere.example")
                           : QStringLiteral("DNS:localhost,IP:127.0.0.1");
    openssl({QStringLiteral("req"),
        QStringLiteral("-new"),
        QStringLiteral("-newkey"),
        QStringLiteral("rsa:2048"),
        QStringLiteral("-nodes"),
        QStringLiteral("-keyout"),
        key,
        QStringLiteral("-out"),
        request,
        QStringLiteral("-subj"),
        QStringLiteral("/CN=TavelorHelper stand-in"),
        QStringLiteral("-addext"),
        QStringLiteral("subjectAltName=") + names});
    openssl({QStringLiteral("x509"),
        QStringLiteral("-req"),
        QStringLiteral("-in"),
        request,
        QStringLiteral("-signkey"),
        key,
        QStringLiteral("-copy_extensions"),
        QStringLiteral("copyall"),
        QStringLiteral("-days"),
        kind == Certificate::Expired ? QStringLiteral("-1") : QStringLiteral("30"),
        QStringLiteral("-out"),
        directory + QStringLiteral("/certificate.pem")});
}
