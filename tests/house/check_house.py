"""Checks of the sources that no compiler makes: check_house.py includes|leftovers ROOT

`includes` holds every #include against cmake/IncludeDirections.txt; `leftovers` looks for merge
conflicts and for paths that exist on one machine only. Findings go to standard output, one a line,
as file:line: text; the exit status is 1 if there are any.
"""
import fnmatch
import os
import re
import sys

# C++ standard headers bear plain words; <cstdint> and its like are among them.
STANDARD = re.compile(r"[a-z_]+")
INCLUDE = re.compile(r'\s*#\s*include\s*([<"])([^>"]+)[>"]')
SOURCE_ENDINGS = (".h", ".cpp")
# Written so that this file does not hold what it looks for.
LEFTOVERS = {re.compile(r"(?<![\w.])/(wor[k]|roo[t])/"): "a path of one machine",
             re.compile(r"^(<{7}|>{7}|\|{7}) "): "a merge conflict"}
SKIPPED = {".git", ".cache", "build", "__pycache__"}


class Table:
    """cmake/IncludeDirections.txt: {library: header patterns}, {room: names it may include}."""

    def __init__(self, text):
        self.libraries, self.rooms = {}, {}
        for number, line in enumerate(text.splitlines(), 1):
            match = re.fullmatch(r"(library|room) ([\w/]+):\s*([^#]*)", line)
            if match:
                kind, name, words = match.groups()
                (self.libraries if kind == "library" else self.rooms)[name] = words.split()
            elif line.strip() and not line.startswith("#"):
                raise ValueError(f"line {number} of the table is neither library nor room: {line}")

    def faults(self):
        for room, names in self.rooms.items():
            for name in names:
                if name not in self.rooms and name not in self.libraries:
                    yield f"room {room} may include {name}, which is neither a room nor a library"
            if room in self.reachable(room):
                yield f"room {room} may include itself through others"

    def reachable(self, room):
        found, waiting = set(), list(self.rooms[room])
        while waiting:
            name = waiting.pop()
            if name in self.rooms and name not in found:
                found.add(name)
                waiting += self.rooms[name]
        return found

    def roomOf(self, path):
        folder = os.path.dirname(path)
        while folder and folder not in self.rooms:
            folder = os.path.dirname(folder)
        return folder or None

    def libraryOf(self, header):
        for library, patterns in self.libraries.items():
            if any(fnmatch.fnmatchcase(header, pattern) for pattern in patterns):
                return library
        return None


def fault(table, root, path, bracket, header):
    """Why the file at `path` (below its include root) may not include `header`; None if it may."""
    room = table.roomOf(path)
    if room is None:
        return "lies in a folder that is not in the table"
    if bracket == "<":
        library = table.libraryOf(header)
        if library is None:
            return None if STANDARD.fullmatch(header) else f"<{header}> is of no library in the table"
        return None if library in table.rooms[room] else f"{room} may not include {library} <{header}>"
    if path.endswith(".cpp") and header == os.path.basename(path)[:-4] + ".moc":
        return None
    if not any(os.path.isfile(os.path.join(root, top, header)) for top in ("src", "")):
        return f'"{header}" is no file as seen from src/'
    other = table.roomOf(header)
    if other == room or other in table.rooms[room]:
        return None
    return f'{room} may not include {other} "{header}"'


def textFiles(root):
    """(path below root, lines) of every text file."""
    for folder, folders, files in os.walk(root):
        folders[:] = sorted(name for name in folders if name not in SKIPPED)
        for name in sorted(files):
            path = os.path.join(folder, name)
            if name in SKIPPED or not os.path.isfile(path):
                continue
            with open(path, "rb") as file:
                data = file.read()
            if b"\0" not in data[:8000]:
                yield os.path.relpath(path, root), data.decode(errors="replace").splitlines()


def checkIncludes(root):
    with open(os.path.join(root, "cmake", "IncludeDirections.txt"), encoding="utf-8") as file:
        table = Table(file.read())
    findings = [f"cmake/IncludeDirections.txt: {text}" for text in table.faults()]
    checked = 0
    for top, prefix in (("src", "src" + os.sep), ("tools", "")):
        for path, lines in textFiles(os.path.join(root, top)):
            if not path.endswith(SOURCE_ENDINGS):
                continue
            checked += 1
            below = path if prefix else os.path.join(top, path)
            for number, line in enumerate(lines, 1):
                match = INCLUDE.match(line)
                text = match and fault(table, root, below, *match.groups())
                if text:
                    findings.append(f"{os.path.join(top, path)}:{number}: {text}")
    if checked == 0:
        findings.append("no sources were found")
    return findings


def checkLeftovers(root):
    return [f"{path}:{number}: {what}"
            for path, lines in textFiles(root)
            for number, line in enumerate(lines, 1)
            for pattern, what in LEFTOVERS.items() if pattern.search(line)]


def main(arguments):
    checks = {"includes": checkIncludes, "leftovers": checkLeftovers}
    if len(arguments) != 2 or arguments[0] not in checks:
        sys.exit(__doc__)
    findings = checks[arguments[0]](arguments[1])
    for finding in findings:
        print(finding)
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
