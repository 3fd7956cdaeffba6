"""What one poll costs: a Spotify player, a second player and a browser with 200 tabs, in a session of their own."""

import os
import subprocess
import sys
import time
import urllib.request

PROGRAMS = os.environ["PROGRAMS"] = sys.argv[1]
TESTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests")
sys.path += [f"{TESTS}/services", f"{TESTS}/support"]
import media  # noqa: E402
from session import Session  # noqa: E402

TABS = 200


def main():
    session = Session()
    try:
        session.start(*media.sound_server_command())
        for name in ("spotify", "other"):
            session.start(f"{PROGRAMS}/named_player", name).wait_for("there")
        profile = f"{session.home}/.config/chromium"
        session.start(*media.browser_command(profile, 1, "about:blank"))
        deadline = time.monotonic() + 60
        while (port := media.debugging_port(profile)) is None:
            if time.monotonic() > deadline:
                raise SystemExit("the browser did not start")
            time.sleep(0.1)
        for number in range(TABS - 1):
            address = f"http://127.0.0.1:{port}/json/new?about:blank%23{number}"
            urllib.request.urlopen(urllib.request.Request(address, method="PUT"), timeout=30).close()
        time.sleep(3)
        result = subprocess.run([f"{PROGRAMS}/poll_times"], env=session.environment, check=False)
        return result.returncode
    finally:
        session.close()


if __name__ == "__main__":
    sys.exit(main())
