#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

class QLocalServer;

// One Zonara per user session. The first process owns the bus name and
// answers org.freedesktop.Application; a later launch hands its request to
// it and exits. Without a session bus a user-only local socket does the same.
class SingleInstance final : public QObject
{
    Q_OBJECT

public:
    explicit SingleInstance(const QDBusConnection &bus, QObject *parent = nullptr);
    ~SingleInstance() override;

    // Becomes the running instance; false when another one already is.
    bool claim();
    // What a launch asks of the running instance.
    enum class Request {
        reopen,   // a plain launch: show something when nothing is visible
        settings, // --settings
        panel,    // --panel: the panel at the pointer, as a bar's click wants
    };

    // Asks the running instance; true when it was reached.
    bool forward(Request request);

    // The object the bus interfaces hang on; null before claim() or without a bus.
    QObject *exportedObject() const { return m_exported; }
    const QDBusConnection &bus() const { return m_bus; }

    // Called by the bus adaptor.
    void requestActivate();
    void requestSettings();
    void requestPanel();

Q_SIGNALS:
    // A re-launch: show settings when no window is visible.
    void reopenRequested();
    // A re-launch with --settings.
    void settingsRequested();
    // A re-launch with --panel.
    void panelRequested();

private:
    bool claimLocalSocket();
    bool forwardToLocalSocket(Request request);
    QString socketName() const;

    QDBusConnection m_bus;
    QLocalServer *m_server = nullptr;
    QObject *m_exported = nullptr;
    bool m_ownsName = false;
};
