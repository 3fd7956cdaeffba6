"""A notification service that does not say what it can do: prints the body of each notification."""

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

NAME = "org.freedesktop.Notifications"
INTERFACE = f"""<node><interface name="{NAME}">
  <method name="GetCapabilities"><arg type="as" direction="out"/></method>
  <method name="Notify">
    <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
    <arg type="a{{sv}}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/>
  </method>
</interface></node>"""


def called(_connection, _sender, _path, _interface, method, arguments, invocation):
    if method == "Notify":
        print("body", arguments.unpack()[4], flush=True)
        invocation.return_value(GLib.Variant("(u)", (1,)))
    else:
        invocation.return_dbus_error("org.freedesktop.DBus.Error.Failed", "not today")


def connected(connection, _name):
    connection.register_object("/org/freedesktop/Notifications",
                               Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0], called, None, None)


Gio.bus_own_name(Gio.BusType.SESSION, NAME, Gio.BusNameOwnerFlags.NONE, connected, None, None)
GLib.MainLoop().run()
