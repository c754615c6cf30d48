"""Folders of very small MP3 files that differ in their tags."""
import os

ALBUM_TRACKS = 12
# MPEG 1 layer III, 32 kbit/s, 44.1 kHz, mono: 104 bytes a frame, all of them silent.
FRAMES = 20
HEADER = bytes([0xFF, 0xFB, 0x10, 0xC0])
SIDE_INFORMATION = bytes(17)
SOUND = ((HEADER + SIDE_INFORMATION + b"Info" + (1).to_bytes(4, "big")
          + FRAMES.to_bytes(4, "big")).ljust(104, b"\0")
         + FRAMES * HEADER.ljust(104, b"\0"))


def makeAlbums(folder, files):
    """That many files in albums of twelve, one album in eight with names beyond ASCII."""
    for i in range(files):
        album = i // ALBUM_TRACKS
        isForeign = album % 8 == 0
        artist = (f"Дмитрий Ångström {album // 3}" if isForeign
                  else f"The Example Ensemble {album // 3}")
        title = (f"春の歌 — Première “partie” {i}" if isForeign
                 else f"Movement No. {i} in a Minor Key")
        albumTitle = f"Collected Works, Volume {album}"
        number = i % ALBUM_TRACKS + 1
        place = os.path.join(folder, artist, albumTitle)
        if number == 1:
            os.makedirs(place, exist_ok=True)
        tag = id3({"TIT2": title, "TPE1": artist, "TALB": albumTitle, "TPE2": artist,
                   "TCON": "Chamber Music", "TDRC": str(1960 + album % 60),
                   "TRCK": f"{number}/{ALBUM_TRACKS}", "TPOS": "1/2",
                   "TCOM": f"Composer Name {album % 500}"})
        with open(os.path.join(place, f"{number:02} - {title}.mp3"), "wb") as file:
            file.write(tag + SOUND)


def id3(texts):
    """A tag of version 2.4 with these frames, in UTF-8."""
    frames = b""
    for name, text in texts.items():
        content = b"\x03" + text.encode()
        frames += name.encode() + syncSafe(len(content)) + bytes(2) + content
    return b"ID3\x04\0\0" + syncSafe(len(frames)) + frames


def syncSafe(size):
    return bytes(size >> shift & 0x7F for shift in (21, 14, 7, 0))
