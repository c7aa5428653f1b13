#pragma once

#include "PreferencesStore.h"

#include <QHash>
#include <QVariant>

// Preferences held in memory only, for tests. Counts writes per key so that
// tests can tell an unchanged value that was written from one that was not.
class MemoryPreferencesStore final : public PreferencesStore
{
public:
    std::optional<QByteArray> readBytes(const QString &key) const override;
    std::optional<QString> readText(const QString &key) const override;
    bool readBool(const QString &key) const override;

    void writeBytes(const QString &key, const QByteArray &value) override;
    void writeText(const QString &key, const QString &value) override;
    void writeBool(const QString &key, bool value) override;

    bool contains(const QString &key) const { return m_values.contains(key); }
    QStringList keys() const { return m_values.keys(); }
    int writeCount(const QString &key) const { return m_writes.value(key); }

private:
    QHash<QString, QVariant> m_values;
    QHash<QString, int> m_writes;
};
