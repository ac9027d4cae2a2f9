#include "platform/linux/x11_activation.h"

#include <QGuiApplication>
#include <QWindow>
#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace ql240 {
namespace {

constexpr char kTimeMark[] = "_TIME";
constexpr char kActivate[] = "_NET_ACTIVE_WINDOW";
constexpr std::uint32_t kFromApplication = 1;

template <typename Reply>
using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

xcb_atom_t atomNamed(xcb_connection_t* connection, const char* name) {
    const auto cookie = xcb_intern_atom(connection, false, static_cast<std::uint16_t>(qstrlen(name)), name);
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr),
                                               &std::free);
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

xcb_window_t rootOf(xcb_connection_t* connection, xcb_window_t window) {
    const auto cookie = xcb_get_geometry(connection, window);
    const Owned<xcb_get_geometry_reply_t> reply(xcb_get_geometry_reply(connection, cookie, nullptr),
                                                &std::free);
    return reply ? reply->root : xcb_window_t(XCB_WINDOW_NONE);
}

} // namespace

std::uint32_t timeOfStartUpId(const QByteArray& id) {
    const qsizetype mark = id.lastIndexOf(kTimeMark);
    return mark < 0 ? 0 : id.mid(mark + static_cast<qsizetype>(qstrlen(kTimeMark))).toUInt();
}

void activateOnX11(const QWindow& window, std::uint32_t time) {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11)
        return;
    xcb_connection_t* connection = x11->connection();
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = static_cast<xcb_window_t>(window.winId());
    event.type = atomNamed(connection, kActivate);
    event.data.data32[0] = kFromApplication;
    event.data.data32[1] = time;
    xcb_send_event(connection, false, rootOf(connection, event.window),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(connection);
}

} // namespace ql240
