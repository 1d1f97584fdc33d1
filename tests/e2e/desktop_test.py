"""The recorder with its windows on a screen of its own: a real window manager, mouse and keyboard."""
import os
import re
import signal
import struct
import time
import unittest

from bildschirm import Screen, missing
from rekorder import APP, Case, alive, wait_for

MAIN = "Tessaron ZEK für Interactive Brokers"
MESSAGE = "Tessaron ZEK"


def title_file(count, active):
    """The definitions of `count` stocks, the first `active` of them active, without bid and ask."""
    def text(value):
        return struct.pack("<HH", 8, len(value)) + value.encode("cp1252")

    def boolean(value):
        return struct.pack("<HH", 11, 0xFFFF if value else 0)

    def number(value):
        return struct.pack("<Hd", 5, value)

    def values(elements, lower=0):
        return struct.pack("<HHIi", 0x200C, 1, len(elements), lower) + b"".join(elements)

    def title(index):
        name = f"S{index:03}"
        nested = values([text("1"), boolean(False), boolean(False)])
        return values([text(name), text("SMART"), text("STK"), text(""), number(0), text(""), text("USD"),
                       boolean(index < active), boolean(False), text("Aktien"), struct.pack("<Hi", 3, 0),
                       text(name + "@SMART_STK_USD"), number(0), boolean(False), boolean(False),
                       values([number(0), nested, struct.pack("<Hh", 2, 0)]), boolean(False)])
    return b"Tessaron ZEK IBDefs 01.00.00" + values([title(index) for index in range(count)], 1)


@unittest.skipIf(missing(), "no screen: missing " + ", ".join(missing()))
class Desktop(Case):
    program = "TessaronZEK"
    with_tray = False

    def setUp(self):
        super().setUp()
        self.screen = Screen(tray=self.with_tray)
        self.addCleanup(self.screen.close)
        self.env.update(DISPLAY=self.screen.display, QT_QPA_PLATFORM="xcb", LC_ALL="C.UTF-8")
        self.env.pop("WAYLAND_DISPLAY", None)
        # The program writes 1 here as soon as it shows the working view.
        self.setting(APP, "Hauptfenster", "Taskbar", "2")

    def mark_start(self):
        path = self.settings_file(APP)
        path.write_text(re.sub(r"Taskbar=.*", "Taskbar=2", path.read_text()))

    def working_view(self, seconds=20):
        wait_for(lambda: self.read_setting(APP, "Hauptfenster", "Taskbar") == "1", seconds, "the working view")

    def recording(self, *args):
        """A recorder that records from the simulator; its window has the focus."""
        simulator = self.simulator("--rate", "300")
        self.sample_titles()
        recorder = self.recorder(*args)
        self.working_view()
        self.wait_for_records(100)
        self.main = self.screen.window(MAIN)
        return simulator, recorder

    def counter(self):
        """The part of the window that holds the number of records, in the compact view."""
        menu_bar = 26
        return self.screen.pixels(self.main, (0, menu_bar, 300, 34))

    def ask_to_close(self, answer):
        self.screen.activate(self.main)
        self.screen.key("alt+F4")
        question = self.screen.window(MESSAGE)
        self.screen.key(*answer)
        self.screen.gone(MESSAGE)
        return question


