#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

// The per-user key/value store that keeps the list and the format across runs.
// Several processes may use the same preferences at once (the program, the
// command line, a second session), so every change runs as one locked step.
class PreferencesStore
{
public:
    virtual ~PreferencesStore() = default;

    // Nothing when the key is absent or holds a value of another kind.
    virtual std::optional<QByteArray> readBytes(const QString &key) const = 0;
    virtual std::optional<QString> readText(const QString &key) const = 0;
    // An absent key reads as false.
    virtual bool readBool(const QString &key) const = 0;

    // Saved at once, or at the end of the edit they are part of.
    virtual void writeBytes(const QString &key, const QByteArray &value) = 0;
    virtual void writeText(const QString &key, const QString &value) = 0;
    virtual void writeBool(const QString &key, bool value) = 0;

    // Runs a read-modify-write as one step for every process that uses these
    // preferences: other writers wait, reads inside see what is saved now and
    // the writes inside are saved together at the end. The change runs even
    // when saving cannot; the result says whether what it wrote was saved.
    virtual bool edit(const std::function<void()> &change) = 0;

    // Inside an edit: what it writes replaces a value that could not be read,
    // so a copy of what is saved now must be kept first.
    virtual void keepCopyBeforeWriting() = 0;
    // Where the latest such copy went; empty when none was made.
    virtual QString keptCopy() const = 0;

    // Why the latest save failed, for a message; empty after a success.
    virtual QString saveError() const = 0;

    // Called, on the thread's event loop, after another process changed the
    // saved preferences. An empty function stops it.
    virtual void setOutsideChangeHandler(std::function<void()> handler) = 0;

protected:
    PreferencesStore() = default;
    PreferencesStore(const PreferencesStore &) = default;
    PreferencesStore &operator=(const PreferencesStore &) = default;
};
