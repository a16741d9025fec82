#include "platform/PreferencesSuite.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

class PreferencesSuite::Body {
public:
    explicit Body(const QString& path) : settings(path, QSettings::IniFormat)
    {
        settings.setFallbacksEnabled(false);
    }

    /// What a person may have typed: never a list, a number or anything else that QSettings
    /// makes of its own notations.
    std::optional<QString> text(const QString& key) const
    {
        const auto value = settings.value(key);
        if (value.typeId() == QMetaType::QString)
            return value.toString();
        // A value set and not yet written is still of the type that it was set with.
        if (value.typeId() == QMetaType::Bool || value.typeId() == QMetaType::LongLong)
            return value.toString();
        return std::nullopt;
    }

    template <typename Number>
    void setNumber(const QString& key, Number value)
    {
        // The shortest text that reads back as the same value; QSettings would store a float as
        // an unreadable blob.
        std::array<char, 64> buffer{};
        const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
        settings.setValue(key, QString::fromLatin1(buffer.data(), end - buffer.data()));
    }

    /// QSettings takes a file of the same size and the same time of change for the same file. Two
    /// processes that replace it within one tick of the file system's clock, a few milliseconds,
    /// would then miss each other's value or undo it. A replaced file is another inode; its time
    /// is moved on a little, so that QSettings looks.
    void markReplacedFile()
    {
        const auto path = QFile::encodeName(settings.fileName());
        struct stat status {};
        if (stat(path.constData(), &status) != 0)
            return;
        if (std::exchange(inode, status.st_ino) == status.st_ino)
            return;
        const QDateTime changed = QFileInfo(settings.fileName()).lastModified();
        const auto moved = std::max(QDateTime::currentDateTime(), changed.addMSecs(1));
        const auto milliseconds = moved.toMSecsSinceEpoch();
        const std::array times{timespec{0, UTIME_OMIT},
            timespec{milliseconds / 1000, milliseconds % 1000 * 1'000'000}};
        utimensat(AT_FDCWD, path.constData(), times.data(), 0);
    }

    QSettings settings;
    ino_t inode = 0; // of the file as it was before the last synchronisation
    bool hasReported = false;
};

std::unique_ptr<PreferencesSuite> PreferencesSuite::open(
    const QString& name, const QString& directory)
{
    if (!QDir().mkpath(directory))
        return nullptr;
    const auto path = QDir(directory).filePath(name + QStringLiteral(".conf"));
    if (QFileInfo::exists(path) && !QFile(path).open(QIODevice::ReadOnly))
        return nullptr;
    return std::unique_ptr<PreferencesSuite>(new PreferencesSuite(std::make_unique<Body>(path)));
}

PreferencesSuite::PreferencesSuite(std::unique_ptr<Body> body) : m_body(std::move(body)) {}

PreferencesSuite::~PreferencesSuite() = default;

bool PreferencesSuite::hasValue(const QString& key) const
{
    return m_body->settings.contains(key);
}

qint64 PreferencesSuite::integer(const QString& key) const
{
    return m_body->text(key).value_or(QString()).trimmed().toLongLong();
}

float PreferencesSuite::floatValue(const QString& key) const
{
    return static_cast<float>(m_body->text(key).value_or(QString()).trimmed().toDouble());
}

bool PreferencesSuite::boolean(const QString& key) const
{
    const auto text = m_body->text(key).value_or(QString()).trimmed().toLower();
    return text == u"true" || text == u"yes" || text == u"1";
}

std::optional<QString> PreferencesSuite::string(const QString& key) const
{
    return m_body->text(key);
}

void PreferencesSuite::setInteger(const QString& key, qint64 value)
{
    m_body->settings.setValue(key, value);
}

void PreferencesSuite::setFloat(const QString& key, float value)
{
    m_body->setNumber(key, value);
}

void PreferencesSuite::setDouble(const QString& key, double value)
{
    m_body->setNumber(key, value);
}

void PreferencesSuite::setBoolean(const QString& key, bool value)
{
    m_body->settings.setValue(key, value);
}

void PreferencesSuite::setString(const QString& key, const std::optional<QString>& value)
{
    if (value)
        m_body->settings.setValue(key, *value);
    else
        m_body->settings.remove(key);
}

void PreferencesSuite::synchronize()
{
    auto& settings = m_body->settings;
    m_body->markReplacedFile();
    settings.sync();

    // The status never returns to "no error", so this line comes once.
    if (settings.status() == QSettings::AccessError && !m_body->hasReported) {
        m_body->hasReported = true;
        std::fprintf(
            stderr, "cannot write preferences to %s\n", qUtf8Printable(settings.fileName()));
    }
}
