"""A screen reader for the end-to-end tests: reads what the program tells AT-SPI, does its actions, hears its events.

The client library finds its bus once in a process, so a process has one reader, for one desktop."""

import os
import time
from collections import namedtuple

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

Node = namedtuple("Node", "role name description states actions value depth accessible")
STATES = ("FOCUSABLE", "FOCUSED", "CHECKED", "SHOWING", "ENABLED", "EDITABLE", "SELECTED")
EVENTS = ("object:property-change:accessible-name", "object:property-change:accessible-description",
          "object:state-changed:checked", "object:state-changed:showing", "object:state-changed:focused")


class ScreenReader:
    def __init__(self, desktop):
        for name in ("DBUS_SESSION_BUS_ADDRESS", "DISPLAY", "HOME", "XDG_RUNTIME_DIR"):
            os.environ[name] = desktop.environment[name]
        # As a screen reader does when it starts; programs look whether there is one.
        desktop.run("dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus",
                    "org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status", "string:IsEnabled",
                    "variant:boolean:true")
        Atspi.init()
        self.heard = []
        self.listener = Atspi.EventListener.new(self._hear)
        for event in EVENTS:
            self.listener.register(event)

    def _hear(self, event):
        try:
            self.heard.append((event.type.rsplit(":", 1)[1], event.detail1, event.source.get_name(),
                               event.source.get_description()))
        except GLib.Error:  # it has gone since
            pass

    def listen(self, seconds):
        """What is heard until then, from the last time or the last action on: (what, 1 or 0 for a state, name,
        description). Events arrive while an action waits for its answer, too."""
        self._run(seconds)
        heard, self.heard = self.heard, []
        return heard

    def _run(self, seconds):
        context = GLib.MainContext.default()
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            if not context.iteration(False):
                time.sleep(0.005)

    def nodes(self):
        """Everything that shows in the program's windows, in reading order."""
        return list(self._walk_program(lambda accessible: True))

    def _walk_program(self, wanted):
        """What shows and is wanted, as nodes. Not what goes meanwhile."""
        self._run(0.05)
        root = Atspi.get_desktop(0)
        for i in range(root.get_child_count()):
            program = root.get_child_at_index(i)
            if program is not None and program.get_name() == "dawnly":
                program.set_cache_mask(Atspi.Cache.NONE)
                yield from self._walk(program, 0, wanted)

    def _walk(self, accessible, depth, wanted):
        try:
            if depth > 0 and not accessible.get_state_set().contains(Atspi.StateType.SHOWING):
                return
            node = self._read(accessible, depth) if wanted(accessible) else None
            children = [accessible.get_child_at_index(i) for i in range(accessible.get_child_count())]
        except GLib.Error:  # it has gone since
            return
        if node:
            yield node
        for child in children:
            if child is not None:
                yield from self._walk(child, depth + 1, wanted)

    @staticmethod
    def _read(accessible, depth):
        states = accessible.get_state_set()
        interfaces = accessible.get_interfaces()
        actions, value = [], None
        if "Action" in interfaces:
            actions = [Atspi.Action.get_action_name(accessible, i)
                       for i in range(Atspi.Action.get_n_actions(accessible))]
        if "Value" in interfaces:
            value = Atspi.Value.get_current_value(accessible)
        return Node(accessible.get_role_name(), accessible.get_name(), accessible.get_description(),
                    {name for name in STATES if states.contains(getattr(Atspi.StateType, name))}, actions, value,
                    depth, accessible)

    def find(self, role, name):
        """The one that shows with that role and that beginning of a name."""
        def wanted(accessible):
            return accessible.get_role_name() == role and accessible.get_name().startswith(name)

        for node in self._walk_program(wanted):
            return node
        raise AssertionError("no %s %r among\n%s" % (role, name, self.text()))

    @staticmethod
    def place(node):
        """Where it is on the screen: left, top, width and height in pixels."""
        try:
            box = Atspi.Component.get_extents(node.accessible, Atspi.CoordType.SCREEN)
        except GLib.Error as gone:
            raise AssertionError("%s %r has gone" % (node.role, node.name)) from gone
        return box.x, box.y, box.width, box.height

    def do(self, action, role, name):
        node = self.find(role, name)
        self.heard = []
        Atspi.Action.do_action(node.accessible, node.actions.index(action))

    def text(self):
        return "\n".join("  " * node.depth + "%s %r (%s) %s" % (node.role, node.name, node.description,
                                                                  sorted(node.states)) for node in self.nodes())
