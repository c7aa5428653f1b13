#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// The per-user key/value store that keeps the list and the format across runs.
class PreferencesStore
{
public:
    virtual ~PreferencesStore() = default;

    // Nothing when the key is absent or holds a value of another kind.
    virtual std::optional<QByteArray> readBytes(const QString &key) const = 0;
    virtual std::optional<QString> readText(const QString &key) const = 0;
    // An absent key reads as false.
    virtual bool readBool(const QString &key) const = 0;

    virtual void writeBytes(const QString &key, const QByteArray &value) = 0;
    virtual void writeText(const QString &key, const QString &value) = 0;
    virtual void writeBool(const QString &key, bool value) = 0;

protected:
    PreferencesStore() = default;
    PreferencesStore(const PreferencesStore &) = default;
    PreferencesStore &operator=(const PreferencesStore &) = default;
};