class Window(Desktop):
    def test_records_come_in_and_the_counter_moves_with_them(self):
        self.setting(APP, "Optionen", "KomprimierteAnsicht", "1")
        simulator, recorder = self.recording("/K")
        before = self.counter()
        wait_for(lambda: self.counter() != before, 5, "a movement of the counter")
        simulator.command("silence")
        time.sleep(1)
        before = self.counter()
        time.sleep(1)
        self.assertEqual(self.counter(), before, "the counter moves without prices")
        simulator.command("resume")
        wait_for(lambda: self.counter() != before, 5, "a movement of the counter")
        self.assertEqual(recorder.stop(signal.SIGTERM), 0)
        self.assert_sound()

    def test_the_closing_question_is_answered_by_keyboard(self):
        _, recorder = self.recording()
        self.ask_to_close(["Escape"])
        self.assertTrue(recorder.running())
        self.ask_to_close(["Tab", "Return"])
        self.assertTrue(recorder.running())
        self.wait_for_records(50)
        self.ask_to_close(["Return"])
        self.assertEqual(recorder.popen.wait(20), 0)
        self.assert_sound()

    def test_recording_goes_on_behind_the_question(self):
        self.recording()
        self.screen.key("alt+F4")
        self.screen.window(MESSAGE)
        self.wait_for_records(200)

    def test_the_place_of_the_window_comes_back(self):
        _, recorder = self.recording("/K")
        self.screen.xdotool("windowmove", "--sync", self.main, 77, 99)
        self.screen.xdotool("windowsize", "--sync", self.main, 900, 500)
        time.sleep(1)
        place = self.screen.geometry(self.main)
        recorder.stop()
        self.recorder("/K")
        self.main = self.screen.window(MAIN)
        wait_for(lambda: self.screen.geometry(self.main) == place, 5, f"the place {place}")


    def test_a_recorder_left_minimized_shows_nothing_and_takes_no_focus_on_its_way(self):
        _, recorder = self.recording("/K")
        self.screen.xdotool("windowminimize", "--sync", self.main)
        time.sleep(1)
        recorder.stop()
        self.assertEqual(self.read_setting(APP, "Hauptfenster", "Anzeigen"), "0")
        self.mark_start()
        other = self.screen.other_program()
        self.recorder("/K")
        end = time.monotonic() + 4
        while time.monotonic() < end:
            self.assertEqual(self.screen.windows(MAIN), [])
            self.assertEqual(self.screen.focus(), other)
        self.working_view()
        self.wait_for_records(50)
        self.assertEqual(self.screen.windows(MAIN), [])


    def test_an_automatic_backfill_takes_the_focus_from_nobody(self):
        _, recorder = self.recording("/K")
        time.sleep(11)  # a shorter session leaves no end to begin from
        recorder.stop()
        self.setting(APP, "Optionen", "AutoDatenpflege", "1")
        self.mark_start()
        self.recorder("/K")
        self.working_view()
        other = self.screen.other_program()
        backfill = wait_for(lambda: self.screen.windows("Datenpflege"), 20, "the backfill")[-1]
        time.sleep(1)
        self.assertEqual(self.screen.focus(), other)
        # What tells the window managers that are less careful than this one.
        self.assertIn("= 0\n", self.screen.run("xprop", "-id", str(backfill), "_NET_WM_USER_TIME"))


    def test_help_finds_the_manual_of_the_source_or_says_what_is_missing(self):
        folder = self.folder / "werkzeuge"
        folder.mkdir()
        opener = folder / "xdg-open"
        opener.write_text(f'#!/bin/sh\nprintf %s "$1" >{folder}/seite\nexit $(cat {folder}/ergebnis)\n')
        opener.chmod(0o755)
        (folder / "ergebnis").write_text("0")
        self.env["PATH"] = f"{folder}:{os.environ['PATH']}"
        self.recording("/K")
        self.screen.key("F1")
        page = folder / "seite"
        wait_for(page.exists, 5, "the browser")
        self.assertRegex(page.read_text(), r"/docs/hilfe/index\.html$")
        time.sleep(1)
        self.assertEqual(self.screen.windows(MESSAGE), [])
        (folder / "ergebnis").write_text("3")
        self.screen.key("F1")
        self.screen.window(MESSAGE, 5)


