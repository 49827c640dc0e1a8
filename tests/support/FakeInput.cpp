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

} // namespace

bool pressKeys(const QList<quint32>& keys)
{
    wl_display* display = wl_display_connect(nullptr);
    if (!display)
        return false;
    Globals globals;
    wl_registry* registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &listener, &globals);
    wl_display_roundtrip(display);
    const bool pressed = globals.kde && globals.kdeVersion >= 4;
    if (pressed) {
        org_kde_kwin_fake_input_authenticate(globals.kde, "lulltide tests", "a person at the desk");
        for (quint32 key : keys)
            org_kde_kwin_fake_input_keyboard_key(globals.kde, key, WL_KEYBOARD_KEY_STATE_PRESSED);
        for (auto key = keys.crbegin(); key != keys.crend(); ++key)
            org_kde_kwin_fake_input_keyboard_key(globals.kde, *key, WL_KEYBOARD_KEY_STATE_RELEASED);
        wl_display_roundtrip(display);
    }
    if (globals.kde)
        org_kde_kwin_fake_input_destroy(globals.kde);
    if (globals.wlr)
        zwlr_virtual_pointer_manager_v1_destroy(globals.wlr);
    wl_display_roundtrip(display);
    wl_registry_destroy(registry);
    wl_display_disconnect(display);
    return pressed;
}

bool movePointer()
{
    wl_display* display = wl_display_connect(nullptr);
    if (!display)
        return false;
    Globals globals;
    wl_registry* registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &listener, &globals);
    wl_display_roundtrip(display);
    if (globals.kde) {
        org_kde_kwin_fake_input_authenticate(globals.kde, "lulltide tests", "a person at the desk");
        org_kde_kwin_fake_input_pointer_motion(globals.kde, wl_fixed_from_int(7), wl_fixed_from_int(5));
        wl_display_roundtrip(display);
        org_kde_kwin_fake_input_destroy(globals.kde);
    } else if (globals.wlr) {
        // On the compositor's default seat.
        zwlr_virtual_pointer_v1* pointer =
            zwlr_virtual_pointer_manager_v1_create_virtual_pointer(globals.wlr, nullptr);
        zwlr_virtual_pointer_v1_motion(pointer, 0, wl_fixed_from_int(7), wl_fixed_from_int(5));
        zwlr_virtual_pointer_v1_frame(pointer);
        wl_display_roundtrip(display);
        zwlr_virtual_pointer_v1_destroy(pointer);
        zwlr_virtual_pointer_manager_v1_destroy(globals.wlr);
    }
    const bool moved = globals.kde || globals.wlr;
    wl_display_roundtrip(display);
    wl_registry_destroy(registry);
    wl_display_disconnect(display);
    return moved;
}

} // namespace FakeInput
