#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>

// The running Zonara as a panel applet sees it over the session bus: whether
// it runs, its tray line as it changes, and its cities on request.
// Not final: QML derives from the types it creates.
class ZonaraClient : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool running READ running NOTIFY runningChanged)
    // Empty while Zonara shows the globe, or is not running.
    Q_PROPERTY(QString line READ line NOTIFY lineChanged)
    // Every saved city with its time, one a line, pinned first.
    Q_PROPERTY(QString cities READ cities NOTIFY citiesChanged)

public:
    explicit ZonaraClient(QObject *parent = nullptr);

    bool running() const { return m_running; }
    QString line() const { return m_line; }
    QString cities() const { return m_cities; }

    // Asks for the cities afresh, for a tooltip about to show.
    Q_INVOKABLE void refreshCities();
    // Opens Zonara's panel near a point on screen, or closes it; starts
    // Zonara first when it is not running.
    Q_INVOKABLE void togglePanel(int x, int y);

Q_SIGNALS:
    void runningChanged();
    void lineChanged();
    void citiesChanged();

private Q_SLOTS:
    void lineArrived(const QString &line);

private:
    void setLine(const QString &line);
    void setRunning(bool running);
    void setCities(const QString &cities);
    void readLine();

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    bool m_running = false;
    QString m_line;
    QString m_cities;
};
