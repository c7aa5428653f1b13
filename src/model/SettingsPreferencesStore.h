#pragma once

#include "PreferencesStore.h"

#include <QSettings>

// Preferences kept by QSettings in an INI file, by default
// $XDG_CONFIG_HOME/zonara/zonara.conf. Every write is flushed at once, so the
// file always matches what the program holds.
class SettingsPreferencesStore final : public PreferencesStore
{
public:
    // The user's own preferences file.
    SettingsPreferencesStore();
    // A given file, for tests and tools.
    explicit SettingsPreferencesStore(const QString &fileName);

    QString fileName() const;

    std::optional<QByteArray> readBytes(const QString &key) const override;
    std::optional<QString> readText(const QString &key) const override;
    bool readBool(const QString &key) const override;

    void writeBytes(const QString &key, const QByteArray &value) override;
    void writeText(const QString &key, const QString &value) override;
    void writeBool(const QString &key, bool value) override;

private:
    void write(const QString &key, const QVariant &value);

    mutable QSettings m_settings;
};
