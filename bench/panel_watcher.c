// SPDX-License-Identifier: GPL-3.0-or-later
/* A panel's StatusNotifierWatcher and host for the footprint benchmark: owns
 * org.kde.StatusNotifierWatcher on the session bus, takes item registrations, reads each item's
 * properties once as a panel does, and prints "registered <sender> <microseconds since 1970>"
 * per registration. Written against GIO rather than Qt so that it shares no Qt library with
 * the programs measured: proportional set sizes split shared pages among every process that
 * maps them, and a Qt watcher would make a Qt program look lighter than it is. */
#include <gio/gio.h>
#include <stdio.h>

static const char introspection[] =
    "<node>"
    " <interface name='org.kde.StatusNotifierWatcher'>"
    "  <method name='RegisterStatusNotifierItem'><arg type='s' direction='in'/></method>"
    "  <method name='RegisterStatusNotifierHost'><arg type='s' direction='in'/></method>"
    "  <property name='RegisteredStatusNotifierItems' type='as' access='read'/>"
    "  <property name='IsStatusNotifierHostRegistered' type='b' access='read'/>"
    "  <property name='ProtocolVersion' type='i' access='read'/>"
    "  <signal name='StatusNotifierItemRegistered'><arg type='s'/></signal>"
    "  <signal name='StatusNotifierItemUnregistered'><arg type='s'/></signal>"
    "  <signal name='StatusNotifierHostRegistered'/>"
    " </interface>"
    "</node>";

static GPtrArray* items;

static void on_properties(GObject* source, GAsyncResult* result, gpointer data)
{
    (void)data;
    GVariant* reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, NULL);
    if (reply)
        g_variant_unref(reply);
}

static void on_method(GDBusConnection* connection, const char* sender, const char* path,
                      const char* interface, const char* method, GVariant* parameters,
                      GDBusMethodInvocation* invocation, gpointer data)
{
    (void)path;
    (void)interface;
    (void)data;
    if (g_strcmp0(method, "RegisterStatusNotifierItem") == 0) {
        const char* service = NULL;
        g_variant_get(parameters, "(&s)", &service);
        /* An item names either its bus name (its path is then the default) or its path. */
        const char* item_path = service[0] == '/' ? service : "/StatusNotifierItem";
        char* item = g_strconcat(sender, item_path, NULL);
        g_ptr_array_add(items, item);
        g_dbus_method_invocation_return_value(invocation, NULL);
        printf("registered %s %" G_GINT64_FORMAT "\n", sender, g_get_real_time());
        fflush(stdout);
        g_dbus_connection_emit_signal(connection, NULL, "/StatusNotifierWatcher",
                                      "org.kde.StatusNotifierWatcher", "StatusNotifierItemRegistered",
                                      g_variant_new("(s)", item), NULL);
        g_dbus_connection_call(connection, sender, item_path, "org.freedesktop.DBus.Properties", "GetAll",
                               g_variant_new("(s)", "org.kde.StatusNotifierItem"), NULL,
                               G_DBUS_CALL_FLAGS_NONE, 5000, NULL, on_properties, NULL);
        return;
    }
    g_dbus_method_invocation_return_value(invocation, NULL);
}

static GVariant* on_property(GDBusConnection* connection, const char* sender, const char* path,
                             const char* interface, const char* property, GError** error, gpointer data)
{
    (void)connection;
    (void)sender;
    (void)path;
    (void)interface;
    (void)error;
    (void)data;
    if (g_strcmp0(property, "RegisteredStatusNotifierItems") == 0) {
        GVariantBuilder builder;
        g_variant_builder_init(&builder, G_VARIANT_TYPE("as"));
        for (guint i = 0; i < items->len; ++i)
            g_variant_builder_add(&builder, "s", (const char*)g_ptr_array_index(items, i));
        return g_variant_builder_end(&builder);
    }
    if (g_strcmp0(property, "IsStatusNotifierHostRegistered") == 0)
        return g_variant_new_boolean(TRUE);
    return g_variant_new_int32(0);
}

static const GDBusInterfaceVTable vtable = {on_method, on_property, NULL, {0}};

static void on_bus(GDBusConnection* connection, const char* name, gpointer data)
{
    (void)name;
    GDBusNodeInfo* node = data;
    g_dbus_connection_register_object(connection, "/StatusNotifierWatcher", node->interfaces[0], &vtable,
                                      NULL, NULL, NULL);
}

static gboolean owned = FALSE;

static void on_name_acquired(GDBusConnection* connection, const char* name, gpointer data)
{
    (void)connection;
    (void)name;
    (void)data;
    owned = TRUE;
}

static void on_name_lost(GDBusConnection* connection, const char* name, gpointer data)
{
    (void)connection;
    (void)data;
    /* Once owned, the name goes only with the bus: the benchmark is over. */
    if (!owned)
        fprintf(stderr, "panel_watcher: cannot own %s\n", name);
    exit(owned ? 0 : 1);
}

int main(void)
{
    items = g_ptr_array_new_with_free_func(g_free);
    GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(introspection, NULL);
    g_bus_own_name(G_BUS_TYPE_SESSION, "org.kde.StatusNotifierWatcher", G_BUS_NAME_OWNER_FLAGS_NONE, on_bus,
                   on_name_acquired, on_name_lost, node, NULL);
    g_main_loop_run(g_main_loop_new(NULL, FALSE));
    return 0;
}
