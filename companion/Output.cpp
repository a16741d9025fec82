#include "companion/Output.h"

#include <QLocale>

#include <cstdio>

using namespace Qt::StringLiterals;

void Output::print(const QString& line)
{
    std::puts(qUtf8Printable(line));
}

void Output::print(const QJsonDocument& document)
{
    std::fputs(document.toJson(QJsonDocument::Indented).constData(), stdout);
}

void Output::printError(const QString& what, const QString& why)
{
    std::fprintf(stderr, "tavelorctl: %s: %s\n", qUtf8Printable(what), qUtf8Printable(why));
}

QString Output::lengthText(qint64 seconds)
{
    return u"%1:%2"_s.arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

QString Output::sizeText(qint64 bytes)
{
    return QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

QString Output::pathText(const QUrl& url)
{
    return url.isLocalFile() ? url.toLocalFile() : url.toString();
}
