#!/usr/bin/env python3
"""Converts an X window dump (xwd, 24/32-bit TrueColor) to PNG and checks it.

  xwd-to-png.py SHOT.xwd SHOT.png [--min-colours N]

Exits 1 when the picture has fewer than N distinct colours (default 8): a
blank or single-colour screen means that nothing was drawn.
"""
import struct
import sys
import zlib


def read_xwd(path):
    data = open(path, "rb").read()
    header = struct.unpack(">25I", data[:100])
    (header_size, _version, _format, _depth, width, height, _xoff, byte_order, _unit, _bit_order, _pad, bpp,
     bytes_per_line, _visual, red_mask, green_mask, blue_mask, _bits_rgb, _entries, ncolours) = header[:20]
    if bpp not in (24, 32):
        raise SystemExit("xwd-to-png: only 24 and 32 bits per pixel are read, not %d" % bpp)
    start = header_size + ncolours * 12
    step = bpp // 8
    rows = []
    for y in range(height):
        line = data[start + y * bytes_per_line: start + y * bytes_per_line + width * step]
        row = bytearray()
        for x in range(width):
            px = line[x * step: x * step + step]
            value = int.from_bytes(px, "little" if byte_order == 0 else "big")
            for mask in (red_mask, green_mask, blue_mask):
                shift = (mask & -mask).bit_length() - 1
                row.append((value & mask) >> shift)
        rows.append(bytes(row))
    return width, height, rows


def write_png(path, width, height, rows):
    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body) & 0xFFFFFFFF)
    raw = b"".join(b"\0" + r for r in rows)
    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
                + chunk(b"IDAT", zlib.compress(raw, 6)) + chunk(b"IEND", b""))


def main():
    if len(sys.argv) < 3:
        raise SystemExit(__doc__)
    minimum = int(sys.argv[4]) if len(sys.argv) > 4 and sys.argv[3] == "--min-colours" else 8
    width, height, rows = read_xwd(sys.argv[1])
    write_png(sys.argv[2], width, height, rows)
    colours = set()
    for r in rows[::4]:
        for x in range(0, len(r), 12):
            colours.add(r[x:x + 3])
    print("xwd-to-png: %d x %d, %d colours sampled" % (width, height, len(colours)))
    sys.exit(0 if len(colours) >= minimum else 1)


if __name__ == "__main__":
    main()
