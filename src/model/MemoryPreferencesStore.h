#pragma once

#include "PreferencesStore.h"

#include <QHash>
#include <QVariant>

// Preferences held in memory only, for tests and read-only snapshots. Counts
// writes per key so that tests can tell an unchanged value that was written
// from one that was not, and can play a failing disk or another process.
class MemoryPreferencesStore final : public PreferencesStore
{
public:
    std::optional<QByteArray> readBytes(const QString &key) const override;
    std::optional<QString> readText(const QString &key) const override;
    bool readBool(const QString &key) const override;

    void writeBytes(const QString &key, const QByteArray &value) override;
    void writeText(const QString &key, const QString &value) override;
    void writeBool(const QString &key, bool value) override;

    bool edit(const std::function<void()> &change) override;
    void keepCopyBeforeWriting() override { m_copyRequested = true; }
    QString keptCopy() const override { return m_keptCopy; }
    QString saveError() const override;
    void setOutsideChangeHandler(std::function<void()> handler) override;

    bool contains(const QString &key) const { return m_values.contains(key); }
    QStringList keys() const { return m_values.keys(); }
    int writeCount(const QString &key) const { return m_writes.value(key); }
    // The values as they stood when each copy was asked for.
    const QList<QHash<QString, QVariant>> &copies() const { return m_copies; }

    // While set, every save fails and leaves the values as they were.
    void setSavesFail(bool fail) { m_savesFail = fail; }
    // Another process's write: stored, then announced.
    void writeFromOutside(const QString &key, const QVariant &value);

private:
    void write(const QString &key, const QVariant &value);

    QHash<QString, QVariant> m_values;
    QHash<QString, QVariant> m_pending;
    QHash<QString, int> m_writes;
    QList<QHash<QString, QVariant>> m_copies;
    QString m_keptCopy;
    std::function<void()> m_outsideChange;
    bool m_inEdit = false;
    bool m_copyRequested = false;
    bool m_savesFail = false;
    bool m_lastSaveFailed = false;
};
