"""What encoders do not write: heads, tags, boxes and chunks around their sound, and its frames told
apart."""
import struct

AAC_LATE = 1024  # encoder delay
# Headers of several kinds with nothing behind them, and what looks like the start of one.
FALSE_FRAMES = b"junk \xff\xfb\x90\x64 more \xff\xf1\x50\x80\x01\x7f\xfc" + b"\xff" * 3000 \
    + b"x" * 700


def wav(data, channels, rate, bits):
    block = channels * bits // 8
    mask = {1: 0x4, 2: 0x3, 6: 0x3F, 8: 0x63F}[channels]
    head = struct.pack("<HHIIHHHHI", 0xFFFE, channels, rate, rate * block, block, bits, 22, bits,
                       mask) + bytes.fromhex("0100000000001000800000aa00389b71")
    data = b"WAVEfmt \x28\0\0\0" + head + b"data" + struct.pack("<I", len(data)) + data \
        + b"\0" * (len(data) & 1)
    return b"RIFF" + struct.pack("<I", len(data)) + data


def id3v2(size, filling=b"\0"):
    """A tag of `size` bytes of padding."""
    parts = [size >> shift & 127 for shift in (21, 14, 7, 0)]
    return b"ID3\x03\0\0" + bytes(parts) + filling * size


def apeAndId3v1():
    item = struct.pack("<II", 3, 0) + b"Title\0ape"
    footer = b"APETAGEX" + struct.pack("<IIII", 2000, len(item) + 32, 1, 0) + b"\0" * 8
    return item + footer + b"TAG" + b"title".ljust(125, b"\0")


def mpegFrames(data):
    """(offset, samples) of the frames of an MPEG layer II or III file that is nothing else."""
    rates = {1: (32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320),
             2: (8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160),
             "II": (32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384)}
    found, place = [], 0
    while place + 4 <= len(data) and data[place] == 255:
        version = {3: 1, 2: 2, 0: 4}[data[place + 1] >> 3 & 3]
        second = data[place + 1] >> 1 & 3 == 2
        hertz = (44100, 48000, 32000)[data[place + 2] >> 2 & 3] // version
        samples = 1152 if second or version == 1 else 576
        kilobits = rates["II" if second else min(version, 2)][(data[place + 2] >> 4) - 1]
        found.append((place, samples))
        place += samples // 8 * kilobits * 1000 // hertz + (data[place + 2] >> 1 & 1)
    return found[:-1] if place > len(data) else found


def mpegSamples(data):
    return sum(samples for _, samples in mpegFrames(data))


def adtsUnits(data):
    units, place = [], 0
    while place + 7 <= len(data):
        size = (data[place + 3] & 3) << 11 | data[place + 4] << 3 | data[place + 5] >> 5
        units.append(data[place + 7:place + size])
        place += size
    return units


def adtsSamples(data):
    return 1024 * len(adtsUnits(data))


def box(name, data):
    return struct.pack(">I", 8 + len(data)) + name + data


def withGaplessComment(data, priming, frames):
    """An m4a whose moov box is its last, with an iTunSMPB comment in place of other user data."""
    place = 0
    while data[place + 4:place + 8] != b"moov":
        place += struct.unpack(">I", data[place:place + 4])[0]
    moov, inside = b"", data[place + 8:]
    while inside:
        size = struct.unpack(">I", inside[:4])[0]
        moov += inside[:size] if inside[4:8] != b"udta" else b""
        inside = inside[size:]
    padding = -(priming + frames) % 1024
    text = f" 00000000 {priming:08X} {padding:08X} {frames:016X}" + " 00000000" * 8
    comment = box(b"----", box(b"mean", b"\0" * 4 + b"com.apple.iTunes")
                  + box(b"name", b"\0" * 4 + b"iTunSMPB")
                  + box(b"data", b"\0\0\0\1\0\0\0\0" + text.encode()))
    handler = box(b"hdlr", b"\0" * 8 + b"mdirappl" + b"\0" * 9)
    moov += box(b"udta", box(b"meta", b"\0" * 4 + handler + box(b"ilst", comment)))
    return data[:place] + box(b"moov", moov)


def withEdit(data, mediaTime, duration):
    """With other numbers (frames; ms) in its edit list of one edit."""
    place = data.index(b"elst") + 12
    return data[:place] + struct.pack(">Ii", duration, mediaTime) + data[place + 8:]


def withFastClock(data):
    """Counting half frames: clocks need not tick with the sampling rate."""
    data = bytearray(data)

    def redouble(place):
        struct.pack_into(">I", data, place, 2 * struct.unpack_from(">I", data, place)[0])

    clock = data.index(b"mdhd") + 16
    times = data.index(b"stts") + 12
    entries = struct.unpack_from(">I", data, times - 4)[0]
    for place in [clock, clock + 4, data.index(b"elst") + 16,
                  *(times + 4 + 8 * i for i in range(entries))]:
        redouble(place)
    return bytes(data)


def descriptor(tag, data):
    return bytes([tag, 128, 128, 128, len(data)]) + data


def cafOfAdts(data, frames):
    """The same access units in a CAF file, whose packet table states the priming."""
    units = adtsUnits(data)
    config = struct.pack(">H", 2 << 11 | (data[2] >> 2 & 15) << 7 | (data[3] >> 6) << 3)
    decoder = descriptor(4, b"\x40\x15\0\0\0" + b"\0\3\xE8\0" * 2 + descriptor(5, config))
    cookie = descriptor(3, b"\0\0\0" + decoder + descriptor(6, b"\2"))
    table = struct.pack(">qqii", len(units), frames, AAC_LATE,
                        1024 * len(units) - AAC_LATE - frames)
    for unit in units:
        table += bytes([128 | len(unit) >> 7, len(unit) & 127]) if len(unit) > 127 \
            else bytes([len(unit)])
    chunks = [(b"desc", struct.pack(">d4sIIIII", 44100, b"aac ", 0, 0, 1024, 2, 0)),
              (b"kuki", cookie), (b"pakt", table), (b"data", b"\0" * 4 + b"".join(units))]
    return b"caff\0\1\0\0" + b"".join(kind + struct.pack(">q", len(body)) + body
                                      for kind, body in chunks)


def cut(data):
    return data[:len(data) * 6 // 10 + 1]
