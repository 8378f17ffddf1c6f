#!/usr/bin/env python3
"""Runs a program on damaged copies of real files and reports what it must never do.

    fuzz/damage.py FOLDER [--truncations 20] [--mutations 500] [--seed 1] -- PROGRAM [ARGUMENTS]

Every file of the folder is tried whole, cut off at random places, and with random bytes changed; the
mutations are shared out over the files of one extension. The program gets the damaged file as its
last argument and may exit with 0 or 1. Anything else, a sanitizer's report, more than 20 seconds of
processor time or more than 4 GiB is a failure, and the damaged file is kept in the current folder.
"""

import argparse
import collections
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import threading

SECONDS = 20
STARVED_SECONDS = 600  # by the clock: a busy machine may give little of its time
KIBIBYTES = 4 << 20

# By default a sanitizer leaves with 1, like a program that refuses a file. An allocation that is too
# large fails under them as it does without. What libraries are known to forget is no finding.
KNOWN_LEAKS = pathlib.Path(__file__).resolve().parent.parent / "tests/support/leaks.supp"
SANITIZER_OPTIONS = "exitcode=99:allocator_may_return_null=1"
SANITIZER_ENVIRONMENT = {
    **os.environ,
    **{f"{name}_OPTIONS": SANITIZER_OPTIONS for name in ("ASAN", "TSAN", "UBSAN")},
    "LSAN_OPTIONS": f"{SANITIZER_OPTIONS}:suppressions={KNOWN_LEAKS}:print_suppressions=0",
}


def truncated(data, generator):
    return data[:generator.randrange(len(data))]


def mutated(data, generator):
    damaged = bytearray(data)
    for _ in range(generator.choice((1, 2, 4, 16, 64))):
        position = generator.randrange(len(damaged))
        damaged[position:position + 1] = generator.choice((
            bytes([generator.randrange(256)]), b"", b"\0\0", b"\xff\xff\xff\xff", b"9"))
    return bytes(damaged)


def cases(folder, truncations, mutations, generator):
    by_extension = collections.defaultdict(list)
    for path in sorted(folder.iterdir()):
        if path.suffix not in (".tsv", ".md"):
            by_extension[path.suffix.lower()].append(path)
    for paths in by_extension.values():
        for path in paths:
            data = path.read_bytes()
            yield path, "whole", data
            for _ in range(truncations):
                yield path, "truncated", truncated(data, generator)
        for i in range(mutations):
            path = paths[i % len(paths)]
            yield path, "mutated", mutated(path.read_bytes(), generator)


def verdict(command, path):
    """What the program did wrong with this file, or nothing; its seconds and KiB."""
    process = subprocess.Popen([*command, path], stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL, env=SANITIZER_ENVIRONMENT)
    watchdog = threading.Timer(STARVED_SECONDS, process.kill)
    watchdog.start()
    _, status, used = os.wait4(process.pid, 0)
    watchdog.cancel()
    # Of the processors, so that a busy machine does not count as a slow program.
    seconds = used.ru_utime + used.ru_stime
    code = os.waitstatus_to_exitcode(status)
    if code not in (0, 1):
        return f"exit {code}", seconds, used.ru_maxrss
    if seconds > SECONDS:
        return f"{seconds:.0f} s", seconds, used.ru_maxrss
    if used.ru_maxrss > KIBIBYTES:
        return "memory", seconds, used.ru_maxrss
    return None, seconds, used.ru_maxrss


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--truncations", type=int, default=20)
    parser.add_argument("--mutations", type=int, default=500)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("program", nargs="+")
    options = parser.parse_args()

    count, failures, longest, most = 0, 0, 0, 0
    with tempfile.TemporaryDirectory() as folder:
        generator = random.Random(options.seed)
        for path, damage, data in cases(options.folder, options.truncations, options.mutations,
                                        generator):
            damaged = os.path.join(folder, path.name)
            pathlib.Path(damaged).write_bytes(data)
            wrong, seconds, memory = verdict(options.program, damaged)
            count, longest, most = count + 1, max(longest, seconds), max(most, memory)
            if wrong:
                failures += 1
                kept = f"damaged-{failures}-{path.name}"
                shutil.copy(damaged, kept)
                print(f"{kept}: {damage}, {wrong}", flush=True)
    print(f"{count} files, {failures} failures, longest {longest:.1f} s, most memory {most >> 10} MiB")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
