#!/usr/bin/env python3
"""Mutation pass over the library: do the tests notice a one-token fault?

    tools/mutation.py [--count N] [--sample S] [--files GLOB] [--build-dir DIR] [--committed]
                      [--refresh-tests [PATH ...]] [--ctest] [--sanitize] [--list]

Makes a private copy of the tree (a git worktree of HEAD with the uncommitted
changes and the new untracked files, or HEAD alone with --committed), builds it
once, then for each sampled mutant changes one operator, constant or condition
in one library source or private header (src/, of the platform layer only the POSIX folder built
here), rebuilds incrementally,
runs the whole test suite and puts the line back. A mutant is killed when the
build still works and a test fails (or the suite times out); it survives when
every test passes. Mutants that do not compile are not counted. Survivors are
listed with their place so that a test can be written for each one that
changes what a caller can observe (some are equivalent: same behaviour).

Speed: the test programs do not relink when only the shared library changed,
and each unit-test program runs once, in the folder CTest would use, the one of
the mutated subsystem first, stopping at the first failing test (--ctest runs
the suite through CTest instead, one process per test case). The end-to-end
tests of the driver are not part of the pass: the copy is built without tools.

Before and after: with --build-dir the copy is kept; a second run with the same
--sample and --refresh-tests takes the tests of the working tree (or only the
paths named) into the copy and draws the same mutants of the same sources, so
the two scores differ only by the tests. Name the paths when tests written since
the copy was made need library changes that the copy does not have.
"""

import argparse
import fnmatch
import glob
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time

# (pattern, replacement, description); applied to one occurrence at a time.
MUTATORS = [
    # Binary operators stand between blanks in this code base (clang-format), which
    # keeps template brackets, shifts, arrows and unary signs out of the way.
    (r" == ", " != ", "== to !="),
    (r" != ", " == ", "!= to =="),
    (r" <= ", " < ", "<= to <"),
    (r" >= ", " > ", ">= to >"),
    (r" < ", " <= ", "< to <="),
    (r" > ", " >= ", "> to >="),
    (r" && ", " || ", "&& to ||"),
    (r" \|\| ", " && ", "|| to &&"),
    (r" \+ ", " - ", "+ to -"),
    (r" - ", " + ", "- to +"),
    (r"\b0\b", "1", "0 to 1"),
    (r"\b1\b", "0", "1 to 0"),
    (r"\btrue\b", "false", "true to false"),
    (r"\bfalse\b", "true", "false to true"),
    (r"\bif \(", "if (!", "condition negated"),
]

SKIP_LINE = re.compile(r'^\s*(#|//|/\*|\*)|"')  # preprocessor, comments, string literals


def run(command, cwd, timeout=None, quiet=True):
    return subprocess.run(command, cwd=cwd, timeout=timeout,
                          stdout=subprocess.DEVNULL if quiet else None,
                          stderr=subprocess.DEVNULL if quiet else None).returncode


def unit_test_programs(build):
    return sorted(path for path in glob.glob(os.path.join(build, "tests", "dunx_*_tests"))
                  if os.access(path, os.X_OK) and os.path.isfile(path))


def suite_passes(build, tree, mutated, use_ctest, timeout):
    """True when every test passes; a test program that hangs counts as a failure."""
    if use_ctest:
        try:
            return run(["ctest", "--test-dir", build, "-j", "2", "--timeout", "30"], tree,
                       timeout=timeout) == 0
        except subprocess.TimeoutExpired:
            return False
    subsystem = mutated.split("/")[1] if mutated else ""
    programs = sorted(unit_test_programs(build),
                      key=lambda path: os.path.basename(path) != f"dunx_{subsystem}_tests")
    for program in programs:
        try:
            if run([program, "--gtest_fail_fast", "--gtest_brief=1"], os.path.dirname(program),
                   timeout=timeout) != 0:
                return False
        except subprocess.TimeoutExpired:
            return False
    return True


