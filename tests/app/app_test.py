"""The program as a person and the desktop meet it: app_test.py PROGRAM [CASE...]"""
import os
import sys
import unittest

from cases import Atspi, Case, WindowCase
from desktop import inside, until


class CommandLine(Case):
    def testAnswers(self):
        for words, status, said in [
                (["--help"], 0, "Usage: quorel [--output"),
                (["-h", "--nonsense"], 0, "Usage: quorel [--output"),
                (["--version"], 0, "quorel 0."),
                (["--nonsense"], 2, "quorel: there is no option --nonsense."),
                (["-x", "a.mp3"], 2, "quorel: there is no option -x."),
                (["a.mp3", "--output"], 2, "quorel: --output needs null, default or a device."),
        ]:
            with self.subTest(words):
                result, output, errors = self.program.run(*words)
                self.assertEqual(result, status)
                self.assertTrue((output if status == 0 else errors).startswith(said), output)
                self.assertEqual(errors if status == 0 else output, "")
        self.assertFalse(os.path.exists(self.program.state))

    def testNoDisplay(self):
        for changes in [{"DISPLAY": None}, {"DISPLAY": ":987"},
                        {"DISPLAY": None, "QT_QPA_PLATFORM": None}]:
            with self.subTest(changes):
                status, output, errors = self.program.run(**changes)
                self.assertEqual((status, output), (1, ""))
                self.assertEqual(errors, "quorel: There is no display. "
                                 "\"quorel-cli play\" plays without one.\n")

    def testFilesBeginWithADash(self):
        self.music("-x.wav")
        process = self.launch("--", "-x.wav")
        until(lambda: self.get("Metadata").get("xesam:title"), "the track")
        self.quit(process)
        self.assertEqual([os.path.basename(path) for path in self.tracks()], ["-x.wav"])


class Launches(Case):
    def testTenAtOnce(self):
        files = [self.music(f"{i}.wav") for i in range(10)]
        processes = [self.program.start("--output", "null", file) for file in files]
        until(lambda: sum(process.poll() is None for process in processes) == 1,
              "nine to hand over")
        first = next(process for process in processes if process.poll() is None)
        for process in processes:
            if process is not first:
                self.ended(process)
        until(self.isOnBus, "the one")
        until(lambda: sorted(self.savedTracks()) == sorted(files), "all files")
        self.quit(first)
        self.assertEqual(sorted(self.tracks()), sorted(files))

    def savedTracks(self):
        return self.tracks() if os.path.exists(self.program.state) else []


