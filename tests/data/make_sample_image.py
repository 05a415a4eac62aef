#!/usr/bin/env python3
"""Writes sample-part.png: a synthetic camera view of a machined part on a conveyor, for the
demo page and the display tests. Standard library only; run it again to regenerate the file:

    python3 tests/data/make_sample_image.py tests/data/sample-part.png
"""
import math
import struct
import sys
import zlib

WIDTH, HEIGHT = 1280, 960


def pixel(x, y):
    # Conveyor belt: a soft vertical gradient with faint horizontal ribs.
    base = 70 + 40 * y / HEIGHT + (6 if (y // 24) % 2 else 0)
    r = g = b = base
    # The part: a bright disc with a bore and six bolt holes.
    cx, cy = 640.0, 470.0
    d = math.hypot(x - cx, y - cy)
    if d < 300:
        shade = 200 - 50 * d / 300
        r, g, b = shade, shade, shade + 10
        if d < 80:
            r = g = b = 25
        for k in range(6):
            a = k * math.pi / 3
            if math.hypot(x - (cx + 200 * math.cos(a)), y - (cy + 200 * math.sin(a))) < 28:
                r = g = b = 35
    # A calibration grid in the top-left corner: one-pixel lines every 8 pixels.
    if x < 160 and y < 160 and (x % 8 == 0 or y % 8 == 0):
        r = g = b = 250
    # Three colour reference patches at the bottom.
    for i, colour in enumerate(((220, 40, 40), (40, 200, 60), (40, 80, 220))):
        if 860 <= y < 930 and 60 + 110 * i <= x < 160 + 110 * i:
            r, g, b = colour
    return int(r), int(g), int(b)


def main(path):
    rows = bytearray()
    for y in range(HEIGHT):
        rows.append(0)  # filter: none
        for x in range(WIDTH):
            rows.extend(pixel(x, y))

    def chunk(kind, data):
        c = struct.pack(">I", len(data)) + kind + data
        return c + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)

    png = b"\x89PNG\r\n\x1a\n"
    png += chunk(b"IHDR", struct.pack(">IIBBBBB", WIDTH, HEIGHT, 8, 2, 0, 0, 0))
    png += chunk(b"IDAT", zlib.compress(bytes(rows), 9))
    png += chunk(b"IEND", b"")
    with open(path, "wb") as f:
        f.write(png)


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else "sample-part.png")
