"""scripts/make-demo-album: the tracks join without a jump, and are as loud as they should be."""
import glob
import os
import subprocess
import sys
import tempfile
import unittest

import numpy as np


def decode(path):
    raw = subprocess.run(["flac", "--silent", "--decode", "--stdout", "--force-raw-format",
                          "--endian=little", "--sign=signed", path],
                         stdout=subprocess.PIPE, check=True).stdout
    return np.frombuffer(raw, "<i2").reshape(-1, 2) / 32768


def decibels(samples):
    return 10 * np.log10(np.mean(samples ** 2))


class DemoAlbum(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as folder:
            album = os.path.join(folder, "album")
            subprocess.run([script, album], check=True)
            cls.tracks = [decode(path) for path in sorted(glob.glob(album + "/*.flac"))]

    def testLevels(self):
        self.assertEqual(len(self.tracks), 4)
        for track, (low, high) in zip(self.tracks, [(-26, -19), (-36, -28), (-16, -10), (-28, -20)]):
            self.assertTrue(20 <= len(track) / 44100 <= 32, len(track))
            self.assertTrue(low <= decibels(track) <= high, decibels(track))
            self.assertLess(np.max(np.abs(track)), 0.95)

    def testJoins(self):
        # Where a join leaves a gap or a click, the curvature stands out from what is around it.
        for before, after in zip(self.tracks[:2], self.tracks[1:3]):
            around = np.concatenate([before[-2000:], after[:2000]])
            bend = np.max(np.abs(np.diff(around, 2, axis=0)), axis=1)
            self.assertGreater(decibels(around), -50)
            self.assertLessEqual(np.max(bend[1997:2001]), np.max(bend[:1900]))

    def testSilentEdges(self):
        sounding = np.flatnonzero(self.tracks[3].any(axis=1))
        self.assertGreater(sounding[0], 44100)
        self.assertGreater(len(self.tracks[3]) - sounding[-1], 44100)


if __name__ == "__main__":
    script = sys.argv.pop(1)
    unittest.main()
