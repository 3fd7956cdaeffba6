"""A desktop whose pointers and keyboard are devices of their own, which a test moves: a server with a screen in memory
and input drivers that take events from a socket. Its pointers scroll smoothly, as no XTEST device does."""

import os
import socket
import struct
import subprocess

from desktop import HEIGHT, WIDTH, Desktop, Screenshot

CONFIGURATION = """
Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "AutoEnableDevices" "false"
  Option "DontVTSwitch" "true"
EndSection
Section "Device"
  Identifier "Card"
  Driver "dummy"
  VideoRam 16384
EndSection
Section "Monitor"
  Identifier "Monitor"
  HorizSync 1-1000
  VertRefresh 1-1000
  Modeline "{width}x{height}" 83.50 1280 1352 1480 1680 800 803 809 831
EndSection
Section "Screen"
  Identifier "Screen"
  Device "Card"
  Monitor "Monitor"
  DefaultDepth 24
  SubSection "Display"
    Depth 24
    Modes "{width}x{height}"
  EndSubSection
EndSection
{devices}
Section "ServerLayout"
  Identifier "Layout"
  Screen "Screen"
{references}
EndSection
"""
DEVICE = """
Section "InputDevice"
  Identifier "{name}"
  Driver "inputtest"
  Option "SocketPath" "{socket}"
  Option "DeviceType" "{type}"
EndSection
"""

# The driver's protocol, version 1.1: a header of length and kind, then what the kind of event has.
CLIENT_VERSION, WAIT_FOR_SYNC, MOTION = 0, 1, 2
MOST_VALUATORS = 64
HORIZONTAL, VERTICAL = 2, 3  # the scroll axes' numbers
NOTCH = 120.0  # the driver's unit of scrolling


class Pointer:
    """A pointing device with two scroll axes. Distances are in notches of a wheel."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.socket.settimeout(5)
        self.socket.connect(path)
        self._send(CLIENT_VERSION, struct.pack("<HH", 1, 1))
        self._receive()

    def close(self):
        self.socket.close()

    def scroll(self, right, down):
        """One event that moves both axes, or tells with zeros that the fingers have left. Positive brings what is on
        the right, or below, into view."""
        self._move({HORIZONTAL: right * NOTCH, VERTICAL: down * NOTCH})

    def click(self, axis, notches):
        """A wheel moves one axis only."""
        self._move({axis: notches * NOTCH})

    def _move(self, axes):
        mask = bytearray(MOST_VALUATORS // 8)
        values = [0.0] * MOST_VALUATORS
        for axis, value in axes.items():
            mask[axis // 8] |= 1 << axis % 8
            values[axis] = value
        # Relative, without values from before an acceleration; the gaps are what C leaves between the fields.
        self._send(MOTION, struct.pack("<I4xI8s4x%dd" % (2 * MOST_VALUATORS), 0, 0, bytes(mask), *values, *values))
        self._send(WAIT_FOR_SYNC, b"")
        self._receive()

    def _send(self, kind, body):
        self.socket.sendall(struct.pack("<II", 8 + len(body), kind) + body)

    def _receive(self):
        length, _ = struct.unpack("<II", self._take(8))
        self._take(length - 8)

    def _take(self, length):
        data = b""
        while len(data) < length:
            part = self.socket.recv(length - len(data))
            if not part:
                raise ConnectionError("the server closed the device")
            data += part
        return data


class DesktopWithDevices(Desktop):
    def _start_server(self):
        names = {"Touchpad": "Pointer", "Mouse": "Pointer", "Keyboard": "Keyboard"}
        sockets = {name: os.path.join(self.home, name + ".socket") for name in names}
        configuration = os.path.join(self.home, "xorg.conf")
        with open(configuration, "w") as file:
            file.write(CONFIGURATION.format(
                width=WIDTH, height=HEIGHT,
                devices="".join(DEVICE.format(name=name, socket=sockets[name], type=names[name]) for name in names),
                references="\n".join('  InputDevice "%s"' % name for name in names)))
        self._run_server("/usr/lib/xorg/Xorg", "-config", configuration, "-logfile", self.home + "/xorg.log",
                         "-sharevts", "-novtswitch", "-keeptty")
        self.touchpad, self.mouse = Pointer(sockets["Touchpad"]), Pointer(sockets["Mouse"])

    def close(self):
        self.touchpad.close()
        self.mouse.close()
        super().close()

    def set_property(self, device, name, *values):
        """Gives a device a property of its driver's; one byte a value."""
        self.run("xinput", "set-prop", device, "--type=int", "--format=8", name, *map(str, values))

    def screenshot(self):
        dump = subprocess.run(["xwd", "-root", "-silent"], env=self.environment, check=True, stdout=subprocess.PIPE)
        return Screenshot(dump.stdout)
