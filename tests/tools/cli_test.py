"""quorel-cli as a user meets it: cli_test.py PROGRAM [CASE...]"""
import fcntl
import json
import os
import pty
import re
import select
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest

import numpy as np

# What a test needs of the outside world, and nothing more: no sound server is to be found.
ENVIRONMENT = {**os.environ, "PULSE_SERVER": "unix:/nonexistent/native"}


def writeWav(path, samples, rate):
    """Stereo frames as 32-bit floats."""
    data = samples.astype("<f4").tobytes()
    fmt = struct.pack("<HHIIHH", 3, 2, rate, rate * 8, 8, 32)
    with open(path, "wb") as file:
        file.write(b"RIFF" + struct.pack("<I", 36 + len(data)) + b"WAVE" + b"fmt "
                   + struct.pack("<I", 16) + fmt + b"data" + struct.pack("<I", len(data)) + data)


def readWav(path):
    """(format chunk, frame count of the fact chunk, samples); sizes have to fit the file."""
    with open(path, "rb") as file:
        data = file.read()
    riff, size, wave = struct.unpack_from("<4sI4s", data)
    assert (riff, size, wave) == (b"RIFF", len(data) - 8, b"WAVE"), (riff, size, wave)
    chunks, at = {}, 12
    while at < len(data):
        name, size = struct.unpack_from("<4sI", data, at)
        chunks[name] = data[at + 8:at + 8 + size]
        assert len(chunks[name]) == size, name
        at += 8 + size
    return (struct.unpack_from("<HHIIHH", chunks[b"fmt "]),
            struct.unpack("<I", chunks[b"fact"])[0],
            np.frombuffer(chunks[b"data"], "<f4").reshape(-1, 2))


def music(seconds, rate, level=0.1):
    """Noise without what a rate conversion would take away; quiet enough for the limiter to rest."""
    noise = np.random.default_rng(7).standard_normal((int(seconds * rate), 2))
    spectrum = np.fft.rfft(noise, axis=0)
    spectrum[int(len(spectrum) * 0.8):] = 0
    return level * np.fft.irfft(spectrum, len(noise), axis=0)