class Window(WindowCase):
    def testClosing(self):
        for quits in [True, False]:
            with self.subTest(quitOnClose=quits):
                self.program.settings(quitOnClose=quits)
                process = self.launch()
                self.key("alt+F4")
                if quits:
                    self.ended(process)
                    continue
                until(lambda: not self.window(), "the window to close")
                self.assertIsNone(process.poll())
                # Another launch shows it again.
                self.assertEqual(self.program.run()[0], 0)
                self.active()
                self.key("ctrl+q")
                self.ended(process)

    def testKeysAndWhatIsSaved(self):
        process = self.launch(self.music("a.wav"))
        until(lambda: self.get("PlaybackStatus") == "Playing", "the track to play")
        self.key("space")
        until(lambda: self.get("PlaybackStatus") == "Paused", "the pause")
        volume = self.get("Volume")
        self.key("Up")
        until(lambda: self.get("Volume") > volume, "a higher volume")
        self.key("ctrl+shift+p")
        until(lambda: "program specified maximum size" in
              self.x("xprop", "-id", self.active(), "WM_NORMAL_HINTS"), "a lower window")
        self.key("ctrl+q")
        self.ended(process)
        settings = self.program.saved()["settings"]
        self.assertAlmostEqual(settings["volume"], volume + 0.05)
        self.assertFalse(settings["showPlaylist"])
        # It begins as it ended.
        process = self.launch()
        self.assertAlmostEqual(self.get("Volume"), volume + 0.05)
        self.quit(process)

    def testBeginsMinimised(self):
        rules = os.path.join(self.program.folder, "rules.xml")
        with open(rules, "w", encoding="utf-8") as file:
            file.write("<openbox_config xmlns=\"http://openbox.org/3.4/rc\"><applications>"
                       "<application class=\"*\"><iconic>yes</iconic></application>"
                       "</applications></openbox_config>")
        self.manage("--replace", "--config-file", rules)
        process = self.launch()
        self.assertEqual(self.window(), [])
        self.assertEqual(self.program.run(self.music("a.wav"))[0], 0)
        until(self.window, "the window")
        until(lambda: self.get("PlaybackStatus") == "Playing", "the track to play")
        self.quit(process)

    def testStaysAboveAndFullScreen(self):
        self.program.settings(alwaysOnTop=True)
        process = self.launch()

        def state():
            return self.x("xprop", "-id", self.active(), "_NET_WM_STATE")
        until(lambda: "_NET_WM_STATE_ABOVE" in state(), "a window above")
        self.key("F11")
        until(lambda: "_NET_WM_STATE_FULLSCREEN" in state(), "full screen")
        self.key("F11")
        until(lambda: "_NET_WM_STATE_FULLSCREEN" not in state(), "its end")
        self.assertIn("_NET_WM_STATE_ABOVE", state())
        self.key("alt+F4")
        until(lambda: not self.window(), "the window to close")
        self.program.run()
        until(lambda: "_NET_WM_STATE_ABOVE" in state(), "a window above again")
        self.quit(process)


class Access(Case):
    """The tree that assistive technologies see."""
    CONTROLS = {Atspi.Role.PUSH_BUTTON, Atspi.Role.SLIDER, Atspi.Role.CHECK_BOX,
                Atspi.Role.COMBO_BOX, Atspi.Role.LIST, Atspi.Role.MENU, Atspi.Role.MENU_ITEM,
                Atspi.Role.TEXT, Atspi.Role.RADIO_BUTTON, Atspi.Role.TOGGLE_BUTTON}

    def states(self, node):
        return node.get_state_set().contains

    def check(self, nodes):
        for node in nodes:
            has = self.states(node)
            what = f"{node.get_role_name()} \"{node.get_name()}\" of {node.get_parent()}"
            separates = node.get_role() == Atspi.Role.SEPARATOR
            if node.get_role() in self.CONTROLS or has(Atspi.StateType.FOCUSABLE):
                self.assertTrue(separates or node.get_name(), "nameless " + what)
                self.assertNotIn(node.get_role(), (Atspi.Role.INVALID, Atspi.Role.UNKNOWN,
                                                   Atspi.Role.FILLER), what)
            if node.get_role() == Atspi.Role.SLIDER:
                self.assertIn("Value", node.get_interfaces(), what)
                self.assertLessEqual(node.get_minimum_value(), node.get_current_value(), what)
                self.assertLess(node.get_minimum_value(), node.get_maximum_value(), what)

    def testTree(self):
        process = self.launch(self.music("a.wav"), self.music("b.wav"))
        until(self.application, "the program on the accessibility bus")
        until(lambda: self.get("PlaybackStatus") == "Playing", "the track to play")
        nodes = list(self.nodes(self.application()))
        self.check(nodes)
        roles = [node.get_role() for node in nodes]
        self.assertEqual(roles.count(Atspi.Role.SLIDER), 3)
        self.assertGreaterEqual(roles.count(Atspi.Role.PUSH_BUTTON), 12)
        self.assertTrue({Atspi.Role.LIST_ITEM, Atspi.Role.TABLE_CELL} & set(roles), "no tracks")

        # Everything works through it.
        self.find("Pause").do_action(0)
        until(lambda: self.get("PlaybackStatus") == "Paused", "the pause")
        self.find("Volume", Atspi.Role.SLIDER).set_current_value(0.25)
        until(lambda: abs(self.get("Volume") - 0.25) < 1e-6, "the volume")
        self.quit(process)


if __name__ == "__main__":
    inside()
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
