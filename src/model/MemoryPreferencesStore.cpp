#include "MemoryPreferencesStore.h"

std::optional<QByteArray> MemoryPreferencesStore::readBytes(const QString &key) const
{
    const QVariant value = m_values.value(key);
    if (value.typeId() != QMetaType::QByteArray)
        return std::nullopt;
    return value.toByteArray();
}

std::optional<QString> MemoryPreferencesStore::readText(const QString &key) const
{
    const QVariant value = m_values.value(key);
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString();
}

bool MemoryPreferencesStore::readBool(const QString &key) const
{
    const QVariant value = m_values.value(key);
    return value.typeId() == QMetaType::Bool && value.toBool();
}

void MemoryPreferencesStore::writeBytes(const QString &key, const QByteArray &value)
{
    m_values.insert(key, value);
    ++m_writes[key];
}

void MemoryPreferencesStore::writeText(const QString &key, const QString &value)
{
    m_values.insert(key, value);
    ++m_writes[key];
}

void MemoryPreferencesStore::writeBool(const QString &key, bool value)
{
    m_values.insert(key, value);
    ++m_writes[key];
}