def sites(root, pattern):
    """Every (file, line number, column, mutator) in the library sources."""
    found = []
    for folder, _, names in os.walk(os.path.join(root, "src")):
        for name in sorted(names):
            path = os.path.relpath(os.path.join(folder, name), root)
            # The library's own sources and private headers (loops shared by two
            # sources live in one); of the platform layer, only the folder built
            # here (POSIX) is mutated.
            if not name.endswith((".cpp", ".h")) or ("/platform/" in path and "/posix/" not in path):
                continue
            if not fnmatch.fnmatch(path, pattern):
                continue
            with open(os.path.join(root, path), encoding="utf-8") as source:
                for number, line in enumerate(source, 1):
                    if SKIP_LINE.search(line) or "assert" in line:
                        continue
                    for index, (regex, _, _) in enumerate(MUTATORS):
                        for match in re.finditer(regex, line):
                            found.append((path, number, match.start(), index))
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--count", type=int, default=160, help="mutants to try (default 160)")
    parser.add_argument("--sample", type=int, default=1, help="which sample to draw (default 1)")
    parser.add_argument("--files", default="src/*", help="only sources matching this glob")
    parser.add_argument("--build-dir", default=None, help="keep the copy and its build here")
    parser.add_argument("--committed", action="store_true",
                        help="mutate HEAD as committed, without the uncommitted changes")
    parser.add_argument("--refresh-tests", nargs="*", metavar="PATH",
                        help="copy these files or folders of the working tree (default: tests/) "
                             "into a kept copy first")
    parser.add_argument("--ctest", action="store_true",
                        help="run the suite through CTest, one process per test case (slower)")
    parser.add_argument("--sanitize", action="store_true",
                        help="build the copy with clang's address and undefined-behaviour "
                             "sanitizers, so that a mutant reading or writing outside an array "
                             "fails the test it runs in")
    parser.add_argument("--list", action="store_true", help="only count the candidate sites")
    args = parser.parse_args()

    repo = subprocess.check_output(["git", "rev-parse", "--show-toplevel"], text=True).strip()
    if args.list:
        print(f"{len(sites(repo, args.files))} candidate mutations in the library sources")
        return 0

    work = args.build_dir or tempfile.mkdtemp(prefix="dunx-mutation-")
    tree = os.path.join(work, "tree")
    build = os.path.join(work, "build")
    if not os.path.isdir(tree):
        subprocess.check_call(["git", "worktree", "add", "-q", "--detach", tree, "HEAD"], cwd=repo)
        diff = b"" if args.committed else subprocess.check_output(
            ["git", "diff", "--binary", "HEAD"], cwd=repo)
        if diff:
            subprocess.run(["git", "apply"], input=diff, cwd=tree, check=True)
        if not args.committed:  # new files that are not yet in git belong to the tree too
            for name in subprocess.check_output(["git", "ls-files", "--others", "--exclude-standard",
                                                 "-z"], cwd=repo, text=True).split("\0"):
                if name:
                    os.makedirs(os.path.dirname(os.path.join(tree, name)), exist_ok=True)
                    shutil.copy2(os.path.join(repo, name), os.path.join(tree, name))
    elif args.refresh_tests is not None:
        for path in args.refresh_tests or ["tests"]:
            source, target = os.path.join(repo, path), os.path.join(tree, path)
            if os.path.isdir(source):
                shutil.copytree(source, target, dirs_exist_ok=True)
            else:
                shutil.copy2(source, target)
    # The places come from the copy: it is what gets mutated.
    candidates = sites(tree, args.files)
    print(f"{len(candidates)} candidate mutations in the library sources")
    if not candidates:
        return 0
    generator = ["-G", "Ninja"] if shutil.which("ninja") else []
    sanitizer = []
    if args.sanitize:
        flags = "-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=all"
        sanitizer = ["-DCMAKE_CXX_COMPILER=clang++", f"-DCMAKE_CXX_FLAGS={flags}",
                     f"-DCMAKE_EXE_LINKER_FLAGS={flags}", f"-DCMAKE_SHARED_LINKER_FLAGS={flags}"]
    if run(["cmake", "-S", tree, "-B", build, *generator, "-DCMAKE_BUILD_TYPE=Debug",
            "-DDUNX_BUILD_TOOLS=OFF", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON", *sanitizer],
           cwd=tree) != 0 or \
            run(["cmake", "--build", build, "-j", "2"], tree) != 0:
        print("the unmutated tree does not build")
        return 1
    baseline = time.time()
    if not suite_passes(build, tree, "", args.ctest, 900):
        print("the unmutated tree fails its tests")
        return 1
    # A mutant that makes a program several times slower than this is taken as hanging.
    timeout = max(60, 5 * (time.time() - baseline))

    chooser = random.Random(args.sample)
    sample = chooser.sample(candidates, min(args.count, len(candidates)))
    killed, survived, broken = 0, [], 0
    started = time.time()
    for number, (path, line_number, column, index) in enumerate(sample, 1):
        regex, replacement, description = MUTATORS[index]
        source = os.path.join(tree, path)
        with open(source, encoding="utf-8") as handle:
            original = handle.read()
        lines = original.split("\n")
        line = lines[line_number - 1]
        match = re.compile(regex).match(line, column)
        if not match:
            continue
        lines[line_number - 1] = line[:column] + replacement + line[match.end():]
        mutant_started = time.time()
        with open(source, "w", encoding="utf-8") as handle:
            handle.write("\n".join(lines))
        try:
            if run(["cmake", "--build", build, "-j", "2"], tree, timeout=600) != 0:
                broken += 1
                verdict = "does not build"
            else:
                if suite_passes(build, tree, path, args.ctest, timeout):
                    survived.append((path, line_number, description,
                                     lines[line_number - 1].strip()))
                    verdict = "SURVIVED"
                else:
                    killed += 1
                    verdict = "killed"
        finally:
            with open(source, "w", encoding="utf-8") as handle:
                handle.write(original)
        print(f"[{number}/{len(sample)}] {path}:{line_number} {description}: {verdict} "
              f"({time.time() - mutant_started:.0f} s)", flush=True)

    run(["cmake", "--build", build, "-j", "2"], tree)
    counted = killed + len(survived)
    score = 100.0 * killed / counted if counted else 0.0
    print(f"\n{killed} killed, {len(survived)} survived, {broken} did not build; "
          f"score {score:.1f}% of {counted} in {time.time() - started:.0f} s")
    for path, line_number, description, text in survived:
        print(f"  survived: {path}:{line_number} ({description}), mutated: {text}")
    if not args.build_dir:
        subprocess.run(["git", "worktree", "remove", "--force", tree], cwd=repo)
        shutil.rmtree(work, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
