#include "SettingsPreferencesStore.h"

SettingsPreferencesStore::SettingsPreferencesStore()
    : m_settings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("zonara"),
                 QStringLiteral("zonara"))
{}

SettingsPreferencesStore::SettingsPreferencesStore(const QString &fileName)
    : m_settings(fileName, QSettings::IniFormat)
{}

QString SettingsPreferencesStore::fileName() const
{
    return m_settings.fileName();
}

std::optional<QByteArray> SettingsPreferencesStore::readBytes(const QString &key) const
{
    // Another process (the command line, a second instance) may have written
    // the file since we last looked.
    m_settings.sync();
    const QVariant value = m_settings.value(key);
    if (value.typeId() != QMetaType::QByteArray)
        return std::nullopt;
    return value.toByteArray();
}

std::optional<QString> SettingsPreferencesStore::readText(const QString &key) const
{
    m_settings.sync();
    const QVariant value = m_settings.value(key);
    // The INI format keeps no types: bytes come back tagged, plain values as text.
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString();
}

bool SettingsPreferencesStore::readBool(const QString &key) const
{
    m_settings.sync();
    const QVariant value = m_settings.value(key);
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    if (value.typeId() == QMetaType::QString)
        return value.toString().compare(u"true", Qt::CaseInsensitive) == 0;
    return false;
}

void SettingsPreferencesStore::writeBytes(const QString &key, const QByteArray &value)
{
    write(key, value);
}

void SettingsPreferencesStore::writeText(const QString &key, const QString &value)
{
    write(key, value);
}

void SettingsPreferencesStore::writeBool(const QString &key, bool value)
{
    write(key, value);
}

void SettingsPreferencesStore::write(const QString &key, const QVariant &value)
{
    m_settings.setValue(key, value);
    m_settings.sync();
}
