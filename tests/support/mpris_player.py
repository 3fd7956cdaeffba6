"""A media player on the session bus: `mpris_player.py NAME TITLE ARTIST COVER-ADDRESS`. Plays nothing, but answers and
obeys as one does (MPRIS D-Bus Interface Specification 2.2)."""

import sys

from gi.repository import Gio, GLib

INTERFACE = "org.mpris.MediaPlayer2.Player"
DESCRIPTION = """<node>
<interface name="org.mpris.MediaPlayer2"><method name="Raise"/><property name="Identity" type="s" access="read"/>
</interface>
<interface name="org.mpris.MediaPlayer2.Player"><method name="PlayPause"/><method name="Next"/><method name="Previous"/>
<property name="PlaybackStatus" type="s" access="read"/><property name="Metadata" type="a{sv}" access="read"/>
</interface></node>"""
name, title, artist, cover = sys.argv[1:5]
state = {"status": "Playing", "track": 1}


def properties():
    metadata = {"mpris:trackid": GLib.Variant("o", "/track/%d" % state["track"]),
                "xesam:title": GLib.Variant("s", title if state["track"] == 1 else "%s %d" % (title, state["track"])),
                "xesam:artist": GLib.Variant("as", [artist]), "mpris:artUrl": GLib.Variant("s", cover)}
    return {"PlaybackStatus": GLib.Variant("s", state["status"]), "Metadata": GLib.Variant("a{sv}", metadata)}


def call(bus, _sender, path, _interface, method, _parameters, invocation):
    if method == "PlayPause":
        state["status"] = "Paused" if state["status"] == "Playing" else "Playing"
    state["track"] += {"Next": 1, "Previous": -1}.get(method, 0)
    invocation.return_value(None)
    bus.emit_signal(None, path, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                    GLib.Variant("(sa{sv}as)", (INTERFACE, properties(), [])))


def get(_bus, _sender, _path, _interface, key):
    return GLib.Variant("s", name) if key == "Identity" else properties()[key]


session = Gio.bus_get_sync(Gio.BusType.SESSION)
for interface in Gio.DBusNodeInfo.new_for_xml(DESCRIPTION).interfaces:
    session.register_object("/org/mpris/MediaPlayer2", interface, call, get, None)
Gio.bus_own_name_on_connection(session, "org.mpris.MediaPlayer2." + name, Gio.BusNameOwnerFlags.NONE)
GLib.MainLoop().run()
