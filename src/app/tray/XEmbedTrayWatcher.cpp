#include "XEmbedTrayWatcher.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QSocketNotifier>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace {

struct FreeDeleter
{
    void operator()(void *pointer) const { std::free(pointer); }
};
template<typename T> using XcbReply = std::unique_ptr<T, FreeDeleter>;

uint32_t atom(xcb_connection_t *connection, const QByteArray &name)
{
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, false, name.size(), name.constData()), nullptr));
    return reply ? reply->atom : 0;
}

} // namespace

XEmbedTrayWatcher::XEmbedTrayWatcher(QObject *parent)
    : QObject(parent)
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return;
    // A connection of our own: Qt's is not ours to select events on.
    int screenNumber = 0;
    xcb_connection_t *connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return;
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screenNumber && screens.rem > 0; ++i)
        xcb_screen_next(&screens);
    if (screens.rem == 0) {
        xcb_disconnect(connection);
        return;
    }
    m_connection = connection;
    m_root = screens.data->root;
    m_selection = atom(connection, "_NET_SYSTEM_TRAY_S" + QByteArray::number(screenNumber));
    m_manager = atom(connection, "MANAGER");
    const uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, m_root, XCB_CW_EVENT_MASK, &mask);
    findOwner();

    m_notifier =
        new QSocketNotifier(xcb_get_file_descriptor(connection), QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &XEmbedTrayWatcher::readEvents);
}

XEmbedTrayWatcher::~XEmbedTrayWatcher()
{
    if (m_connection)
        xcb_disconnect(m_connection);
}

void XEmbedTrayWatcher::findOwner()
{
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, m_selection), nullptr));
    m_owner = reply ? reply->owner : 0;
    if (m_owner == 0)
        return;
    // Its end is our cue; a window gone already leaves an error, and no tray.
    const uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    const XcbReply<xcb_generic_error_t> error(xcb_request_check(
        m_connection,
        xcb_change_window_attributes_checked(m_connection, m_owner, XCB_CW_EVENT_MASK, &mask)));
    if (error)
        m_owner = 0;
}

void XEmbedTrayWatcher::readEvents()
{
    bool changed = false;
    while (xcb_generic_event_t *raw = xcb_poll_for_event(m_connection)) {
        const XcbReply<xcb_generic_event_t> event(raw);
        switch (event->response_type & ~0x80) {
        case XCB_CLIENT_MESSAGE: {
            const auto *message = reinterpret_cast<xcb_client_message_event_t *>(raw);
            if (message->type == m_manager && message->data.data32[1] == m_selection) {
                findOwner();
                changed = true;
            }
            break;
        }
        case XCB_DESTROY_NOTIFY:
            if (reinterpret_cast<xcb_destroy_notify_event_t *>(raw)->window == m_owner) {
                findOwner(); // a successor may own it already
                changed = true;
            }
            break;
        default:
            break;
        }
    }
    if (xcb_connection_has_error(m_connection)) {
        m_notifier->setEnabled(false);
        return;
    }
    if (changed)
        Q_EMIT trayChanged();
}
