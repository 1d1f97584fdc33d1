"""The screenless recorder with real processes and sockets: record, crash, orders, restarts, a peer gone mad."""
import os
import pathlib
import signal
import time
import unittest
from datetime import datetime, timedelta

from rekorder import APP, Case, alive, wait_for


class Recording(Case):
    def test_ticks_become_files_and_the_end_is_in_order(self):
        self.simulator("--rate", "300")
        self.sample_titles()
        recorder = self.recorder()
        self.wait_for_records(500)
        self.assertEqual(recorder.stop(signal.SIGTERM), 0)
        self.assert_sound()
        names = {path.name for path in self.files()}
        self.assertIn("AAPL@SMART_STK_USD.ZEK", names)
        self.assertIn("AAPL@SMART_STK_USD-BID.ZEK", names)
        self.assertIn("AAPL@SMART_STK_USD-BAV.ZEK", names)
        self.assertIn("Verbindung hergestellt um ", self.log())
        self.assertEqual(self.zek("check", str(self.data)).returncode, 0)

    def test_files_can_be_read_while_they_are_written(self):
        self.simulator("--rate", "500")
        self.sample_titles()
        self.recorder()
        self.wait_for_records(200)
        for _ in range(5):
            done = self.zek("check", str(self.data))
            self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def test_a_recorder_killed_in_a_flood_leaves_sound_files_and_goes_on(self):
        simulator = self.simulator("--rate", "5000")
        self.sample_titles()
        recorder = self.recorder()
        self.wait_for_records(2000)
        simulator.command("flood 50000")
        time.sleep(0.2)
        recorder.stop(signal.SIGKILL)
        self.assert_sound()
        before = {path: path.read_bytes() for path in self.files()}
        again = self.recorder()
        self.wait_for_records(2000)
        again.stop()
        self.assert_sound()
        for path, content in before.items():
            self.assertEqual(path.read_bytes()[:len(content)], content, f"{path.name} changed behind its end")

    def test_sigint_ends_in_order_too(self):
        self.simulator("--rate", "100")
        recorder = self.recorder()
        wait_for(lambda: "Verbindung hergestellt" in self.log(), what="the connection")
        self.assertEqual(recorder.stop(signal.SIGINT), 0)

    def test_without_a_tws_it_runs_and_connects_as_soon_as_one_comes(self):
        simulator = self.simulator("--rate", "300")
        self.sample_titles()
        simulator.command("refuse 3")
        time.sleep(0.3)
        self.recorder()
        wait_for(lambda: "Es besteht keine Verbindung zur TWS!" in self.log(), what="the failed connection")
        self.wait_for_records(100, 50)


class Orders(Case):
    def setUp(self):
        super().setUp()
        self.simulator("--rate", "300")
        self.sample_titles()

    def test_a_second_instance_is_refused(self):
        self.recorder()
        self.wait_for_records(10)
        second = self.recorder()
        self.assertNotEqual(second.popen.wait(20), 0)
        self.assertEqual(len(self.recorders()), 1)

    def test_quit_ends_the_running_recorder(self):
        first = self.recorder()
        self.wait_for_records(10)
        self.assertEqual(self.recorder("/Quit").popen.wait(20), 0)
        self.assertEqual(first.popen.wait(20), 0)
        self.assertIn("ZEK wird durch Kommand /Quit beendet (", self.log())
        self.assertEqual(self.recorders(), [])

    def assert_restarted(self, first, reason, seconds=40):
        first.popen.wait(seconds)
        pid = wait_for(self.recorders, seconds, "the new recorder")
        self.assertEqual(len(pid), 1)
        self.assertIn(reason, self.log())
        self.wait_for_records(10)
        self.assertEqual(len(self.recorders()), 1)
        self.assertTrue((self.home / "IBZEKNeustart.txt").exists())
        os.kill(pid[0], signal.SIGTERM)
        wait_for(lambda: not alive(pid[0]), 20, "the end of the new recorder")
        self.assert_sound()

    def test_restart_by_command(self):
        first = self.recorder("/K")
        self.wait_for_records(10)
        self.assertEqual(self.recorder("/Restart").popen.wait(20), 0)
        self.assert_restarted(first, "ZEK wird durch Kommand /Restart neu gestartet (")

    def test_restart_by_error_number(self):
        self.setting(APP, "Optionen", "NeustartFehlernummern", "2105, 1100")
        first = self.recorder("/K")
        self.wait_for_records(10)
        self.processes[0].command("2105")
        self.assert_restarted(first, "ZEK wird wegen Fehlermeldung neu gestartet (bei Fehler Nr. 2105)")

    def test_restart_by_clock(self):
        near = datetime.now() + timedelta(seconds=8)
        self.setting(APP, "Optionen", "NeuStartbeiUhrzeit", "1")
        self.setting(APP, "Optionen", "NeustartUhrzeit", near.strftime("%H:%M:%S"))
        first = self.recorder("/K")
        self.wait_for_records(10)
        self.assert_restarted(first, "ZEK wird zeitbedingt neu gestartet (")


class MissingTicks(Case):
    """The rule waits for five minutes after the start; the recorder's own clock runs fast here, on a Wednesday."""

    def test_restart_for_want_of_ticks(self):
        library = pathlib.Path(f"/usr/lib/{os.uname().machine}-linux-gnu/faketime/libfaketime.so.1")
        if not library.exists():
            self.skipTest("libfaketime is missing; scripts/installiere brings it")
        simulator = self.simulator("--rate", "300")
        self.sample_titles()
        self.setting(APP, "Optionen", "NeuStartBeiFehlendenKursen", "1")
        self.setting(APP, "Optionen", "NeuStartBeiFehlendenKursenSekunden", "60")
        simulator.command("silence")
        self.env.update(LD_PRELOAD=str(library), FAKETIME="@2026-11-18 12:00:00 x40")
        first = self.recorder("/K")
        first.popen.wait(60)
        self.assertIn("ZEK wird neu gestartet, weil längere Zeit keine Kurse eingetroffen sind", self.log())
        pid = wait_for(self.recorders, 60, "the new recorder")
        simulator.command("resume")
        self.wait_for_records(10)
        os.kill(pid[0], signal.SIGTERM)
        wait_for(lambda: not alive(pid[0]), 30, "the end of the new recorder")


class Hostile(Case):
    """Whatever the other side sends: recording goes on, on the same or on the next connection."""

    def check(self, *commands):
        simulator = self.simulator("--rate", "300", "--pacing", "off")
        self.sample_titles()
        recorder = self.recorder()
        self.wait_for_records(50)
        for command in commands:
            simulator.command(command)
            time.sleep(0.2)
        self.wait_for_records(50, 60)
        self.assertTrue(recorder.running())
        recorder.stop()
        self.assert_sound()

    def test_odd_messages_in_sound_frames(self):
        self.check("unknown", "short", "long", "badnumber", "nested", "noise")

    def test_single_bytes(self):
        self.check("bytes")

    def test_random_pieces(self):
        self.check("cuts")

    def test_garbage(self):
        self.check("garbage 5000")

    def test_an_oversize_frame(self):
        self.check("oversize")

    def test_a_frame_without_an_end(self):
        self.check("halfframe")

    def test_a_reset(self):
        self.check("reset")

    def test_a_daily_restart_of_the_tws(self):
        self.check("refuse 5")


if __name__ == "__main__":
    unittest.main(verbosity=2)
