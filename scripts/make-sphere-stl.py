#!/usr/bin/env python3
"""Writes a binary STL sphere (a UV sphere with outward normals).

usage: make-sphere-stl.py OUT.stl [--radius R] [--centre X Y Z] [--rings N] [--segments M]

The example project examples/sphere3d uses the default: radius 0.1 m about
(0.3, 0.25, 0.25), 24 rings and 48 segments.
"""
import argparse
import math
import struct


def sphere(cx, cy, cz, r, rings, segments):
    def at(ring, seg):
        theta = math.pi * ring / rings
        phi = 2.0 * math.pi * seg / segments
        return (cx + r * math.sin(theta) * math.cos(phi),
                cy + r * math.sin(theta) * math.sin(phi),
                cz + r * math.cos(theta))

    triangles = []
    for ring in range(rings):
        for seg in range(segments):
            quads = []
            if ring > 0:
                quads.append((at(ring, seg), at(ring + 1, seg), at(ring, seg + 1)))
            if ring < rings - 1:
                quads.append((at(ring + 1, seg), at(ring + 1, seg + 1), at(ring, seg + 1)))
            for tri in quads:
                c = [sum(v[a] for v in tri) / 3.0 for a in range(3)]
                n = [c[0] - cx, c[1] - cy, c[2] - cz]
                length = math.sqrt(sum(x * x for x in n)) or 1.0
                triangles.append(([x / length for x in n], tri))
    return triangles


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("out")
    parser.add_argument("--radius", type=float, default=0.1)
    parser.add_argument("--centre", type=float, nargs=3, default=[0.3, 0.25, 0.25])
    parser.add_argument("--rings", type=int, default=24)
    parser.add_argument("--segments", type=int, default=48)
    args = parser.parse_args()
    triangles = sphere(*args.centre, args.radius, args.rings, args.segments)
    with open(args.out, "wb") as f:
        f.write(b"sphere written by make-sphere-stl.py".ljust(80, b" "))
        f.write(struct.pack("<I", len(triangles)))
        for normal, tri in triangles:
            f.write(struct.pack("<3f", *normal))
            for v in tri:
                f.write(struct.pack("<3f", *v))
            f.write(b"\0\0")


if __name__ == "__main__":
    main()
