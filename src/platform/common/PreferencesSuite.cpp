#include "platform/PreferencesSuite.h"

#include "platform/Directories.h"
#include "platform/common/SettingsFile.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QLockFile>
#include <QThread>

#include <array>
#include <charconv>
#include <map>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class PreferencesSuite::Body {
public:
    explicit Body(const QString& path) : file(path) {}

    std::optional<QString> string(const QString& key) const
    {
        const auto change = pending.find(key);
        return change == pending.end() ? file.text().string(key) : change->second.value;
    }

    void set(const QString& key, const std::optional<QString>& value, Overwrite overwrite)
    {
        const bool isFirst = !pending.contains(key);
        auto& change = pending[key];
        change.value = value;
        // A second change of a key that is still pending goes by what the first one found.
        if (isFirst)
            change.expected = file.text().rawValue(key);
        if (isFirst || overwrite == Overwrite::Always)
            change.overwrite = overwrite;
    }

    template <typename Number>
    void setNumber(const QString& key, Number value, Overwrite overwrite)
    {
        // The shortest text that reads back as the same value.
        std::array<char, 64> buffer{};
        const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
        set(key, QString::fromLatin1(buffer.data(), end - buffer.data()), overwrite);
    }

    /// Looks at the file, and forgets the changes that it makes needless.
    SettingsFile::State look()
    {
        const auto state = file.look();
        isKnown = isKnown || state != SettingsFile::State::NoNews;
        if (state != SettingsFile::State::Read)
            return state;
        std::erase_if(pending, [&text = file.text()](const auto& item) {
            const auto& [key, change] = item;
            const bool isThere =
                change.value ? text.string(key) == change.value : !text.contains(key);
            const bool isOutdated =
                change.overwrite == Overwrite::Never && text.rawValue(key) != change.expected;
            return isThere || isOutdated;
        });
        return state;
    }

    bool write()
    {
        QLockFile lockFile(file.lockPath());
        if (!file.lock(lockFile))
            return false;
        const auto state = look(); // somebody may have held the lock
        if (state == SettingsFile::State::NoNews)
            return pending.empty();
        if (state == SettingsFile::State::Read && pending.empty())
            return true;
        auto text = file.text();
        for (const auto& [key, change] : pending)
            text.set(key, change.value);
        if (!file.replace(text))
            return false;
        pending.clear();
        return true;
    }

    struct Change {
        std::optional<QString> value;
        Overwrite overwrite = Overwrite::Always;
        std::optional<QByteArray> expected; ///< what the file held when the change was made
    };

    SettingsFile file;
    std::map<QString, Change> pending;
    bool isKnown = false;
};

std::unique_ptr<PreferencesSuite> PreferencesSuite::open(
    const QString& name, const QString& directory)
{
    if (!Directories::make(directory))
        return nullptr;
    auto body = std::make_unique<Body>(QDir(directory).filePath(name + u".conf"_s));
    body->look();
    return std::unique_ptr<PreferencesSuite>(new PreferencesSuite(std::move(body)));
}

PreferencesSuite::PreferencesSuite(std::unique_ptr<Body> body) : m_body(std::move(body)) {}

PreferencesSuite::~PreferencesSuite() = default;

bool PreferencesSuite::hasValue(const QString& key) const
{
    const auto change = m_body->pending.find(key);
    return change == m_body->pending.end() ? m_body->file.text().contains(key)
                                           : change->second.value.has_value();
}

qint64 PreferencesSuite::integer(const QString& key) const
{
    return m_body->string(key).value_or(QString()).trimmed().toLongLong();
}

float PreferencesSuite::floatValue(const QString& key) const
{
    return static_cast<float>(m_body->string(key).value_or(QString()).trimmed().toDouble());
}

bool PreferencesSuite::boolean(const QString& key) const
{
    const auto text = m_body->string(key).value_or(QString()).trimmed().toLower();
    return text == u"true" || text == u"yes" || text == u"1";
}

std::optional<QString> PreferencesSuite::string(const QString& key) const
{
    return m_body->string(key);
}

void PreferencesSuite::setInteger(const QString& key, qint64 value, Overwrite overwrite)
{
    m_body->setNumber(key, value, overwrite);
}

void PreferencesSuite::setFloat(const QString& key, float value, Overwrite overwrite)
{
    m_body->setNumber(key, value, overwrite);
}

void PreferencesSuite::setDouble(const QString& key, double value, Overwrite overwrite)
{
    m_body->setNumber(key, value, overwrite);
}

void PreferencesSuite::setBoolean(const QString& key, bool value, Overwrite overwrite)
{
    m_body->set(key, value ? u"true"_s : u"false"_s, overwrite);
}

void PreferencesSuite::setString(
    const QString& key, const std::optional<QString>& value, Overwrite overwrite)
{
    m_body->set(key, value, overwrite);
}

bool PreferencesSuite::synchronize()
{
    const auto state = m_body->look();
    const bool isLost =
        state == SettingsFile::State::Vacant && !m_body->file.text().bytes().isEmpty();
    if (m_body->pending.empty() && !isLost)
        return true;
    return state != SettingsFile::State::NoNews && m_body->write();
}

bool PreferencesSuite::synchronizeWithin(std::chrono::milliseconds patience)
{
    const QDeadlineTimer deadline(patience);
    while (!synchronize() || !isKnown()) {
        if (deadline.hasExpired())
            return false;
        QThread::msleep(20);
    }
    return true;
}

bool PreferencesSuite::isKnown() const
{
    return m_body->isKnown;
}

QString PreferencesSuite::path() const
{
    return m_body->file.path();
}

QString PreferencesSuite::problem() const
{
    return m_body->file.problem();
}
