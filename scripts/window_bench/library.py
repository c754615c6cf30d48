"""What large libraries cost in the window: adding their files, starting with them, searching."""
import glob
import os
import shutil
import signal
import statistics
import time

from window_bench.account import processorTime, resident, waitedForProcessor
from window_bench.hands import Hands
from window_bench.music import makeAlbums

ASK_EVERY = 0.004  # seconds between an answer and the next question
LOOK_EVERY = 0.02  # at the processor time
REST = 1.5  # a program that was idle for that long has done what there was to do
IDLE = 0.3  # of a core: answering all those questions is not counted as work
LIST_SHARE = 0.2  # of the window, at least, is painted where the rows of its list change
PATIENCE = 60
# Where programs keep their tracks below their home, and what stands there once for each.
STATES = {"quorel": ("data/Quorel/quorel-data.json", b'"path":'),
          "audacious": (".config/audacious/playlists/*.audpl", b"uri=")}


class Adding:
    """What adding a folder took, in seconds from letting it go above the window."""

    def __init__(self):
        self.rows = None  # until the list was painted anew
        self.done = None  # until nothing was left to do: tags are read
        self.answers = []  # to questions like a window manager's, less waiting for the processor


class Library:
    def __init__(self, bench):
        self.bench = bench
        self.here = bench.here
        self.watch = bench.watch
        self.hands = Hands(bench.watch)
        # qmmp takes minutes to add that many files.
        self.peers = [peer for peer in bench.peers if peer != "qmmp"]
        self.small, self.large = self.here.path("10,000"), self.here.path("50,000")

    def run(self):
        print("\nMaking 60,000 files")
        makeAlbums(self.small, 10_000)
        makeAlbums(self.large, 50_000)
        home = dict(self.here.env)
        self.addings()
        self.starts()
        self.searches()
        self.here.env.update(home)

    def useProfile(self, name, isNew=False):
        """The home of the programs that are started next."""
        home = self.here.path(name)
        if isNew:
            shutil.rmtree(home, ignore_errors=True)
        os.makedirs(os.path.join(home, "data"), exist_ok=True)
        self.here.env.update(HOME=home, XDG_DATA_HOME=os.path.join(home, "data"))

    # --- Adding ------------------------------------------------------------------------------------

    def addings(self):
        rounds = max(3, self.bench.options.rounds // 2)
        print(f"\nFolders dropped onto the window, {rounds} times each; ms: least, median, most")
        programs = [("quorel", self.bench.quorel)]
        programs += [(peer, peer) for peer in self.peers]
        for folder in (self.small, self.large):
            taken = {name: [] for name, _ in programs}
            for _ in range(rounds):
                for name, command in programs:
                    self.useProfile(name, isNew=True)
                    process, _, window = self.bench.open([command])
                    taken[name].append(self.add(process, window, folder))
                    self.quit(name, process)
            for name, addings in taken.items():
                printAddings(f"{name}, {os.path.basename(folder)} files", addings)
        # The last round has left 50,000 tracks in each profile.
        shutil.copytree(self.here.path("quorel"), self.here.path("quorel twice"))
        self.useProfile("quorel twice")
        process, _, window = self.bench.open([self.bench.quorel])
        again = self.add(process, window, self.large)
        printAddings("quorel, to 50,000 tracks 50,000", [again])
        self.quit("quorel", process)

    def tracksOf(self, name):
        """How many tracks there are in what the program has saved."""
        place, mark = STATES[name.split()[0]]
        count = 0
        for state in glob.glob(os.path.join(glob.escape(self.here.path(name)), place)):
            with open(state, "rb") as file:
                count += file.read().count(mark)
        return count

    def quit(self, name, process):
        """As a user does, so that everything is saved."""
        if name == "audacious":
            self.bench.call("audacious", "org.mpris.MediaPlayer2.Quit")
        else:
            process.send_signal(signal.SIGTERM)
        process.wait(30)
        self.here.end(process)

    def add(self, process, window, folder):
        """Drops the folder near the window's upper edge, and looks what becomes of it."""
        self.waitForRest(process)
        x, y, width, height = self.watch.geometry(window)
        spot = (x + width // 2, y + height // 5)
        self.hands.dragOver(window, folder, *spot)
        for _ in self.watch.events(time.monotonic() + 0.5):
            pass
        self.hands.drop(window)
        adding = Adding()
        self.follow(process, window, adding, time.monotonic())
        return adding

    @staticmethod
    def waitForRest(process):
        busy = -1
        while processorTime(process.pid) - busy > IDLE * REST:
            busy = processorTime(process.pid)
            time.sleep(REST)

    def follow(self, process, window, adding, begin):
        """Watches the window, and asks whether it answers, until the program rests."""
        asked = None  # (time, how long the program had waited for a processor by then)
        nextQuestion = nextLook = begin
        busy, busyAt = processorTime(process.pid), begin
        adding.done = 0
        while True:
            now = time.monotonic()
            if now >= nextQuestion and not asked:
                number = self.hands.ask(window)
                asked = (now, waitedForProcessor(process.pid))
            if now >= nextLook:
                ran = processorTime(process.pid)
                if ran - busy > IDLE * (now - busyAt):
                    adding.done = now - begin
                busy, busyAt, nextLook = ran, now, now + LOOK_EVERY
                isAtRest = adding.rows is not None and now - begin - adding.done > REST
                if isAtRest or now - begin > PATIENCE:
                    return
            until = nextLook if asked else min(nextLook, nextQuestion)
            for now, kind, event in self.watch.events(until):
                self.hands.handOver(kind, event)
                if adding.rows is None and self.watch.sharePainted(kind, event) > LIST_SHARE:
                    adding.rows = now - begin
                if asked and self.hands.answered(kind, event) == number:
                    waited = waitedForProcessor(process.pid) - asked[1]
                    adding.answers.append((now - asked[0], now - asked[0] - waited))
                    asked, nextQuestion = None, now + ASK_EVERY
                    break

    # --- Starting ----------------------------------------------------------------------------------

    def starts(self):
        rounds = self.bench.options.rounds
        print(f"\nFrom the start to the first painted frame, {rounds} times in turn")
        programs = [("quorel", self.bench.quorel), ("quorel twice", self.bench.quorel)]
        programs += [(peer, peer) for peer in self.peers]
        tracks = {name: self.tracksOf(name) for name, _ in programs}
        starts = {name: [] for name, _ in programs}
        memory = {}
        for turn in range(rounds + 1):
            for name, command in programs:
                self.useProfile(name)
                process, start, _ = self.bench.open([command])
                if turn > 0:
                    starts[name].append(start)
                else:  # the first time fills the caches
                    time.sleep(2)
                    memory[name] = resident(process.pid)
                self.here.end(process)
        for name, taken in starts.items():
            times = [1000 * start.seconds for start in taken]
            busy = 1000 * statistics.median(start.processor for start in taken)
            print(f"{name.split()[0]:10} {tracks[name]:8,} tracks {min(times):6.0f}"
                  f" {statistics.median(times):6.0f} {max(times):6.0f} ms, processor {busy:6.0f} ms,"
                  f" then {memory[name]:.0f} MiB")

    # --- Searching ---------------------------------------------------------------------------------

    def searches(self):
        print("\nFrom a key in the search field to the list painted anew; ms: least, median, most")
        for name, tracks in (("quorel", "50,000"), ("quorel twice", "100,000")):
            self.useProfile(name)
            process, _, window = self.bench.open([self.bench.quorel])
            self.waitForRest(process)
            self.hands.focus(window)
            time.sleep(0.3)
            self.hands.press("Control_L", "f")
            time.sleep(1)
            first, later = [], []
            for _ in range(self.bench.options.rounds):
                for i, key in enumerate("movement"):
                    (later if i else first).append(self.untilPainted(window, key))
                    time.sleep(0.1)
                for _ in "movement":
                    later.append(self.untilPainted(window, "BackSpace"))
                    time.sleep(0.1)
            self.here.end(process)
            printTimes(f"{tracks} tracks, the first letter", first)
            printTimes(f"{tracks} tracks, those after it", later)

    def untilPainted(self, window, key):
        self.watch.forget()
        begin = time.monotonic()
        self.hands.press(key)
        for now, kind, event in self.watch.events(begin + 5):
            if self.watch.sharePainted(kind, event) > LIST_SHARE:
                return now - begin
        return float("nan")


def printTimes(what, seconds):
    times = [1000 * second for second in seconds]
    print(f"{what:36} {min(times):7.1f} {statistics.median(times):7.1f} {max(times):7.1f}")


def printAddings(what, addings):
    printTimes(what + ": rows shown", [adding.rows or float("nan") for adding in addings])
    printTimes(what + ": tags read", [adding.done for adding in addings])
    whole = [max(answer[0] for answer in adding.answers) for adding in addings]
    own = [max(answer[1] for answer in adding.answers) for adding in addings]
    printTimes(what + ": longest to an answer", whole)
    printTimes("    less its wait for a processor", own)
