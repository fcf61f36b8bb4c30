#!/usr/bin/env python3
"""Writes tables.cc: which characters join the letter before them, and how letters and marks compose.

Run it in this folder when a newer Unicode is wanted: python3 make_tables.py > tables.cc
"""
import unicodedata

LAST = 0x110000


def ranges(categories):
    found = []
    for c in range(LAST):
        if unicodedata.category(chr(c)) not in categories:
            continue
        if found and found[-1][1] == c - 1:
            found[-1][1] = c
        else:
            found.append([c, c])
    return found


def compositions():
    """Canonical pairs that normal form C makes one of, Hangul aside."""
    pairs = []
    for c in range(LAST):
        parts = unicodedata.decomposition(chr(c)).split()
        if len(parts) != 2 or parts[0].startswith("<"):
            continue
        first, mark = (int(part, 16) for part in parts)
        if unicodedata.normalize("NFC", chr(first) + chr(mark)) == chr(c):
            pairs.append((first, mark, c))
    return sorted(pairs)


def rows(head, items):
    print(head)
    line = "   "
    for item in items:
        text = " {" + ", ".join(f"0x{n:X}" for n in item) + "},"
        if len(line) + len(text) > 100:
            print(line)
            line = "   "
        line += text
    print(line)
    print("};")


print(f"""// Written by make_tables.py from Unicode {unicodedata.unidata_version}.
// clang-format off
#include "platform/text/tables.h"

namespace platform {{
""")
rows("const CharacterRange kMarks[] = {", ranges(("Mn", "Me")))
print("const size_t kMarkCount = sizeof kMarks / sizeof *kMarks;\n")
rows("const CharacterRange kSpacingMarks[] = {", ranges(("Mc",)))
print("const size_t kSpacingMarkCount = sizeof kSpacingMarks / sizeof *kSpacingMarks;\n")
rows("const Composition kCompositions[] = {", compositions())
print("const size_t kCompositionCount = sizeof kCompositions / sizeof *kCompositions;\n")
print("}  // namespace platform")
