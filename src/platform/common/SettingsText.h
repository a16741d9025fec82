#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <optional>

/// The text of a settings file in the notation of `QSettings::IniFormat`, with the keys of its
/// `[General]` section. Changing a key changes its line only: comments, other sections, the order
/// and values that are not understood here stay as they are.
class SettingsText {
public:
    /// Text without a line.
    SettingsText() = default;
    /// None when there is no setting and no section in it, or a line that is neither, nor a
    /// comment.
    static std::optional<SettingsText> parse(const QByteArray& bytes);

    const QByteArray& bytes() const { return m_bytes; }

    bool contains(const QString& key) const { return m_entries.contains(key); }
    /// Holds every key that `other` holds.
    bool containsKeysOf(const SettingsText& other) const;
    /// The value as it is written, to compare with; none when the key is absent.
    std::optional<QByteArray> rawValue(const QString& key) const;
    /// None also for a list, a number of bytes and whatever else QSettings has a notation for.
    std::optional<QString> string(const QString& key) const;

    /// None removes the key. A key consists of ASCII letters and digits.
    void set(const QString& key, const std::optional<QString>& value);

private:
    struct Entry {
        qsizetype line = 0;  ///< where its line begins
        qsizetype value = 0; ///< where the text after the "=" begins
        qsizetype valueEnd = 0;
        qsizetype lineEnd = 0; ///< behind the line's end
        std::optional<QString> string;
    };

    bool readLines();
    bool readLine(qsizetype begin, qsizetype end);
    QByteArrayView rawOf(const Entry& entry) const;

    QByteArray m_bytes;
    QHash<QString, Entry> m_entries;
    bool m_isTopLevel = true;     ///< while reading: these keys are ours
    qsizetype m_topLevelEnd = -1; ///< where a new key's line goes; -1 where there is no place yet
    bool m_hasSettings = false;
};
