// SPDX-License-Identifier: GPL-3.0-or-later
#include "FakeInput.h"

#include "fake-input-client-protocol.h"

#include <wayland-client.h>

#include <cstring>

namespace FakeInput {
namespace {

void global(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t)
{
    if (std::strcmp(interface, org_kde_kwin_fake_input_interface.name) == 0)
        *static_cast<org_kde_kwin_fake_input**>(data) = static_cast<org_kde_kwin_fake_input*>(
            wl_registry_bind(registry, name, &org_kde_kwin_fake_input_interface, 1));
}

void globalRemove(void*, wl_registry*, uint32_t) {}

const wl_registry_listener listener = {global, globalRemove};

} // namespace

bool movePointer()
{
    wl_display* display = wl_display_connect(nullptr);
    if (!display)
        return false;
    org_kde_kwin_fake_input* input = nullptr;
    wl_registry* registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &listener, &input);
    wl_display_roundtrip(display);
    if (input) {
        org_kde_kwin_fake_input_authenticate(input, "lulltide tests", "a person at the desk");
        org_kde_kwin_fake_input_pointer_motion(input, wl_fixed_from_int(7), wl_fixed_from_int(5));
        wl_display_roundtrip(display);
        org_kde_kwin_fake_input_destroy(input);
    }
    wl_registry_destroy(registry);
    wl_display_disconnect(display);
    return input != nullptr;
}

} // namespace FakeInput
