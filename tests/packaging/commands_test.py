"""What dawnlyctl and dawnly say of themselves, their man pages and their completions agree."""

import os
import re
import subprocess
import tempfile
import unittest

SOURCE = os.environ["SOURCE"]
PACKAGING = os.path.join(SOURCE, "packaging")
PROGRAM = os.environ["DAWNLYCTL"]

# Command lines, cut off behind the word to complete, and words that are offered there or are not.
CASES = [
    ("dawnlyctl ", ["brief", "play-pause", "defaults"], ["read", "morning"]),
    ("dawnlyctl pl", ["playing", "play-pause"], ["brief"]),
    ("dawnlyctl prompt ", ["morning", "evening", "delivery"], ["brief", "list"]),
    ("dawnlyctl todo ", ["list", "add", "delete"], ["unprio", "read"]),
    ("dawnlyctl todo prio ", [], ["list", "prio"]),
    ("dawnlyctl flags prio ", [], ["list", "unprio"]),
    ("dawnlyctl todo rename -", ["--folder"], ["-h"]),
    ("dawnlyctl next -", ["-h", "--help"], ["--folder", "-v"]),
    ("dawnlyctl todo --folder /tmp re", ["rename"], ["read"]),
    ("dawnlyctl flags u", ["unprio"], ["list"]),
    ("dawnlyctl defaults ", ["read", "write", "delete"], ["list"]),
    ("dawnlyctl defaults read sam", ["sampleKey"], ["other"]),
    ("dawnlyctl defaults write sampleKey --", ["--bool", "--array"], ["--folder"]),
    ("dawnlyctl check da", ["day.md"], ["dawn.txt"]),
    ("dawnlyctl watch d", ["days"], ["day.md"]),
    ("dawnlyctl feedback --folder d", ["days"], ["day.md"]),
    ("dawnly --v", ["--verbose", "--version"], ["--help"]),
]


def complete_in_bash(line, environment, folder):
    words = line.split(" ")
    script = """
        source {0}/completions/dawnlyctl.bash; source {0}/completions/dawnly.bash
        COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMPREPLY=()
        if [[ $1 == dawnly ]]; then COMPREPLY=($(compgen -W "--verbose -h --help -v --version" -- "${{@: -1}}"))
        complete -p dawnly | grep -q -- "--verbose -h --help -v --version" || exit 1
        else _dawnlyctl; fi
        printf '%s\\n' "${{COMPREPLY[@]}}" """.format(PACKAGING)
    return subprocess.run(["bash", "-c", script, "bash", *words], env=environment, cwd=folder, check=True, text=True,
                          stdout=subprocess.PIPE).stdout.split()


def complete_in_fish(line, environment, folder):
    script = "source {0}/dawnlyctl.fish; source {0}/dawnly.fish; complete -C $argv[1]".format(
        os.path.join(PACKAGING, "completions"))
    lines = subprocess.run(["fish", "--no-config", "-c", script, line], env=environment, cwd=folder, check=True,
                           text=True, stdout=subprocess.PIPE).stdout.splitlines()
    return [word.split("\t")[0] for word in lines]


class Commands(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        home = tempfile.TemporaryDirectory()
        cls.addClassCleanup(home.cleanup)
        cls.home = home.name
        cls.environment = dict(os.environ, HOME=cls.home, XDG_CONFIG_HOME=cls.home, LC_ALL="C.UTF-8",
                               PATH=os.path.dirname(PROGRAM) + ":" + os.environ["PATH"])
        os.mkdir(cls.home + "/days")
        for name in ("day.md", "dawn.txt"):
            open(os.path.join(cls.home, name), "w").close()
        cls.run_program("defaults", "write", "sampleKey", "x")

    @classmethod
    def run_program(cls, *arguments):
        return subprocess.run([PROGRAM, *arguments], env=cls.environment, check=True, text=True,
                              stdout=subprocess.PIPE).stdout

    def commands(self):
        found = re.findall(r"^  dawnlyctl ([a-z][a-z-]*)\b", self.run_program("--help"), re.M)
        self.assertGreater(len(found), 10)
        return found

    def test_every_command_and_option_is_in_the_man_page(self):
        page = subprocess.run(["mandoc", "-T", "utf8", os.path.join(PACKAGING, "man/dawnlyctl.1")], check=True,
                              text=True, stdout=subprocess.PIPE).stdout
        page = re.sub(".\b", "", page)
        for command in self.commands():
            usage = self.run_program(command, "--help")
            for word in [command, *re.findall(r"--[a-z]+", usage), *re.findall(r"\b(?:list|delete|unprio)\b", usage)]:
                self.assertRegex(page, r"(?<![\w-])%s(?![\w-])" % re.escape(word), command)

    def check_shell(self, complete):
        offered = set(complete("dawnlyctl ", self.environment, self.home))
        self.assertLessEqual(set(self.commands()), offered)
        for line, wanted, unwanted in CASES:
            with self.subTest(line):
                offered = [word.rstrip("/") for word in complete(line, self.environment, self.home)]
                self.assertLessEqual(set(wanted), set(offered))
                self.assertFalse(set(unwanted) & set(offered), offered)

    def test_bash_completes(self):
        self.check_shell(complete_in_bash)

    def test_fish_completes(self):
        self.check_shell(complete_in_fish)

    def test_zsh_knows_every_command(self):
        for name in ("_dawnly", "_dawnlyctl"):
            subprocess.run(["zsh", "-n", os.path.join(PACKAGING, "completions", name)], check=True)
        with open(os.path.join(PACKAGING, "completions/_dawnlyctl")) as file:
            described = re.findall(r"^    ['\"]([a-z-]+):", file.read(), re.M)
        self.assertEqual(sorted(described), sorted(self.commands()))

    def test_help_and_version_need_no_display(self):
        environment = {key: value for key, value in self.environment.items() if "DISPLAY" not in key and key != "QT_QPA_PLATFORM"}
        with open(os.path.join(PACKAGING, "man/dawnly.1")) as file:
            page = file.read()
        for program in (PROGRAM, os.environ.get("DAWNLY")):
            if not program:
                continue
            for option in ("--help", "--version"):
                told = subprocess.run([program, option], env=environment, check=True, text=True,
                                      stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                self.assertIn(os.path.basename(program), told.stdout)
                self.assertEqual(told.stderr, "")
                if program != PROGRAM and option == "--help":
                    for wrong in ([], ["--verbose"], ["--versoin"]):
                        without = subprocess.run([program, *wrong], env=environment, text=True, stderr=subprocess.PIPE)
                        self.assertEqual(without.returncode, 1, wrong)
                        self.assertIn("no X display", without.stderr)
                        self.assertEqual("no option of dawnly" in without.stderr, "--versoin" in wrong)
                    for long in re.findall(r" --([a-z]+) ", told.stdout):
                        self.assertIn(long, page)


if __name__ == "__main__":
    unittest.main()
