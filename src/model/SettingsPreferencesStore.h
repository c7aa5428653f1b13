#pragma once

#include "PreferencesStore.h"

#include <QVariantMap>

#include <memory>

class QFileSystemWatcher;
class QTemporaryDir;
class QTimer;

// Preferences in an INI file written the way QSettings writes it, by default
// $XDG_CONFIG_HOME/zonara/zonara.conf. Every change holds the lock beside the
// file (zonara.conf.lock, the one QSettings itself takes), reads the file
// afresh and replaces it atomically. QSettings only ever parses bytes that
// were checked first, in a private copy, so a damaged file cannot crash it
// and no cached copy hides another process's write. Only a regular file is
// read or replaced; a symlink is written through to the regular file it
// names when that file is the user's own, and left alone otherwise.
class SettingsPreferencesStore final : public PreferencesStore
{
public:
    // Larger files are treated as damaged, unread, and never written.
    static constexpr qsizetype maximumFileSize = 1024 * 1024;
    // How long a change waits for another process's lock before it fails.
    static constexpr int lockTimeoutMs = 60000;
    // Older copies of unreadable files beyond this many are removed.
    static constexpr int keptCopies = 3;

    // The user's own preferences file.
    SettingsPreferencesStore();
    // A given file, for tests and tools.
    explicit SettingsPreferencesStore(const QString &fileName);
    ~SettingsPreferencesStore() override;

    QString fileName() const { return m_fileName; }

    std::optional<QByteArray> readBytes(const QString &key) const override;
    std::optional<QString> readText(const QString &key) const override;
    bool readBool(const QString &key) const override;

    void writeBytes(const QString &key, const QByteArray &value) override;
    void writeText(const QString &key, const QString &value) override;
    void writeBool(const QString &key, bool value) override;

    bool edit(const std::function<void()> &change) override;
    void keepCopyBeforeWriting() override { m_copyRequested = true; }
    QString keptCopy() const override { return m_keptCopy; }
    QString saveError() const override { return m_saveError; }
    void setOutsideChangeHandler(std::function<void()> handler) override;

private:
    enum class FileState { Missing, Readable, Damaged, Inaccessible };

    struct Snapshot
    {
        FileState state = FileState::Missing;
        QByteArray bytes;
        QVariantMap values;
    };

    // The file as it is now; parsed again only when its bytes changed.
    const Snapshot &refresh() const;
    QVariant value(const QString &key) const;
    void write(const QString &key, const QVariant &value);
    bool save(const QVariantMap &changes);
    bool keepCopy();
    std::optional<QVariantMap> parse(const QByteArray &bytes, bool *damaged) const;
    std::optional<QByteArray> serialise(const QVariantMap &values) const;
    QString workFile() const;
    void watch();
    void checkForOutsideChange();

    QString m_fileName;
    mutable Snapshot m_snapshot;
    mutable std::unique_ptr<QTemporaryDir> m_workDirectory;
    mutable int m_workFiles = 0;
    QVariantMap m_changes;
    bool m_inEdit = false;
    bool m_copyRequested = false;
    QString m_keptCopy;
    QString m_saveError;
    std::function<void()> m_outsideChange;
    std::unique_ptr<QFileSystemWatcher> m_watcher;
    std::unique_ptr<QTimer> m_settle;
};
