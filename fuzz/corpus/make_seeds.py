#!/usr/bin/env python3
"""Writes the seed corpora of the fuzz targets from the project's own fixtures.

Run from anywhere; it rewrites fuzz/corpus/<target>/seed-* and leaves the regression cases
(crash-*) alone. Records are written as their header only: fuzz_exports completes a record
from the driver's default where the input stops, so a header that declares the driver's sizes
is the driver's own record.
"""
import os
import struct

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
CORPUS = os.path.join(ROOT, "fuzz", "corpus")
PJL = os.path.join(ROOT, "tests", "fixtures", "pjl", "plan2440.pjl")
FINISHER = os.path.join(ROOT, "tests", "fixtures", "finisher")


def write(target, name, data):
    folder = os.path.join(CORPUS, target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "seed-" + name), "wb") as f:
        f.write(data)


def read(path):
    with open(path, "rb") as f:
        return f.read()


def devmode_header(size, extra, layout_version=0x401, driver=0xC07, name="Fuzz"):
    """The first 68 bytes of a DEVMODEW: name, versions and the two sizes."""
    device = name.encode("utf-16-le").ljust(64, b"\0")
    return device + struct.pack("<HHHH", layout_version, driver, size, extra)


pjl = read(PJL)
replies = pjl.split(b"\x0c")

# The parser alone and the whole conversation: the capture, each reply, and the capture cut.
for target in ("parsepjl", "conversation"):
    write(target, "plan2440.pjl", pjl)
    write(target, "first-three.pjl", b"\x0c".join(replies[:3]))
    write(target, "cut.pjl", pjl[: len(pjl) // 2])
write("conversation", "variables.pjl", b"\x0c" + replies[2] + b"\x0c")

# Finisher description files: the fixtures, and the good one in UTF-16 with its mark.
for name in sorted(os.listdir(FINISHER)):
    write("finisher", name, read(os.path.join(FINISHER, name)))
write("finisher", "good-utf16.ini",
      b"\xff\xfe" + read(os.path.join(FINISHER, "good.ini")).decode("utf-8").encode("utf-16-le"))

# Exports: selector, conversion block and its declared sizes, one more index, then a record.
def exports(selector, cb_out, out_size, out_extra, index, record):
    return struct.pack("<BHHHH", selector, cb_out, out_size, out_extra, index) + record

write("exports", "own-current", exports(0x00, 13484, 220, 13264, 0, devmode_header(220, 13264)))
write("exports", "own-older", exports(0x83, 3252, 220, 3032, 0x5049,
                                     devmode_header(220, 3032)))
write("exports", "foreign-public", exports(0x05, 220, 220, 0, 21,
                                          devmode_header(220, 0, driver=0x0100)))
write("exports", "nt351", exports(0x02, 188, 188, 0, 35, devmode_header(188, 0, layout_version=0x320)))
write("exports", "short-output", exports(0x01, 40, 220, 13264, 0, devmode_header(220, 13264)))

# Stored state: selector, then (which, number, type, length byte, [length,] bytes) entries.
def value(which, number, rtype, data):
    return struct.pack("<BBBBB", which, number, rtype, 0, len(data)) + data

form = "Fuzz form".encode("utf-16-le").ljust(64, b"\0") + struct.pack("<III", 5940, 8410, 1)
write("store", "two-forms", b"\x00" + value(0, 0, 4, struct.pack("<I", 2))
      + value(1, 0, 3, form) + value(1, 1, 3, form))
write("store", "seventy-forms", b"\x03" + value(0, 0, 4, struct.pack("<I", 70)))
write("store", "map-and-tab", b"\x80" + value(4, 0, 1, "10.0.0.9\0".encode("utf-16-le"))
      + value(3, 0, 4, struct.pack("<I", 4)))
write("store", "switches", b"\x01" + value(5, 0, 4, struct.pack("<I", 1))
      + value(5, 20, 4, struct.pack("<I", 1)) + value(5, 3, 1, b"x\0"))
write("store", "accounting", b"\x80" + value(6, 0, 3, bytes(range(140)))
      + value(7, 0, 3, bytes(44)) + value(8, 0, 4, struct.pack("<I", 0)))

# Sheets: selector, record changes, then actions (op, control pick, arguments...).
write("sheets", "paper-ok", b"\x00\x00" + bytes([0, 0, 0]) + bytes([13, 0]))
write("sheets", "device-ok", b"\x01\x00" + bytes([0, 0, 4]) + bytes([13, 0]))
write("sheets", "each-tab", b"\x00\x00" + b"".join(bytes([0, 0, t]) for t in range(6)))
write("sheets", "device-finisher", b"\x01\x00" + bytes([0, 0, 4, 7, 3, 14, 12, 0, 0]))
write("sheets", "job-dialogs", b"\x00\x01\x10\x00\x02\x00\x00\x00" + bytes([0, 0, 1])
      + b"".join(bytes([1, i]) for i in range(8)))
