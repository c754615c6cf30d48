"""A desktop of a test's own: screen, session bus, folders, and the program on it."""
import itertools
import json
import os
import signal
import subprocess
import sys
import tempfile
import time

LONGEST = 20  # seconds; sanitizers slow the program down


def until(condition, what, longest=LONGEST):
    """What the condition gives once it is true."""
    end = time.monotonic() + longest
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError("waited in vain for " + what)
        time.sleep(0.02)


def inside():
    """Runs this script again on a screen and a session bus of its own; returns inside of them."""
    if os.environ.get("QUOREL_TEST_DESKTOP"):
        return
    with tempfile.TemporaryDirectory(prefix="quorel-app-") as home:
        runtime = os.path.join(home, "runtime")
        os.mkdir(runtime, 0o700)
        kept = {name: value for name, value in os.environ.items()
                if name in ("PATH", "LANG", "LC_ALL") or name.endswith("SAN_OPTIONS")}
        # libxkbcommon copies names out of X replies that end without a zero byte.
        kept["ASAN_OPTIONS"] = kept.get("ASAN_OPTIONS", "") + ":strict_string_checks=0"
        out, into = os.pipe()
        # Fontconfig, D-Bus and the accessibility bus keep their files in these folders.
        screen = subprocess.Popen(["Xvfb", "-displayfd", str(into), "-screen", "0", "1280x900x24",
                                   "-nolisten", "tcp", "-noreset"], pass_fds=[into],
                                  stderr=subprocess.DEVNULL)
        os.close(into)
        try:
            with os.fdopen(out) as numbers:
                display = ":" + numbers.readline().strip()
            environment = {**kept, "HOME": home, "XDG_RUNTIME_DIR": runtime, "DISPLAY": display,
                           "QUOREL_TEST_DESKTOP": home, "QT_QPA_PLATFORM": "xcb",
                           "PULSE_SERVER": "unix:/nonexistent/native",
                           "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
            result = subprocess.run(["dbus-run-session", "--", sys.executable, "-B", *sys.argv],
                                    env=environment, check=False)
        finally:
            screen.terminate()
            screen.wait()
    sys.exit(result.returncode)


class Program:
    """The program with a data folder of its own."""

    def __init__(self, path, folder):
        self.path = path
        self.folder = folder
        self.state = os.path.join(folder, "Quorel", "quorel-data.json")
        self.started = []

    def start(self, *words, **changes):
        """Starts it. Changes are to the environment; None takes a variable away."""
        environment = {**os.environ, "XDG_DATA_HOME": self.folder, **changes}
        environment = {name: value for name, value in environment.items() if value is not None}
        process = subprocess.Popen([self.path, *words], env=environment, cwd=self.folder,
                                   text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.started.append(process)
        return process

    def run(self, *words, **changes):
        """(exit status, standard output, standard error)"""
        process = self.start(*words, **changes)
        output, errors = process.communicate(timeout=LONGEST)
        return process.returncode, output, errors

    def settings(self, playlists=(("List", ()),), **values):
        """Writes a state file with these settings and playlists: names, and paths."""
        ids = (f"00000000-0000-4000-8000-{number:012}" for number in itertools.count(1))
        lists = [{"id": next(ids), "name": name,
                  "tracks": [{"id": next(ids), "path": path, "artist": "",
                              "title": os.path.splitext(os.path.basename(path))[0]}
                             for path in paths]} for name, paths in playlists]
        os.makedirs(os.path.dirname(self.state), exist_ok=True)
        with open(self.state, "w", encoding="utf-8") as file:
            json.dump({"playlists": lists, "settings": values}, file)

    def saved(self):
        with open(self.state, encoding="utf-8") as file:
            return json.load(file)

    def end(self):
        for process in self.started:
            if process.poll() is None:
                process.send_signal(signal.SIGKILL)
            process.communicate()
