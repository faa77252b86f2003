#!/usr/bin/env python3
"""Writes the bundled example assembly under examples/assembly/.

A hand trolley: a deck, a handle and two axle sets, each axle set a
sub-assembly of an axle and two wheels. The files cover what the STL-to-OBJ
translator reads:

  parts/deck.stl    binary STL whose 80-byte header begins with "solid"
  parts/axle.stl    binary STL
  parts/wheel.stl   ASCII STL, modelled in inches (placed four times)
  parts/handle.stl  ASCII STL with two solids (posts and grip)
  axle_set.cfg      sub-assembly in millimetres: an axle and two wheels
  trolley.cfg       the top assembly in millimetres

The output depends on nothing but this script: running it again rewrites the
same bytes. Python 3 standard library only.
"""

import math
import os
import struct
import sys


def box(x0, y0, z0, x1, y1, z1):
    """The 12 triangles of an axis-aligned box, facing outwards."""
    v = [(x0, y0, z0), (x1, y0, z0), (x1, y1, z0), (x0, y1, z0),
         (x0, y0, z1), (x1, y0, z1), (x1, y1, z1), (x0, y1, z1)]
    faces = [(0, 2, 1), (0, 3, 2), (4, 5, 6), (4, 6, 7), (0, 1, 5), (0, 5, 4),
             (1, 2, 6), (1, 6, 5), (2, 3, 7), (2, 7, 6), (3, 0, 4), (3, 4, 7)]
    return [(v[a], v[b], v[c]) for a, b, c in faces]


def prism(sides, radius, z0, z1):
    """A closed prism of `sides` about the z axis, from z0 to z1."""
    ring = []
    for i in range(sides):
        angle = 2.0 * math.pi * i / sides
        # Rounded, so that every platform's libm gives the same file.
        ring.append((round(radius * math.cos(angle), 6), round(radius * math.sin(angle), 6)))
    triangles = []
    for i in range(sides):
        (ax, ay), (bx, by) = ring[i], ring[(i + 1) % sides]
        triangles.append(((0.0, 0.0, z0), (bx, by, z0), (ax, ay, z0)))
        triangles.append(((0.0, 0.0, z1), (ax, ay, z1), (bx, by, z1)))
        triangles.append(((ax, ay, z0), (bx, by, z0), (bx, by, z1)))
        triangles.append(((ax, ay, z0), (bx, by, z1), (ax, ay, z1)))
    return triangles


def along_x(triangles):
    """The triangles turned so that their z axis runs along x."""
    return [tuple((z, y, -x) for x, y, z in t) for t in triangles]


def normal(t):
    (ax, ay, az), (bx, by, bz), (cx, cy, cz) = t
    ux, uy, uz = bx - ax, by - ay, bz - az
    vx, vy, vz = cx - ax, cy - ay, cz - az
    nx, ny, nz = uy * vz - uz * vy, uz * vx - ux * vz, ux * vy - uy * vx
    length = math.sqrt(nx * nx + ny * ny + nz * nz) or 1.0
    return (nx / length, ny / length, nz / length)


def binary_stl(header, triangles):
    data = bytearray(header.encode("ascii").ljust(80, b" "))
    data += struct.pack("<I", len(triangles))
    for t in triangles:
        data += struct.pack("<3f", *normal(t))
        for corner in t:
            data += struct.pack("<3f", *corner)
        data += b"\0\0"
    return bytes(data)


def ascii_stl(solids):
    lines = []
    for name, triangles in solids:
        lines.append("solid " + name)
        for t in triangles:
            lines.append("  facet normal %e %e %e" % normal(t))
            lines.append("    outer loop")
            for corner in t:
                lines.append("      vertex %e %e %e" % corner)
            lines.append("    endloop")
            lines.append("  endfacet")
        lines.append("endsolid " + name)
    return ("\n".join(lines) + "\n").encode("ascii")


TROLLEY = """\
# A hand trolley: the top assembly of the dunx example.
# Lengths in millimetres; the wheels inside the axle sets are modelled in inches.
assembly = trolley
unit = mm

[deck]
file = parts/deck.stl
translation = 0, 0, 62

# Each axle set runs along its own x axis: turned a quarter about z, it runs
# across the deck. Its wheels have a 2 in (50.8 mm) radius: the axle sits that
# high, and the wheels touch the ground.
[front axles]
file = axle_set.cfg
translation = 220, 0, 50.8
rotation = 0, 0, 1, 90

[rear axles]
file = axle_set.cfg
translation = -220, 0, 50.8
rotation = 0, 0, 1, 90

# Tilted back by 15 degrees about y, standing on the rear edge of the deck.
[handle]
file = parts/handle.stl
translation = -290, 0, 82
rotation = 0, 1, 0, -15
"""

AXLE_SET = """\
# An axle with a wheel at each end: a sub-assembly of the trolley.
assembly = axle set
unit = mm

[axle]
file = parts/axle.stl

# The wheel is modelled in inches about its own z axis: a quarter turn about y
# lines it up with the axle.
[left wheel]
file = parts/wheel.stl
unit = in
translation = -235, 0, 0
rotation = 0, 1, 0, 90

[right wheel]
file = parts/wheel.stl
unit = in
translation = 235, 0, 0
rotation = 0, 1, 0, -90
"""


def files():
    handle_posts = box(-10, -160, 0, 10, -140, 600) + box(-10, 140, 0, 10, 160, 600)
    return {
        "trolley.cfg": TROLLEY.encode("ascii"),
        "axle_set.cfg": AXLE_SET.encode("ascii"),
        "parts/deck.stl": binary_stl("solid deck, written by make_example.py",
                                     box(-300, -200, 0, 300, 200, 20)),
        "parts/axle.stl": binary_stl("axle, written by make_example.py",
                                     along_x(prism(12, 10.0, -220.0, 220.0))),
        "parts/wheel.stl": ascii_stl([("wheel", prism(24, 2.0, -0.75, 0.75))]),
        "parts/handle.stl": ascii_stl([("posts", handle_posts),
                                       ("grip", box(-15, -175, 600, 15, 175, 630))]),
    }


def main():
    folder = os.path.join(os.path.dirname(os.path.abspath(__file__)), "assembly")
    for name, data in sorted(files().items()):
        path = os.path.join(folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as out:
            out.write(data)
        print("wrote %s (%d bytes)" % (os.path.relpath(path), len(data)))
    return 0


if __name__ == "__main__":
    sys.exit(main())
