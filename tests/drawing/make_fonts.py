#!/usr/bin/env python3
"""Writes the test fonts beside this script, in fonts/: every character a block of known size.

All have 1000 units an em, ascent 800, descent 200. Run it again after a change; the files are kept
in the repository so that tests need no font tools.
"""
import os
import struct

# file, family, style name, PostScript name, full name, advance, bold, italic, without characters
FONTS = [
    ("plain.ttf", "Quorvik Test", "Regular", "QuorvikTest", "Quorvik Test", 600, 0, 0, "\u03a9\u2122"),
    ("bold.ttf", "Quorvik Test", "Bold", "QuorvikTest-Bold", "Quorvik Test Bold", 700, 1, 0, ""),
    ("narrow.ttf", "Quorvik Test Narrow", "Regular", "QuorvikTest-Narrow", "Quorvik Test Narrow",
     400, 0, 0, ""),
    ("bold_italic.ttf", "Quorvik Test", "Bold Italic", "QuorvikTest-Bold-Italic",
     "Quorvik Test Bold Italic", 750, 1, 1, ""),
    # Stands in for a well-known family.
    ("mono.ttf", "Liberation Mono", "Regular", "LiberationMono", "Liberation Mono", 500, 0, 0, ""),
]


def characters(missing):
    text = bytes(range(33, 256)).decode("mac_roman")
    return sorted({ord(c) for c in text if c not in missing and ord(c) not in (0x7F, 0xF8FF)})


def box(left, bottom, right, top):
    points = [(left, bottom), (left, top), (right, top), (right, bottom)]
    data = struct.pack(">hhhhh", 1, left, bottom, right, top) + struct.pack(">HH", 3, 0)
    data += bytes([1] * 4)
    for axis in (0, 1):
        last = 0
        for p in points:
            data += struct.pack(">h", p[axis] - last)
            last = p[axis]
    return data + b"\0" * (-len(data) % 4)


def cmap(missing):
    # Glyph 1 is the space, glyph 2 the block.
    groups = [(32, 32, 1)] + [(c, c, 2) for c in characters(missing)]
    groups.append((0xA0, 0xA0, 1)) if 0xA0 not in characters(missing) else None
    groups = sorted(set(groups))
    table = struct.pack(">HHLLL", 12, 0, 16 + 12 * len(groups), 0, len(groups))
    for g in groups:
        table += struct.pack(">LLL", g[0], g[1], g[2])
    return struct.pack(">HHHHL", 0, 1, 3, 10, 12) + table


def names(family, style, postscript, full):
    records, text = b"", b""
    for number, value in ((1, family), (2, style), (4, full), (6, postscript)):
        data = value.encode("utf-16-be")
        records += struct.pack(">HHHHHH", 3, 1, 0x409, number, len(data), len(text))
        text += data
    return struct.pack(">HHH", 0, 4, 6 + len(records)) + records + text


def font(family, style, postscript, full, advance, bold, italic, missing):
    right = advance - 100
    block = box(100, 0, right, 700)
    empty_box = box(0, 0, right, 600)
    glyf = empty_box + block
    loca = struct.pack(">LLLL", 0, len(empty_box), len(empty_box), len(glyf))
    mac_style = bold | italic << 1
    tables = {
        b"OS/2": struct.pack(">HhHHHhhhhhhhhhhh10sLLLL4sHHHhhhHH", 3, advance, 700 if bold else 400,
                             3 if "Narrow" in family else 5, 0, 650, 600, 0, 75, 650, 600, 0, 350,
                             50, 300, 0, b"\0" * 10, 1, 0, 0, 0, b"TEST",
                             (0x20 if bold else 0) | (1 if italic else 0) or 0x40, 32, 0xFB02, 800,
                             -200, 0, 800, 200) + struct.pack(">LLhhHHH", 1, 0, 500, 700, 0, 32, 1),
        b"cmap": cmap(missing),
        b"glyf": glyf,
        b"head": struct.pack(">LLLLHHQQhhhhHHhhh", 0x10000, 0x10000, 0, 0x5F0F3CF5, 3, 1000, 0, 0,
                             0, 0, right, 700, mac_style, 8, 2, 1, 0),
        b"hhea": struct.pack(">LhhhHhhhhhhhhhhhH", 0x10000, 800, -200, 0, advance, 0, 100, right, 1,
                             0, 0, 0, 0, 0, 0, 0, 1),
        b"hmtx": struct.pack(">Hh", advance, 0) + struct.pack(">hh", 0, 100),
        b"loca": loca,
        b"maxp": struct.pack(">LHHHHHHHHHHHHHH", 0x10000, 3, 4, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0),
        b"name": names(family, style, postscript, full),
        b"post": struct.pack(">LLhhLLLLL", 0x30000, 0, -100, 50, 1, 0, 0, 0, 0),
    }
    offset = 12 + 16 * len(tables)
    directory, body = struct.pack(">LHHHH", 0x10000, len(tables), 128, 3, 16 * len(tables) - 128), b""
    for tag, data in sorted(tables.items()):
        padded = data + b"\0" * (-len(data) % 4)
        total = sum(struct.unpack(">%dL" % (len(padded) // 4), padded)) & 0xFFFFFFFF
        directory += tag + struct.pack(">LLL", total, offset + len(body), len(data))
        body += padded
    return directory + body


def main():
    folder = os.path.join(os.path.dirname(os.path.abspath(__file__)), "fonts")
    for row in FONTS:
        with open(os.path.join(folder, row[0]), "wb") as f:
            f.write(font(*row[1:]))


if __name__ == "__main__":
    main()
