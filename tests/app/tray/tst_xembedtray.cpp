#include "TrayIcon.h"

#include <QDBusConnection>
#include <QSignalSpy>
#include <QTest>

#include <xcb/xcb.h>

#include <cstdlib>

// Plays an XEmbed tray that starts after Zonara: owns the tray selection and
// announces itself as a tray manager does, then goes away.
class FakeXEmbedTray final
{
public:
    FakeXEmbedTray()
    {
        int screenNumber = 0;
        m_connection = xcb_connect(nullptr, &screenNumber);
        xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
        for (int i = 0; i < screenNumber; ++i)
            xcb_screen_next(&screens);
        m_root = screens.data->root;
        m_selection = atom("_NET_SYSTEM_TRAY_S" + QByteArray::number(screenNumber));
        m_window = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, m_root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(m_connection, m_window, m_selection, XCB_CURRENT_TIME);

        xcb_client_message_event_t manager{};
        manager.response_type = XCB_CLIENT_MESSAGE;
        manager.format = 32;
        manager.window = m_root;
        manager.type = atom("MANAGER");
        manager.data.data32[0] = XCB_CURRENT_TIME;
        manager.data.data32[1] = m_selection;
        manager.data.data32[2] = m_window;
        xcb_send_event(m_connection, false, m_root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                       reinterpret_cast<const char *>(&manager));
        xcb_flush(m_connection);
    }
    ~FakeXEmbedTray() { xcb_disconnect(m_connection); } // its window goes with it

private:
    uint32_t atom(const QByteArray &name)
    {
        xcb_intern_atom_reply_t *reply = xcb_intern_atom_reply(
            m_connection, xcb_intern_atom(m_connection, false, name.size(), name.constData()),
            nullptr);
        const uint32_t result = reply->atom;
        std::free(reply);
        return result;
    }

    xcb_connection_t *m_connection = nullptr;
    uint32_t m_root = 0;
    uint32_t m_selection = 0;
    uint32_t m_window = 0;
};

class TestXEmbedTray final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lateTrayIsTakenAndLeft()
    {
        // No StatusNotifierWatcher anywhere: only an XEmbed tray can host us.
        TrayIcon tray{QDBusConnection(QStringLiteral("no bus"))};
        QCOMPARE(tray.kind(), TrayIcon::Kind::None);

        QSignalSpy kindChanged(&tray, &TrayIcon::kindChanged);
        auto fake = std::make_unique<FakeXEmbedTray>();
        // Told by the tray itself: well within the first second, never a poll.
        QTRY_COMPARE_WITH_TIMEOUT(tray.kind(), TrayIcon::Kind::XEmbed, 1000);
        QCOMPARE(kindChanged.size(), 1);

        fake.reset();
        // A panel restarting gets a grace period before we leave it.
        QTest::qWait(TrayIcon::fallbackDelayMs / 2);
        QCOMPARE(tray.kind(), TrayIcon::Kind::XEmbed);
        QTRY_COMPARE_WITH_TIMEOUT(tray.kind(), TrayIcon::Kind::None, TrayIcon::fallbackDelayMs * 2);
    }
};

QTEST_MAIN(TestXEmbedTray)
#include "tst_xembedtray.moc"
