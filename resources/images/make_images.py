#!/usr/bin/env python3
"""Draws the bitmaps and icons of QLMRes.DLL: a plotter per model, the tab logo, the about
picture and the six paper icons. Standard library only; run it again after a change and commit
the files it writes next to itself."""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))

# 5x7 glyphs, one string of five bits per row.
FONT = {
    "0": ["01110", "10001", "10011", "10101", "11001", "10001", "01110"],
    "1": ["00100", "01100", "00100", "00100", "00100", "00100", "01110"],
    "2": ["01110", "10001", "00001", "00110", "01000", "10000", "11111"],
    "3": ["11110", "00001", "00001", "01110", "00001", "00001", "11110"],
    "4": ["00010", "00110", "01010", "10010", "11111", "00010", "00010"],
    "7": ["11111", "00001", "00010", "00100", "01000", "01000", "01000"],
    "8": ["01110", "10001", "10001", "01110", "10001", "10001", "01110"],
    "A": ["01110", "10001", "10001", "11111", "10001", "10001", "10001"],
    "D": ["11110", "10001", "10001", "10001", "10001", "10001", "11110"],
    "E": ["11111", "10000", "10000", "11110", "10000", "10000", "11111"],
    "F": ["11111", "10000", "10000", "11110", "10000", "10000", "10000"],
    "I": ["01110", "00100", "00100", "00100", "00100", "00100", "01110"],
    "L": ["10000", "10000", "10000", "10000", "10000", "10000", "11111"],
    "M": ["10001", "11011", "10101", "10101", "10001", "10001", "10001"],
    "O": ["01110", "10001", "10001", "10001", "10001", "10001", "01110"],
    "P": ["11110", "10001", "10001", "11110", "10000", "10000", "10000"],
    "Q": ["01110", "10001", "10001", "10001", "10101", "10010", "01101"],
    "R": ["11110", "10001", "10001", "11110", "10100", "10010", "10001"],
    "T": ["11111", "00100", "00100", "00100", "00100", "00100", "00100"],
    "V": ["10001", "10001", "10001", "10001", "10001", "01010", "00100"],
    "W": ["10001", "10001", "10001", "10101", "10101", "10101", "01010"],
    "/": ["00001", "00010", "00010", "00100", "01000", "01000", "10000"],
    " ": ["00000"] * 7,
}

WHITE = (255, 255, 255)
GREY = (192, 192, 192)  # the 3D face colour that LR_LOADMAP3DCOLORS replaces
DARK = (64, 64, 64)
BLUE = (0, 70, 140)
LIGHT = (225, 232, 240)
PAPER = (250, 250, 245)


class Canvas:
    def __init__(self, width, height, background):
        self.width, self.height = width, height
        self.pixels = [[background] * width for _ in range(height)]

    def rect(self, x0, y0, x1, y1, colour):
        for y in range(max(0, y0), min(self.height, y1)):
            for x in range(max(0, x0), min(self.width, x1)):
                self.pixels[y][x] = colour

    def frame(self, x0, y0, x1, y1, colour):
        self.rect(x0, y0, x1, y0 + 1, colour)
        self.rect(x0, y1 - 1, x1, y1, colour)
        self.rect(x0, y0, x0 + 1, y1, colour)
        self.rect(x1 - 1, y0, x1, y1, colour)

    def text(self, x, y, text, colour, scale=1):
        for ch in text:
            for row, bits in enumerate(FONT[ch]):
                for col, bit in enumerate(bits):
                    if bit == "1":
                        self.rect(x + col * scale, y + row * scale, x + (col + 1) * scale,
                                  y + (row + 1) * scale, colour)
            x += 6 * scale

    def text_width(self, text, scale=1):
        return (6 * len(text) - 1) * scale

    def rows_bottom_up(self):
        """24-bit BGR rows, bottom row first, each padded to four bytes."""
        pad = (4 - self.width * 3 % 4) % 4
        out = bytearray()
        for row in reversed(self.pixels):
            for r, g, b in row:
                out += bytes((b, g, r))
            out += b"\0" * pad
        return bytes(out)


def info_header(width, height):
    return struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, 0, 2835, 2835, 0, 0)


def write_bmp(name, canvas):
    data = canvas.rows_bottom_up()
    header = info_header(canvas.width, canvas.height)
    offset = 14 + len(header)
    with open(os.path.join(HERE, name), "wb") as f:
        f.write(b"BM" + struct.pack("<IHHI", offset + len(data), 0, 0, offset))
        f.write(header + data)