class Instances(Desktop):
    def test_a_second_instance_says_so_and_goes_by_itself(self):
        self.recording("/K")
        second = self.recorder()
        self.screen.window(MESSAGE)
        self.assertEqual(second.popen.wait(20), 0)
        self.screen.gone(MESSAGE)
        self.assertEqual(len(self.recorders()), 1)
        self.wait_for_records(50)

    def test_a_second_start_brings_the_running_one_to_the_front(self):
        self.recording("/K")
        self.screen.xdotool("windowminimize", "--sync", self.main)
        self.screen.gone(MAIN)
        second = self.recorder()
        wait_for(lambda: self.screen.windows(MESSAGE), 10, "the message")
        wait_for(lambda: self.screen.windows(MAIN), 4, "the window of the running recorder")
        self.assertIsNone(second.popen.poll(), "the message went before its time")
        self.assertEqual(second.popen.wait(20), 0)
        wait_for(lambda: self.screen.focus() == self.main, 5, "the focus")
        self.wait_for_records(50)

    def test_quit_ends_the_window_without_a_question(self):
        _, first = self.recording()
        self.assertEqual(self.recorder("/Quit").popen.wait(20), 0)
        self.assertEqual(first.popen.wait(20), 0)
        self.assertEqual(self.screen.windows(MAIN), [])
        self.assertIn("ZEK wird durch Kommand /Quit beendet (", self.log())

    def test_quit_ends_it_behind_open_windows_too(self):
        _, first = self.recording()
        self.screen.key("ctrl+comma")
        self.screen.window("Allgemeine Einstellungen")
        self.screen.key("alt+o")
        self.screen.type("5")
        self.screen.key("Return")
        self.screen.window(MESSAGE)
        self.recorder("/Quit")
        self.assertEqual(first.popen.wait(20), 0)
        self.assert_sound()

    def test_quit_ends_it_amid_a_backfill(self):
        simulator, first = self.recording()
        simulator.command("hold 1")
        self.screen.key("F5")
        self.screen.window("Datenpflege der aktiven Titel")
        self.screen.key("Return")
        self.screen.window("Datenpflege")
        time.sleep(2)
        self.recorder("/Quit")
        self.assertEqual(first.popen.wait(20), 0)
        self.assert_sound()

    def test_restart_brings_the_desktop_program_back(self):
        _, first = self.recording("/K")
        self.assertEqual(self.recorder("/Restart").popen.wait(20), 0)
        first.popen.wait(40)
        again = wait_for(self.recorders, 40, "the new recorder")
        self.main = self.screen.window(MAIN, 40)
        self.wait_for_records(50)
        self.assertIn("ZEK wird durch Kommand /Restart neu gestartet (", self.log())
        # The new one was started with /K as well: it closes without a question.
        self.screen.key("alt+F4")
        wait_for(lambda: not alive(again[0]), 20, "the end of the new recorder")
        self.assert_sound()


class FirstStart(Desktop):
    def test_the_connection_dialog_stands_over_its_window(self):
        self.recorder("/K")
        dialog = self.screen.window("Interactive Brokers")
        main = self.screen.windows(MAIN)[-1]
        time.sleep(0.5)
        x, y, width, height = self.screen.geometry(main)
        dialog_x, dialog_y, dialog_width, dialog_height = self.screen.geometry(dialog)
        self.assertAlmostEqual(dialog_x + dialog_width / 2, x + width / 2, delta=40)
        self.assertAlmostEqual(dialog_y + dialog_height / 2, y + height / 2, delta=60)
        self.assertAlmostEqual(x + width / 2, self.screen.size[0] / 2, delta=40)


class Start(Desktop):
    """Times from the start of the process to the working view."""

    def start_time(self, count, active):
        (self.home / "IB_Titel.Dat").write_bytes(title_file(count, active))
        self.mark_start()
        begin = time.monotonic()
        recorder = self.recorder("/K")
        while self.read_setting(APP, "Hauptfenster", "Taskbar") != "1":
            self.assertLess(time.monotonic() - begin, 60, "no working view")
            time.sleep(0.002)
        seconds = time.monotonic() - begin
        self.assertTrue(self.screen.windows(MAIN))
        self.assertEqual(recorder.stop(), 0)
        return seconds

    def test_500_titles_are_in_the_working_view_within_a_second(self):
        self.simulator("--lines", "1000")
        times = [self.start_time(500, 30) for _ in range(3)]
        print("start with 500 titles, 30 of them active: " + ", ".join(f"{t * 1000:.0f} ms" for t in times))
        self.assertLess(min(times), 1.0)

    def test_only_the_pace_of_the_subscriptions_makes_a_start_longer(self):
        # 31 messages a second: once they are sent, the next title waits for the rest of the second.
        self.simulator("--lines", "1000")
        seconds = self.start_time(200, 200)
        print(f"start with 200 active titles: {seconds * 1000:.0f} ms")
        self.assertGreater(seconds, 6.0)
        self.assertLess(seconds, 7.5)


