"""The checks of check_house.py find what they are for, and nothing else."""
import os
import tempfile
import unittest

import check_house

TABLE = """
# a comment
library Qt: Q*
library Pulse: pulse/*.h
room audio/rt:
room audio: audio/rt Qt
room ui: Qt
room tools: audio
"""
HEADERS = ["src/audio/rt/Node.h", "src/audio/Engine.h", "src/ui/View.h", "tools/Options.h"]
CASES = [
    # including file, its line, what must be said of it (None: nothing)
    ("src/audio/rt/Gain.cpp", "#include <vector>", None),
    ("src/audio/rt/Gain.cpp", '#include "audio/rt/Node.h"', None),
    ("src/audio/rt/Gain.cpp", "#include <QString>", "audio/rt may not include Qt <QString>"),
    ("src/audio/rt/Gain.cpp", "  #  include <pulse/simple.h>", "audio/rt may not include Pulse"),
    ("src/audio/rt/Gain.cpp", '#include "audio/Engine.h"', "audio/rt may not include audio"),
    ("src/audio/rt/Gain.cpp", '#include "Node.h"', '"Node.h" is no file as seen from src/'),
    ("src/audio/rt/Gain.cpp", "#include <sndfile.h>", "<sndfile.h> is of no library"),
    ("src/audio/Engine.cpp", '#include "audio/rt/Node.h"', None),
    ("src/audio/Engine.cpp", '#include "Engine.moc"', None),
    ("src/ui/View.cpp", '#include "audio/rt/Node.h"', "ui may not include audio/rt"),
    ("src/ui/View.cpp", '// #include "audio/rt/Node.h"', None),
    ("src/ui/deep/View.cpp", '#include "ui/View.h"', None),
    ("src/attic/Old.cpp", "#include <vector>", "lies in a folder that is not in the table"),
    ("tools/main.cpp", '#include "tools/Options.h"', None),
    ("tools/main.cpp", '#include "ui/View.h"', "tools may not include ui"),
]
LEFTOVERS = [
    ("src = /" + "work/main", "a path of one machine"),
    ("include(/" + "root/x.cmake)", "a path of one machine"),
    ("network/worker/ro" + "ot/", None),
    ("<" * 7 + " HEAD", "a merge conflict"),
    (">" * 7 + " theirs", "a merge conflict"),
    ("=" * 7, None),
]


class House(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = folder.name
        self.write("cmake/IncludeDirections.txt", TABLE)
        for header in HEADERS:
            self.write(header, "#pragma once\n")

    def write(self, path, text):
        path = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def expect(self, findings, path, line, said):
        if said is None:
            self.assertEqual(findings, [])
        else:
            self.assertEqual(len(findings), 1, findings)
            self.assertIn(f"{path}:{line}: {said}", findings[0])

    def testIncludes(self):
        for path, line, said in CASES:
            with self.subTest(path=path, line=line):
                written = self.write(path, "\n" + line + "\n")
                self.expect(check_house.checkIncludes(self.root), path, 2, said)
                os.remove(written)

    def testTable(self):
        for room, said in [("room b: ui\nroom ui: b", "room b may include itself through others"),
                           ("room b: attic", "b may include attic, which is neither")]:
            with self.subTest(room=room):
                self.write("cmake/IncludeDirections.txt", TABLE + room)
                self.assertIn(said, "\n".join(check_house.checkIncludes(self.root)))
        with self.assertRaisesRegex(ValueError, "line 2"):
            check_house.Table("\nrom ui:")

    def testNothingToCheck(self):
        for header in HEADERS:
            os.remove(os.path.join(self.root, header))
        self.assertEqual(check_house.checkIncludes(self.root), ["no sources were found"])

    def testLeftovers(self):
        for line, said in LEFTOVERS:
            with self.subTest(line=line):
                self.write("docs/notes.md", "\n\n" + line + "\n")
                self.expect(check_house.checkLeftovers(self.root), "docs/notes.md", 3, said)


if __name__ == "__main__":
    unittest.main()
