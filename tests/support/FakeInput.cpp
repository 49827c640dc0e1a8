// SPDX-License-Identifier: GPL-3.0-or-later
#include "FakeInput.h"

#include "fake-input-client-protocol.h"
#include "wlr-virtual-pointer-client-protocol.h"

#include <wayland-client.h>

#include <algorithm>
#include <cstring>

namespace FakeInput {
namespace {

struct Globals {
    org_kde_kwin_fake_input* kde = nullptr;
    uint32_t kdeVersion = 0;
    zwlr_virtual_pointer_manager_v1* wlr = nullptr;
};

void global(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t version)
{
    auto* globals = static_cast<Globals*>(data);
    if (std::strcmp(interface, org_kde_kwin_fake_input_interface.name) == 0) {
        // Keys came with version 4.
        globals->kdeVersion = std::min<uint32_t>(version, 4);
        globals->kde = static_cast<org_kde_kwin_fake_input*>(
            wl_registry_bind(registry, name, &org_kde_kwin_fake_input_interface, globals->kdeVersion));
    } else if (std::strcmp(interface, zwlr_virtual_pointer_manager_v1_interface.name) == 0)
        globals->wlr = static_cast<zwlr_virtual_pointer_manager_v1*>(
            wl_registry_bind(registry, name, &zwlr_virtual_pointer_manager_v1_interface, 1));
}

void globalRemove(void*, wl_registry*, uint32_t) {}

const wl_registry_listener listener = {global, globalRemove};

// A connection of its own to the compositor at WAYLAND_DISPLAY, with the globals found; all
// that was sent is taken in before it closes.
struct Connection {
    wl_display* display = wl_display_connect(nullptr);
    wl_registry* registry = nullptr;
    Globals globals;

    Connection()
    {
        if (!display)
            return;
        registry = wl_display_get_registry(display);
        wl_registry_add_listener(registry, &listener, &globals);
        wl_display_roundtrip(display);
    }
    ~Connection()
    {
        if (!display)
            return;
        if (globals.kde)
            org_kde_kwin_fake_input_destroy(globals.kde);
        if (globals.wlr)
            zwlr_virtual_pointer_manager_v1_destroy(globals.wlr);
        wl_display_roundtrip(display);
        wl_registry_destroy(registry);
        wl_display_disconnect(display);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
};

} // namespace

bool pressKeys(const QList<quint32>& keys)
{
    Connection connection;
    org_kde_kwin_fake_input* kde = connection.globals.kde;
    if (!kde || connection.globals.kdeVersion < 4)
        return false;
    org_kde_kwin_fake_input_authenticate(kde, "lulltide tests", "a person at the desk");
    for (quint32 key : keys)
        org_kde_kwin_fake_input_keyboard_key(kde, key, WL_KEYBOARD_KEY_STATE_PRESSED);
    for (auto key = keys.crbegin(); key != keys.crend(); ++key)
        org_kde_kwin_fake_input_keyboard_key(kde, *key, WL_KEYBOARD_KEY_STATE_RELEASED);
    wl_display_roundtrip(connection.display);
    return true;
}

bool movePointer()
{
    Connection connection;
    if (org_kde_kwin_fake_input* kde = connection.globals.kde) {
        org_kde_kwin_fake_input_authenticate(kde, "lulltide tests", "a person at the desk");
        org_kde_kwin_fake_input_pointer_motion(kde, wl_fixed_from_int(7), wl_fixed_from_int(5));
        wl_display_roundtrip(connection.display);
        return true;
    }
    if (zwlr_virtual_pointer_manager_v1* wlr = connection.globals.wlr) {
        // On the compositor's default seat.
        zwlr_virtual_pointer_v1* pointer =
            zwlr_virtual_pointer_manager_v1_create_virtual_pointer(wlr, nullptr);
        zwlr_virtual_pointer_v1_motion(pointer, 0, wl_fixed_from_int(7), wl_fixed_from_int(5));
        zwlr_virtual_pointer_v1_frame(pointer);
        wl_display_roundtrip(connection.display);
        zwlr_virtual_pointer_v1_destroy(pointer);
        return true;
    }
    return false;
}

} // namespace FakeInput
