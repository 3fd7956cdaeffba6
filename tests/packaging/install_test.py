"""An installation works from wherever it is moved, and knows its parts and the desktop's files there."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "e2e"))
from desktop import Desktop  # noqa: E402

BUILD = os.environ["BUILD"]


class Installed(unittest.TestCase):
    def setUp(self):
        self.prefix = tempfile.mkdtemp(prefix="dawnly-install-")
        self.addCleanup(shutil.rmtree, self.prefix)
        subprocess.run(["cmake", "--install", BUILD, "--prefix", self.prefix], check=True, stdout=subprocess.DEVNULL)

    def test_the_folder_works_wherever_it_is(self):
        self.assertEqual(os.listdir(self.prefix), ["Dawnly.app"])
        bundle = os.path.join(self.prefix, "elsewhere with a space", "Dawnly.app")
        os.mkdir(os.path.dirname(bundle))
        os.rename(os.path.join(self.prefix, "Dawnly.app"), bundle)
        self.check_links_and_paths(bundle)

        self.check_menu_entry(bundle)

        desktop = Desktop(calendar_access="fullAccess")
        self.addCleanup(desktop.close)
        # Through a link, as the one in a folder of PATH.
        link = os.path.join(self.prefix, "dawnly")
        os.symlink(os.path.join(bundle, "bin", "dawnly"), link)
        os.environ["DAWNLY"] = link
        desktop.start_program()
        told = subprocess.run([os.path.join(bundle, "bin", "dawnlyctl"), "report"], env=desktop.environment, check=True,
                              text=True, stdout=subprocess.PIPE).stdout
        self.assertIn('"panelVisible":true', told)
        if os.path.exists(os.path.join(bundle, "lib", "dawnly", "dawnly-eds.so")):
            desktop.wait_for(lambda: "dawnly-eds.so" in self.mapped(desktop.program.pid), "the calendar module")
        environment = dict(desktop.environment, LD_DEBUG="files", PULSE_SERVER="unix:/nonexistent")
        tried = subprocess.run([os.path.join(bundle, "bin", "dawnlyctl"), "mute"], env=environment, check=False,
                               text=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE).stderr
        self.assertRegex(tried, "calling init: .*" + os.path.join(bundle, "lib/dawnly/dawnly-pulse.so"))
        for line in self.mapped(desktop.program.pid).splitlines():
            if "dawnly-eds.so" in line or line.endswith("/bin/dawnly"):
                self.assertIn(bundle, line)

    @staticmethod
    def mapped(process):
        with open("/proc/%d/maps" % process) as file:
            return file.read()

    def check_menu_entry(self, bundle):
        home = os.path.join(self.prefix, "home")
        environment = {"HOME": home, "PATH": os.environ["PATH"]}
        kept = os.path.join(home, ".local/bin/dawnlyctl")
        os.makedirs(os.path.dirname(kept))
        with open(kept, "w") as file:
            file.write("the user's own")
        script = os.path.join(bundle, "share/dawnly/add-to-desktop.sh")
        for told in (self.assertIn, self.assertNotIn):
            hints = subprocess.run([script], env=environment, check=True, text=True, stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL).stdout
            line = "fpath+=(%s/.local/share/zsh/site-functions)\n" % home
            told(line, hints)
            told("is not in PATH", hints)
            with open(os.path.join(home, ".zshrc"), "w") as file:
                file.write(line)
            environment["PATH"] += ":%s/.local/bin" % home
        os.remove(os.path.join(home, ".zshrc"))
        entry = os.path.join(home, ".local/share/applications/app.dawnly.Dawnly.desktop")
        subprocess.run(["desktop-file-validate", entry], check=True)
        with open(entry) as file:
            self.assertIn('\nExec="%s/bin/dawnly"\n' % bundle, file.read())
        self.assertTrue(os.path.samefile(os.path.join(home, ".local/bin/dawnly"), os.path.join(bundle, "bin/dawnly")))
        subprocess.run([script, "--remove"], env=environment, check=True, stderr=subprocess.DEVNULL)
        left = [os.path.join(folder, name) for folder, _, names in os.walk(home) for name in names]
        self.assertEqual(left, [kept])

    def check_links_and_paths(self, bundle):
        with open(os.path.join(bundle, "share/applications/app.dawnly.Dawnly.desktop")) as file:
            self.assertIn("\nIcon=app.dawnly.Dawnly\n", file.read())
        for folder, _, names in os.walk(bundle):
            for name in names:
                path = os.path.join(folder, name)
                self.assertFalse(os.path.islink(path), path)
                if os.environ["BUILD_TYPE"] != "Release":
                    continue  # what helps to debug names the sources
                with open(path, "rb") as file:
                    # Nothing may look for itself where it was built.
                    self.assertNotIn(os.fsencode(BUILD), file.read(), path)


if __name__ == "__main__":
    unittest.main()
