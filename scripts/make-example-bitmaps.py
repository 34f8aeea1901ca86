#!/usr/bin/env python3
"""Draws the boundary bitmaps of the bundled examples as 24-bit BMP files.

Colours are boundary types: black wall, blue inlet (its velocity comes from
uinb, vinb, winb), white fluid, any other colour a wall of its own. The
bitmap is stretched over the domain and read at one pixel per mesh node, so
the pictures are drawn at a few pixels per node and every wall is at least
two nodes thick. Only the Python standard library is used.

  examples/cavity2d/input/bcXY0.bmp    square cavity: black walls, blue lid
  examples/cylinder2d/input/bcXY0.bmp  channel with a circular cylinder
  examples/duct3d/input/bcXY0.bmp      duct seen from the side, block obstacle
  examples/duct3d/input/bcZX0.bmp      duct seen from above, the same block
  examples/step2d/input/bcXY0.bmp      backward-facing step, grey walls

Run: python3 scripts/make-example-bitmaps.py  (rewrites the files)
"""
import os
import struct

WHITE = (255, 255, 255)
BLACK = (0, 0, 0)
BLUE = (0, 0, 255)
GREY = (128, 128, 128)
BRICK = (150, 40, 40)
ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "examples")


def write_bmp(path, width, height, pixel):
    """pixel(x, y) gives (r, g, b) with y = 0 at the top of the picture."""
    row_bytes = (width * 3 + 3) // 4 * 4
    data = bytearray()
    for y in range(height - 1, -1, -1):  # BMP rows run bottom-up
        row = bytearray()
        for x in range(width):
            r, g, b = pixel(x, y)
            row += bytes((b, g, r))
        row += bytes(row_bytes - len(row))
        data += row
    header = b"BM" + struct.pack("<IHHI", 54 + len(data), 0, 0, 54)
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(data), 2835, 2835, 0, 0)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as f:
        f.write(header + info + data)


def cavity():
    # 65 x 65 nodes on 130 x 130 pixels: walls 4 pixels (two nodes), lid on top.
    n, wall = 130, 4

    def pixel(x, y):
        if y < wall:
            return BLUE
        if x < wall or x >= n - wall or y >= n - wall:
            return BLACK
        return WHITE

    write_bmp(os.path.join(ROOT, "cavity2d", "input", "bcXY0.bmp"), n, n, pixel)


def cylinder():
    # 4 m x 1 m channel, 161 x 41 nodes on 640 x 160 pixels (4 px per node).
    # Inlet on the left; the top and bottom move with the stream (blue), so
    # the channel walls do not slow the flow past the cylinder.
    w, h, wall = 640, 160, 8
    cx, cy, r = 160, 84, 20  # slightly off the middle so that shedding starts early

    def pixel(x, y):
        if x < wall or y < wall or y >= h - wall:
            return BLUE
        if (x + 0.5 - cx) ** 2 + (y + 0.5 - cy) ** 2 <= r * r:
            return BLACK
        return WHITE

    write_bmp(os.path.join(ROOT, "cylinder2d", "input", "bcXY0.bmp"), w, h, pixel)


def duct():
    # 2 m x 0.5 m x 0.5 m duct. Side view (x across, y up): inlet on the
    # left, black walls at the bottom and top, the block in brick. Top view
    # (x across, z up): grey walls at the two z ends, the block in brick, so
    # that the brick body is the intersection of the two drawings.
    w, h, wall = 320, 80, 6
    bx0, bx1 = 96, 128

    def side(x, y):
        if x < wall:
            return BLUE
        if y < wall or y >= h - wall:
            return BLACK
        if bx0 <= x < bx1 and 40 <= y < h - wall:
            return BRICK
        return WHITE

    def top(x, y):
        if y < wall or y >= h - wall:
            return GREY
        if bx0 <= x < bx1 and 24 <= y < 56:
            return BRICK
        return WHITE

    write_bmp(os.path.join(ROOT, "duct3d", "input", "bcXY0.bmp"), w, h, side)
    write_bmp(os.path.join(ROOT, "duct3d", "input", "bcZX0.bmp"), w, h, top)


def step():
    # 3 m x 1 m channel with a step: grey walls, whose corners the wall
    # filter (wfilWallBC) rounds; inlet above the step on the left.
    w, h, wall = 480, 160, 8
    step_x, step_y = 96, 80

    def pixel(x, y):
        if y < wall or y >= h - wall:
            return GREY
        if x < step_x and y >= step_y:
            return GREY
        if x < wall:
            return BLUE
        return WHITE

    write_bmp(os.path.join(ROOT, "step2d", "input", "bcXY0.bmp"), w, h, pixel)


if __name__ == "__main__":
    cavity()
    cylinder()
    duct()
    step()
