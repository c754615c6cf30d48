"""A desktop of the benchmark's own: X server, session bus, sound server, home."""
import os
import shutil
import subprocess
import tempfile
import time


class Surroundings:
    """Everything ends, and the folder goes, when the `with` block does."""

    def __enter__(self):
        self.folder = tempfile.mkdtemp(prefix="bench-window-")
        self.processes = []
        self.env = {name: value for name, value in os.environ.items()
                    if not name.startswith(("XDG_", "PULSE_", "DBUS_", "QT_", "QUOREL_"))
                    and name not in ("WAYLAND_DISPLAY", "DISPLAY")}
        self.env.update(HOME=self.path("home"), XDG_RUNTIME_DIR=self.path("runtime"),
                        XDG_DATA_HOME=self.path("data"))
        for name in ("home", "runtime", "data"):
            os.mkdir(self.path(name), 0o700)
        try:
            display = self.startTelling(["Xvfb", "-displayfd", "{}", "-screen", "0", "1280x900x24",
                                         "-nolisten", "tcp"])
            self.env["DISPLAY"] = ":" + display
            self.env["DBUS_SESSION_BUS_ADDRESS"] = self.startTelling(
                ["dbus-daemon", "--session", "--nofork", "--print-address={}"])
            self.startSound()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            self.end(process)
        shutil.rmtree(self.path(""), ignore_errors=True)

    def path(self, name):
        return os.path.join(self.folder, name)

    def start(self, command, **options):
        with open(self.path("log"), "ab") as log:
            process = subprocess.Popen(command, env=self.env, stdin=subprocess.DEVNULL,
                                       stderr=log, **({"stdout": log} | options))
        self.processes.append(process)
        return process

    def startTelling(self, command):
        """Starts a server and returns the line that it writes into the descriptor {}."""
        reader, writer = os.pipe()
        self.start([word.format(writer) for word in command], pass_fds=[writer])
        os.close(writer)
        with os.fdopen(reader) as answer:
            line = answer.readline().strip()
        if not line:
            raise RuntimeError(f"{command[0]} did not start")
        return line

    def end(self, process):
        """Kills it: what a program does at its end is not looked at."""
        process.kill()
        process.wait()
        if process in self.processes:
            self.processes.remove(process)

    def startSound(self):
        """A null sink at 48 kHz, as a desktop's sound server runs one."""
        self.env["PULSE_SERVER"] = "unix:" + self.path("native")
        self.start(["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1",
                    "--use-pid-file=no", "--realtime=no", "--high-priority=no",
                    "--disable-shm=yes", "--log-level=error",
                    "-L", "module-native-protocol-unix auth-anonymous=1 socket="
                    + self.path("native"),
                    "-L", "module-null-sink sink_name=sink format=float32le rate=48000 channels=2"
                    " norewinds=1"])
        end = time.monotonic() + 10
        while not self.answers(["pactl", "info"]):
            if time.monotonic() > end:
                raise RuntimeError("pulseaudio did not start")
            time.sleep(0.05)

    def answers(self, command):
        """What the command prints where it succeeds."""
        done = subprocess.run(command, env=self.env, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, check=False)
        return done.returncode == 0 and done.stdout

    def makeFlac(self, name, seconds):
        """Pink noise of 44.1 kHz in stereo."""
        path = self.path(name)
        subprocess.run(["sox", "-R", "-n", "-r", "44100", "-b", "16", "-c", "2", path, "synth",
                        str(seconds), "pinknoise", "vol", "0.3"], check=True)
        return path
