// SPDX-License-Identifier: GPL-3.0-or-later
#include "WaylandOverlayLayer.h"

#include "QtWaylandConnection.h"
#include "logging/Logger.h"
#include "wlr-layer-shell-unstable-v1-client-protocol.h"

#include <QEvent>
#include <QGuiApplication>
#include <QHash>
#include <QScreen>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>
#include <wayland-client.h>

namespace WaylandOverlayLayer {
namespace {

// The layer shell, bound once on Qt's own connection, its events read when we ask for them.
QtWaylandConnection::Global
    layerShell(zwlr_layer_shell_v1_interface, 1,
               QStringLiteral("breaks cover the screens from the compositor's overlay layer"),
               QStringLiteral("breaks cover the screens as full-screen windows: the "
                              "compositor offers no overlay layer"));

zwlr_layer_shell_v1* shell()
{
    return static_cast<zwlr_layer_shell_v1*>(layerShell.get());
}

std::function<void(QWindow*)> whenClosed;

// One window's layer surface, for the Wayland surface Qt made at its last show.
struct Layer {
    wl_surface* surface = nullptr;
    zwlr_layer_surface_v1* layer = nullptr;
    QWindow* window = nullptr;
};

// The size needs no answer: the window already has its screen's (at a fractional scale one
// logical pixel more, to reach the monitor's edge), and the anchors keep the surface on the
// whole output.
void configure(void* /*data*/, zwlr_layer_surface_v1* layer, uint32_t serial, uint32_t /*width*/,
               uint32_t /*height*/)
{
    zwlr_layer_surface_v1_ack_configure(layer, serial);
}

void closed(void* data, zwlr_layer_surface_v1* /*layer*/)
{
    // Out of Qt's reading of the connection: the window opens anew once that is over.
    QWindow* window = static_cast<Layer*>(data)->window;
    QMetaObject::invokeMethod(
        window, [window] { whenClosed(window); }, Qt::QueuedConnection);
}

const zwlr_layer_surface_v1_listener layerListener{configure, closed};

// Gives each new surface of an adopted window its place on the overlay layer, before Qt draws
// into it: Qt makes a surface at every show, and its first frame follows the expose.
class Placer : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        auto* window = qobject_cast<QWindow*>(watched);
        if (!window)
            return false;
        if (event->type() == QEvent::Expose && window->isVisible())
            place(window);
        else if (event->type() == QEvent::Hide)
            forget(window);
        return false;
    }

    QHash<QWindow*, Layer*> layers;

    void place(QWindow* window)
    {
        QPlatformNativeInterface* native = QtWaylandConnection::native();
        if (!native)
            return;
        wl_display* connection = QtWaylandConnection::display();
        auto* surface =
            static_cast<wl_surface*>(native->nativeResourceForWindow(QByteArrayLiteral("surface"), window));
        if (!connection || !surface)
            return;
        Layer*& own = layers[window];
        if (own && own->surface == surface)
            return;
        forget(window);
        own = new Layer{surface, nullptr, window};
        auto* output = window->screen() ? static_cast<wl_output*>(native->nativeResourceForScreen(
                                              QByteArrayLiteral("output"), window->screen()))
                                        : nullptr;
        own->layer = zwlr_layer_shell_v1_get_layer_surface(
            shell(), surface, output, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "lulltide-break");
        zwlr_layer_surface_v1_add_listener(own->layer, &layerListener, own);
        zwlr_layer_surface_v1_set_anchor(
            own->layer, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
                            ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT);
        // Over the panels too: no other surface's reserved space moves the break.
        zwlr_layer_surface_v1_set_exclusive_zone(own->layer, -1);
        // The keyboard belongs to the primary screen's break, as on X11: where several surfaces
        // ask for it, the compositor would choose.
        zwlr_layer_surface_v1_set_keyboard_interactivity(
            own->layer, window->screen() == QGuiApplication::primaryScreen()
                            ? ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE
                            : ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE);
        // The compositor answers the first commit, made without a frame, with the surface's size;
        // the frame Qt draws next is acknowledged by then.
        wl_surface_commit(surface);
        wl_display_roundtrip_queue(connection, layerShell.queue());
        // Later news (another size, the surface closed) comes as Qt reads its connection; what
        // came in since the roundtrip is read now.
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(own->layer), nullptr);
        wl_display_dispatch_queue_pending(connection, layerShell.queue());
    }

    void forget(QWindow* window)
    {
        if (Layer* own = std::exchange(layers[window], nullptr)) {
            zwlr_layer_surface_v1_destroy(own->layer);
            delete own;
        }
    }
};

Placer* placer()
{
    static auto* placer = new Placer;
    return placer;
}

} // namespace

bool adopt(QWindow* window, std::function<void(QWindow*)> closed)
{
    if (!shell())
        return false;
    // (Qt makes no window role of its own for it: see BreakScreenChild::prepareProcess.)
    window->setFlag(Qt::BypassWindowManagerHint);
    window->installEventFilter(placer());
    placer()->layers.insert(window, nullptr);
    whenClosed = std::move(closed);
    return true;
}

bool holds(const QWindow* window)
{
    // (Only adopted windows bypass the window manager.)
    return window->flags() & Qt::BypassWindowManagerHint;
}

void placeShown(QWindow* window)
{
    if (placer()->layers.contains(window) && window->isVisible())
        placer()->place(window);
}

} // namespace WaylandOverlayLayer