class Case(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def wav(self, name, samples, rate):
        writeWav(self.path(name), samples, rate)
        return self.path(name)

    def text(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)
        return self.path(name)

    def run_(self, *words):
        return subprocess.run([program, *words], capture_output=True, timeout=60, check=False,
                              env=ENVIRONMENT, text=True, cwd=self.folder)

    def render(self, *words):
        """The samples rendered and the report."""
        out = self.path("out.wav")
        result = self.run_("render", "-o", out, *words)
        self.assertEqual(result.returncode, 0, result.stderr)
        report = json.loads(result.stdout)
        (code, channels, rate, _, _, bits), fact, samples = readWav(out)
        self.assertEqual((code, channels, bits), (3, 2, 32))
        self.assertEqual((len(samples), fact), (report["frames"],) * 2)
        self.assertAlmostEqual(report["seconds"], report["frames"] / rate, places=9)
        self.assertGreater(report["x_realtime"], 0)
        return samples, report


class Usage(Case):
    WRONG = [
        ([], "no command is given"),
        (["sing"], 'there is no command "sing"'),
        (["play"], "no FILES... given"),
        (["play", "--loud", "a.wav"], 'no option "--loud"'),
        (["play", "a.wav", "--output"], "--output needs a value"),
        (["devices", "--json=yes"], "--json takes no value"),
        (["devices", "all"], '"all" is one word too many'),
        (["collect"], "no PATHS... given"),
        (["collect", "--sorted", "a.wav"], 'no option "--sorted"'),
        (["playlist"], "no FILE.m3u8 given"),
        (["playlist", "a.m3u8", "b.m3u8"], '"b.m3u8" is one word too many'),
        (["tag", "--title", "T"], "no FILE given"),
        (["tag", "a.mp3", "b.mp3"], '"b.mp3" is one word too many'),
        (["tag", "a.mp3", "--track", "3/x"], '--track: "3/x"'),
        (["tag", "a.mp3", "--disc=/2"], '--disc: "/2"'),
        (["tag", "a.mp3", "--title", b"\xff"], "--title is not UTF-8"),
        (["render", "a.wav"], "-o is missing"),
        (["render", "-o", "out.wav"], "no FILES... given"),
        (["render", "-o", "out.wav", "--rate", "7999", "a.wav"], "7999"),
        (["render", "-o", "out.wav", "--rate=44100Hz", "a.wav"], "44100Hz"),
        (["render", "-o", "out.wav", "--gapless", "maybe", "a.wav"], "maybe"),
        (["analyze", "--no-bpm"], "no FILES... given"),
        (["analyze", "--trim-threshold", "nan", "a.wav"], "nan"),
        (["analyze", "--trim-max", "5s", "a.wav"], "5s"),
        (["analyze", "--trim-max", "-1", "a.wav"], "-1"),
    ]

    def testWrong(self):
        for words, said in self.WRONG:
            with self.subTest(words=words):
                result = self.run_(*words)
                lines = result.stderr.splitlines()
                self.assertEqual((result.returncode, result.stdout, len(lines)), (2, "", 2))
                self.assertIn(said, lines[0])
                self.assertTrue(lines[1].startswith("usage: quorel-cli"), lines[1])
        self.assertEqual(os.listdir(self.folder), [])

    def testHelp(self):
        for words, said in [(["--help"], "render"), (["render", "--help"], "--gapless on|off"),
                            (["--version"], "quorel-cli ")]:
            with self.subTest(words=words):
                result = self.run_(*words)
                self.assertEqual((result.returncode, result.stderr), (0, ""))
                self.assertIn(said, result.stdout)


class Failures(Case):
    def testOneLineAndNothingWritten(self):
        track = self.wav("a.wav", music(0.3, 44100), 44100)
        empty = self.wav("empty.wav", np.zeros((0, 2)), 44100)
        noise = self.text("noise.wav", "this is no music")
        os.mkdir(self.path("folder"))
        before = sorted(os.listdir(self.folder))
        out = self.path("out.wav")
        for words, said in [
                (["render", "-o", out, self.path("none.wav")], "none.wav"),
                (["render", "-o", out, self.path("es\x1b[1mca\npe")], "es\ufffd.1mca\ufffdpe"),
                (["playlist", self.path("none.m3u8")], "none.m3u8"),
                (["playlist", self.path("folder")], "folder"),
                (["playlist", empty], "empty.wav"),
                (["render", "-o", out, noise], "noise.wav"),
                (["render", "-o", out, empty], "empty.wav"),
                (["render", "-o", out, self.path("folder")], "folder"),
                (["render", "-o", self.path("nowhere/out.wav"), track], "nowhere"),
                (["render", "-o", self.path("folder"), track], "folder"),
                (["render", "-o", out, "--settings", self.path("none"), track], "none"),
                (["play", "--output", "null", self.path("none.wav")], "none.wav"),
                (["tag", self.path("none.mp3")], "none.mp3: No such file"),
                (["tag", track], "supported for MP3 files only"),
                (["devices"], "no sound server answers")]:
            with self.subTest(words=words):
                result = self.run_(*words)
                self.assertEqual((result.returncode, result.stdout), (1, ""))
                self.assertRegex(result.stderr, r"^quorel-cli: [^\n]*" + said + r"[^\n]*\n$")
                self.assertEqual(sorted(os.listdir(self.folder)), before)

    def testSettingsThatAreNone(self):
        track = self.wav("a.wav", music(0.3, 44100), 44100)
        for text in ["", "{", "[]", '{"volume": "loud"}', '{"eqGains": [1, null]}',
                     '{"compPreset": "brutal"}', '{"volume": 1e999}', '{"volume": NaN}']:
            with self.subTest(text=text):
                settings = self.text("settings.json", text)
                result = self.run_("render", "--settings", settings, "-o", "out.wav", track)
                self.assertEqual((result.returncode, result.stdout), (1, ""))
                self.assertRegex(result.stderr, r"^quorel-cli: [^\n]*settings.json[^\n]*\n$")
                self.assertEqual(sorted(os.listdir(self.folder)), ["a.wav", "settings.json"])


class Render(Case):
    RATE = 44100
    CUTS = [44101, 97337]

    def setUp(self):
        super().setUp()
        self.music = music(3.3, self.RATE)
        self.whole = self.wav("whole.wav", self.music, self.RATE)
        self.parts = [self.wav(f"part{i}.wav", part, self.RATE)
                      for i, part in enumerate(np.split(self.music, self.CUTS))]
        self.gain, _ = self.levelOf(self.render("--rate", str(self.RATE), self.whole)[0])

    def levelOf(self, samples, first=0):
        """The factor between the source and what was rendered, and the largest deviation from it."""
        source = self.music[first:first + len(samples)]
        gain = np.vdot(source, samples) / np.vdot(source, source)
        return gain, np.max(np.abs(samples - gain * source))

    def settings(self, **values):
        return ["--settings", self.text("settings.json", json.dumps(values))]

    def testJoins(self):
        for rate in (44100, 48000):
            with self.subTest(rate=rate):
                whole, report = self.render("--rate", str(rate), self.whole)
                ends = [round(cut * rate / self.RATE) for cut in [*self.CUTS, len(self.music)]]
                self.assertEqual(report["tracks"], [{"path": self.whole, "start_frame": 0,
                                                     "end_frame": ends[-1], "gapless": False}])
                cut, report = self.render("--rate", str(rate), *self.parts)
                self.assertEqual(report["frames"], ends[-1])
                self.assertLessEqual(np.max(np.abs(cut - whole)), 1e-6)
                self.assertEqual(report["tracks"],
                                 [{"path": path, "start_frame": start, "end_frame": end,
                                   "gapless": start > 0}
                                  for path, start, end in zip(self.parts, [0, *ends], ends)])

    def testFramesLieWhereTheReportSaysTheyDo(self):
        for words, joined in [((), True), (("--gapless", "off"), False),
                              (self.settings(gapless=False, volume=1), False),
                              ([*self.settings(gapless=False, volume=1), "--gapless=on"], True)]:
            with self.subTest(words=words):
                samples, report = self.render("--rate", str(self.RATE), *words, *self.parts)
                self.assertEqual(samples.shape[0], report["tracks"][-1]["end_frame"])
                end = 0
                for track, first in zip(report["tracks"], [0, *self.CUTS]):
                    self.assertEqual(track["gapless"], joined and first > 0)
                    self.assertFalse(samples[end:track["start_frame"]].any())
                    end = track["end_frame"]
                    gain, deviation = self.levelOf(samples[track["start_frame"]:end], first)
                    self.assertAlmostEqual(gain, self.gain, places=6)
                    self.assertLess(deviation, 1e-6)

    def testSettings(self):
        rms = lambda samples: np.sqrt(np.mean(samples[len(samples) // 2:] ** 2, axis=0)) / 0.1
        plain = rms(self.render(self.whole)[0])
        eq = {"eqOn": True, "eqGains": [6] * 10, "volume": 1}
        for values, left, right in [
                ({}, (0.79, 0.81), (0.79, 0.81)),
                ({"volume": 0.25}, (0.249, 0.251), (0.249, 0.251)),
                ({"isMuted": True}, (0, 0), (0, 0)),
                ({"volume": 1, "pan": 1}, (0, 0.001), (0.9, 1.5)),
                (eq, (1.5, 2.5), (1.5, 2.5)),
                ({**eq, "eqOn": False}, (0.99, 1.01), (0.99, 1.01)),
                ({"volume": 1, "compOn": True, "compPreset": "maximum"}, (0.5, 0.95), (0.5, 0.95)),
                ({"volume": 0.5, "loudness": True}, (0.51, 1), (0.51, 1))]:
            with self.subTest(values=values):
                ratio = rms(self.render(*self.settings(**values), self.whole)[0]) / plain
                for channel, (least, most) in enumerate((left, right)):
                    self.assertTrue(least <= ratio[channel] <= most, ratio)

    def testTracksOfOneLoudness(self):
        tracks = [self.wav(f"{level}.wav", music(1.5, self.RATE, level / 0.8 ** 0.5), self.RATE)
                  for level in (0.05, 0.2, 0.005)]
        for normalize, levels in [(True, (-16, -16, -34)), (False, (-26, -14, -46))]:  # RMS in dB
            for gapless in (False, True):
                samples, report = self.render(
                    "--rate", str(self.RATE), *tracks,
                    *self.settings(normalize=normalize, volume=1, gapless=gapless))
                for track, level in zip(report["tracks"], levels):
                    with self.subTest(normalize=normalize, gapless=gapless, level=level):
                        # A track that is joined takes 0.2 s to come to its own level.
                        first = track["start_frame"] + (self.RATE // 4 if track["gapless"] else 0)
                        rms = lambda part: 20 * np.log10(np.std(part) / self.gain)
                        for part in (samples[first:track["end_frame"]],
                                     samples[first:first + 8000]):
                            self.assertAlmostEqual(rms(part), level, delta=0.3)

    def testSilenceAtTheEnds(self):
        silence = np.zeros((self.RATE, 2))
        tracks = [self.wav(f"{i}.wav", np.concatenate([silence, music(1, self.RATE), silence]),
                           self.RATE) for i in range(2)]
        for values, frames, gapless in [
                ({}, 6 * self.RATE, True),
                ({"trimThresholdDb": -90}, 6 * self.RATE, True),
                ({"trimSilence": True}, 2 * self.RATE, True),
                ({"trimSilence": True, "gapless": False}, 2 * self.RATE, False),
                ({"trimSilence": True, "trimMaxSec": 0.25}, 5 * self.RATE, True),
                ({"trimSilence": True, "trimThresholdDb": 0}, 6 * self.RATE, True)]:
            with self.subTest(values=values):
                samples, report = self.render("--rate", str(self.RATE), *tracks,
                                              *self.settings(volume=1, **values))
                ends = [0, *(track["end_frame"] for track in report["tracks"])]
                length = sum(track["end_frame"] - track["start_frame"]
                             for track in report["tracks"])
                self.assertAlmostEqual(length, frames, delta=4 * 1024)
                self.assertEqual(report["tracks"][1]["gapless"], gapless)
                self.assertEqual(report["tracks"][1]["start_frame"] == ends[1], gapless)
                whole, _ = self.render("--rate", str(self.RATE), tracks[0])
                loud = lambda sound: int(np.count_nonzero(np.abs(sound).max(axis=1) > 0.001))
                self.assertEqual(loud(samples), 2 * loud(whole))

    def testSettingsBeyondSense(self):
        loud = self.wav("loud.wav", music(1, self.RATE, 0.5), self.RATE)
        huge, tiny = 1e300, -1e300
        for values in [{"eqOn": True, "eqGains": [1e9] * 10},
                       {"eqOn": True, "eqGains": [huge, tiny] * 5},
                       {"eqOn": True, "eqGains": [1e9] * 3},
                       {"eqOn": True, "eqGains": [12.0] * 40, "compOn": True},
                       {"volume": 1e9, "pan": huge, "loudness": True},
                       {"volume": tiny, "pan": tiny, "loudness": True},
                       {"normalize": True, "trimSilence": True, "trimThresholdDb": huge,
                        "trimMaxSec": huge},
                       {"trimSilence": True, "trimThresholdDb": tiny, "trimMaxSec": tiny},
                       {"fadePlayOn": True, "fadePlayMs": huge},
                       {"fadePlayOn": True, "fadePlayMs": tiny, "compAmount": huge}]:
            with self.subTest(values=values):
                samples, report = self.render(*self.settings(**values), loud)
                self.assertEqual(report["frames"], 48000)
                self.assertTrue(np.isfinite(samples).all())
                self.assertLessEqual(np.abs(samples).max(), 32767 / 32768)

    def testCharacterEffectsChangeNoBit(self):
        sound = {"volume": 0.9, "eqOn": True, "eqGains": [3, -2] * 5, "compOn": True}
        effects = {"charIntensity": 100, "vinylCrackle": 100, "tapeCompression": 100,
                   "tapeWear": 100, "mechNoise": True, "mechNoiseLevel": 100}
        plain, _ = self.render(*self.settings(**sound), *self.parts)
        for effect in ("off", "vinyl", "tape"):
            for tape in ("ferric", "chrome", "metal"):
                with self.subTest(effect=effect, tape=tape):
                    settings = self.settings(**sound, **effects, charFx=effect, tapeType=tape)
                    samples, _ = self.render(*settings, *self.parts)
                    self.assertEqual(samples.tobytes(), plain.tobytes())

    def testFadeIn(self):
        samples, _ = self.render(*self.settings(volume=1, fadePlayOn=True, fadePlayMs=1000),
                                 "--rate", str(self.RATE), self.whole)
        for at, level in [(0, 0.0), (self.RATE // 2, 0.5), (self.RATE + 100, 1.0)]:
            part = samples[at:at + 1000]
            self.assertAlmostEqual(self.levelOf(part, at)[0] / self.gain, level, delta=0.02)

    def testUnplayableFilesArePassedOver(self):
        self.text("out.wav", "an older file is replaced")
        missing = self.path("none.wav")
        out = self.path("out.wav")
        result = self.run_("render", "-o", out, self.parts[0], missing, self.parts[1])
        self.assertEqual(result.returncode, 0)
        first, gone, second = json.loads(result.stdout)["tracks"]
        self.assertEqual((first["gapless"], second["gapless"]), (False, True))
        self.assertEqual(gone["path"], missing)
        self.assertEqual(result.stderr, f"quorel-cli: {missing}: {gone['error']}\n")
        self.assertEqual(second["end_frame"], len(readWav(out)[2]))
        self.assertFalse([name for name in os.listdir(self.folder) if "part." in name[-6:]])


class Analyze(Case):
    RATE = 44100

    def analyze(self, *words, status=0):
        result = self.run_("analyze", *words)
        self.assertEqual(result.returncode, status, result.stderr)
        return [json.loads(line) for line in result.stdout.splitlines()], result.stderr

    def clicks(self, perMinute, seconds=20):
        """Short noise at each beat, between a second of silence and one."""
        samples = np.zeros((seconds * self.RATE, 2))
        for beat in range(int(seconds * perMinute / 60)):
            at = int(beat * 60 / perMinute * self.RATE)
            samples[at:at + 2000] = music(0.1, self.RATE, 0.2)[:len(samples[at:at + 2000])]
        silence = np.zeros((self.RATE, 2))
        return np.concatenate([silence, samples, silence])

    def testMeasures(self):
        beat = self.wav("beat.wav", self.clicks(125), self.RATE)
        noise = music(1.5, self.RATE, 0.05)
        short = self.wav("short.wav", noise, self.RATE)
        (first, second), errors = self.analyze(beat, short)
        self.assertEqual(errors, "")
        self.assertEqual((first["path"], second["path"]), (beat, short))
        self.assertAlmostEqual(first["trim"]["start"], 1, delta=1024 / self.RATE)
        # the last of 41 beats, with its 2000 frames
        self.assertAlmostEqual(first["trim"]["end"], 1 + 40 * 0.48 + 2000 / self.RATE,
                               delta=1024 / self.RATE)
        self.assertAlmostEqual(first["bpm"], 125, delta=2)
        self.assertNotEqual(first["bpm"], round(first["bpm"]))
        self.assertIsNone(second["bpm"])
        self.assertEqual(second["metadata"], {"bitrateKbps": 2822, "duration": 1.5,
                                              "sampleRateHz": self.RATE})
        self.assertEqual(second["trim"], {"start": 0, "end": 1.5})
        self.assertAlmostEqual(second["levels"]["peak"], np.abs(noise).max(), places=6)
        self.assertAlmostEqual(second["levels"]["rms"], np.sqrt(np.mean(noise ** 2)), places=6)

    def testOptions(self):
        beat = self.wav("beat.wav", self.clicks(125, 5), self.RATE)
        for words, start in [(["--trim-max", "0.25"], 0.25), (["--trim-max=0"], 0),
                             (["--trim-threshold", "-0"], 0), (["--trim-threshold=-40"], 1)]:
            with self.subTest(words=words):
                (report,), _ = self.analyze("--no-bpm", *words, beat)
                self.assertEqual(sorted(report), ["levels", "metadata", "path", "trim"])
                self.assertAlmostEqual(report["trim"]["start"], start, delta=1024 / self.RATE)

    def testFilesThatCannotBeOpened(self):
        good = self.wav("good.wav", music(0.5, self.RATE), self.RATE)
        empty = self.wav("empty.wav", np.zeros((0, 2)), self.RATE)
        noise = self.text("noise.wav", "this is no music")
        (gone, none, fine), errors = self.analyze(self.path("none.wav"), noise, good, status=1)
        self.assertEqual(errors.count("\n"), 2)
        for report, path in [(gone, self.path("none.wav")), (none, noise)]:
            self.assertEqual(sorted(report), ["error", "path"])
            self.assertIn(f"quorel-cli: {path}: {report['error']}\n", errors)
        self.assertEqual(sorted(fine), ["bpm", "levels", "metadata", "path", "trim"])
        (report,), _ = self.analyze(empty)
        self.assertEqual(report, {"path": empty, "trim": {"start": 0, "end": 0}, "bpm": None,
                                  "metadata": {"bitrateKbps": 2822, "duration": 0,
                                               "sampleRateHz": self.RATE}})


class Paths(Case):
    def setUp(self):
        super().setUp()
        os.mkdir(self.path("b"))
        for name in ("b/10.mp3", "b/9.FLAC", "A.wav", "cover.jpg", "\udce9\n.mp3"):
            self.text(name, "")

    def lines(self, *words):
        result = subprocess.run([program, *words], capture_output=True, timeout=60, check=False,
                                env=ENVIRONMENT, cwd=self.folder)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        self.assertTrue(result.stdout.endswith(b"\n") or not result.stdout)
        return os.fsdecode(result.stdout).split("\n")[:-1]

    def testCollect(self):
        expected = [self.path(name) for name in ("A.wav", "b/9.FLAC", "b/10.mp3")]
        self.assertEqual(self.lines("collect", "b", "none", "./A.wav", self.path("b/10.mp3")),
                         expected)
        self.assertEqual(self.lines("collect", "none", "cover.jpg"), [])
        objects = [json.loads(line) for line in self.lines("collect", "--json", ".")]
        self.assertEqual(len(objects), 4)
        self.assertEqual([given for given in objects if given["path"] in expected],
                         [{"path": path} for path in expected])
        self.assertEqual("\n".join(self.lines("collect", "\udce9\n.mp3")),
                         self.path("\udce9\n.mp3"))

    def testPlaylist(self):
        self.text("b/list.m3u8", "#EXTM3U\r\n10.mp3\r\n../A.wav\r\n10.mp3\r\nnone.mp3\r\n")
        expected = [self.path(name) for name in ("b/10.mp3", "A.wav", "b/10.mp3")]
        self.assertEqual(self.lines("playlist", "b/list.m3u8"), expected)
        self.assertEqual([json.loads(line) for line in self.lines("playlist", "b/list.m3u8", "--json")],
                         [{"path": path} for path in expected])
        self.assertEqual(self.lines("playlist", "A.wav"), [])


class Tag(Case):
    @staticmethod
    def frame(name, content):
        return name + struct.pack(">IH", len(content), 0) + content

    def testWritesWhatIsGiven(self):
        frame, mark = self.frame, b"\x01\xff\xfe"
        comment = b"\x01eng\xff\xfe\0\0\xff\xfe" + "с".encode("utf-16-le")
        tags = [([], b""),
                (["--title", "Ab"], frame(b"TIT2", mark + b"A\0b\0")),
                (["--comment=с", "--track", "3/10", "--disc", "2"],
                 frame(b"COMM", comment) + frame(b"TRCK", mark + "3/10".encode("utf-16-le"))
                 + frame(b"TPOS", mark + b"2\0")),
                (["--album-artist", "V", "--artist", "A", "--album", "B", "--genre", "G",
                  "--year", "1", "--composer", "C"],
                 b"".join(frame(name, mark + text + b"\0") for name, text in [
                     (b"TPE1", b"A"), (b"TALB", b"B"), (b"TPE2", b"V"), (b"TCON", b"G"),
                     (b"TYER", b"1"), (b"TCOM", b"C")]))]
        path = self.text("song.mp3", "sound")
        for words, frames in tags: # each tag replaces the one before
            with self.subTest(words=words):
                result = self.run_("tag", *words, "song.mp3")
                self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))
                with open(path, "rb") as file:
                    self.assertEqual(file.read(), b"ID3\3\0\0\0\0" + bytes(divmod(len(frames), 128))
                                     + frames + b"sound")
        self.assertEqual(os.listdir(self.folder), ["song.mp3"])


class Play(Case):
    def testTakesAsLongAsTheMusic(self):
        tracks = [self.wav(f"{i} - Somebody - Song {i}.wav", music(0.7, 44100), 44100)
                  for i in (1, 2)]
        begun = time.monotonic()
        result = self.run_("play", "--output", "null", tracks[0], self.path("none.wav"), tracks[1])
        taken = time.monotonic() - begun
        self.assertEqual((result.returncode, len(result.stderr.splitlines())), (0, 1))
        self.assertIn("none.wav", result.stderr)
        self.assertEqual(result.stdout, "Somebody - Song 1 (0:01)\nSomebody - Song 2 (0:01)\n")
        self.assertTrue(1.4 <= taken < 10, taken)

    def testSignalsAndNoServer(self):
        track = self.wav("a.wav", music(20, 44100), 44100)
        for output, number, said in [("null", signal.SIGTERM, ""),
                                     ("default", signal.SIGINT, "Waiting for a sound server")]:
            with self.subTest(output=output):
                process = subprocess.Popen([program, "play", "--output", output, track],
                                           stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                           env=ENVIRONMENT, text=True)
                self.assertEqual(process.stdout.readline(), "a (0:20)\n")
                time.sleep(0.5)
                self.assertIsNone(process.poll())
                process.send_signal(number)
                _, errors = process.communicate(timeout=10)
                self.assertEqual(process.returncode, 0)
                self.assertEqual(errors.count(said), 1 if said else len(errors) + 1, errors)


class Keys(Case):
    def setUp(self):
        super().setUp()
        tracks = [self.wav(f"{name}.wav", music(30, 8000), 8000) for name in ("One", "Two")]
        self.master, slave = pty.openpty()
        self.addCleanup(os.close, self.master)
        self.addCleanup(os.close, slave)
        self.slave = slave
        self.settings = termios.tcgetattr(slave)
        self.process = subprocess.Popen([program, "play", "--output", "null", *tracks],
                                        stdin=slave, stdout=slave, stderr=slave, env=ENVIRONMENT,
                                        preexec_fn=self.takeTerminal)
        self.addCleanup(self.end)

    def takeTerminal(self):
        os.setsid()
        fcntl.ioctl(self.slave, termios.TIOCSCTTY, 0)

    def end(self):
        self.process.kill()
        self.process.wait()

    def await_(self, state, keys="", title="One"):
        """Types, then reads until state and title show; returns the seconds shown with them."""
        os.write(self.master, keys.encode())
        shown, deadline = "", time.monotonic() + 10
        while not (found := re.search(rf"{state} +(\d+):(\d\d) / 0:30  {title}", shown)):
            left = deadline - time.monotonic()
            if left < 0 or not select.select([self.master], [], [], left)[0]:
                self.fail(f"{state} {title} does not show in {shown!r}")
            shown += os.read(self.master, 4096).decode()
        return 60 * int(found[1]) + int(found[2])

    def finish(self):
        self.assertEqual(self.process.wait(10), 0)
        self.assertEqual(termios.tcgetattr(self.slave), self.settings)

    def testKeys(self):
        begin = self.await_("Playing")
        self.assertFalse(termios.tcgetattr(self.slave)[3] & (termios.ECHO | termios.ICANON))
        at = self.await_("Paused", " ")
        self.assertLessEqual(at - begin, 2)
        self.assertIn(self.await_("Paused", "\x1b[C") - at, (5, 6))
        self.assertIn(self.await_("Paused", "\x1bOC") - at, (10, 11))
        self.assertIn(self.await_("Paused", "\x1b[D") - at, (5, 6))
        self.assertGreaterEqual(self.await_("Playing", " "), at + 5)
        self.assertLessEqual(self.await_("Playing", "n", "Two"), 1)
        self.await_("Playing", "p")
        os.write(self.master, b"q")
        self.finish()

    def testInterrupted(self):
        self.await_("Playing")
        os.write(self.master, b"\x03")
        self.finish()


if __name__ == "__main__":
    program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
