#!/usr/bin/env python3
"""Draws the program's own pictures into layer/resources as PNG files.

The pictures are simple vector shapes (signed distances, so edges are
smooth) in one style: sky-blue rounded tiles with white symbols, a grey
pressed tile, soft shadows. Only the Python standard library is used.

  picture444.png  window icon, 64 x 64
  picture550.png  analysis arrows: left, right, shadow; 3 cells of 64 x 192
  picture555.png  control panel icons: 10 x 10 cells of 64 x 64
  picture777.png  button tiles: 10 x 2 cells of 64 x 64; tile 19 is "pressed"
  picture888.png  text box icons: 10 cells of 64 x 64 (back, forward, OK, Cancel, ..., shadows)
  picture999.png  back picture of the control panel, 256 x 128

Run: python3 scripts/make-pictures.py  (rewrites the files)
"""
import math
import os
import struct
import zlib

SKY = (0, 180, 255)
NAVY = (20, 60, 120)
WHITE = (255, 255, 255)
GREY = (160, 160, 160)
CHARCOAL = (50, 50, 50)
SHADOW = (0, 0, 0)

# 5 x 7 letters for the quantity icons.
GLYPHS = {
    "U": ["10001", "10001", "10001", "10001", "10001", "10001", "01110"],
    "V": ["10001", "10001", "10001", "10001", "01010", "01010", "00100"],
    "W": ["10001", "10001", "10001", "10101", "10101", "11011", "10001"],
    "T": ["11111", "00100", "00100", "00100", "00100", "00100", "00100"],
    "Y": ["10001", "10001", "01010", "00100", "00100", "00100", "00100"],
    "P": ["11110", "10001", "10001", "11110", "10000", "10000", "10000"],
    "R": ["11110", "10001", "10001", "11110", "10100", "10010", "10001"],
    "A": ["01110", "10001", "10001", "11111", "10001", "10001", "10001"],
    "F": ["11111", "10000", "10000", "11110", "10000", "10000", "10000"],
    "H": ["10001", "10001", "10001", "11111", "10001", "10001", "10001"],
    "|": ["00100", "00100", "00100", "00100", "00100", "00100", "00100"],
    "?": ["01110", "10001", "00001", "00110", "00100", "00000", "00100"],
    "-": ["00000", "00000", "00000", "11111", "00000", "00000", "00000"],
    "+": ["00000", "00100", "00100", "11111", "00100", "00100", "00000"],
}


class canvas:
    def __init__(self, w, h):
        self.w, self.h = w, h
        self.px = [[0.0, 0.0, 0.0, 0.0] for _ in range(w * h)]  # premultiplied r g b a in 0..1

    def paint(self, sdf, colour, alpha=1.0, box=None):
        """Blends colour where sdf(x, y) < 0, with a one-pixel smooth edge."""
        x0, y0, x1, y1 = box if box else (0, 0, self.w, self.h)
        x0, y0 = max(0, int(x0)), max(0, int(y0))
        x1, y1 = min(self.w, int(math.ceil(x1))), min(self.h, int(math.ceil(y1)))
        cr, cg, cb = (c / 255.0 for c in colour)
        for y in range(y0, y1):
            for x in range(x0, x1):
                d = sdf(x + 0.5, y + 0.5)
                cover = min(1.0, max(0.0, 0.5 - d)) * alpha
                if cover <= 0.0:
                    continue
                p = self.px[y * self.w + x]
                k = 1.0 - cover
                p[0] = cr * cover + p[0] * k
                p[1] = cg * cover + p[1] * k
                p[2] = cb * cover + p[2] * k
                p[3] = cover + p[3] * k

    def save(self, path):
        raw = bytearray()
        for y in range(self.h):
            raw.append(0)
            for x in range(self.w):
                r, g, b, a = self.px[y * self.w + x]
                if a > 0:
                    r, g, b = r / a, g / a, b / a
                raw += bytes(int(round(min(1.0, max(0.0, v)) * 255)) for v in (r, g, b, a))

        def chunk(kind, data):
            body = kind + data
            return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

        png = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", self.w, self.h, 8, 6, 0, 0, 0))
        png += chunk(b"IDAT", zlib.compress(bytes(raw), 9)) + chunk(b"IEND", b"")
        with open(path, "wb") as f:
            f.write(png)


