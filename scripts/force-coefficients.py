#!/usr/bin/env python3
"""Drag and lift coefficients of one colour from dump/force.txt.

    scripts/force-coefficients.py PROJECT COLOUR D U RHO [FROM_TIME]

COLOUR as in the record (1 Black ... 8 Non-Preset), D the body's size
across the flow [m], U the free-stream speed [m/s], RHO the density; the
force of a two-dimensional case is per metre of depth. Over the lines from
FROM_TIME on (default: the second half of the record) it prints the mean
drag coefficient, the lift amplitude and the Strouhal number from the
upward zero crossings of the lift. Needs only the standard library.
"""
import os
import sys


def main():
    project, colour = sys.argv[1], int(sys.argv[2])
    size, speed, density = float(sys.argv[3]), float(sys.argv[4]), float(sys.argv[5])
    rows = []
    for line in open(os.path.join(project, "dump", "force.txt")):
        words = line.split()
        if len(words) == 34 and words[0].lstrip("-").isdigit():
            x = 10 + 3 * (colour - 1)
            rows.append((float(words[1]), float(words[x]), float(words[x + 1])))
    start = float(sys.argv[6]) if len(sys.argv) > 6 else rows[-1][0] / 2
    window = [r for r in rows if r[0] >= start]
    scale = 0.5 * density * speed * speed * size
    drag = sum(r[1] for r in window) / len(window) / scale
    lift = (max(r[2] for r in window) - min(r[2] for r in window)) / 2 / scale
    ups = [b[0] for a, b in zip(window, window[1:]) if a[2] < 0.0 <= b[2]]
    strouhal = (len(ups) - 1) / (ups[-1] - ups[0]) * size / speed if len(ups) >= 3 else float("nan")
    print("t %.2f..%.2f s (%d lines): Cd %.3f, lift amplitude Cl %.3f, St %.3f"
          % (window[0][0], window[-1][0], len(window), drag, lift, strouhal))


if __name__ == "__main__":
    main()
