#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

class QFileSystemWatcher;
class QSocketNotifier;

// Tells when the wall clock may have jumped: the system clock was set, the
// machine woke from sleep, or the system's time zone changed. Each source is
// optional; one that is missing only delays re-alignment to the next tick.
class SystemTimeWatcher final : public QObject
{
    Q_OBJECT

public:
    struct Sources
    {
        // Where logind and timedated live; usually the system bus.
        QDBusConnection systemBus = QDBusConnection::systemBus();
        // The directory holding "localtime".
        QString configDirectory = QStringLiteral("/etc");
        bool watchClockChanges = true;
    };

    explicit SystemTimeWatcher(QObject *parent = nullptr);
    SystemTimeWatcher(const Sources &sources, QObject *parent = nullptr);
    ~SystemTimeWatcher() override;

    bool watchesClockChanges() const { return m_timerFd >= 0; }
    bool watchesSleep() const { return m_watchesSleep; }
    bool watchesTimeZoneService() const { return m_watchesTimeZoneService; }
    bool watchesLocalTimeFile() const { return m_localTimeWatcher != nullptr; }

Q_SIGNALS:
    // The wall clock or the local zone may have changed.
    void timeChanged();

private Q_SLOTS:
    void onPrepareForSleep(bool goingToSleep);
    void onTimeDatePropertiesChanged(const QString &interface);

private:
    void armClockChangeTimer();
    void onTimerFdReadable();
    void onConfigDirectoryChanged();
    QString localTimeSignature() const;

    int m_timerFd = -1;
    QSocketNotifier *m_timerNotifier = nullptr;
    bool m_watchesSleep = false;
    bool m_watchesTimeZoneService = false;
    QFileSystemWatcher *m_localTimeWatcher = nullptr;
    QString m_configDirectory;
    QString m_localTimeSignature;
};
