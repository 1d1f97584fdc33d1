"""Real processes for end-to-end tests: a simulator, a recorder, and plain readers of what they write."""
import contextlib
import os
import pathlib
import shutil
import signal
import struct
import subprocess
import tempfile
import time
import unittest

BIN = pathlib.Path(os.environ["ZEK_BIN"])
APP = "Tessaron ZEK für IB"
HEADER = 856
MAGIC = b"VQL ZeitstromKit-Datei Version 01.00"


def wait_for(condition, seconds=20, what="condition"):
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"{what} did not come within {seconds} s")
        time.sleep(0.05)


def records(path):
    """(time stamp, price, volume) of each whole record of a data file."""
    data = path.read_bytes()
    assert data[:36] == MAGIC, f"{path.name}: no data file"
    count = (len(data) - HEADER) // 16
    return [struct.unpack_from("<dff", data, HEADER + 16 * i) for i in range(count)]


def alive(pid):
    try:
        os.kill(pid, 0)
    except ProcessLookupError:
        return False
    # A zombie that nobody waits for has ended as well.
    stat = pathlib.Path(f"/proc/{pid}/stat")
    return stat.exists() and stat.read_text().rsplit(")", 1)[1].split()[0] != "Z"


class Process:
    def __init__(self, args, env, log):
        self.log = open(log, "ab")
        self.popen = subprocess.Popen(args, env=env, stdin=subprocess.PIPE, stdout=self.log, stderr=self.log)

    @property
    def pid(self):
        return self.popen.pid

    def command(self, line):
        self.popen.stdin.write((line + "\n").encode())
        self.popen.stdin.flush()

    def stop(self, sig=signal.SIGTERM, seconds=20):
        if self.popen.poll() is None:
            self.popen.send_signal(sig)
        code = self.popen.wait(seconds)
        self.log.close()
        if self.popen.stdin:
            with contextlib.suppress(BrokenPipeError):
                self.popen.stdin.close()
        return code

    def running(self):
        return self.popen.poll() is None


class Case(unittest.TestCase):
    """A program folder, a settings folder and a simulator of its own for each test."""

    program = "TessaronZEKDienst"

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="zek-e2e-"))
        self.home = self.folder / "programm"
        self.config = self.folder / "config"
        self.home.mkdir()
        (self.config / "Tessaron").mkdir(parents=True)
        shutil.copy(BIN / "ZEKIBAutoNeustart.exe", self.home)
        self.env = dict(os.environ, ZEK_PROGRAMMORDNER=str(self.home), XDG_CONFIG_HOME=str(self.config),
                        HOME=str(self.folder))
        self.processes = []
        self.setting(APP, "Optionen", "DontShowStartUpTitel", "1")
        self.setting("Tessaron", "ZEKStart", "VersionsHinweis", "1")

    def tearDown(self):
        for process in self.processes:
            if process.running():
                process.stop(signal.SIGKILL)
            else:
                process.stop()
        for pid in self.strangers():
            os.kill(pid, signal.SIGKILL)
        failed = any(error for _, error in self._outcome.errors) if hasattr(self._outcome, "errors") else False
        if failed:
            print(self.log())
        shutil.rmtree(self.folder, ignore_errors=True)

    def strangers(self):
        """Recorders and helpers of this test's folder that it didn't start itself."""
        own = {process.pid for process in self.processes}
        found = []
        for entry in pathlib.Path("/proc").glob("[0-9]*"):
            with contextlib.suppress(OSError):
                pid = int(entry.name)
                if pid not in own and alive(pid) and str(self.home).encode() in (entry / "environ").read_bytes():
                    found.append(pid)
        return found

    def recorders(self):
        found = []
        for entry in pathlib.Path("/proc").glob("[0-9]*"):
            with contextlib.suppress(OSError):
                pid = int(entry.name)
                exe = os.readlink(entry / "exe")
                # The process that brings data to the disk goes by a name of its own.
                if (entry / "comm").read_text() == "zek-sicherung\n":
                    continue
                if exe.endswith("/" + self.program) and alive(pid) and str(self.home).encode() in (
                        entry / "environ").read_bytes():
                    found.append(pid)
        return found

    # ---- settings

    def settings_file(self, application):
        return self.config / "Tessaron" / f"{application}.ini"

    def setting(self, application, section, key, value):
        path = self.settings_file(application)
        lines = path.read_text().split("\n") if path.exists() else []
        head = f"[{section}]"
        if head not in lines:
            lines += [head]
        lines.insert(lines.index(head) + 1, f"{key}={value}")
        path.write_text("\n".join(lines))

    def read_setting(self, application, section, key):
        current = None
        for line in self.settings_file(application).read_text().split("\n"):
            if line.startswith("["):
                current = line.strip()[1:-1]
            elif current == section and line.startswith(key + "="):
                return line.split("=", 1)[1]
        return None

    # ---- processes

    def start(self, program, *args):
        process = Process([str(BIN / program), *args], self.env, self.folder / f"{program}.txt")
        self.processes.append(process)
        return process

    def simulator(self, *args):
        port_file = self.folder / "port"
        with contextlib.suppress(FileNotFoundError):
            port_file.unlink()
        process = self.start("tws-simulator", "--port", "0", "--port-file", str(port_file), "--seed", "7", *args)
        port = wait_for(lambda: port_file.exists() and port_file.read_text().strip(), what="the simulator's port")
        (self.home / "ZEK_Para.ini").write_text(f"[ZEK_IB]\r\nIBPort={port}\r\n")
        return process

    def sample_titles(self):
        """Has the recorder add its sample titles, and stops it again."""
        process = self.start("TessaronZEKDienst", "--beispieltitel")
        titles = self.home / "IB_Titel.Dat"
        wait_for(lambda: titles.exists() and titles.stat().st_size > 1000, what="the sample titles")
        self.assertEqual(process.stop(), 0)

    def recorder(self, *args):
        return self.start(self.program, *args)

    def zek(self, *args):
        return subprocess.run([BIN / "zek", *args], env=self.env, capture_output=True, text=True, timeout=60)

    # ---- what was written

    @property
    def data(self):
        return self.home / "RealtimeData"

    def files(self):
        return sorted(self.data.rglob("*.ZEK"))

    def count(self):
        return sum((path.stat().st_size - HEADER) // 16 for path in self.files() if path.stat().st_size >= HEADER)

    def log(self):
        path = self.home / "IBZEKLog.txt"
        return path.read_bytes().decode("cp1252") if path.exists() else ""

    def wait_for_records(self, more=1, seconds=30):
        base = self.count()
        wait_for(lambda: self.count() >= base + more, seconds, f"{more} more records")

    def assert_sound(self):
        for path in self.files():
            size = path.stat().st_size
            self.assertEqual((size - HEADER) % 16, 0, path.name)
            times = [record[0] for record in records(path)]
            self.assertEqual(times, sorted(times), f"{path.name}: times run backwards")
            self.assertTrue(all(t > 40000 for t in times), path.name)