# ---- signed distances (negative inside), in pixels

def rounded_box(cx, cy, hw, hh, r):
    def f(x, y):
        qx, qy = abs(x - cx) - hw + r, abs(y - cy) - hh + r
        return math.hypot(max(qx, 0.0), max(qy, 0.0)) + min(max(qx, qy), 0.0) - r
    return f


def circle(cx, cy, r):
    return lambda x, y: math.hypot(x - cx, y - cy) - r


def ring(cx, cy, r, w):
    return lambda x, y: abs(math.hypot(x - cx, y - cy) - r) - 0.5 * w


def segment(ax, ay, bx, by, w):
    def f(x, y):
        dx, dy = bx - ax, by - ay
        t = max(0.0, min(1.0, ((x - ax) * dx + (y - ay) * dy) / (dx * dx + dy * dy or 1.0)))
        return math.hypot(x - ax - t * dx, y - ay - t * dy) - 0.5 * w
    return f


def polygon(pts):
    def f(x, y):
        d = float("inf")
        inside = False
        n = len(pts)
        for i in range(n):
            ax, ay = pts[i]
            bx, by = pts[(i + 1) % n]
            dx, dy = bx - ax, by - ay
            t = max(0.0, min(1.0, ((x - ax) * dx + (y - ay) * dy) / (dx * dx + dy * dy or 1.0)))
            d = min(d, math.hypot(x - ax - t * dx, y - ay - t * dy))
            if (ay > y) != (by > y) and x < ax + (y - ay) * dx / (dy or 1e-9):
                inside = not inside
        return -d if inside else d
    return f


def union(*fs):
    return lambda x, y: min(f(x, y) for f in fs)


# ---- building blocks

def tile(c, ox, oy, size=64, colour=SKY, shadow=True):
    if shadow:
        c.paint(rounded_box(ox + 33.5, oy + 34.5, 27, 27, 9), SHADOW, 0.25, (ox, oy, ox + size, oy + size))
    c.paint(rounded_box(ox + 32, oy + 32, 27, 27, 9), colour, 1.0, (ox, oy, ox + size, oy + size))
    c.paint(rounded_box(ox + 32, oy + 24, 24, 10, 8), WHITE, 0.12, (ox, oy, ox + size, oy + size))


def arrow(ox, oy, direction, w=8, length=30):
    """A thick arrow through the cell centre, direction in degrees (0 right, 90 up)."""
    a = math.radians(direction)
    ux, uy = math.cos(a), -math.sin(a)
    cx, cy = ox + 32, oy + 32
    tail = (cx - ux * length / 2, cy - uy * length / 2)
    tip = (cx + ux * length / 2, cy + uy * length / 2)
    px, py = -uy, ux
    head = [(tip[0] + ux * 2, tip[1] + uy * 2),
            (tip[0] - ux * 12 + px * 11, tip[1] - uy * 12 + py * 11),
            (tip[0] - ux * 12 - px * 11, tip[1] - uy * 12 - py * 11)]
    return union(segment(tail[0], tail[1], tip[0] - ux * 8, tip[1] - uy * 8, w), polygon(head))


def text_sdf(ox, oy, text, scale=3):
    """Blocky letters from the 5 x 7 table, centred in the cell."""
    boxes = []
    width = len(text) * 6 * scale - scale
    x0 = ox + 32 - width / 2
    y0 = oy + 32 - 3.5 * scale
    for i, ch in enumerate(text):
        rows = GLYPHS.get(ch, GLYPHS["?"])
        for r, row in enumerate(rows):
            for k, bit in enumerate(row):
                if bit == "1":
                    cx = x0 + (i * 6 + k + 0.5) * scale
                    cy = y0 + (r + 0.5) * scale
                    boxes.append(rounded_box(cx, cy, scale * 0.5 + 0.3, scale * 0.5 + 0.3, 0.3))
    return lambda x, y: min(b(x, y) for b in boxes) if boxes else 1.0


