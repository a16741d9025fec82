#pragma once

#include <QString>

#include <memory>
#include <optional>

/// One preferences file that several processes read and write. Writers merge key by key under a
/// lock and replace the file as a whole, so neither loses what the other wrote.
///
/// Typed reads yield the zero value (0, false, none) for a key that is absent and for a value
/// that does not parse as the type asked for. Numbers are read and written in the "C" locale.
/// What another process wrote is seen after the next `synchronize()`. Main thread only.
class PreferencesSuite {
public:
    /// Opens `<directory>/<name>.conf`, which need not exist yet. Null when the file is there but
    /// cannot be read, or when the directory cannot be made.
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

    void setInteger(const QString& key, qint64 value);
    void setFloat(const QString& key, float value);
    void setDouble(const QString& key, double value);
    void setBoolean(const QString& key, bool value);
    /// None removes the key.
    void setString(const QString& key, const std::optional<QString>& value);

    /// Writes what is pending and reads what others have written since. When the file cannot be
    /// written the values stay in memory, the first failure puts one line on standard error, and
    /// the next call tries again.
    void synchronize();

private:
    class Body;
    explicit PreferencesSuite(std::unique_ptr<Body> body);
    std::unique_ptr<Body> m_body;
};
