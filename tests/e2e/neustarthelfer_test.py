"""The restart helper as a real process, with a stand-in for the recorder that only holds the program folder."""
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import unittest

from rekorder import BIN, alive, wait_for

STANDIN = """#!{python}
import fcntl, os, signal, sys
folder = os.environ["ZEK_PROGRAMMORDNER"]
lock = open(folder + "/.zek.lock", "w")
fcntl.lockf(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
with open(folder + "/starts", "a") as starts:
    starts.write(f"{{os.getpid()}} {{' '.join(sys.argv[1:])}}\\n")
signal.pause()
"""


class Neustarthelfer(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.program = self.folder / "rekorder"
        self.program.write_text(STANDIN.format(python=sys.executable))
        self.program.chmod(0o755)
        self.env = dict(os.environ, ZEK_PROGRAMMORDNER=str(self.folder), ZEK_NEUSTART_PROGRAMM=str(self.program))
        self.first = subprocess.Popen([str(self.program)], env=self.env)
        self.addCleanup(self.end_all)
        wait_for(self.starts, what="the first recorder")

    def end_all(self):
        for pid, _ in self.starts():
            if alive(pid):
                os.kill(pid, signal.SIGKILL)
        self.first.wait()

    def starts(self):
        """(process id, arguments) of each start so far."""
        path = self.folder / "starts"
        lines = path.read_text().splitlines() if path.exists() else []
        return [(int(line.split(" ", 1)[0]), line.split(" ", 1)[1]) for line in lines]

    def helper(self, *arguments):
        process = subprocess.Popen([str(BIN / "ZEKIBAutoNeustart.exe"), *arguments],
                                   env=dict(self.env, ZEK_NEUSTART_PID=str(self.first.pid)))
        self.addCleanup(lambda: process.poll() is None and process.kill())
        return process

    def log(self):
        path = self.folder / "IBZEKNeustart.txt"
        return path.read_bytes().decode("cp1252") if path.exists() else ""

    def test_a_crashed_recorder_comes_back_with_its_switch(self):
        helper = self.helper("/K")
        wait_for(lambda: "warte auf das Ende" in self.log(), what="the helper")
        self.assertEqual(len(self.starts()), 1)
        self.first.kill()
        self.first.wait()
        self.assertEqual(helper.wait(30), 0)
        self.assertEqual([arguments for _, arguments in self.starts()], ["", "/K"])
        self.assertTrue(self.log().endswith("ZEK läuft wieder\r\n"))

    def test_of_two_helpers_only_one_starts_the_recorder(self):
        one = self.helper()
        wait_for(lambda: "warte auf das Ende" in self.log(), what="the helper")
        self.assertEqual(self.helper().wait(30), 0)
        self.assertIn("Ein Neustart ist schon im Gang", self.log())
        self.first.terminate()
        self.first.wait()
        self.assertEqual(one.wait(30), 0)
        self.assertEqual(len(self.starts()), 2)

    def test_the_new_recorder_outlives_the_helper_and_hears_its_signals(self):
        helper = self.helper()
        self.first.kill()
        self.first.wait()
        self.assertEqual(helper.wait(30), 0)
        pid = self.starts()[1][0]
        self.assertTrue(alive(pid))
        os.kill(pid, signal.SIGHUP)
        wait_for(lambda: not alive(pid), what="the end of the new recorder")


if __name__ == "__main__":
    unittest.main()
