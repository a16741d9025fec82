#include "service/OpenSsl.h"

#include <QProcess>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

/// Empty where it refuses.
QByteArray openssl(const QString& arguments, const QByteArray& input = {})
{
    QProcess process;
    process.start(u"openssl"_s, QProcess::splitCommand(arguments));
    process.write(input);
    process.closeWriteChannel();
    return process.waitForFinished() && process.exitCode() == 0 ? process.readAllStandardOutput()
                                                                : QByteArray();
}

QByteArray cipher(const QByteArray& text, const QString& more)
{
    const auto hex = [](const QByteArray& bytes) { return QString::fromLatin1(bytes.toHex()); };
    return openssl(u"enc -aes-128-cbc -K %1 -iv %2 -a -A "_s.arg(
                       hex("Pq7Rt2VbXn4LmZ8c"), hex("h5Jd9KsWf3TaYe6u")) +
                       more,
        text);
}

} // namespace

QByteArray OpenSsl::encipher(const QByteArray& text)
{
    return cipher(text, {});
}

QByteArray OpenSsl::encipherUnpadded(const QByteArray& text)
{
    return cipher(text, u"-nopad"_s);
}

QByteArray OpenSsl::decipher(const QByteArray& text)
{
    return cipher(text, u"-d"_s);
}

void OpenSsl::makeCertificate(const QString& directory, const QString& host)
{
    openssl(u"req -x509 -newkey rsa:2048 -nodes -days 30 -subj /CN=stand-in "
            "-addext subjectAltName=IP:%1 -keyout \"%2/key.pem\" -out \"%2/certificate.pem\""_s.arg(
                host, directory));
}
