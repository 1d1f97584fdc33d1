#include "windows/taskleiste.h"

#include <QGuiApplication>
#include <QWidget>

#ifdef ZEK_XCB
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#endif

namespace zek {

#ifdef ZEK_XCB

namespace {

xcb_atom_t Atom(xcb_connection_t* x, const char* name) {
    const auto frage = xcb_intern_atom(x, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    xcb_intern_atom_reply_t* antwort = xcb_intern_atom_reply(x, frage, nullptr);
    const xcb_atom_t atom = antwort != nullptr ? antwort->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    std::free(antwort);
    return atom;
}

}  // namespace

// By the rules of the window managers: a message to the root window changes the state of a window that is shown.
void TaskleisteneintragSetzen(QWidget& fenster, bool an) {
    const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr || x11->connection() == nullptr) return;
    xcb_connection_t* x = x11->connection();
    constexpr std::uint32_t Entfernen = 0, Setzen = 1, VomProgramm = 1;
    xcb_client_message_event_t nachricht{};
    nachricht.response_type = XCB_CLIENT_MESSAGE;
    nachricht.format = 32;
    nachricht.window = static_cast<xcb_window_t>(fenster.winId());
    nachricht.type = Atom(x, "_NET_WM_STATE");
    nachricht.data.data32[0] = an ? Entfernen : Setzen;
    nachricht.data.data32[1] = Atom(x, "_NET_WM_STATE_SKIP_TASKBAR");
    nachricht.data.data32[3] = VomProgramm;
    const xcb_window_t wurzel = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    xcb_send_event(x, 0, wurzel, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&nachricht));
    xcb_flush(x);
}

#else

void TaskleisteneintragSetzen(QWidget&, bool) {}

#endif

}  // namespace zek
