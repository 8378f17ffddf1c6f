#!/usr/bin/env python3
"""murkwell-cli against what a user would run instead, and its peak memory.

    bench/against_other_tools.py MURKWELL_CLI FILE.pdf

Prints ratios of best wall times of one run, of file sizes, and of peak memory to the page bitmaps
of a 100-page document that is made of FILE.pdf's first page. Needs ghostscript, mupdf-tools,
img2pdf and qpdf.
"""

import glob
import json
import os
import resource
import subprocess
import sys
import tempfile
import time

TURNS = 3


def run(*command):
    start = time.monotonic()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return time.monotonic() - start


def report(what, ratio, limit):
    verdict = "" if ratio <= limit else "  EXCEEDED"
    print(f"{what:58} {ratio:6.3f}  (at most {limit:.2f}){verdict}", flush=True)


def compare_tools(cli, pdf, folder):
    ours, theirs = f"{folder}/ours.pdf", f"{folder}/theirs.pdf"

    def redact():
        box = "1:0.1,0.1,0.3,0.05"
        return run(cli, "redact", pdf, "--box", box, "-o", ours, "--force")

    def ghostscript():
        return run("gs", "-q", "-dNOPAUSE", "-dBATCH", "-sDEVICE=pdfimage24", "-r144",
                   "-dTextAlphaBits=4", "-dGraphicsAlphaBits=4", f"-sOutputFile={theirs}", pdf)

    def draw_and_wrap():
        drawing = run("mutool", "draw", "-r", "144", "-o", f"{folder}/page-%04d.png", pdf)
        pages = sorted(glob.glob(f"{folder}/page-*.png"))
        return drawing + run("img2pdf", "-o", f"{folder}/wrapped.pdf", *pages)

    times = [(redact(), ghostscript(), draw_and_wrap()) for _ in range(TURNS)]
    best = [min(column) for column in zip(*times)]
    report("redact, wall : ghostscript pdfimage24", best[0] / best[1], 0.25)
    report("redact, bytes : ghostscript pdfimage24",
           os.path.getsize(ours) / os.path.getsize(theirs), 0.65)
    report("redact, wall : mutool draw + img2pdf", best[0] / best[2], 0.5)


def measure_memory(cli, pdf, folder):
    pages = f"{folder}/hundred.pdf"
    run("qpdf", "--empty", "--pages", *[pdf, "1"] * 100, "--", pages)
    sizes = json.loads(subprocess.run([cli, "info", pages], check=True, capture_output=True)
                       .stdout)["pages"]
    before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
    run(cli, "redact", pages, "--box", "1:0.1,0.1,0.3,0.05", "-o", f"{folder}/hundred-out.pdf")
    peak = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
    if peak <= before:
        sys.exit("another child took more memory: nothing measured")
    bitmaps = sum(4 * width * height for width, height in sizes)
    report(f"redact of {len(sizes)} pages, peak memory : bitmaps", peak * 1024 / bitmaps, 2.3)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with tempfile.TemporaryDirectory() as folder:
        measure_memory(sys.argv[1], sys.argv[2], folder)
        compare_tools(sys.argv[1], sys.argv[2], folder)


if __name__ == "__main__":
    main()