def draw(c, sdf, colour, ox, oy, w=64, h=64, alpha=1.0):
    c.paint(sdf, colour, alpha, (ox, oy, ox + w, oy + h))


# ---- pictures

def buttons(path):
    c = canvas(640, 128)
    symbols = {
        0: lambda ox, oy: arrow(ox, oy, 90),
        1: lambda ox, oy: arrow(ox, oy, 270),
        2: lambda ox, oy: arrow(ox, oy, 180),
        3: lambda ox, oy: arrow(ox, oy, 0),
        4: lambda ox, oy: union(segment(ox + 18, oy + 32, ox + 46, oy + 32, 8), segment(ox + 32, oy + 18, ox + 32, oy + 46, 8)),
        5: lambda ox, oy: segment(ox + 18, oy + 32, ox + 46, oy + 32, 8),
        6: lambda ox, oy: union(arrow(ox - 8, oy, 90, 6, 26), segment(ox + 36, oy + 22, ox + 48, oy + 22, 5), segment(ox + 36, oy + 34, ox + 48, oy + 34, 5), segment(ox + 36, oy + 46, ox + 48, oy + 46, 5)),
        7: lambda ox, oy: union(arrow(ox - 8, oy, 270, 6, 26), segment(ox + 36, oy + 18, ox + 48, oy + 18, 5), segment(ox + 36, oy + 30, ox + 48, oy + 30, 5), segment(ox + 36, oy + 42, ox + 48, oy + 42, 5)),
        8: lambda ox, oy: circle(ox + 32, oy + 32, 6),
        10: lambda ox, oy: union(ring(ox + 32, oy + 32, 15, 5), polygon([(ox + 44, oy + 10), (ox + 54, oy + 24), (ox + 38, oy + 24)])),
        11: lambda ox, oy: union(ring(ox + 32, oy + 32, 15, 5), polygon([(ox + 20, oy + 10), (ox + 10, oy + 24), (ox + 26, oy + 24)])),
        12: lambda ox, oy: union(ring(ox + 32, oy + 32, 15, 5), polygon([(ox + 10, oy + 38), (ox + 24, oy + 48), (ox + 10, oy + 54)])),
        13: lambda ox, oy: union(ring(ox + 32, oy + 32, 14, 4), segment(ox + 32, oy + 12, ox + 32, oy + 52, 4), segment(ox + 12, oy + 32, ox + 52, oy + 32, 4)),
    }
    for i in range(20):
        ox, oy = (i % 10) * 64, (i // 10) * 64
        if i == 19:
            tile(c, ox, oy, colour=NAVY, shadow=False)
            continue
        tile(c, ox, oy)
        sym = symbols.get(i)
        if sym:
            draw(c, sym(ox, oy), WHITE, ox, oy)
        else:
            draw(c, circle(ox + 32, oy + 32, 5), WHITE, ox, oy, alpha=0.8)
    c.save(path)


def panel_icons(path):
    c = canvas(640, 640)
    bc_colours = {10: (150, 150, 150), 11: (200, 200, 200), 12: CHARCOAL, 13: (0, 0, 255), 14: (255, 0, 0),
                  15: (0, 200, 0), 16: (255, 220, 0), 17: (0, 220, 220)}
    letters = {40: "R", 41: "U", 42: "V", 43: "W", 44: "|U|", 45: "T", 46: "Y", 47: "P", 48: "F", 49: "H", 50: "A"}
    for i in range(100):
        ox, oy = (i % 10) * 64, (i // 10) * 64
        if i == 30:  # corner mark that opens the panel
            draw(c, polygon([(ox + 6, oy + 6), (ox + 50, oy + 6), (ox + 6, oy + 50)]), SKY, ox, oy, alpha=0.85)
            draw(c, union(segment(ox + 14, oy + 16, ox + 34, oy + 16, 4), segment(ox + 14, oy + 24, ox + 28, oy + 24, 4)), WHITE, ox, oy)
            continue
        if i == 31:  # button shadow
            draw(c, rounded_box(ox + 32, oy + 32, 28, 28, 10), SHADOW, ox, oy, alpha=0.35)
            continue
        tile(c, ox, oy)
        if i in bc_colours:
            draw(c, rounded_box(ox + 32, oy + 32, 15, 15, 4), WHITE, ox, oy)
            draw(c, rounded_box(ox + 32, oy + 32, 12, 12, 3), bc_colours[i], ox, oy)
        elif i in letters:
            draw(c, text_sdf(ox, oy, letters[i], 3 if len(letters[i]) < 3 else 2), WHITE, ox, oy)
        elif i == 1 or i == 22:  # velocity vectors
            draw(c, arrow(ox, oy, 30, 5, 34), WHITE, ox, oy, alpha=1.0 if i == 1 else 0.6)
        elif i == 2:  # streamlines
            for k in range(3):
                draw(c, polygon([(ox + 10, oy + 20 + 12 * k), (ox + 54, oy + 14 + 12 * k), (ox + 54, oy + 18 + 12 * k), (ox + 10, oy + 24 + 12 * k)]), WHITE, ox, oy)
        elif i in (0, 3):  # particles
            for (px, py) in ((20, 22), (40, 18), (30, 36), (46, 42), (18, 46)):
                draw(c, circle(ox + px, oy + py, 4 if i == 3 else 6), WHITE, ox, oy)
        elif i in (4, 5, 6):  # cross-section planes
            skew = {4: [(14, 22), (42, 22), (50, 42), (22, 42)], 5: [(24, 12), (40, 22), (40, 52), (24, 42)],
                    6: [(12, 28), (52, 28), (44, 40), (20, 40)]}[i]
            draw(c, polygon([(ox + x, oy + y) for x, y in skew]), WHITE, ox, oy)
        elif i == 7:  # orientation axes
            draw(c, union(segment(ox + 18, oy + 46, ox + 50, oy + 46, 4), segment(ox + 18, oy + 46, ox + 18, oy + 14, 4),
                          segment(ox + 18, oy + 46, ox + 36, oy + 28, 4)), WHITE, ox, oy)
        elif i in (20, 29):  # outline, polygon frames
            draw(c, union(segment(ox + 14, oy + 20, ox + 50, oy + 20, 3), segment(ox + 50, oy + 20, ox + 50, oy + 46, 3),
                          segment(ox + 50, oy + 46, ox + 14, oy + 46, 3), segment(ox + 14, oy + 46, ox + 14, oy + 20, 3),
                          *( [segment(ox + 14, oy + 20, ox + 50, oy + 46, 3)] if i == 29 else [])), WHITE, ox, oy)
        elif i in (18, 25):  # reset camera, camera target
            draw(c, union(ring(ox + 32, oy + 32, 12, 4), segment(ox + 32, oy + 12, ox + 32, oy + 52, 3),
                          segment(ox + 12, oy + 32, ox + 52, oy + 32, 3)), WHITE, ox, oy)
        elif i == 28:  # lighting
            draw(c, union(circle(ox + 32, oy + 30, 10), segment(ox + 27, oy + 44, ox + 37, oy + 44, 4)), WHITE, ox, oy)
        elif i == 21:  # pause
            draw(c, union(rounded_box(ox + 25, oy + 32, 4, 13, 1), rounded_box(ox + 39, oy + 32, 4, 13, 1)), WHITE, ox, oy)
        elif i == 26:  # shortcut key list
            draw(c, text_sdf(ox, oy, "?", 4), WHITE, ox, oy)
        elif i == 27:  # snapshot
            draw(c, union(rounded_box(ox + 32, oy + 35, 18, 12, 3), rounded_box(ox + 32, oy + 22, 7, 4, 1)), WHITE, ox, oy)
            draw(c, circle(ox + 32, oy + 35, 6), SKY, ox, oy)
        elif i in (32, 33):  # min and max scale
            draw(c, text_sdf(ox, oy, "-" if i == 32 else "+", 4), WHITE, ox, oy)
        elif i == 34:  # auto scale
            draw(c, text_sdf(ox, oy, "A", 4), WHITE, ox, oy)
        elif i in (23, 24):  # scaling with solid, immersed boundary
            draw(c, union(rounded_box(ox + 26, oy + 36, 10, 10, 2), circle(ox + 40, oy + 26, 9)), WHITE, ox, oy)
        elif i in (8, 9):  # colour object, colour boundary
            for k, col in enumerate(((255, 0, 0), (0, 200, 0), (0, 0, 255))):
                draw(c, circle(ox + 22 + 10 * k, oy + 32, 7), col, ox, oy)
        else:
            draw(c, circle(ox + 32, oy + 32, 4), WHITE, ox, oy, alpha=0.7)
    c.save(path)


def analysis_arrows(path):
    c = canvas(192, 192)
    for k in range(3):
        ox = 64 * k
        body = rounded_box(ox + 32, 96, 26, 88, 14)
        if k == 2:
            draw(c, body, SHADOW, ox, 0, 64, 192, alpha=0.35)
            continue
        draw(c, body, SKY, ox, 0, 64, 192, alpha=0.9)
        d = 1 if k == 1 else -1
        head = polygon([(ox + 32 + 14 * d, 96), (ox + 32 - 10 * d, 72), (ox + 32 - 10 * d, 120)])
        draw(c, head, WHITE, ox, 0, 64, 192)
    c.save(path)


def box_icons(path):
    c = canvas(640, 64)
    for i in range(10):
        ox = 64 * i
        if i in (8, 9):
            draw(c, rounded_box(ox + 32, 32, 28, 28, 10 if i == 8 else 4), SHADOW, ox, 0, alpha=0.35)
            continue
        tile(c, ox, 0)
        if i == 0:
            draw(c, arrow(ox, 0, 180), WHITE, ox, 0)
        elif i == 1:
            draw(c, arrow(ox, 0, 0), WHITE, ox, 0)
        elif i == 2:  # OK: a tick
            draw(c, union(segment(ox + 18, 34, ox + 28, 44, 7), segment(ox + 28, 44, ox + 47, 21, 7)), WHITE, ox, 0)
        elif i == 3:  # Cancel: a cross
            draw(c, union(segment(ox + 20, 20, ox + 44, 44, 7), segment(ox + 44, 20, ox + 20, 44, 7)), WHITE, ox, 0)
        else:
            draw(c, circle(ox + 32, 32, 5), WHITE, ox, 0, alpha=0.8)
    c.save(path)


def panel_back(path):
    c = canvas(256, 128)
    c.paint(rounded_box(128, 64, 126, 62, 12), SHADOW, 0.6)
    c.paint(rounded_box(128, 64, 118, 54, 10), SHADOW, 0.4)
    c.save(path)


def icon(path):
    c = canvas(64, 64)
    tile(c, 0, 0, shadow=False)
    for k in range(3):
        y = 22 + 10 * k
        c.paint(segment(14, y, 50, y - 6 + 6 * k, 4), WHITE)
    c.paint(text_sdf(14, -18, "+", 2), WHITE)
    c.save(path)


def main():
    out = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "layer", "resources")
    os.makedirs(out, exist_ok=True)
    icon(os.path.join(out, "picture444.png"))
    analysis_arrows(os.path.join(out, "picture550.png"))
    panel_icons(os.path.join(out, "picture555.png"))
    buttons(os.path.join(out, "picture777.png"))
    box_icons(os.path.join(out, "picture888.png"))
    panel_back(os.path.join(out, "picture999.png"))


if __name__ == "__main__":
    main()
