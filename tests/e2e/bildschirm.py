"""A screen of its own for windows: Xvfb with a window manager, driven by mouse and keyboard as a person does."""
import os
import re
import shutil
import subprocess
import time

from rekorder import wait_for

WIDTH, HEIGHT = 1400, 1000


def missing(names=("Xvfb", "openbox", "xdotool", "import", "xprop", "xwininfo", "xev")):
    """Those of the programs that a screen needs that aren't there."""
    return [name for name in names if shutil.which(name) is None]


class Screen:
    """`tray`: with a notification area. `size`: of the screen in pixels."""

    def __init__(self, tray=False, size=(WIDTH, HEIGHT)):
        self.size = size
        self.processes = []
        read, write = os.pipe()
        self._start(["Xvfb", "-displayfd", str(write), "-screen", "0", f"{size[0]}x{size[1]}x24", "-nolisten", "tcp",
                     "-noreset"], pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as pipe:
            self.display = ":" + pipe.readline().strip()
        self.env = dict(os.environ, DISPLAY=self.display, LC_ALL="C.UTF-8")
        self.env.pop("WAYLAND_DISPLAY", None)
        try:
            self._furnish(tray)
        except BaseException:
            self.close()
            raise

    def _furnish(self, tray):
        self._start(["openbox", "--sm-disable"], env=self.env)
        wait_for(lambda: "window id" in self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"), what="openbox")
        if tray:
            self._start(["trayer", "--edge", "bottom", "--align", "right", "--widthtype", "request", "--height", "32"],
                        env=self.env)
            wait_for(self.has_tray, what="the notification area")

    def _start(self, args, **kwargs):
        process = subprocess.Popen(args, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, **kwargs)
        self.processes.append(process)

    def close(self):
        for process in reversed(self.processes):
            process.terminate()
            process.wait(10)

    def run(self, *args, text=True, check=False):
        done = subprocess.run(args, env=self.env, capture_output=True, text=text, timeout=30)
        if check and done.returncode != 0:
            raise AssertionError(f"{args} ended with {done.returncode}: {done.stderr}")
        return done.stdout

    def xdotool(self, *args):
        return self.run("xdotool", *(str(arg) for arg in args))

    def has_tray(self):
        return bool(self.xdotool("search", "--class", "trayer").split())

    # ---- windows

    def windows(self, title):
        """Ids of the visible windows of this exact title, the newest last."""
        found = self.xdotool("search", "--onlyvisible", "--name", "^" + re.escape(title) + "$").split()
        return [int(window) for window in found]

    def window(self, title, seconds=20):
        """Waits for a window, activates it (a new one doesn't always have the focus) and gives its id."""
        window = wait_for(lambda: self.windows(title), seconds, f'the window "{title}"')[-1]
        self.activate(window)
        return window

    def activate(self, window):
        def active():
            self.xdotool("windowactivate", window)
            return self.focus() == window
        wait_for(active, 10, "the focus")

    def focus(self):
        """Id of the window that has the focus."""
        found = self.xdotool("getactivewindow").strip()
        return int(found) if found else None

    def stacking(self):
        """Ids of the programs' windows from the lowest to the topmost."""
        found = self.run("xprop", "-root", "_NET_CLIENT_LIST_STACKING")
        return [int(window, 16) for window in re.findall(r"0x[0-9a-f]+", found)]

    def other_program(self):
        """Starts a program that has nothing to do with ours and gives its window, which has the focus."""
        self._start(["xev", "-name", "Anderes Programm"], env=self.env)
        return self.window("Anderes Programm")

    def gone(self, title, seconds=20):
        wait_for(lambda: not self.windows(title), seconds, f'the end of the window "{title}"')

    def geometry(self, window):
        """x, y, width, height on the screen, without the frame."""
        info = self.run("xwininfo", "-id", str(window))
        return tuple(int(re.search(rf"{name}:\s+(-?\d+)", info).group(1))
                     for name in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))

    def popups(self):
        """Ids of open menus: visible windows that no window manager frames."""
        found = self.xdotool("search", "--onlyvisible", "--class", "TessaronZEK").split()
        return [int(window) for window in found
                if "Override Redirect State: yes" in self.run("xwininfo", "-id", window)
                and self.geometry(window)[2] > 50]

    # ---- hands and eyes

    def key(self, *keys):
        self.xdotool("key", "--clearmodifiers", *keys)

    def type(self, text):
        self.xdotool("type", "--delay", "20", text)

    def click(self, x, y, button=1):
        self.xdotool("mousemove", "--sync", x, y)
        self.xdotool("click", button)

    def park(self):
        """The mouse out of the way, so that nothing is highlighted and no tool tip comes up."""
        self.xdotool("mousemove", self.size[0] - 1, 1)

    def pixels(self, window, area):
        """The bytes of a part (x, y, width, height) of a window."""
        x, y, width, height = area
        return self.run("import", "-window", str(window), "-crop", f"{width}x{height}+{x}+{y}", "-depth", "8", "rgb:-",
                        text=False, check=True)

    def shoot(self, target, file, area=None):
        """A picture of a window (with its frame), of an area of the screen, or of the whole screen ("root")."""
        args = ["import", "-window", str(target)]
        if target != "root":
            args.append("-frame")
        if area:
            args += ["-crop", "{2}x{3}+{0}+{1}".format(*area), "+repage"]
        self.run(*args, "-strip", str(file), check=True)

    def settle(self, window, seconds=5):
        """Waits until the window shows the same picture twice in a row."""
        end, before = time.monotonic() + seconds, None
        while time.monotonic() < end:
            now = self.run("import", "-window", str(window), "-depth", "8", "rgb:-", text=False)
            if now and now == before:
                return
            before = now
            time.sleep(0.15)
