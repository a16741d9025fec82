#include "support/TemporaryHome.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

using namespace Qt::StringLiterals;

TemporaryHome::TemporaryHome() : m_dataHome(qgetenv("XDG_DATA_HOME")), m_home(qgetenv("HOME"))
{
    qputenv("HOME", path().toUtf8());
    qputenv("XDG_DATA_HOME", path().toUtf8() + "/share");
}

TemporaryHome::~TemporaryHome()
{
    qputenv("HOME", m_home);
    qputenv("XDG_DATA_HOME", m_dataHome); // empty is the same as none
}

QByteArray TemporaryHome::contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TemporaryHome::writeFile(const QString& path, const QByteArray& contents)
{
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile file(path); // editors save by renaming, too
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) < 0 || !file.commit())
        qFatal("Cannot write %s.", qUtf8Printable(path));
}

void TemporaryHome::writeSuiteValue(const QString& key, const QString& value) const
{
    auto lines = contents(suiteFile()).trimmed().split('\n');
    lines.removeIf([&](const auto& line) { return line.startsWith(key.toUtf8() + '='); });
    if (!lines.contains("[General]"))
        lines.prepend("[General]");
    if (!value.isNull())
        lines.append(key.toUtf8() + '=' + value.toUtf8());
    writeFile(suiteFile(), lines.join('\n') + '\n');
}

QString TemporaryHome::suiteValue(const QString& key) const
{
    const QRegularExpression line(u"^%1=(.*)$"_s.arg(key), QRegularExpression::MultilineOption);
    return line.match(QString::fromUtf8(contents(suiteFile()))).captured(1);
}
