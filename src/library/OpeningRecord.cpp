#include "library/OpeningRecord.h"

#include "identity/AppInfo.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

using namespace Qt::StringLiterals;

OpeningRecord& OpeningRecord::shared()
{
    static OpeningRecord record(
        AppInfo::shared().directoryUrl(SearchPathDirectory::Caches).toLocalFile() +
        u"/opening.json"_s);
    return record;
}

OpeningRecord::OpeningRecord(QString path) : m_path(std::move(path)) {}

void OpeningRecord::refresh()
{
    const QFileInfo information(m_path);
    constexpr qint64 plausibleSize = 1 << 20;
    QFile file(m_path);
    if (!information.isFile() || information.size() > plausibleSize ||
        !file.open(QIODevice::ReadOnly))
        return;
    const auto record = QJsonDocument::fromJson(file.readAll()).object();
    m_opening = record[u"opening"].toString();
    m_suspects.clear();
    const auto suspects = record[u"suspects"].toArray();
    for (const auto& sign : suspects)
        m_suspects.insert(sign.toString());
}

/// Not QSaveFile, which waits for the disk: what matters is the death of a process, not of the
/// machine.
void OpeningRecord::write() const
{
    const QFileInfo information(m_path);
    QFile file(m_path);
    if ((information.exists() && !information.isFile()) ||
        !file.open(QIODevice::WriteOnly, QFile::ReadOwner | QFile::WriteOwner))
        return;
    QJsonArray suspects;
    for (const auto& sign : m_suspects)
        suspects.append(sign);
    file.write(QJsonDocument(QJsonObject{{u"opening"_s, m_opening}, {u"suspects"_s, suspects}})
                   .toJson(QJsonDocument::Compact));
}

std::optional<QString> OpeningRecord::takeUnfinished()
{
    refresh();
    if (m_opening.isEmpty())
        return std::nullopt;
    auto sign = std::exchange(m_opening, {});
    m_suspects.insert(sign);
    write();
    return sign;
}

void OpeningRecord::begin(const QString& sign)
{
    const auto opening = m_proven.contains(sign) ? QString() : sign;
    if (opening == m_opening)
        return;
    refresh();
    m_opening = opening;
    write();
}

void OpeningRecord::finish(Outcome outcome)
{
    if (m_opening.isEmpty())
        return;
    if (outcome == Outcome::Plays)
        m_proven.insert(m_opening);
    refresh();
    m_opening.clear();
    write();
}

bool OpeningRecord::forgive(const QString& sign)
{
    refresh();
    const bool wasSuspect = m_suspects.remove(sign);
    if (wasSuspect)
        write();
    return wasSuspect;
}
