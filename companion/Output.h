#pragma once

#include <QJsonDocument>
#include <QString>
#include <QUrl>

/// What `tavelorctl` writes, and how it writes values for people.
namespace Output {

void print(const QString& line);
void print(const QJsonDocument& document);
/// `tavelorctl: WHAT: WHY` on standard error.
void printError(const QString& what, const QString& why);

QString lengthText(qint64 seconds); ///< "1:05"
QString sizeText(qint64 bytes);     ///< "4.8 kB"
QString pathText(const QUrl& url);  ///< a path where there is one, else the address

} // namespace Output
