"""Drags between the program and another one, and a person at it: dragging_test.py PROGRAM DRAGGER"""
import os
import queue
import subprocess
import sys
import threading
import time
import unittest

from cases import Atspi, GLib, WindowCase
from desktop import inside, until

OUTSIDE = (1100, 200)  # on the dragger's window


class Dragger:
    """The other program; dragger.cpp says what it understands and tells."""

    def __init__(self, path):
        self.process = subprocess.Popen([path], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        text=True)
        self.told = queue.Queue()
        self.events = []
        threading.Thread(target=lambda: [self.told.put(line.strip())
                                         for line in self.process.stdout], daemon=True).start()

    def ask(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()
        while True:
            answer = self.told.get(timeout=60)
            if answer == "ok" or answer.startswith("#"):
                return answer
            self.events.append(answer)

    def isGreen(self, at):
        colour = self.ask(f"colour {at[0]} {at[1]}")
        red, green, blue = (int(colour[i:i + 2], 16) for i in (1, 3, 5))
        return green > max(red, blue) + 5

    def hasTold(self, event, times=1):
        self.ask("colour 0 0")  # what was told before the answer is read
        return self.events.count(event) >= times

    def end(self):
        self.process.kill()
        self.process.communicate()


class Dragging(WindowCase):
    def open(self, *playlists):
        """Both programs; this one at the left, with playlists of tracks of one letter."""
        self.program.settings([(name, [self.music(letter + ".wav") for letter in letters])
                               for name, letters in playlists])
        process = self.launch()
        until(self.application, "the program on the accessibility bus")
        self.x("xdotool", "windowmove", self.active(), "20", "40")
        self.list = self.find("Tracks", Atspi.Role.LIST)
        self.strip = self.find("One", Atspi.Role.PAGE_TAB_LIST)
        until(lambda: self.area(self.list)[0] < 100, "the window at its place")
        self.addCleanup(self.x, "xdotool", "mouseup", "1", "keyup", "ctrl")
        self.dragger = Dragger(os.path.abspath(sys.argv[2]))
        self.addCleanup(self.dragger.end)
        until(lambda: self.x("xdotool", "search", "--onlyvisible", "--name", "^dragger$"),
              "the dragger")
        return process

    @staticmethod
    def area(node):
        place = node.get_extents(Atspi.CoordType.SCREEN)
        return place.x, place.y, place.width, place.height

    @staticmethod
    def children(node):
        children = [node.get_child_at_index(i) for i in range(node.get_child_count())]
        return [child for child in children if child]

    def tabArea(self, name):
        tab = until(lambda: next((tab for tab in self.children(self.strip)
                                  if tab.get_name() == name), None), "the tab " + name)
        return self.area(tab)

    def row(self, index, part=0.5):
        """A place on a row, to the right of its text; part 0 is the gap above it."""
        x, y, width, height = self.area(self.list.get_child_at_index(index))
        return x + width // 2, y + int(height * part)

    def tab(self, name):
        """A place on a tab, above its text."""
        x, y, *_ = self.tabArea(name)
        return x + 28, y + 8

    def freeEnd(self, last):
        x, y, width, _ = self.tabArea(last)
        return x + width + 60, y + 8

    def lists(self):
        """What is saved: the names of the playlists, and the letters of their tracks."""
        return [(playlist["name"], "".join(os.path.basename(track["path"])[:-4]
                                           for track in playlist["tracks"]))
                for playlist in self.program.saved()["playlists"]]

    def shows(self, letters):
        """Waits until the list shows these tracks."""
        def isShown():
            try:
                names = [row.get_name() for row in self.children(self.list)]
            except GLib.Error:  # a row has just gone
                return False
            return "".join(name[name.find(".") + 2:][:1] for name in names) == letters
        until(isShown, "the tracks " + letters)

    def move(self, at):
        self.x("xdotool", "mousemove", *map(str, at))

    def click(self, at, times=1):
        self.move(at)
        self.x("xdotool", "click", "--repeat", str(times), "--delay", "50", "1")

    def dragTo(self, start, end, isThere, what="the target"):
        """Drags, and waits at the end; the button stays pressed."""
        self.dragger.events.clear()
        self.move(start)
        self.x("xdotool", "mousedown", "1")
        for part in (0.3, 0.6, 0.9):
            self.move([int(a + (b - a) * part) for a, b in zip(start, end)])
        self.carry(end, isThere, what)

    def carry(self, end, isThere, what="the target"):
        def moves():
            self.move((end[0] + 1, end[1]))
            self.move(end)
            return isThere()
        until(moves, what + " to be seen")

    def drag(self, start, end, isThere, shown, what="the target"):
        self.dragTo(start, end, isThere, what)
        self.drop(start, shown)

    def drop(self, start, shown):
        self.x("xdotool", "mouseup", "1")
        if start == OUTSIDE:
            for event in ("ended", "finished"):
                until(lambda: self.dragger.hasTold(event), event)
        self.shows(shown)

    def testDropTargets(self):
        process = self.open(("One", "ABCD"), ("Two", "E"))
        self.dragger.ask("files file://" + self.music("x.wav"))

        def green(at):
            """What is dragged hides what is right of and below the pointer."""
            return lambda: self.dragger.isGreen((at[0] - 20, at[1]))

        def tells(event, times=1):
            return lambda: self.dragger.hasTold(event, times)

        gap, tab, end = self.row(1, 0), self.tab("Two"), self.freeEnd("Two")
        # Anywhere else in the window, of which nothing is marked, is at the end.
        self.dragTo(OUTSIDE, gap, green(gap))
        self.carry((100, 130), lambda: not green(gap)())
        self.drop(OUTSIDE, "ABCDx")
        for what, start, target, see, shown in [
                ("a gap", OUTSIDE, gap, green(gap), "AxBCDx"),
                ("a tab", OUTSIDE, tab, green(tab), "AxBCDx"),
                ("a row to a gap", self.row(3), gap, green(gap), "ACxBDx"),
                ("a row to a tab", self.row(2), tab, green(tab), "ACxBDx"),
                ("a row to the other program", self.row(3), OUTSIDE, tells("moved", 2), "ACxBDx"),
                ("the free end", OUTSIDE, end, green(end), "x"),
        ]:
            self.drag(start, target, see, shown, what)
            if target == OUTSIDE:
                address = "dropped file://" + os.path.join(self.program.folder, "B.wav")
                until(lambda: self.dragger.hasTold(address), address)

        # Where a search hides what is between them, and several rows as one block.
        self.click(self.tab("One"))
        self.shows("ACxBDx")
        self.key("ctrl+f")
        self.x("xdotool", "type", "x")
        self.shows("xx")
        gap = self.row(0, 0)
        self.drag(self.row(1), gap, green(gap), "xx")
        self.key("ctrl+f")
        self.key("Escape")
        self.shows("ACxxBD")
        self.click(self.row(0))
        self.x("xdotool", "keydown", "ctrl")
        self.click(self.row(2))
        self.x("xdotool", "keyup", "ctrl")
        gap = self.row(5, 0)
        self.drag(self.row(0), gap, green(gap), "CxBAxD")
        # A drag that is given up, and tabs.
        gap = self.row(0, 0)
        self.dragTo(self.row(1), gap, green(gap))
        self.x("xdotool", "key", "Escape")
        until(lambda: not green(gap)(), "the end of the drag")
        self.x("xdotool", "mouseup", "1")
        x, y, *_ = self.tabArea("Two")
        self.drag(self.tab("Playlist 3"), self.tab("Two"),
                  lambda: self.dragger.isGreen((x + 2, y + 8)), "x")
        until(lambda: self.tab("Playlist 3") < self.tab("Two"), "the other order")
        self.quit(process)
        self.assertEqual(self.lists(), [("One", "CxBAxD"), ("Playlist 3", "x"), ("Two", "Exx")])

    def testManyFilesKeepTheWindowAlive(self):
        process = self.open(("One", "AB"))
        first = self.music("0.wav")
        folder = os.path.join(self.program.folder, "many")
        os.mkdir(folder)
        paths = [os.path.join(folder, f"{number}.wav") for number in range(50_000)]
        for path in paths:
            os.link(first, path)
        self.dragger.ask("files " + " ".join("file://" + path for path in paths))
        self.dragTo(OUTSIDE, self.row(1, 0),
                    lambda: self.dragger.isGreen((self.row(1)[0] - 20, self.row(1, 0)[1])))
        self.x("xdotool", "mouseup", "1")
        longest = 0
        while self.list.get_child_count() < 50_002:
            asked = time.monotonic()
            self.get("Volume")
            longest = max(longest, time.monotonic() - asked)
        self.assertLess(longest, 1)
        self.quit(process)
        self.assertEqual(len(self.tracks()), 50_002)

    def testByHand(self):
        process = self.open(("One", "ABCDE"), ("Two", "FGHF"))
        self.click(self.tab("Two"), 2)
        self.find("Name of the playlist")
        self.x("xdotool", "type", "Late")
        self.key("Return")
        self.tabArea("Late")
        # Search, select all, remove, undo. What the search led to moves by the arrows.
        volume = self.get("Volume")
        self.key("ctrl+f")
        self.x("xdotool", "type", "f")
        until(lambda: self.list.get_child_count() == 2, "two found")
        for key, selected in [("Return", 0), ("Down", 1)]:
            self.key(key)
            until(lambda at=selected: "selected" in self.list.get_child_at_index(at).get_name(), key)
        self.assertEqual(self.get("Volume"), volume)
        for key, shown in [("ctrl+a", "FF"), ("Delete", ""), ("ctrl+f", ""), ("Escape", "GH"),
                           ("ctrl+z", "FGHF")]:
            self.key(key)
            self.shows(shown)
        self.quit(process)
        self.assertEqual(self.lists()[1], ("Late", "FGHF"))


if __name__ == "__main__":
    inside()
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
