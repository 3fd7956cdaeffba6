"""What plays, in the panel's strip: a media player and a browser tab, shown and controlled with the pointer."""

import json
import os
import sys
import time
import unittest
import urllib.request

from desktop import BRIEF_LEFT, BRIEF_RIGHT, COLUMNS_TOP, Desktop

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import media  # noqa: E402

BRIEFING = "# Morning\n### Schedule\n- **Alpha** report\n"
# The strip below one section with one card, and on it the cover and the buttons, counted from the right.
STRIP_Y = COLUMNS_TOP + 117
COVER_X = BRIEF_LEFT + 8 + 15
BUTTON_X = [BRIEF_RIGHT - 8 - 11 - 26 * i for i in range(4)]
MUTE, NEXT, PLAY, PREVIOUS = BUTTON_X


class Playing(unittest.TestCase):
    def setUp(self):
        self.desktop = d = Desktop(window_manager=True)
        self.addCleanup(d.close)
        # The sound server and the browser keep to the home folder.
        for name in ("XDG_CONFIG_HOME", "XDG_DATA_HOME"):
            self.assertTrue(d.environment[name].startswith(d.home))
        d.write_briefing(time.strftime("%Y-%m-%d.md"), BRIEFING)
        d.start(*media.sound_server_command())
        d.wait_for(lambda: "Server Name" in self.desktop.ask("pactl", "info"), "the sound server")

    def property(self, name):
        reply = self.desktop.ask("dbus-send", "--session", "--print-reply=literal", "--dest=org.mpris.MediaPlayer2.mpv",
                         "/org/mpris/MediaPlayer2", "org.freedesktop.DBus.Properties.Get",
                         "string:org.mpris.MediaPlayer2.Player", "string:" + name)
        return " ".join(reply.split())

    def is_muted(self):
        return self.desktop.ask("pactl", "get-sink-mute", "@DEFAULT_SINK@").strip() == "Mute: yes"

    def lit_pixels(self, x):
        """How much of the symbol at that place is drawn."""
        picture = self.desktop.screenshot()
        return sum(sum(picture.at(column, row)) > 250 for column in range(x - 7, x + 8)
                   for row in range(STRIP_Y - 7, STRIP_Y + 8))

    def symbol(self, x):
        """What is drawn at that place."""
        picture = self.desktop.screenshot()
        return [picture.at(column, row) for row in range(STRIP_Y - 7, STRIP_Y + 8) for column in range(x - 7, x + 8)]

    def wait_for_strip(self):
        self.desktop.wait_for(lambda: self.lit_pixels(NEXT) > 10 and self.lit_pixels(MUTE) > 10, "the strip")

    def picture(self, name):
        """Kept for people to look at, when somebody asks for it."""
        if "PICTURES" in os.environ:
            self.desktop.run("import", "-window", "root", os.path.join(os.environ["PICTURES"], name))

    def test_a_media_player_is_shown_and_controlled(self):
        d = self.desktop
        d.start(*media.player_command(d.home, "first.wav", "second.wav", "third.wav"))
        d.wait_for(lambda: "Playing" in self.property("PlaybackStatus"), "the player")
        d.start_program()
        self.desktop.unfold()
        self.wait_for_strip()
        self.assertGreater(self.lit_pixels(PREVIOUS), 10)
        self.assertGreater(self.lit_pixels(NEXT), 10)
        self.picture("player.png")
        playing = self.symbol(PLAY)

        d.click(PLAY, STRIP_Y)
        d.wait_for(lambda: "Paused" in self.property("PlaybackStatus"), "the player to pause")
        d.move(PLAY - 200, STRIP_Y)
        d.wait_for(lambda: self.symbol(PLAY) != playing, "the button to change its symbol")
        d.click(PLAY, STRIP_Y)
        d.wait_for(lambda: "Playing" in self.property("PlaybackStatus"), "the player to go on")
        d.click(NEXT, STRIP_Y)
        d.wait_for(lambda: "second.wav" in self.property("Metadata"), "the next track")
        d.click(PREVIOUS, STRIP_Y)
        d.wait_for(lambda: "first.wav" in self.property("Metadata"), "the previous track")
        self.assertFalse(self.is_muted())
        d.click(MUTE, STRIP_Y)
        d.wait_for(self.is_muted, "the sound to be off")
        d.click(MUTE, STRIP_Y)
        d.wait_for(lambda: not self.is_muted(), "the sound to be on")

    def test_a_track_with_a_cover_shows_it(self):
        d = self.desktop
        d.run("convert", "-size", "300x300", "xc:#2060e0", d.home + "/cover.png")
        d.start("/usr/bin/python3", os.path.join(os.path.dirname(media.__file__), "mpris_player.py"), "spotify", "Weightless",
                "Marconi Union", "file://" + d.home + "/cover.png")
        d.start_program()
        self.desktop.unfold()
        self.wait_for_strip()
        d.wait_for(lambda: d.screenshot().at(COVER_X, STRIP_Y) == (0x20, 0x60, 0xE0), "the cover")
        self.picture("cover.png")
        with_cover = self.symbol(PLAY)
        d.click(PLAY, STRIP_Y)
        d.move(PLAY - 200, STRIP_Y)
        d.wait_for(lambda: self.symbol(PLAY) != with_cover, "the button to change its symbol")

    def test_a_browser_tab_is_shown_and_controlled(self):
        d = self.desktop
        site = media.Site(d.home + "/pages")
        self.addCleanup(site.close)
        profile = d.environment["XDG_CONFIG_HOME"] + "/chromium"
        song = "http://%s/set.html" % media.MEDIA_HOST
        d.start(*media.browser_command(profile, site.port, song))
        d.wait_for(lambda: media.debugging_port(profile), "the browser", 40)
        port = media.debugging_port(profile)

        def pages():
            with urllib.request.urlopen("http://127.0.0.1:%d/json/list" % port, timeout=10) as answer:
                return [page["title"] for page in json.load(answer) if page["type"] == "page"]

        d.wait_for(lambda: media.TITLE in pages(), "the page to play", 20)
        article = "http://127.0.0.1:%d/json/new?http://news.example/article.html" % port
        urllib.request.urlopen(urllib.request.Request(article, method="PUT"), timeout=10).close()
        d.wait_for(lambda: pages()[0] == "An article", "the other tab")
        d.start_program()
        self.desktop.unfold()
        self.wait_for_strip()
        # Two buttons stand where the last two of four would: a tab has no other tracks.
        self.assertEqual((self.lit_pixels(PLAY), self.lit_pixels(PREVIOUS)), (0, 0))
        self.picture("tab.png")
        d.click(COVER_X, STRIP_Y)
        d.wait_for(lambda: pages()[0] == media.TITLE, "the tab to come to the front")
        d.click(NEXT, STRIP_Y)
        d.wait_for(lambda: "silent" in pages(), "the page to pause")


if __name__ == "__main__":
    unittest.main(verbosity=2)