def write_ico(name, canvas, transparent):
    """One 24-bit image; pixels of the transparent colour are masked out."""
    w, h = canvas.width, canvas.height
    mask_stride = (w + 31) // 32 * 4
    mask = bytearray()
    for row in reversed(canvas.pixels):
        line = bytearray(mask_stride)
        for x, px in enumerate(row):
            if px == transparent:
                line[x // 8] |= 0x80 >> (x % 8)
        mask += line
    image = info_header(w, h * 2) + canvas.rows_bottom_up() + bytes(mask)
    with open(os.path.join(HERE, name), "wb") as f:
        f.write(struct.pack("<HHH", 0, 1, 1))
        f.write(struct.pack("<BBBBHHII", w % 256, h % 256, 0, 0, 1, 24, len(image), 22))
        f.write(image)


def plotter(label, rolls):
    """A wide-format plotter seen from the front: the engine on a stand with its roll drawers."""
    c = Canvas(128, 96, WHITE)
    c.rect(8, 14, 120, 46, LIGHT)  # engine
    c.frame(8, 14, 120, 46, DARK)
    c.rect(12, 40, 116, 43, DARK)  # paper exit
    c.rect(20, 4, 108, 14, PAPER)  # a plot leaving the top
    c.frame(20, 4, 108, 14, DARK)
    c.rect(96, 18, 114, 26, BLUE)  # control panel
    c.text(14, 20, label, BLUE, 2 if c.text_width(label, 2) <= 78 else 1)
    drawer = max(4, 32 // rolls)
    for i in range(rolls):  # one drawer per roll under the engine
        y = 48 + i * drawer
        c.rect(14, y, 114, y + drawer - 1, GREY)
        c.frame(14, y, 114, y + drawer - 1, DARK)
        c.rect(58, y + drawer // 2 - 1, 70, y + drawer // 2 + 1, DARK)
    c.rect(14, 82, 18, 92, DARK)  # legs and wheels
    c.rect(110, 82, 114, 92, DARK)
    c.rect(10, 90, 118, 92, DARK)
    return c


def logo(size):
    """The product mark: a sheet coming off a roll, on the dialog face colour."""
    c = Canvas(size, size, GREY)
    c.rect(3, 6, size - 3, size - 10, PAPER)
    c.frame(3, 6, size - 3, size - 10, BLUE)
    c.rect(1, size - 10, size - 1, size - 4, BLUE)  # the roll
    c.text((size - c.text_width("QLM")) // 2, 10, "QLM", BLUE)
    return c


def about():
    c = Canvas(200, 48, GREY)
    c.rect(0, 0, 200, 48, BLUE)
    c.text(10, 10, "QLM", WHITE, 3)
    c.text(74, 12, "WIDE FORMAT", WHITE)
    c.text(74, 26, "DRIVER", WHITE)
    return c


def page_icon(landscape, mark):
    """A 32x32 sheet; mark "A" draws a letter, "W" an arrow across the width, "" a plain sheet."""
    c = Canvas(32, 32, WHITE)
    x0, y0, x1, y1 = (2, 7, 30, 25) if landscape else (7, 2, 25, 30)
    c.rect(x0, y0, x1, y1, PAPER)
    c.frame(x0, y0, x1, y1, DARK)
    c.rect(x1 - 5, y0 + 1, x1 - 1, y0 + 5, GREY)  # folded corner
    if mark == "A":
        c.text(13, 12, "A", BLUE)
    elif mark == "W":
        y = (y0 + y1) // 2
        c.rect(x0 + 3, y, x1 - 3, y + 1, BLUE)
        c.rect(x0 + 3, y - 2, x0 + 4, y + 3, BLUE)
        c.rect(x1 - 4, y - 2, x1 - 3, y + 3, BLUE)
    return c


# Bitmap resource number -> (file, label, rolls) of the model pictures.
MODELS = {
    58: ("model_other.bmp", "WIDE", 3),
    59: ("model_1.bmp", "2410", 2),
    60: ("model_0.bmp", "2420", 3),
    61: ("model_3.bmp", "2440", 3),
    62: ("model_10.bmp", "3344", 2),
    63: ("model_8.bmp", "3310/3320", 2),
    64: ("model_11.bmp", "3320A", 4),
    65: ("model_6.bmp", "318P", 4),
    66: ("model_7.bmp", "427", 3),
}

# Icon resource number -> (file, landscape, mark): 1/4 the paper tab's orientation, 2/5 and 3/6
# the size fields of the custom and user paper dialogs.
ICONS = {
    1: ("landscape.ico", True, "A"),
    2: ("landscape_width.ico", True, "W"),
    3: ("landscape_sheet.ico", True, ""),
    4: ("portrait.ico", False, "A"),
    5: ("portrait_width.ico", False, "W"),
    6: ("portrait_sheet.ico", False, ""),
}


def main():
    for _, (name, label, rolls) in sorted(MODELS.items()):
        write_bmp(name, plotter(label, rolls))
    write_bmp("logo.bmp", logo(32))
    write_bmp("about.bmp", about())
    for _, (name, landscape, mark) in sorted(ICONS.items()):
        write_ico(name, page_icon(landscape, mark), WHITE)


if __name__ == "__main__":
    main()
