"""The recorder as a service: under a stand-in for the service manager that follows the unit file, with signals that end
a terminal or a pipe, and with orders where there is no screen."""
import configparser
import contextlib
import os
import pathlib
import pty
import shutil
import signal
import socket
import subprocess
import tempfile
import threading
import time
import unittest

from rekorder import BIN, Case, alive, wait_for

UNIT = pathlib.Path(__file__).resolve().parents[2] / "packaging" / "tessaron-zek.service"


class Manager:
    """Runs ExecStart of a unit as systemd does: environment, notify socket, watchdog, and the rules of restart."""

    def __init__(self, unit, env, folder, log, restart_after):
        parser = configparser.ConfigParser(delimiters="=", comment_prefixes="#", strict=False)
        parser.optionxform = str
        parser.read(unit, encoding="utf-8")
        self.service = parser["Service"]
        self.restart_after = restart_after
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        path = str(folder / "notify")
        self.socket.bind(path)
        self.socket.settimeout(0.2)
        self.env = dict(env, NOTIFY_SOCKET=path, WATCHDOG_USEC=str(int(self.service["WatchdogSec"]) * 1000000))
        name, value = self.service["Environment"].split("=", 1)
        self.env[name] = value
        self.log = open(log, "ab")
        self.heard, self.codes, self.pids = [], [], []
        self.stopping = False
        self.process = None
        self.thread = threading.Thread(target=self.run)
        self.thread.start()

    def statuses(self, key):
        return {int(word) for word in self.service.get(key, "").split()}

    def again(self, code):
        """systemd's table for Restart=on-failure with forced and prevented statuses."""
        assert self.service["Restart"] == "on-failure"
        if self.stopping or code in self.statuses("RestartPreventExitStatus"):
            return False
        if code in self.statuses("RestartForceExitStatus"):
            return True
        clean = code == 0 or code in self.statuses("SuccessExitStatus") or -code in (
            signal.SIGHUP, signal.SIGINT, signal.SIGTERM, signal.SIGPIPE)
        return not clean

    def run(self):
        while True:
            arguments = self.service["ExecStart"].split()[1:]
            self.process = subprocess.Popen([str(BIN / "TessaronZEKDienst"), *arguments], env=self.env,
                                            stdin=subprocess.DEVNULL, stdout=self.log, stderr=self.log,
                                            start_new_session=True)
            self.pids.append(self.process.pid)
            while self.process.poll() is None:
                with contextlib.suppress(TimeoutError):
                    self.heard.append((self.process.pid, self.socket.recv(4096).decode()))
            self.codes.append(self.process.returncode)
            if not self.again(self.process.returncode):
                return
            time.sleep(self.restart_after)

    def said(self, text, pid=None):
        pid = pid or self.pids[-1]
        return [line for who, line in self.heard if who == pid and line.startswith(text)]

    def ready(self, starts):
        wait_for(lambda: len(self.pids) == starts and self.said("READY=1"), 30, f"start {starts}")

    def stop(self):
        self.stopping = True
        if self.process.poll() is None:
            self.process.terminate()
        self.thread.join(60)
        self.socket.close()
        self.log.close()


