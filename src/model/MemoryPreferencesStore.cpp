#include "MemoryPreferencesStore.h"

namespace {

QVariant valueOf(const QHash<QString, QVariant> &pending, const QHash<QString, QVariant> &values,
                 const QString &key)
{
    const auto found = pending.constFind(key);
    return found != pending.cend() ? *found : values.value(key);
}

} // namespace

std::optional<QByteArray> MemoryPreferencesStore::readBytes(const QString &key) const
{
    const QVariant value = valueOf(m_pending, m_values, key);
    if (value.typeId() != QMetaType::QByteArray)
        return std::nullopt;
    return value.toByteArray();
}

std::optional<QString> MemoryPreferencesStore::readText(const QString &key) const
{
    const QVariant value = valueOf(m_pending, m_values, key);
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString();
}

bool MemoryPreferencesStore::readBool(const QString &key) const
{
    const QVariant value = valueOf(m_pending, m_values, key);
    return value.typeId() == QMetaType::Bool && value.toBool();
}

void MemoryPreferencesStore::writeBytes(const QString &key, const QByteArray &value)
{
    write(key, value);
}

void MemoryPreferencesStore::writeText(const QString &key, const QString &value)
{
    write(key, value);
}

void MemoryPreferencesStore::writeBool(const QString &key, bool value)
{
    write(key, value);
}

void MemoryPreferencesStore::write(const QString &key, const QVariant &value)
{
    if (m_inEdit)
        m_pending.insert(key, value);
    else
        edit([&] { m_pending.insert(key, value); });
}

bool MemoryPreferencesStore::edit(const std::function<void()> &change)
{
    m_inEdit = true;
    m_copyRequested = false;
    change();
    m_inEdit = false;
    const QHash<QString, QVariant> pending = std::exchange(m_pending, {});
    m_lastSaveFailed = m_savesFail && !pending.isEmpty();
    if (pending.isEmpty() || m_savesFail)
        return !m_lastSaveFailed;
    if (m_copyRequested) {
        m_copies.append(m_values);
        m_keptCopy = QStringLiteral("memory copy %1").arg(m_copies.size());
    }
    for (auto it = pending.cbegin(); it != pending.cend(); ++it) {
        m_values.insert(it.key(), it.value());
        ++m_writes[it.key()];
    }
    return true;
}

QString MemoryPreferencesStore::saveError() const
{
    return m_lastSaveFailed ? QStringLiteral("saving is switched off") : QString();
}

void MemoryPreferencesStore::setOutsideChangeHandler(std::function<void()> handler)
{
    m_outsideChange = std::move(handler);
}

void MemoryPreferencesStore::writeFromOutside(const QString &key, const QVariant &value)
{
    m_values.insert(key, value);
    if (m_outsideChange)
        m_outsideChange();
}
