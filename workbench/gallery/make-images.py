#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT

"""Writes the calendar's arrows into the folder images; the build doesn't run it, its results are committed.

A chevron of 16 by 16 pixels in three looks, mirrored for the other side, with edges from 8 by 8 samples a pixel. Needs
nothing but Python and writes the same bytes each time.
"""

import pathlib
import struct
import zlib

SIZE = 16
SAMPLES = 8
HALF_WIDTH = 1.1
CHEVRON = [((10.0, 3.0), (5.0, 8.0)), ((5.0, 8.0), (10.0, 13.0))]  # points to the left
LOOKS = {"default": (72, 68, 68), "pressed": (13, 166, 158), "disabled": (186, 186, 186)}


def distance(x, y, start, end):
    run, rise = end[0] - start[0], end[1] - start[1]
    along = ((x - start[0]) * run + (y - start[1]) * rise) / (run * run + rise * rise)
    along = min(max(along, 0.0), 1.0)
    return ((x - start[0] - along * run) ** 2 + (y - start[1] - along * rise) ** 2) ** 0.5


def cover(column, row):
    """The share of a pixel that the chevron covers, as an alpha value."""
    inside = 0
    for i in range(SAMPLES * SAMPLES):
        x = column + (i % SAMPLES + 0.5) / SAMPLES
        y = row + (i // SAMPLES + 0.5) / SAMPLES
        inside += any(distance(x, y, *line) <= HALF_WIDTH for line in CHEVRON)
    return round(255 * inside / (SAMPLES * SAMPLES))


def chunk(name, data):
    return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))


def write(path, colour, rows):
    lines = b"".join(b"\0" + b"".join(bytes((*colour, alpha)) for alpha in row) for row in rows)
    head = struct.pack(">IIBBBBB", SIZE, SIZE, 8, 6, 0, 0, 0)
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b""))


folder = pathlib.Path(__file__).parent / "images"
left = [[cover(column, row) for column in range(SIZE)] for row in range(SIZE)]
for look, colour in LOOKS.items():
    write(folder / f"arrow_left_{look}.png", colour, left)
    write(folder / f"arrow_right_{look}.png", colour, [row[::-1] for row in left])