class Unit(Case):
    def setUp(self):
        super().setUp()
        self.simulator("--rate", "300")
        self.sample_titles()
        self.manager = Manager(UNIT, self.env, self.folder, self.folder / "dienst.txt", 0.5)
        self.addCleanup(self.manager.stop)
        self.manager.ready(1)

    def order(self, switch):
        self.assertEqual(self.recorder(switch).popen.wait(20), 0)

    def test_it_says_that_it_is_ready_lives_and_ends(self):
        self.wait_for_records(10)
        wait_for(lambda: len(self.manager.said("WATCHDOG=1")) >= 2, 20, "signs of life")
        self.manager.stop()
        self.assertEqual(self.manager.codes, [0])
        self.assertTrue(self.manager.said("STOPPING=1"))

    def test_a_killed_recorder_comes_back_and_so_does_one_that_dies_after_a_restart(self):
        self.wait_for_records(10)
        os.kill(self.manager.pids[-1], signal.SIGKILL)
        self.manager.ready(2)
        self.wait_for_records(10)
        self.order("/Restart")
        self.manager.ready(3)
        self.wait_for_records(10)
        os.kill(self.manager.pids[-1], signal.SIGSEGV)
        self.manager.ready(4)
        self.wait_for_records(10)
        self.assertEqual(self.manager.codes, [-signal.SIGKILL, 86, -signal.SIGSEGV])
        self.assertFalse((self.home / "IBZEKNeustart.txt").exists(), "no helper plays a part")

    def test_quit_ends_it_for_good(self):
        self.wait_for_records(10)
        self.order("/Quit")
        self.manager.thread.join(30)
        self.assertEqual(self.manager.codes, [0])
        self.assertEqual(self.recorders(), [])

    def test_a_restart_by_error_number_leaves_nobody_behind(self):
        self.manager.stop()
        self.setting("Tessaron ZEK für IB", "Optionen", "NeustartFehlernummern", "2105")
        os.unlink(self.folder / "notify")
        self.manager = Manager(UNIT, self.env, self.folder, self.folder / "dienst.txt", 0.5)
        self.addCleanup(self.manager.stop)
        self.manager.ready(1)
        self.wait_for_records(10)
        self.processes[0].command("2105")
        self.manager.ready(2)
        self.wait_for_records(10)
        self.assertEqual(self.manager.codes, [86])
        self.assertEqual(len(self.recorders()), 1)


class UnitFile(unittest.TestCase):
    @unittest.skipUnless(shutil.which("systemd-analyze"), "no systemd-analyze")
    def test_systemd_accepts_it(self):
        with tempfile.TemporaryDirectory() as folder:
            text = UNIT.read_text(encoding="utf-8").replace("/usr/bin/tessaron-zek-dienst",
                                                            str(BIN / "TessaronZEKDienst"))
            copy = pathlib.Path(folder) / UNIT.name
            copy.write_text(text, encoding="utf-8")
            done = subprocess.run(["systemd-analyze", "--user", "verify", str(copy)], capture_output=True, text=True,
                                  env=dict(os.environ, XDG_RUNTIME_DIR=folder), timeout=60)
            self.assertEqual((done.returncode, done.stdout + done.stderr), (0, ""))


