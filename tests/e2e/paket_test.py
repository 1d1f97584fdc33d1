"""What the package brings beside the programs: manual, manual pages, completion, documents."""
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

BIN = pathlib.Path(os.environ["ZEK_BIN"])
ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGES = {"zek": "zek", "TessaronZEK": "tessaron-zek", "TessaronZEKDienst": "tessaron-zek-dienst",
         "ZEKIBAutoNeustart.exe": "ZEKIBAutoNeustart", "tws-simulator": "tws-simulator"}


def output(*args, **kwargs):
    done = subprocess.run([str(arg) for arg in args], capture_output=True, text=True, timeout=60, **kwargs)
    return done.stdout


def help_of(program, *args):
    return output(BIN / program, *args, "--help")


def options(text):
    """The long options and classic switches of a help text."""
    return set(re.findall(r"(?:^|[\s,\[|])(--[a-z][a-z0-9-]*|/[A-Z][a-z]*)", text, re.MULTILINE))


class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="zek-paket-"))
        done = subprocess.run(["cmake", "--install", str(BIN.parent), "--prefix", str(cls.folder)], capture_output=True,
                              text=True, timeout=120)
        assert done.returncode == 0, done.stderr

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder, ignore_errors=True)

    def page(self, name):
        """A manual page as a person reads it, without hyphenation and justification."""
        source = self.folder / "share/man/man1" / f"{name}.1"
        done = subprocess.run(["groff", "-k", "-man", "-Tutf8", "-ww", "-rHY=0", "-rLL=500n", str(source)],
                              capture_output=True, text=True, timeout=30, env=dict(os.environ, LC_ALL="C.UTF-8"),
                              cwd=self.folder / "share/man")
        self.assertEqual(done.stderr, "", source)
        return re.sub(r"\x1b\[[0-9;]*m|.\x08", "", done.stdout)

    def complete(self, *words):
        """What bash offers for the last of these words."""
        script = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
                  'f=$(complete -p "$(basename "$1")" | sed -E "s/.*-F ([^ ]+).*/\\1/"); '
                  '"$f" "$1" "${!#}" "${COMP_WORDS[COMP_CWORD - 1]}" 2>/dev/null; printf "%s\\n" "${COMPREPLY[@]}"')
        file = self.folder / "share/bash-completion/completions" / "zek"
        return output("bash", "-c", script, "bash", file, *words).split()

    def test_it_brings_what_its_users_need(self):
        for path in ("bin/tessaron-zek", "bin/tessaron-zek-dienst", "bin/zek", "bin/tws-simulator",
                     "lib/tessaron-zek/TessaronZEK", "lib/tessaron-zek/TessaronZEKDienst",
                     "lib/tessaron-zek/ZEKIBAutoNeustart.exe", "lib/systemd/user/tessaron-zek.service",
                     "share/applications/tessaron-zek.desktop", "share/icons/hicolor/scalable/apps/tessaron-zek.svg",
                     "share/tessaron-zek/hilfe/index.html", "share/tessaron-zek/hilfe/bilder/hauptfenster.png",
                     "share/doc/tessaron-zek/dateiformat.md", "share/doc/tessaron-zek/luecken.md",
                     "share/man/man1/zek.1", "share/man/man1/TessaronZEK.1",
                     "share/bash-completion/completions/zek",
                     "share/bash-completion/completions/tessaron-zek-dienst"):
            self.assertTrue((self.folder / path).is_file(), path)

    def test_each_manual_page_tells_every_option_of_its_program(self):
        for program, name in PAGES.items():
            page = self.page(name)
            words = options(help_of(program))
            self.assertGreaterEqual(len(words), 2, name)
            if program == "zek":
                commands = self.complete(BIN / "zek", "")
                words |= set(commands).union(*(options(help_of("zek", command)) for command in commands))
            for word in words:
                self.assertRegex(page, rf"(?<![\w-]){re.escape(word)}(?![\w-])", name)
            self.assertIn("ENGLISH" if name != "tws-simulator" else "DEUTSCH", page)

    def test_the_simulators_page_tells_every_command_as_its_help_does(self):
        told = help_of("tws-simulator").split("\ncommands,")[1]
        page = re.sub(r"\s+", " ", self.page("tws-simulator").split("\nCOMMANDS\n")[1])
        commands = re.findall(r"^  (\S.*?)  +(\S.*)$", told, re.MULTILINE)
        self.assertGreater(len(commands), 30)
        for command, meaning in commands:
            self.assertIn(f"{command} {meaning[0].upper()}{meaning[1:]}.", page)

    def test_no_manual_page_tells_an_option_that_there_is_not(self):
        for program, name in PAGES.items():
            text = help_of(program)
            if program == "zek":
                text += "".join(help_of(program, command) for command in self.complete(BIN / "zek", ""))
            strange = options(self.page(name)) - options(text) - {"--hilfe", "--help"}
            # Words of other programs in examples.
            self.assertEqual(strange - {"--user", "--now"}, set(), name)

    def test_the_second_names_lead_to_the_same_pages(self):
        for second, first in (("TessaronZEK", "tessaron-zek"), ("TessaronZEKDienst", "tessaron-zek-dienst")):
            self.assertEqual((self.folder / f"share/man/man1/{second}.1").read_text(), f".so man1/{first}.1\n")

    def test_completion_offers_commands_options_forms_and_files(self):
        zek = BIN / "zek"
        self.assertLessEqual({"info", "tabelle", "csv", "pruefe", "luecken", "gaps"}, set(self.complete(zek, "")))
        self.assertEqual(self.complete(zek, "in"), ["info"])
        self.assertLessEqual({"--von", "--bis", "--titel", "--csv"}, set(self.complete(zek, "luecken", "--")))
        self.assertEqual(self.complete(zek, "csv", "--zeit", "i"), ["iso"])
        self.assertEqual(self.complete(zek, "info", str(ROOT / "READ")), [str(ROOT / "README.md")])

    def test_completion_offers_the_recorders_switches(self):
        self.assertEqual(self.complete(BIN / "TessaronZEKDienst", "/Q"), ["/Quit"])
        self.assertIn("--datenpflege", self.complete(BIN / "TessaronZEKDienst", "--"))
        self.assertLessEqual({"/Restart", "/K", "/W", "--version"}, set(self.complete(BIN / "TessaronZEK", "")))
        self.assertEqual(self.complete(BIN / "tws-simulator", "--echo", "n"), ["never"])

    def test_the_completion_file_says_nothing_by_itself(self):
        file = self.folder / "share/bash-completion/completions/tws-simulator"
        done = subprocess.run(["bash", "-eu", "-c", f"source {file}"], capture_output=True, text=True, timeout=30)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))


if __name__ == "__main__":
    unittest.main(verbosity=2)
