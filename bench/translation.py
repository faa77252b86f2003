#!/usr/bin/env python3
"""Whole-program benchmark: dunx against `assimp export`, STL to OBJ.

    bench/translation.py --dunx PATH [--triangles N] [--runs R] [--work DIR]

Writes a binary STL of N triangles (default one million: a height field over a
regular grid, so that every inner vertex is shared by six triangles and the
welding has real work to do), then translates it to OBJ with `dunx translate`
and with `assimp export` (which also welds identical vertices), the two
programs taking turns, R times each (default 5). Both run on the same warm
file, one at a time.

Prints, for each program, the median and the best wall time and the largest
peak resident set of its runs (from the kernel's accounting of that child
alone), the vertices and faces of its output, and the two ratios the driver
is held to: its time to assimp's (target at most 0.5) and its peak memory to
the size of the input file (target at most 2). A missed target is printed,
not turned into a failure: this is a measurement, not a test. The exit code
is non-zero only when a program fails or the two outputs disagree on the
number of vertices or faces.
"""

import argparse
import math
import multiprocessing
import os
import shutil
import statistics
import struct
import subprocess
import sys
import time

COLUMNS = 1000  # quads per grid row; two triangles each


def write_stl(path, triangles):
    """A binary STL of `triangles` triangles (rounded up to whole grid rows)."""
    rows = max(1, math.ceil(triangles / (2 * COLUMNS)))
    grid = [[struct.pack("<3f", i * 0.1, j * 0.1, math.sin(i * 0.05) * math.cos(j * 0.07))
             for i in range(COLUMNS + 1)] for j in range(rows + 1)]
    normal = struct.pack("<3f", 0.0, 0.0, 1.0)
    attribute = b"\0\0"
    parts = [b"dunx translation benchmark".ljust(80, b" "), struct.pack("<I", 2 * COLUMNS * rows)]
    for j in range(rows):
        low, high = grid[j], grid[j + 1]
        for i in range(COLUMNS):
            parts.append(normal + low[i] + low[i + 1] + high[i + 1] + attribute)
            parts.append(normal + low[i] + high[i + 1] + high[i] + attribute)
    with open(path, "wb") as out:
        out.write(b"".join(parts))
    return 2 * COLUMNS * rows


def run_once(command):
    """(wall seconds, peak resident kilobytes) of one run of `command`; fails loudly."""
    start = time.perf_counter()
    child = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    # wait4 gives this child's own resource use, not the sum over every child so far.
    _, status, usage = os.wait4(child.pid, 0)
    seconds = time.perf_counter() - start
    error = child.stderr.read().decode(errors="replace")
    child.stderr.close()
    code = os.waitstatus_to_exitcode(status)
    if code != 0:
        sys.exit(f"translation: {' '.join(command)} failed with exit code {code}:\n{error}")
    return seconds, usage.ru_maxrss


def count_obj(path):
    """(vertices, faces) of an OBJ file."""
    vertices = faces = 0
    with open(path, "rb") as obj:
        for line in obj:
            if line.startswith(b"v "):
                vertices += 1
            elif line.startswith(b"f "):
                faces += 1
    return vertices, faces


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--dunx", required=True, help="the dunx program (a Release build)")
    parser.add_argument("--assimp", default="assimp", help="the assimp program")
    parser.add_argument("--triangles", type=int, default=1_000_000)
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--work", default="build-bench-translate/work",
                        help="folder for the STL, the outputs and the log files")
    args = parser.parse_args()
    if shutil.which(args.assimp) is None:
        sys.exit(f"translation: '{args.assimp}' not found (Debian package assimp-utils)")
    if not os.access(args.dunx, os.X_OK):
        sys.exit(f"translation: '{args.dunx}' is not an executable program")

    os.makedirs(args.work, exist_ok=True)
    stl = os.path.join(args.work, "grid.stl")
    # Written by a child process: a child's peak resident set counts the memory of
    # the process it was forked from, and this one should stay small.
    with multiprocessing.Pool(1) as pool:
        triangles = pool.apply(write_stl, (stl, args.triangles))
    input_bytes = os.path.getsize(stl)
    outputs = {"dunx": os.path.join(args.work, "dunx.obj"),
               "assimp": os.path.join(args.work, "assimp.obj")}
    commands = {
        "dunx": [args.dunx, "translate", stl, outputs["dunx"], "--quiet", "--no-progress",
                 "--log-dir", os.path.join(args.work, "logs")],
        "assimp": [args.assimp, "export", stl, outputs["assimp"]],
    }
    times = {name: [] for name in commands}
    peaks = {name: [] for name in commands}
    for _ in range(args.runs):
        for name, command in commands.items():
            seconds, peak = run_once(command)
            times[name].append(seconds)
            peaks[name].append(peak)

    print(f"STL to OBJ, {triangles:,} triangles, input {input_bytes / 1e6:.1f} MB, "
          f"{args.runs} runs each, taking turns")
    print(f"{'program':<8} {'median s':>9} {'best s':>8} {'peak MB':>8} {'vertices':>10} "
          f"{'faces':>10}")
    counts = {}
    for name in commands:
        counts[name] = count_obj(outputs[name])
        print(f"{name:<8} {statistics.median(times[name]):>9.3f} {min(times[name]):>8.3f} "
              f"{max(peaks[name]) / 1024:>8.1f} {counts[name][0]:>10,} {counts[name][1]:>10,}")
    speed = statistics.median(times["dunx"]) / statistics.median(times["assimp"])
    memory = max(peaks["dunx"]) * 1024 / input_bytes
    print(f"dunx time / assimp time   {speed:5.2f}  (target at most 0.50: "
          f"{'met' if speed <= 0.5 else 'NOT MET'})")
    print(f"dunx peak / input size    {memory:5.2f}  (target at most 2.00: "
          f"{'met' if memory <= 2.0 else 'NOT MET'})")
    if counts["dunx"] != counts["assimp"]:
        sys.exit(f"translation: the outputs disagree: dunx {counts['dunx']}, "
                 f"assimp {counts['assimp']} (vertices, faces)")


if __name__ == "__main__":
    main()
