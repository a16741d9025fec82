#include "service/OpenSsl.h"

#include <QProcess>

using namespace Qt::StringLiterals;

namespace {

QByteArray openssl(const QString& arguments, const QByteArray& input = {})
{
    QProcess process;
    process.start(u"openssl"_s, QProcess::splitCommand(arguments));
    process.write(input);
    process.closeWriteChannel();
    return process.waitForFinished() && process.exitCode() == 0 ? process.readAllStandardOutput()
                                                                : QByteArray();
}

} // namespace

QByteArray OpenSsl::cipher(const QByteArray& text, const QString& option)
{
    const auto hex = [](const QByteArray& bytes) { return QString::fromLatin1(bytes.toHex()); };
    const auto arguments = u"enc -aes-128-cbc -a -A -K %1 -iv %2 %3"_s;
    return openssl(arguments.arg(hex("Pq7Rt2VbXn4LmZ8c"), hex("h5Jd9KsWf3TaYe6u"), option), text);
}

void OpenSsl::makeCertificate(const QString& directory)
{
    openssl(u"req -x509 -newkey rsa:2048 -nodes -days 30 -subj /CN=stand-in -addext "
            "subjectAltName=IP:127.0.0.1 -keyout \"%1/key.pem\" -out \"%1/certificate.pem\""_s.arg(
                directory));
}
