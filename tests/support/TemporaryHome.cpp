#include "support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

TemporaryHome::TemporaryHome() : m_dataHome(qgetenv("XDG_DATA_HOME")), m_home(qgetenv("HOME"))
{
    qputenv("HOME", m_directory.path().toUtf8());
    qputenv("XDG_DATA_HOME", m_directory.filePath(QStringLiteral("share")).toUtf8());
}

TemporaryHome::~TemporaryHome()
{
    qputenv("HOME", m_home);
    if (m_dataHome.isNull())
        qunsetenv("XDG_DATA_HOME");
    else
        qputenv("XDG_DATA_HOME", m_dataHome);
}

QString TemporaryHome::container() const
{
    return m_directory.filePath(QStringLiteral("share/K7ZT3QW9RB.tavelor"));
}

QString TemporaryHome::suiteFile() const
{
    return container() + QStringLiteral("/Preferences/K7ZT3QW9RB.tavelor.conf");
}

QString TemporaryHome::databaseFile() const
{
    return container() + QStringLiteral("/Application Support/Fendix.db");
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

namespace {

QList<QByteArray> linesWithout(const QByteArray& text, const QByteArray& key)
{
    auto lines = text.trimmed().split('\n');
    lines.removeIf([&](const QByteArray& line) { return line.startsWith(key + '='); });
    return lines;
}

} // namespace

void TemporaryHome::writeSuiteValue(const QString& key, const QString& value) const
{
    auto lines = linesWithout(contents(suiteFile()), key.toUtf8());
    if (!lines.contains("[General]"))
        lines.prepend("[General]");
    lines.append(key.toUtf8() + '=' + value.toUtf8());
    writeFile(suiteFile(), lines.join('\n') + '\n');
}

void TemporaryHome::removeSuiteValue(const QString& key) const
{
    writeFile(suiteFile(), linesWithout(contents(suiteFile()), key.toUtf8()).join('\n') + '\n');
}

QString TemporaryHome::suiteValue(const QString& key) const
{
    const auto lines = contents(suiteFile()).split('\n');
    for (const auto& line : lines) {
        if (line.startsWith(key.toUtf8() + '='))
            return QString::fromUtf8(line.mid(key.toUtf8().size() + 1));
    }
    return {};
}