class Tray(Desktop):
    with_tray = True

    def setUp(self):
        if missing(("trayer",)):
            self.skipTest("no notification area: trayer isn't installed")
        super().setUp()
        self.trayer = int(self.screen.xdotool("search", "--class", "trayer").split()[-1])
        self.empty = self.screen.geometry(self.trayer)

    def icon(self):
        wait_for(lambda: self.screen.geometry(self.trayer) != self.empty, 20, "the icon")
        x, y, width, height = self.screen.geometry(self.trayer)
        return x + width // 2, y + height // 2

    def test_a_minimized_window_comes_back_by_a_click_on_the_icon(self):
        self.recording("/K")
        x, y = self.leave_the_task_bar()
        self.screen.xdotool("windowminimize", "--sync", self.main)
        self.screen.gone(MAIN)
        self.wait_for_records(50)
        self.screen.click(x, y)
        self.main = self.screen.window(MAIN)

    def leave_the_task_bar(self):
        x, y = self.icon()
        self.screen.click(x, y, 3)
        wait_for(self.screen.popups, 5, "the menu")
        self.screen.key("Up", "Up", "Return")
        self.screen.window(MESSAGE)
        self.screen.key("Return")
        self.screen.gone(MESSAGE)
        return x, y

    def test_an_open_dialog_doesnt_lock_the_program_out_of_reach(self):
        settings = "Allgemeine Einstellungen"
        _, recorder = self.recording("/K")
        x, y = self.leave_the_task_bar()
        self.screen.activate(self.main)
        self.screen.key("ctrl+comma")
        dialog = self.screen.window(settings)
        for window in (dialog, self.main):
            self.screen.xdotool("windowminimize", window)
            time.sleep(1)
            self.screen.click(x, y)
            wait_for(lambda: self.screen.windows(MAIN) and self.screen.windows(settings), 5, "both windows")
            wait_for(lambda: self.screen.focus() == dialog, 5, "the focus in the dialog")
        self.screen.key("Escape")
        self.screen.gone(settings)
        wait_for(lambda: self.screen.focus() == self.main, 5, "the focus in the main window")
        self.wait_for_records(50)
        self.assertEqual(recorder.stop(), 0)

    def test_windows_that_lie_over_the_main_window_come_back_over_it(self):
        simulator, _ = self.recording("/K")
        simulator.command("hold 5")
        x, y = self.leave_the_task_bar()
        self.screen.activate(self.main)
        # Four numbers and a floating pane: where the monitor was last.
        self.setting(APP, "Monitor", "DockFloat", "1")
        self.setting(APP, "Monitor", "DockPos", "8")
        self.setting(APP, "Monitor", "DockKoord", "200\t600\t900\t800")
        self.screen.key("ctrl+m")
        monitor = self.screen.window("Monitor")
        self.screen.activate(self.main)
        self.screen.key("F5")
        self.screen.window("Datenpflege der aktiven Titel")
        self.screen.key("Return")
        backfill = self.screen.window("Datenpflege")
        self.screen.xdotool("windowminimize", self.main)
        wait_for(lambda: not self.screen.windows(MAIN), 5, "the main window's end")
        self.screen.click(x, y)
        wait_for(lambda: self.screen.windows(MAIN), 5, "the main window")
        time.sleep(1)
        order = self.screen.stacking()
        for window in (monitor, backfill):
            self.assertGreater(order.index(window), order.index(self.main))

    def test_its_menu_ends_the_program_after_the_question(self):
        _, recorder = self.recording()
        self.screen.click(*self.icon(), 3)
        wait_for(self.screen.popups, 5, "the menu")
        self.screen.key("Up", "Return")
        self.screen.window(MESSAGE)
        self.screen.key("Return")
        self.assertEqual(recorder.popen.wait(20), 0)


if __name__ == "__main__":
    os.environ.pop("QT_SCALE_FACTOR", None)
    unittest.main(verbosity=2)
