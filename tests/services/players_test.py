"""What plays, on real peers: a media player on the session bus, a browser with tabs, a sound server. They are looked at
and controlled through the command-line companion, and judged by what they themselves say."""

import json
import os
import signal
import sys
import time
import unittest
import urllib.request

from session import PROGRAMS, Session

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import media  # noqa: E402


class PlayersTest(unittest.TestCase):
    def setUp(self):
        self.session = Session()
        self.addCleanup(self.session.close)
        self.home = self.session.home

    def dawnlyctl(self, *arguments):
        return self.session.run(f"{PROGRAMS}/dawnlyctl", *arguments, check=False)

    def playing(self):
        return json.loads(self.dawnlyctl("playing", "--json"))

    def wait_until(self, what, holds, timeout=20):
        deadline = time.monotonic() + timeout
        while True:
            last = what()
            if holds(last):
                return last
            self.assertLess(time.monotonic(), deadline, f"still {last}")
            time.sleep(0.1)

    def wait_for_track(self, **fields):
        return self.wait_until(self.playing, lambda track: track is not None and fields.items() <= track.items())

    def start_sound_server(self):
        server = self.session.start(*media.sound_server_command())
        self.wait_until(lambda: self.session.run("pactl", "info", check=False), lambda text: "Server Name" in text)
        return server

    def mute(self):
        return self.session.run("pactl", "get-sink-mute", "@DEFAULT_SINK@").strip()

    def start_probe(self):
        return self.session.start(f"{PROGRAMS}/player_probe")

    def ask(self, probe, question):
        probe.write(question)
        return json.loads(probe.wait_for(".*").group())

    def start_player(self, *files):
        return self.session.start(*media.player_command(self.home, *files))

    def test_a_player_is_shown_paused_resumed_and_skipped(self):
        self.start_sound_server()
        self.assertIsNone(self.playing())
        self.start_player("first.wav", "second.wav", "third.wav")
        track = self.wait_for_track(title="first.wav", playing=True)
        self.assertEqual((track["player"], track["chromeTabID"], track["pageURL"]), ("music", 0, None))
        self.dawnlyctl("play-pause")
        self.wait_for_track(title="first.wav", playing=False)
        self.dawnlyctl("next")
        self.wait_for_track(title="second.wav")
        self.dawnlyctl("previous")
        self.wait_for_track(title="first.wav")
        self.dawnlyctl("play-pause")
        self.wait_for_track(title="first.wav", playing=True)

    def test_mute_flips_the_sound_servers_own(self):
        self.dawnlyctl("mute")
        self.start_sound_server()
        self.assertEqual(self.mute(), "Mute: no")
        self.dawnlyctl("mute")
        self.assertEqual(self.mute(), "Mute: yes")
        self.dawnlyctl("mute")
        self.assertEqual(self.mute(), "Mute: no")

    def test_a_sound_server_that_was_started_anew_answers_the_first_question(self):
        probe = self.start_probe()
        self.assertEqual((self.ask(probe, "muted"), self.ask(probe, "sounds")), (None, None))
        server = self.start_sound_server()
        self.assertEqual((self.ask(probe, "muted"), self.ask(probe, "sounds")), (False, []))
        server.stop()
        server = self.start_sound_server()
        self.session.run("pactl", "set-sink-mute", "@DEFAULT_SINK@", "1")
        self.assertIs(self.ask(probe, "muted"), True)
        player = self.start_player("first.wav")
        self.wait_until(lambda: self.ask(probe, "sounds"), lambda sounds: [playing for _, playing in sounds] == [True])
        self.wait_until(lambda: self.ask(probe, "music"), lambda reply: reply == "playing|||first.wav|||")
        self.ask(probe, "key")
        self.wait_until(lambda: self.ask(probe, "sounds"), lambda sounds: True not in [now for _, now in sounds])
        # One that hangs is given up in time.
        server.process.send_signal(signal.SIGSTOP)
        self.addCleanup(server.process.send_signal, signal.SIGCONT)
        start = time.monotonic()
        self.assertIsNone(self.ask(probe, "sounds"))
        self.assertLess(time.monotonic() - start, 2)
        player.process.kill()

    def test_the_player_that_played_last_counts_even_beside_one_that_never_answers(self):
        self.start_sound_server()
        probe = self.start_probe()
        self.assertEqual(self.ask(probe, "running"), [])
        self.assertIsNone(self.ask(probe, "music"))
        stuck = self.start_player("stuck.wav")
        self.wait_until(lambda: self.ask(probe, "music"), lambda reply: reply == "playing|||stuck.wav|||")
        self.start_player("late.wav")
        self.wait_until(lambda: self.ask(probe, "music"), lambda reply: reply == "playing|||late.wav|||")
        # The media key pauses the newer one, and what goes on playing is then the older one.
        self.ask(probe, "key")
        self.wait_until(lambda: self.ask(probe, "music"), lambda reply: reply == "playing|||stuck.wav|||")
        self.assertEqual(self.ask(probe, "running"), ["com.apple.Music"])

        stuck.process.send_signal(signal.SIGSTOP)
        self.addCleanup(stuck.process.send_signal, signal.SIGCONT)
        # What it was asked just before, it may still answer.
        self.wait_until(lambda: self.ask(probe, "music"), lambda reply: reply is None)
        start = time.monotonic()
        self.assertIsNone(self.ask(probe, "music"))
        self.assertLess(time.monotonic() - start, 3)
        # To someone who has just come, only the one that answers has ever played or paused.
        start = time.monotonic()
        self.dawnlyctl("playing")
        self.assertLess(time.monotonic() - start, 6)
        stuck.process.kill()
        self.wait_until(lambda: self.ask(probe, "music"), lambda reply: reply == "paused|||late.wav|||")

    def test_opening_shows_the_player_or_starts_it(self):
        self.start_sound_server()
        os.mkdir(f"{self.home}/bin")
        with open(f"{self.home}/bin/spotify", "w", encoding="ascii") as program:
            program.write('#!/bin/sh\necho started >"$HOME/started"\n')
        os.chmod(program.name, 0o755)
        self.session.environment["PATH"] = f"{self.home}/bin:" + self.session.environment["PATH"]
        monitor = self.session.start("dbus-monitor", "interface='org.mpris.MediaPlayer2',member='Raise'")
        monitor.wait_for("signal .*NameAcquired")
        probe = self.start_probe()
        self.ask(probe, "open com.spotify.client")
        self.wait_until(lambda: os.path.exists(f"{self.home}/started"), bool)
        self.ask(probe, "open com.apple.Music")
        self.start_player("first.wav")
        self.wait_until(lambda: self.ask(probe, "running"), lambda running: running == ["com.apple.Music"])
        self.ask(probe, "open com.apple.Music")
        monitor.wait_for("method call .* destination=org.mpris.MediaPlayer2.mpv .*member=Raise")

    def test_players_are_found_on_a_bus_that_comes_late_and_on_its_successor(self):
        self.start_sound_server()
        self.session.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.home}/late"
        probe = self.start_probe()
        self.assertEqual(self.ask(probe, "running"), [])
        for title in ("first.wav", "second.wav"):
            bus = self.session.start("dbus-daemon", "--nofork", "--print-address", "--address",
                                     f"unix:path={self.home}/late", f"--config-file={self.home}/bus.conf")
            bus.wait_for("unix:.*")
            player = self.start_player(title)
            self.wait_until(lambda: self.ask(probe, "running"), lambda running: running == ["com.apple.Music"])
            self.wait_until(lambda: self.ask(probe, "music"), lambda reply: reply == f"playing|||{title}|||")
            bus.stop()
            player.stop()
            self.wait_until(lambda: self.ask(probe, "running"), lambda running: running == [])

    def start_browser(self, url):
        """A browser with the profile that it has when nobody chooses one, listening for debuggers."""
        site = media.Site(f"{self.home}/pages")
        self.addCleanup(site.close)
        profile = f"{self.home}/.config/chromium"
        self.browser = self.session.start(*media.browser_command(profile, site.port, url))
        return self.wait_until(lambda: media.debugging_port(profile), lambda port: port is not None, timeout=40)

    def open_page(self, port, url):
        request = urllib.request.Request(f"http://127.0.0.1:{port}/json/new?{url}", method="PUT")
        urllib.request.urlopen(request, timeout=10).close()

    def pages(self, port):
        """Address and title of the browser's tabs, the one that was shown last first."""
        return [(page["url"], page["title"]) for page in media.ask_browser(port, "/json/list")
                if page["type"] == "page"]

    def test_a_browser_tab_is_found_paused_resumed_and_shown(self):
        self.start_sound_server()
        song, article = f"http://{media.MEDIA_HOST}/set.html", "http://news.example/article.html"
        port = self.start_browser(song)
        title = media.TITLE
        self.wait_until(lambda: self.pages(port), lambda pages: (song, title) in pages)
        self.open_page(port, article)
        self.wait_until(lambda: self.pages(port), lambda pages: pages[0] == (article, "An article"))

        track = self.wait_for_track(player="youtube", playing=True)
        self.assertEqual((track["title"], track["artist"], track["pageURL"], track["chromeWindow"]),
                         (title.replace("|||", "||"), media.MEDIA_HOST, song, 1))
        probe = self.start_probe()
        self.assertEqual(self.ask(probe, "running"), ["com.google.Chrome"])
        tabs = [line.split("|||") for line in self.ask(probe, "tabs").splitlines()]
        self.assertEqual([(tab[2], tab[4]) for tab in tabs], [("0", song), ("1", article)])
        number = tabs[0][3]

        self.dawnlyctl("play-pause")
        self.wait_until(lambda: self.pages(port), lambda pages: (song, "silent") in pages)
        self.wait_until(self.playing, lambda paused: paused is None)
        self.assertEqual(self.ask(probe, f"toggle {number}"), "ok")
        self.wait_until(lambda: self.pages(port), lambda pages: (song, title) in pages)
        self.wait_for_track(player="youtube", playing=True)
        self.assertEqual(self.ask(probe, f"toggle {tabs[1][3]}"), "ok")
        self.assertEqual(self.ask(probe, "toggle 99"), "gone")

        self.assertEqual(self.pages(port)[0][0], article)
        self.assertEqual(self.ask(probe, f"show {number}"), "ok")
        self.wait_until(lambda: self.pages(port), lambda pages: pages[0][0] == song)
        tabs = [line.split("|||") for line in self.ask(probe, "tabs").splitlines()]
        self.assertEqual([(tab[2], tab[3]) for tab in tabs], [("1", number), ("0", tabs[1][3])])

    def tabs(self, probe):
        """Window, whether it shows, name and address of each tab, as the program sees them."""
        lines = (line.split("|||") for line in (self.ask(probe, "tabs") or "").splitlines())
        return {(fields[0], fields[2] == "1", fields[3], fields[4]) for fields in lines}

    def test_a_tab_opened_in_the_background_is_not_the_one_that_shows(self):
        song, article = f"http://{media.MEDIA_HOST}/set.html", "http://news.example/article.html"
        port = self.start_browser(song)
        self.wait_until(lambda: self.pages(port), lambda pages: (song, media.TITLE) in pages)
        probe = self.start_probe()
        for count in range(1, 8):
            media.call_browser(port, "Target.createTarget", url=f"{article}?{count}", background=True)
            self.wait_until(lambda: self.pages(port), lambda pages: (f"{article}?{count}", "An article") in pages)
            tabs = self.tabs(probe)
            self.assertEqual(len(tabs), count + 1)
            self.assertEqual([url for _, shows, _, url in tabs if shows], [song])

        # While the browser does not answer, its tabs keep their names.
        self.browser.process.send_signal(signal.SIGSTOP)
        self.addCleanup(self.browser.process.send_signal, signal.SIGCONT)
        self.assertEqual(self.tabs(probe), set())
        self.browser.process.send_signal(signal.SIGCONT)
        names = {(number, url) for _, _, number, url in tabs}
        again = self.wait_until(lambda: self.tabs(probe), bool)
        self.assertEqual({(number, url) for _, _, number, url in again}, names)

    def test_a_page_that_hangs_does_not_hide_the_one_that_shows(self):
        song, hanging = f"http://{media.MEDIA_HOST}/set.html", "data:text/html,<script>while(true);</script>"
        port = self.start_browser(song)
        self.wait_until(lambda: self.pages(port), lambda pages: (song, media.TITLE) in pages)
        probe = self.start_probe()
        media.call_browser(port, "Target.createTarget", url=hanging, background=True)
        for _ in range(2):
            start = time.monotonic()
            tabs = self.wait_until(lambda: self.tabs(probe), lambda tabs: len(tabs) == 2)
            self.assertLess(time.monotonic() - start, 1.5)
            self.assertEqual([url for _, shows, _, url in tabs if shows], [song])


if __name__ == "__main__":
    unittest.main()
