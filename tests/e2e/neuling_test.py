"""A newcomer's path: the demo, and then each command of the README on what it left."""
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import time
import unittest

BIN = pathlib.Path(os.environ["ZEK_BIN"])
ROOT = pathlib.Path(__file__).resolve().parents[2]
SCREEN = 40  # lines
SECONDS = 6


class Newcomer(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="zek-neuling-"))
        cls.demo = subprocess.run([str(ROOT / "demo"), "--no-build", "--no-screen", "--seconds", str(SECONDS), "--folder",
                                   str(cls.folder / "demo")], capture_output=True, text=True, timeout=120)
        cls.data = cls.folder / "demo/programm/RealtimeData"

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder, ignore_errors=True)

    def zek(self, *words):
        return subprocess.run([str(BIN / "zek"), *words], capture_output=True, text=True, timeout=60)

    def test_each_command_behind_the_demo_says_in_a_screen_that_all_is_well(self):
        self.assertEqual(self.demo.returncode, 0, self.demo.stdout + self.demo.stderr)
        self.assertEqual(self.demo.stderr, "")
        self.assertLess(len(self.demo.stdout.splitlines()), SCREEN, self.demo.stdout)
        commands = re.findall(r"`(info|tabelle|csv|pruefe|luecken|repariere)`", (ROOT / "README.md").read_text("utf-8"))
        self.assertEqual(len(set(commands)), 6)
        for command in [*dict.fromkeys(commands), "check", "gaps"]:
            with self.subTest(command):
                place = next(self.data.rglob("*.ZEK")) if command == "csv" else self.data
                done = self.zek(command, str(place))
                self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout)
                if command != "csv":
                    self.assertLess(len(done.stdout.splitlines()), SCREEN, done.stdout)
                # A week may reach into the next or the last year, and nothing goes further.
                for year in re.findall(r"\b\d\d\.\d\d\.(\d{4})\b", done.stdout):
                    self.assertLess(abs(int(year) - time.localtime().tm_year), 2, done.stdout)

    def test_every_sample_title_is_recorded_and_nothing_of_it_is_missing(self):
        names = {re.sub(r"-(ASK|BID|BA)?[^-/]*$", "", path.stem) for path in self.data.rglob("*.ZEK")}
        self.assertGreaterEqual(len(names), 35, names)
        gaps = self.zek("gaps", str(self.data)).stdout
        self.assertIn("35 Titel zusammen", gaps)
        self.assertIn("Keinem Titel fehlt etwas.", gaps)
        self.assertRegex(gaps, r"Woche \d+ \([^)]*\): lückenlos")
        whole = self.zek("gaps", "--alles", str(self.data)).stdout
        for index in ("DAX@EUREX_IND", "Tick-Nyse@Nyse_IND"):
            self.assertIn(index, whole)
        for index in ("DAX@EUREX_IND.ZEK", "Tick-Nyse@Nyse_IND.ZEK"):
            lines = self.zek("csv", str(next(self.data.rglob(index)))).stdout.splitlines()
            self.assertGreater(len(lines), 1, index)


if __name__ == "__main__":
    unittest.main()
