"""The folder that fills with files, and the lines of its manifest."""
import os
import shutil
import subprocess

import numpy as np

from .wrappers import wav

FFMPEG = ["ffmpeg", "-v", "error", "-nostdin", "-y", "-bitexact"]


class Matrix:
    def __init__(self, folder, frames):
        self.folder, self.frames, self.lines, self.absent = folder, frames, [], set()
        self.shapes = {}
        os.makedirs(self.path("sources"))

    def path(self, name):
        return os.path.join(self.folder, name)

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def source(self, name, frames, channels, rate, bits):
        """sources/NAME.f32 and NAME.wav: the same samples, as floats and in that many bits."""
        steps = 2 ** (bits - 1)
        samples = np.rint(sound(frames, channels, rate) * (steps - 1)).astype("<i4")
        write(self.path(f"sources/{name}.f32"), (samples / steps).astype("<f4").tobytes())
        if bits == 8:
            data = (samples + 128).astype("u1").tobytes()
        else:
            data = samples.reshape(-1, 1).view("u1")[:, :bits // 8].tobytes()
        write(self.path(f"sources/{name}.wav"), wav(data, channels, rate, bits))
        self.shapes[name] = (frames, channels, rate)

    def add(self, name, frames, check, source="-", lag=0, recipe="", rate=None):
        _, channels, sourceRate = self.shapes.get(source, (0, 0, 0))
        self.lines.append([name, frames, check, lag, channels, rate or sourceRate, source,
                           recipe.replace("\t", " ")])

    def run(self, command, **options):
        if shutil.which(command[0]) is None:
            self.absent.add(command[0])
            return False
        subprocess.run(command, check=True, **options)
        return True

    def encode(self, name, source, check, options, frames=None, **rest):
        """NAME made by ffmpeg; `frames` may be a function of the file's bytes."""
        command = FFMPEG + ["-i", self.path(f"sources/{source}.wav"), *options.split(),
                            self.path(name)]
        self.made(name, source, check, command, "ffmpeg " + options, frames, **rest)

    def made(self, name, source, check, command, recipe, frames=None, **rest):
        if self.run(command):
            if callable(frames):
                frames = frames(self.read(name))
            self.add(name, self.shapes[source][0] if frames is None else frames, check, source,
                     recipe=recipe, **rest)

    def derive(self, name, original, change, recipe, frames=None, check=None, lag=None):
        """NAME as the bytes of another file, changed. Expects what is expected of that one."""
        for line in self.lines:
            if line[0] == original:
                write(self.path(name), change(self.read(original)))
                self.lines.append([name, line[1] if frames is None else frames, check or line[2],
                                   line[3] if lag is None else lag, *line[4:7],
                                   f"{original}, {recipe}"])
                return

    def refuse(self, name, data, recipe):
        write(self.path(name), data)
        self.add(name, "refused", "refused", recipe=recipe)

    def finish(self):
        for name in self.shapes:
            os.remove(self.path(f"sources/{name}.wav"))
        text = "".join("\t".join(map(str, line)) + "\n" for line in self.lines)
        write(self.path("manifest.tsv"), text.encode())
        if self.absent:
            print("make-audio-matrix: not installed:", *sorted(self.absent))


def write(path, data):
    with open(path, "wb") as file:
        file.write(data)


def sound(frames, channels, rate):
    """Soft noise, a rising tone and three clicks, different in each channel, within -1..1."""
    time = np.arange(frames) / rate
    columns = []
    for channel in range(channels):
        spectrum = np.fft.rfft(np.random.RandomState(channel + 1).randn(frames))
        hertz = np.fft.rfftfreq(frames, 1 / rate)
        noise = np.fft.irfft(spectrum * (hertz < 0.3 * rate) / np.maximum(1, hertz / 300), frames)
        tone = np.sin(2 * np.pi * (100 * (channel + 1) + 0.05 * rate * time / time[-1]) * time)
        column = 0.4 * noise / np.max(np.abs(noise)) + 0.2 * tone
        for click in (1, 2, 3):
            column[(frames * click // 4 + 97 * channel) % frames] += 0.3
        columns.append(column)
    return np.stack(columns, axis=1)
