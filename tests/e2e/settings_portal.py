"""A desktop's settings portal with one setting, whether animations are wanted; `off` or `on` as the first argument, and
every line on the standard input changes it."""

import sys

from gi.repository import Gio, GLib

INTERFACE = Gio.DBusNodeInfo.new_for_xml("""<node><interface name="org.freedesktop.portal.Settings">
  <method name="ReadAll"><arg type="as" direction="in"/><arg type="a{sa{sv}}" direction="out"/></method>
  <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
</interface></node>""").interfaces[0]
PATH = "/org/freedesktop/portal/desktop"
NAMESPACE, KEY = "org.gnome.desktop.interface", "enable-animations"
animations = [sys.argv[1] == "on"]


def answer(_bus, _sender, _path, _interface, _method, arguments, invocation):
    wanted = {NAMESPACE: {KEY: GLib.Variant("b", animations[0])}} if NAMESPACE in arguments.unpack()[0] else {}
    invocation.return_value(GLib.Variant("(a{sa{sv}})", (wanted,)))


def change(_source, _condition):
    if not sys.stdin.readline():
        return False
    animations[0] = not animations[0]
    bus.emit_signal(None, PATH, INTERFACE.name, "SettingChanged",
                    GLib.Variant("(ssv)", (NAMESPACE, KEY, GLib.Variant("b", animations[0]))))
    return True


bus = Gio.bus_get_sync(Gio.BusType.SESSION)
bus.register_object(PATH, INTERFACE, answer, None, None)
Gio.bus_own_name_on_connection(bus, "org.freedesktop.portal.Desktop", Gio.BusNameOwnerFlags.NONE, None, None)
GLib.io_add_watch(sys.stdin, GLib.IO_IN | GLib.IO_HUP, change)
GLib.MainLoop().run()
