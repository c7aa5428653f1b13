#include "SystemTimeWatcher.h"

#include <QDir>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QSocketNotifier>

#include <cerrno>
#include <cstdint>
#include <limits>
#include <sys/timerfd.h>
#include <unistd.h>

SystemTimeWatcher::SystemTimeWatcher(QObject *parent)
    : SystemTimeWatcher(Sources{}, parent)
{}

SystemTimeWatcher::SystemTimeWatcher(const Sources &sources, QObject *parent)
    : QObject(parent)
    , m_configDirectory(sources.configDirectory)
{
    if (sources.watchClockChanges) {
        m_timerFd = ::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
        if (m_timerFd >= 0) {
            armClockChangeTimer();
            m_timerNotifier = new QSocketNotifier(m_timerFd, QSocketNotifier::Read, this);
            connect(m_timerNotifier, &QSocketNotifier::activated, this,
                    &SystemTimeWatcher::onTimerFdReadable);
        }
    }

    QDBusConnection bus = sources.systemBus;
    if (bus.isConnected()) {
        m_watchesSleep = bus.connect(
            QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
            QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"),
            this, SLOT(onPrepareForSleep(bool)));
        m_watchesTimeZoneService = bus.connect(QStringLiteral("org.freedesktop.timedate1"),
                                               QStringLiteral("/org/freedesktop/timedate1"),
                                               QStringLiteral("org.freedesktop.DBus.Properties"),
                                               QStringLiteral("PropertiesChanged"), this,
                                               SLOT(onTimeDatePropertiesChanged(QString)));
    }

    if (QFileInfo(m_configDirectory).isDir()) {
        m_localTimeWatcher = new QFileSystemWatcher(this);
        // The directory, not the file: tools replace the link with a rename.
        if (m_localTimeWatcher->addPath(m_configDirectory)) {
            m_localTimeSignature = localTimeSignature();
            connect(m_localTimeWatcher, &QFileSystemWatcher::directoryChanged, this,
                    &SystemTimeWatcher::onConfigDirectoryChanged);
        } else {
            delete m_localTimeWatcher;
            m_localTimeWatcher = nullptr;
        }
    }
}

SystemTimeWatcher::~SystemTimeWatcher()
{
    if (m_timerFd >= 0)
        ::close(m_timerFd);
}

void SystemTimeWatcher::armClockChangeTimer()
{
    // An absolute expiry that never comes: the only thing the descriptor ever
    // reports is ECANCELED, when the clock is set.
    itimerspec spec{};
    spec.it_value.tv_sec = std::numeric_limits<time_t>::max() / 2;
    ::timerfd_settime(m_timerFd, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &spec, nullptr);
}

void SystemTimeWatcher::onTimerFdReadable()
{
    uint64_t expirations = 0;
    const ssize_t result = ::read(m_timerFd, &expirations, sizeof expirations);
    if (result < 0 && errno == ECANCELED) {
        armClockChangeTimer();
        Q_EMIT timeChanged();
    }
}

void SystemTimeWatcher::onPrepareForSleep(bool goingToSleep)
{
    if (!goingToSleep)
        Q_EMIT timeChanged();
}

void SystemTimeWatcher::onTimeDatePropertiesChanged(const QString &interface)
{
    if (interface == u"org.freedesktop.timedate1")
        Q_EMIT timeChanged();
}

void SystemTimeWatcher::onConfigDirectoryChanged()
{
    const QString signature = localTimeSignature();
    if (signature == m_localTimeSignature)
        return;
    m_localTimeSignature = signature;
    Q_EMIT timeChanged();
}

QString SystemTimeWatcher::localTimeSignature() const
{
    // Where the link points and when the file behind it last changed.
    const QFileInfo info(QDir(m_configDirectory).filePath(QStringLiteral("localtime")));
    if (!info.exists())
        return QString();
    return info.symLinkTarget() + u'|' + QString::number(info.lastModified().toMSecsSinceEpoch()) +
           u'|' + QString::number(info.size());
}
