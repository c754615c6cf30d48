"""What the tests of the program have in common: the program, its window, its tree."""
import os
import struct
import subprocess
import sys
import tempfile
import unittest

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib  # noqa: E402

from desktop import Program, until  # noqa: E402

PLAYER = "org.mpris.MediaPlayer2.Player"


class Case(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir=os.environ["QUOREL_TEST_DESKTOP"])
        self.addCleanup(folder.cleanup)
        self.program = Program(os.path.abspath(sys.argv[1]), folder.name)
        self.addCleanup(self.program.end)
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)

    def music(self, name):
        """A file of two seconds of silence."""
        path = os.path.join(self.program.folder, name)
        data = bytes(2 * 8000 * 2)
        with open(path, "wb") as file:
            file.write(b"RIFF" + struct.pack("<I", 36 + len(data)) + b"WAVEfmt "
                       + struct.pack("<IHHIIHH", 16, 1, 1, 8000, 16000, 2, 16)
                       + b"data" + struct.pack("<I", len(data)) + data)
        return path

    def call(self, interface, method, arguments=None):
        return self.bus.call_sync("org.mpris.MediaPlayer2.quorel", "/org/mpris/MediaPlayer2",
                                  interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                                  60_000, None).unpack()

    def get(self, name):
        return self.call("org.freedesktop.DBus.Properties", "Get",
                         GLib.Variant("(ss)", (PLAYER, name)))[0]

    def isOnBus(self):
        names = self.bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                   "org.freedesktop.DBus", "ListNames", None, None,
                                   Gio.DBusCallFlags.NONE, -1, None).unpack()[0]
        return "org.mpris.MediaPlayer2.quorel" in names

    def launch(self, *words):
        """Starts it and waits until it has settled in."""
        until(lambda: not self.isOnBus(), "the last one to leave the bus")
        process = self.program.start("--output", "null", *words)
        until(lambda: self.isOnBus() or process.poll() is not None, "the program")
        if process.poll() is not None:
            self.fail("it ended: " + process.communicate()[1])
        return process

    def quit(self, process):
        self.call("org.mpris.MediaPlayer2", "Quit")
        self.ended(process)

    def ended(self, process, status=0):
        _, errors = process.communicate(timeout=60)
        self.assertEqual(process.returncode, status, errors)

    def tracks(self):
        return [track["path"] for playlist in self.program.saved()["playlists"]
                for track in playlist["tracks"]]

    # The tree that assistive technologies see.

    def application(self):
        desktop = Atspi.get_desktop(0)
        for i in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(i)
            if child and child.get_name() == "Quorel":
                return child
        return None

    def nodes(self, node):
        yield node
        for i in range(node.get_child_count()):
            child = node.get_child_at_index(i)
            if child:
                yield from self.nodes(child)

    def find(self, name, role=None):
        return until(lambda: next((node for node in self.nodes(self.application())
                                   if node.get_name() == name and role in (None, node.get_role())),
                                  None),
                     name)


class WindowCase(Case):
    """With a window manager."""

    def setUp(self):
        super().setUp()
        self.manage()

    def manage(self, *words):
        """Starts a window manager."""
        # The first key makes the server announce another keyboard; a manager that takes that in
        # misses what is pressed meanwhile.
        self.x("xdotool", "key", "Shift_L")
        for attempt in range(5):
            manager = subprocess.Popen(["openbox", *words], stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
            self.addCleanup(manager.communicate)
            self.addCleanup(manager.terminate)
            # It gives up at once where the one before it has not let go of the screen yet.
            until(lambda: manager.poll() is not None or
                  f"= {manager.pid}\n" in self.x("xprop", "-root", "_OPENBOX_PID"),
                  "the window manager")
            if manager.poll() is None:
                return self.untilItManages()
        return self.fail("no window manager stays")

    def untilItManages(self):
        """A window that comes before it is ready may never be shown."""
        def desktops():
            return self.x("xdotool", "get_num_desktops").strip()
        wanted = "2" if desktops() == "3" else "3"
        until(lambda: self.x("xdotool", "set_num_desktops", wanted) or desktops() == wanted,
              "the window manager's answer")

    @staticmethod
    def x(*words):
        return subprocess.run(words, capture_output=True, text=True, check=False,
                              timeout=60).stdout

    def window(self):
        """The number of the window that is shown, if any."""
        return self.x("xdotool", "search", "--onlyvisible", "--name", "Quorel$").split()[:1]

    def active(self):
        window = until(self.window, "the window")[0]
        until(lambda: self.x("xdotool", "getactivewindow").strip() == window, "the focus")
        return window

    def key(self, name):
        self.active()
        self.x("xdotool", "key", name)
