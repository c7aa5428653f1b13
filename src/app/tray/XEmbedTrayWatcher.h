#pragma once

#include <QObject>

#include <cstdint>

class QSocketNotifier;
struct xcb_connection_t;

// Tells when an XEmbed system tray appears on the X display or goes away, so
// that a tray started after us is found at once, without polling. Trays
// announce themselves with a MANAGER message on the root window; a tray's
// window is watched for its end. Watches nothing off X11.
class XEmbedTrayWatcher final : public QObject
{
    Q_OBJECT

public:
    explicit XEmbedTrayWatcher(QObject *parent = nullptr);
    ~XEmbedTrayWatcher() override;

    bool isWatching() const { return m_connection != nullptr; }
    bool hasTray() const { return m_owner != 0; }

Q_SIGNALS:
    void trayChanged();

private:
    void readEvents();
    void findOwner();

    xcb_connection_t *m_connection = nullptr;
    QSocketNotifier *m_notifier = nullptr;
    uint32_t m_root = 0;
    uint32_t m_selection = 0;
    uint32_t m_manager = 0;
    uint32_t m_owner = 0;
};
