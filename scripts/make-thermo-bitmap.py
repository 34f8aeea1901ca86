#!/usr/bin/env python3
"""Draws the boundary bitmap of examples/thermo2d: a square box of air with a
hot black wall on the left (tempwallk), a cold wall of its own colour on the
right (tempwall) and adiabatic floor and ceiling (blue at rest, tempb = 0).

Run: python3 scripts/make-thermo-bitmap.py  (rewrites the file)
"""
import importlib.util
import os

HERE = os.path.dirname(os.path.abspath(__file__))
source = importlib.util.spec_from_file_location("bitmaps", os.path.join(HERE, "make-example-bitmaps.py"))
bitmaps = importlib.util.module_from_spec(source)
source.loader.exec_module(bitmaps)


def heated_box():
    # 41 x 41 nodes on 123 x 123 pixels: walls 6 pixels (two nodes).
    n, wall = 123, 6

    def pixel(x, y):
        if x < wall:
            return bitmaps.BLACK
        if x >= n - wall:
            return bitmaps.BRICK
        if y < wall or y >= n - wall:
            return bitmaps.BLUE
        return bitmaps.WHITE

    bitmaps.write_bmp(os.path.join(bitmaps.ROOT, "thermo2d", "input", "bcXY0.bmp"), n, n, pixel)


if __name__ == "__main__":
    heated_box()
