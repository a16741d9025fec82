#pragma once

#include <QString>

#include <chrono>
#include <memory>
#include <optional>

/// One preferences file that several processes and people read and write. Writers merge key by key
/// under a lock and replace the file as a whole, so neither loses what the other wrote. Other
/// programs may use `QSettings::IniFormat` on it.
///
/// A file that does not read well (empty, half written, not a settings file, unreadable, no file
/// at all, gone for a moment) is no news: nothing is changed and nothing is written until it reads
/// well again, and values set meanwhile wait. One that is gone for five seconds, or empty for
/// thirty, is lost, and is written anew with everything that this process last read in it.
///
/// Typed reads yield the zero value (0, false, none) for a key that is absent and for a value
/// that does not parse as the type asked for. Numbers are read and written in the "C" locale.
/// What another process wrote is seen after the next `synchronize()`. Main thread only.
class PreferencesSuite {
public:
    /// Opens `<directory>/<name>.conf`, which need not exist yet, and reads it. Null when the
    /// directory cannot be made.
    static std::unique_ptr<PreferencesSuite> open(const QString& name, const QString& directory);
    ~PreferencesSuite();
    PreferencesSuite(const PreferencesSuite&) = delete;
    PreferencesSuite& operator=(const PreferencesSuite&) = delete;

    bool hasValue(const QString& key) const;
    qint64 integer(const QString& key) const;
    /// May be infinite or not a number, when the file says so.
    float floatValue(const QString& key) const;
    bool boolean(const QString& key) const;
    std::optional<QString> string(const QString& key) const;

    /// What becomes of a value when another process has written one for the key since this one
    /// last read it.
    enum class Overwrite {
        Always, ///< this one replaces it: a person has chosen it
        Never,  ///< it stays, and this one is dropped: the program's own idea
    };
    void setInteger(const QString& key, qint64 value, Overwrite overwrite = Overwrite::Always);
    void setFloat(const QString& key, float value, Overwrite overwrite = Overwrite::Always);
    void setDouble(const QString& key, double value, Overwrite overwrite = Overwrite::Always);
    void setBoolean(const QString& key, bool value, Overwrite overwrite = Overwrite::Always);
    /// None removes the key.
    void setString(const QString& key,
        const std::optional<QString>& value,
        Overwrite overwrite = Overwrite::Always);

    /// Reads what others have written and writes what is pending, unless the file holds it
    /// already. Waits for another process's lock 40 ms at most. False when values are still
    /// pending: they stay in memory, and the next call tries again.
    bool synchronize();
    /// The same, again and again until nothing is pending or the patience is at its end.
    bool synchronizeWithin(std::chrono::milliseconds patience);

    /// The file has been read well, or there is none yet.
    bool isKnown() const;
    QString path() const;
    /// Why the last synchronisation could not read or write the file, for people; empty when it
    /// could.
    QString problem() const;

private:
    class Body;
    explicit PreferencesSuite(std::unique_ptr<Body> body);
    std::unique_ptr<Body> m_body;
};
