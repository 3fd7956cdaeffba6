"""What plays in the tests of the players: tones in files, a web site with a player on it, and how a media player and a
browser are started for them."""

import base64
import functools
import http.server
import json
import math
import os
import socket
import struct
import threading
import urllib.request
import wave

MEDIA_HOST = "untitled.stream"
TITLE = "A set | ||| of \\ songs"
PAGE = "<!DOCTYPE html><title>{title}</title><audio src=/tone.wav loop {attributes}></audio>"
# Tells in its title whether it plays.
ATTRIBUTES = "autoplay onpause=\"document.title='silent'\" onplay=\"document.title='A set | ||| of \\\\ songs'\""


class QuietHandler(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


def write_tone(path, seconds=120):
    with wave.open(path, "wb") as tone:
        tone.setparams((1, 2, 8000, 0, "NONE", ""))
        second = b"".join(struct.pack("<h", int(3000 * math.sin(i * math.tau / 20))) for i in range(8000))
        tone.writeframes(second * seconds)


class Site:
    """Serves a page that plays and one that does not, whatever host they are asked for on this port."""

    def __init__(self, folder):
        os.mkdir(folder)
        write_tone(f"{folder}/tone.wav")
        for name, title, attributes in (("set", "opening", ATTRIBUTES), ("article", "An article", "")):
            with open(f"{folder}/{name}.html", "w", encoding="utf-8") as page:
                page.write(PAGE.format(title=title, attributes=attributes))
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0),
                                                      functools.partial(QuietHandler, directory=folder))
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        self.port = self.server.server_address[1]

    def close(self):
        self.server.shutdown()
        self.server.server_close()


def sound_server_command():
    return ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "--disable-shm=yes", "-L",
            "module-native-protocol-unix", "-L", "module-null-sink sink_name=null"]


def player_command(home, *files):
    """A player whose tracks, which this makes, are titled after their files."""
    for file in files:
        write_tone(f"{home}/{file}")
    return ["mpv", "--no-config", "--no-video", "--no-terminal", "--ao=pulse", "--loop-playlist",
            "--script=/usr/lib/mpv-mpris/mpris.so", *(f"{home}/{file}" for file in files)]


def browser_command(profile, page_port, url):
    """A browser without a window that finds every host at that port and listens for debuggers; the port for those it
    writes into its profile."""
    return ["chromium", "--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
            "--disable-background-networking", "--disable-component-update", "--disable-sync",
            "--disable-features=HttpsUpgrades", "--password-store=basic", "--remote-debugging-port=0",
            "--autoplay-policy=no-user-gesture-required", f"--user-data-dir={profile}",
            f"--host-resolver-rules=MAP * 127.0.0.1:{page_port}", url]


def debugging_port(profile):
    """Nothing until the browser has written it."""
    path = f"{profile}/DevToolsActivePort"
    if not os.path.exists(path) or os.path.getsize(path) <= 20:
        return None
    with open(path, encoding="ascii") as file:
        return int(file.readline())


def ask_browser(port, path):
    with urllib.request.urlopen(f"http://127.0.0.1:{port}{path}", timeout=10) as answer:
        return json.load(answer)


def call_browser(port, method, **parameters):
    """One call in the browser's own protocol, on a connection of its own."""
    path = "/" + ask_browser(port, "/json/version")["webSocketDebuggerUrl"].split("/", 3)[3]
    with socket.create_connection(("127.0.0.1", port), timeout=10) as connection:
        key = base64.b64encode(os.urandom(16)).decode()
        connection.sendall(f"GET {path} HTTP/1.1\r\nHost: 127.0.0.1:{port}\r\nUpgrade: websocket\r\n"
                           f"Connection: Upgrade\r\nSec-WebSocket-Key: {key}\r\n"
                           "Sec-WebSocket-Version: 13\r\n\r\n".encode())
        stream = connection.makefile("rb")
        while stream.readline() != b"\r\n":
            pass
        message = json.dumps({"id": 1, "method": method, "params": parameters}).encode()
        # A whole text message, its mask all zeros.
        connection.sendall(struct.pack("!BBHI", 0x81, 0x80 | 126, len(message), 0) + message)
        length = stream.read(2)[1]
        if length == 126:
            length = struct.unpack("!H", stream.read(2))[0]
        return json.loads(stream.read(length))["result"]