class Terminal(Case):
    """What the end of a pipe or of a terminal does."""

    def setUp(self):
        super().setUp()
        self.simulator("--rate", "300")
        self.sample_titles()

    def under(self, args, **options):
        process = subprocess.Popen([str(BIN / "TessaronZEKDienst"), *args], env=self.env, **options)
        if process.stdout:
            self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def test_a_closed_pipe_costs_neither_the_recording_nor_the_log(self):
        process = self.under(["--ausgabe"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.wait_for_records(10)
        process.stdout.close()
        self.processes[0].command("2157")
        wait_for(lambda: "(2157)" in self.log(), 20, "the log's line")
        self.wait_for_records(50)
        process.terminate()
        self.assertEqual(process.wait(20), 0)

    def test_a_pipe_that_nobody_reads_holds_nothing_up(self):
        process = self.under(["--ausgabe"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.wait_for_records(10)
        # More than a pipe holds: alternating texts, since equal ones within a second are one entry.
        for _ in range(600):
            self.processes[0].command("2157")
            self.processes[0].command("2158")
        wait_for(lambda: self.log().count("(2157)") >= 600, 60, "the log's lines")
        self.wait_for_records(50)
        process.terminate()
        self.assertEqual(process.wait(20), 0)
        process.stdout.close()

    def with_terminal(self, command):
        """A process with a terminal of its own; gives it and the terminal's other side."""
        pid, master = pty.fork()
        if pid == 0:
            os.chdir(self.folder)  # nohup leaves its output where it was called
            os.execvpe(command[0], command, self.env)
        return pid, master

    def end_of(self, pid, seconds=20):
        def ended():
            done, status = os.waitpid(pid, os.WNOHANG)
            return [status] if done else None
        return wait_for(ended, seconds, "the end")[0]

    def test_the_end_of_its_terminal_is_an_orderly_end(self):
        pid, master = self.with_terminal([str(BIN / "TessaronZEKDienst")])
        self.wait_for_records(10)
        os.close(master)
        status = self.end_of(pid)
        self.assertTrue(os.WIFEXITED(status) and os.WEXITSTATUS(status) == 0, status)
        self.assert_sound()

    def test_one_that_was_started_detached_goes_on(self):
        pid, master = self.with_terminal(["nohup", str(BIN / "TessaronZEKDienst")])
        self.wait_for_records(10)
        os.close(master)
        os.kill(pid, signal.SIGHUP)
        self.wait_for_records(50)
        self.assertTrue(alive(pid))
        os.kill(pid, signal.SIGTERM)
        self.assertEqual(self.end_of(pid), 0)

    def test_the_tool_ends_quietly_when_nobody_reads_on(self):
        process = self.under([], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.wait_for_records(100)
        process.terminate()
        self.assertEqual(process.wait(20), 0)
        largest = max(self.files(), key=lambda path: path.stat().st_size)
        data = largest.read_bytes()
        long = self.folder / "lang.ZEK"
        long.write_bytes(data + data[-16:] * 200000)
        began = time.monotonic()
        done = subprocess.run(f"'{BIN}/zek' csv '{long}' | head -n 1", shell=True, capture_output=True, text=True,
                              timeout=60)
        self.assertEqual((done.stdout.count("\n"), done.stderr), (1, ""))
        self.assertLess(time.monotonic() - began, 20)
        full = subprocess.run(f"'{BIN}/zek' csv '{long}' > /dev/full", shell=True, capture_output=True, text=True,
                              timeout=60)
        self.assertEqual((full.returncode, full.stderr), (2, "zek: Die Ausgabe kann nicht geschrieben werden.\n"))


class NoScreen(Case):
    """The desktop program where there is no screen."""

    def setUp(self):
        super().setUp()
        for name in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"):
            self.env.pop(name, None)

    def desktop(self, *args):
        return subprocess.run([BIN / "TessaronZEK", *args], env=self.env, capture_output=True, text=True, timeout=60)

    def test_its_orders_reach_the_running_recorder(self):
        self.simulator("--rate", "300")
        self.sample_titles()
        first = self.recorder()
        self.wait_for_records(10)
        done = self.desktop("/Quit")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(first.popen.wait(20), 0)
        self.assertIn("ZEK wird durch Kommand /Quit beendet (", self.log())

    def test_an_order_that_cannot_be_stored_says_why(self):
        self.simulator("--rate", "300")
        self.recorder()
        wait_for(lambda: "Verbindung hergestellt" in self.log(), what="the connection")
        self.env["XDG_CONFIG_HOME"] = str(self.home / "IBZEKLog.txt")
        for program in ("TessaronZEK", "TessaronZEKDienst"):
            done = subprocess.run([BIN / program, "/Quit"], env=self.env, capture_output=True, text=True, timeout=60)
            self.assertEqual(done.returncode, 1, program)
            self.assertIn("Der Befehl /Quit konnte der laufenden Instanz nicht übergeben werden (", done.stderr)

    def test_a_start_says_that_there_is_none(self):
        for args in ((), ("/Quit",)):
            done = self.desktop(*args)
            self.assertEqual(done.returncode, 1)
            self.assertIn("Es ist kein Bildschirm da", done.stderr)

    def test_a_folder_that_cannot_be_locked_refuses_the_start(self):
        (self.home / ".zek.lock").mkdir()
        done = subprocess.run([BIN / "TessaronZEKDienst"], env=self.env, capture_output=True, text=True, timeout=60)
        self.assertEqual(done.returncode, 1)
        self.assertIn("Fehler beim Starten aufgetreten: Der Programmordner kann nicht gegen einen zweiten Start "
                      "gesperrt werden (", done.stderr)
        self.assertIn("Ist ein Ordner", done.stderr)


if __name__ == "__main__":
    unittest.main()
