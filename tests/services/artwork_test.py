"""Covers from a real web server and from files, good ones and those that are out to do harm."""

import http.server
import os
import ssl
import struct
import subprocess
import threading
import time
import unittest
import zlib

from session import PROGRAMS, Session


def png(width, height, pixel, rows=None):
    """A picture of one colour; with fewer `rows` than its height, its beginning only."""
    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    row = b"\0" + bytes(pixel) * width
    content = zlib.compress(row * (height if rows is None else rows))
    header = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", content) + chunk(b"IEND", b"")


COVER = png(1000, 500, (200, 100, 50, 255))
BOMB = png(50000, 50000, (0, 0, 0, 0), rows=10)
SVG = b'<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"><rect width="9" height="9"/></svg>'


class Handler(http.server.BaseHTTPRequestHandler):
    plain_address = None
    asked = []

    def log_message(self, *_):
        pass

    def answer(self, content, status=200, **headers):
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name.replace("_", "-"), value)
        self.send_header("Content-Length", str(len(content)))
        self.end_headers()
        self.wfile.write(content)

    def do_GET(self):
        Handler.asked.append(self.path)
        pages = {"/cover.png": COVER, "/small.png": png(3, 2, (1, 2, 3, 4)), "/thin.png": png(1, 9000, (9, 8, 7, 255)),
                 "/bomb.png": BOMB, "/vector.svg": SVG, "/text.png": b"no picture", "/empty.png": b"",
                 "/cut.png": COVER[:60]}
        redirects = {"/moved": "/cover.png", "/unsafe": f"{Handler.plain_address}/cover.png", "/loop": "/loop",
                     "/local": "file:///etc/hostname"}
        if self.path in pages:
            self.answer(pages[self.path])
        elif self.path in redirects:
            self.answer(b"", 302, Location=redirects[self.path])
        elif self.path in ("/endless", "/trickle"):
            self.send_response(200)
            self.end_headers()
            try:
                while True:
                    self.wfile.write(b"x" * 65536 if self.path == "/endless" else b"x")
                    if self.path == "/trickle":
                        time.sleep(0.2)
            except OSError:
                pass
        else:
            self.answer(b"", 404)


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, *_):
        """Clients that hang up are what some of the tests are about."""


class ArtworkTest(unittest.TestCase):
    def setUp(self):
        self.session = Session()
        self.addCleanup(self.session.close)
        self.home = self.session.home
        self.certificate = f"{self.home}/certificate.pem"
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                        "-keyout", f"{self.home}/key.pem", "-out", self.certificate, "-days", "2", "-subj",
                        "/CN=localhost", "-addext", "subjectAltName=DNS:localhost"], check=True, capture_output=True)
        Handler.asked.clear()
        Handler.plain_address = "http://localhost:%d" % self.serve()
        self.secure_address = "https://localhost:%d" % self.serve(secure=True)

    def serve(self, secure=False):
        server = Server(("127.0.0.1", 0), Handler)
        if secure:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(self.certificate, f"{self.home}/key.pem")
            server.socket = context.wrap_socket(server.socket, server_side=True)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        return server.server_address[1]

    def load(self, probe, address):
        probe.write(address)
        return probe.wait_for(".*", timeout=15).group()

    def test_covers_from_the_web(self):
        stranger = self.session.start(f"{PROGRAMS}/artwork_probe")
        self.assertEqual(self.load(stranger, f"{self.secure_address}/cover.png"), "nothing")
        self.assertEqual(Handler.asked, [], "sent to a server that nobody vouches for")

        probe = self.session.start(f"{PROGRAMS}/artwork_probe", self.certificate)
        for path, expected in (("cover.png", "256x128 200 100 50 255"), ("small.png", "3x2 1 2 3 4"),
                               ("thin.png", "1x256 9 8 7 255"), ("moved", "256x128 200 100 50 255"),
                               ("bomb.png", "nothing"), ("vector.svg", "nothing"), ("text.png", "nothing"),
                               ("empty.png", "nothing"), ("missing", "nothing"), ("loop", "nothing"),
                               ("local", "nothing"), ("endless", "nothing")):
            with self.subTest(path):
                self.assertEqual(self.load(probe, f"{self.secure_address}/{path}"), expected)
        Handler.asked.clear()
        for address in (f"{self.secure_address}/unsafe", f"{Handler.plain_address}/cover.png", "https://",
                        "https://localhost:1/cover.png", "ftp://localhost/cover.png", "data:image/png;base64,AAAA",
                        "qrc:/cover.png", "javascript:1", "", "cover.png", "https://%"):
            with self.subTest(address):
                self.assertEqual(self.load(probe, address), "nothing")
        self.assertEqual(Handler.asked, ["/unsafe"])

        start = time.monotonic()
        probe.write(f"{self.secure_address}/trickle")
        # Others do not wait for it.
        self.assertEqual(self.load(probe, f"{self.secure_address}/small.png"), "3x2 1 2 3 4")
        self.assertLess(time.monotonic() - start, 5)
        probe.wait_for("nothing", timeout=15)
        self.assertLess(time.monotonic() - start, 13)

    def test_covers_from_files(self):
        probe = self.session.start(f"{PROGRAMS}/artwork_probe")
        files = {"a cover.png": COVER, "bomb.png": BOMB, "picture.svg": SVG, "huge.png": COVER + b"\0" * (9 << 20)}
        for name, content in files.items():
            with open(f"{self.home}/{name}", "wb") as file:
                file.write(content)
        os.mkfifo(f"{self.home}/pipe.png")
        for path, expected in ((f"{self.home}/a%20cover.png", "256x128 200 100 50 255"),
                               (f"{self.home}/bomb.png", "nothing"), (f"{self.home}/picture.svg", "nothing"),
                               (f"{self.home}/huge.png", "nothing"), (f"{self.home}/pipe.png", "nothing"),
                               (self.home, "nothing"), ("/dev/zero", "nothing"), ("/absent.png", "nothing")):
            with self.subTest(path):
                self.assertEqual(self.load(probe, f"file://{path}"), expected)
        self.assertEqual(self.load(probe, f"file://elsewhere{self.home}/a%20cover.png"), "nothing")


if __name__ == "__main__":
    unittest.main()
