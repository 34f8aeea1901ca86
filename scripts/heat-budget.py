#!/usr/bin/env python3
"""Heat budget of a two-dimensional thermo-fluid run between two dumps.

Heat in and out through the walls comes from dump/heatLoss.txt (the mean of
its lines between the two steps, one column per wall colour); the heat
stored in the fluid from the two temperature and density fields. What is
left is heat that the discrete equations created in the fluid.

    scripts/heat-budget.py PROJECT STEP1 STEP2 [HOT_COLOUR COLD_COLOUR]

Colours are numbered as in the record: 1 Black ... 8 Non-Preset; the
defaults 1 and 8 are those of examples/thermo2d. Needs only the standard
library.
"""
import array
import os
import sys


def specific_heat(t):
    if t >= 590.0:
        return 928.911894 + 0.0897769 * t + 0.00032460657 * t**2 - 2.62542e-7 * t**3 + 5.99901e-11 * t**4
    return 1022.5294853 - 0.1758625 * t + 0.0004020605 * t**2 - 4.8640623e-8 * t**3


def info(folder):
    values = {}
    for line in open(os.path.join(folder, "info.txt")):
        words = line.split()
        values[words[0].rstrip(":")] = [float(w) for w in words[1:]]
    return values


def field(folder, name):
    data = array.array("d")
    with open(os.path.join(folder, name), "rb") as f:
        data.frombytes(f.read())
    return data


def main():
    project, step1, step2 = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
    hot_colour = int(sys.argv[4]) if len(sys.argv) > 4 else 1
    cold_colour = int(sys.argv[5]) if len(sys.argv) > 5 else 8
    first = os.path.join(project, "dump", "%08d" % step1)
    second = os.path.join(project, "dump", "%08d" % step2)
    a, b = info(first), info(second)
    nx, ny = int(a["mesh"][0]), int(a["mesh"][1])
    hx = (a["x0-x1(m)"][1] - a["x0-x1(m)"][0]) / (nx - 1)
    hy = (a["y0-y1(m)"][1] - a["y0-y1(m)"][0]) / (ny - 1)
    seconds = b["time"][0] - a["time"][0]
    t1, t2 = field(first, "tfld.raw"), field(second, "tfld.raw")
    r1, r2 = field(first, "rfld.raw"), field(second, "rfld.raw")
    walls = field(first, "bc.raw")
    stored, total, count = 0.0, [0.0, 0.0], 0
    for m in range(nx * ny):
        if walls[m] < 0.5:  # a fluid node
            mean_t = 0.5 * (t1[m] + t2[m])
            stored += 0.5 * (r1[m] + r2[m]) * specific_heat(mean_t) * (t2[m] - t1[m]) / seconds * hx * hy
            total[0] += t1[m]
            total[1] += t2[m]
            count += 1
    lines = []
    for line in open(os.path.join(project, "dump", "heatLoss.txt")):
        words = line.split()
        if len(words) == 18 and words[0].lstrip("-").isdigit() and step1 <= int(words[0]) <= step2:
            lines.append((float(words[9 + hot_colour]), float(words[9 + cold_colour])))
    hot = sum(h for h, _ in lines) / len(lines)
    cold = sum(c for _, c in lines) / len(lines)
    created = stored - (hot + cold)
    print("steps %d-%d (%.3f s): mean T %.3f -> %.3f K" % (step1, step2, seconds, total[0] / count, total[1] / count))
    print("hot wall %+.4f, cold wall %+.4f, net %+.4f, stored %+.4f, created %+.4f (%.1f %% of the hot wall's)"
          % (hot, cold, hot + cold, stored, created, 100.0 * created / hot))


if __name__ == "__main__":
    main()
