#!/usr/bin/env python3
"""Prints very large files and shows how much memory that takes.

    scripts/memory.py [--tool build/linux-x64/bin/qnvtool] [--limit 200] [--folder DIR] [CASE...]

One line for each case: size of the input, pages, seconds, and the most memory that was resident, code and all. Fails
when a case takes more than the limit, in MB. The files are made in a temporary folder in DIR (default /var/tmp), which
needs 8 GB of free space, and removed. All cases take some ten minutes.
"""
import argparse
import os
import resource
import struct
import subprocess
import sys
import tempfile
import time

LINE = b"A line of a text that fills very many pages and is not kept in memory while they are printed.\n"


def bmp_header(width, height, bits, compression=0, colors=0):
    offset = 54 + 4 * colors
    header = struct.pack("<2sIIIIiiHHIIiiII", b"BM", 0, 0, offset, 40, width, height, 1, bits, compression, 0, 2835,
                         2835, colors, 0)
    return header + b"".join(struct.pack("<I", i * 0x010101) for i in range(colors))


def make_rows(path):
    """600 MB of uncompressed rows, most of them a hole."""
    with open(path, "wb") as file:
        file.write(bmp_header(14000, 14286, 24))
        file.truncate(54 + 42000 * 14286)


def make_codes(path):
    """600 MB of run-length codes: literals."""
    literal = b"\0\xfe" + bytes(range(1, 255))
    with open(path, "wb") as file:
        file.write(bmp_header(254 * 78, 30000, 8, 1, 256))
        for _ in range(30000):
            file.write(literal * 78 + b"\0\0")
        file.write(b"\0\1")


def make_text(path):
    """3 GB of text, nearly all of it empty lines."""
    blank = b"\n" * (1 << 20)
    with open(path, "wb") as file:
        for _ in range(3000):
            file.write(LINE + blank)


def make_words(path):
    """100 MB of text, all of it words."""
    paragraph = b"".join(LINE for _ in range(20)) + b"\n"
    with open(path, "wb") as file:
        for _ in range(100_000_000 // len(paragraph)):
            file.write(paragraph)


def make_picture(path):
    """A PNG file of 1.2 GB of pixels, printed by the tool itself."""
    bmp = path + ".bmp"
    with open(bmp, "wb") as file:
        file.write(bmp_header(100, 100, 24) + bytes(range(250)) * 120)
    subprocess.run([options.tool, "print", bmp, "-q", "-o", path, "--format", "png", "--paper", "2000x2000mm",
                    "--margin", "0", "--dpi", "254", "--no-header"], check=True)
    os.remove(bmp)


SHEET = ["--paper", "200x200mm", "--margin", "0", "--dpi", "100"]
CASES = {
    "rows": (make_rows, "rows.bmp", SHEET),
    "codes": (make_codes, "codes.bmp", SHEET),
    "text": (make_text, "text.txt", ["--dpi", "40", "--device", "gray"]),
    "words": (make_words, "words.txt", ["--dpi", "40", "--device", "gray"]),
    "picture": (make_picture, "picture.png", SHEET),
    "pipe": (make_rows, "rows.bmp", SHEET),
}


def page_bytes(arguments):
    """Bytes of a page as the tool writes it: the size of a page of one letter."""
    done = subprocess.run([options.tool, "print", "-", "-o", "-", "--format", "ppm", "--no-header", *arguments],
                          input=b"a", stdout=subprocess.PIPE, check=True)
    return len(done.stdout)


def run(name, folder):
    make, file, arguments = CASES[name]
    path = os.path.join(folder, file)
    make(path)
    size = os.path.getsize(path)
    command = [options.tool, "print", "-" if name == "pipe" else path, "-o", "-", "--format", "ppm", "--no-header",
               *arguments]
    feeder = subprocess.Popen(["cat", path], stdout=subprocess.PIPE) if name == "pipe" else None
    start = time.monotonic()
    with subprocess.Popen(command, stdin=feeder.stdout if feeder else None, stdout=subprocess.PIPE) as child:
        written = 0
        while chunk := child.stdout.read(1 << 20):
            written += len(chunk)
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
    seconds = time.monotonic() - start
    if feeder:
        feeder.stdout.close()
        feeder.wait()
    os.remove(path)
    pages = written / page_bytes(arguments)
    peak = usage.ru_maxrss / 1024
    good = child.returncode == 0 and pages >= 1 and pages == int(pages) and peak < options.limit
    print(f"{name:8} {size / 1e6:6.0f} MB {pages:8.0f} pages {seconds:7.1f} s {peak:6.0f} MB resident"
          f"{'' if good else '  FAILED'}", flush=True)
    return good


parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
parser.add_argument("--tool", default="build/linux-x64/bin/qnvtool")
parser.add_argument("--limit", type=float, default=200, help="MB")
parser.add_argument("--folder", default="/var/tmp")
parser.add_argument("cases", nargs="*", metavar="CASE", help=", ".join(CASES))
options = parser.parse_args()
options.tool = os.path.abspath(options.tool)
unknown = [name for name in options.cases if name not in CASES]
if unknown:
    sys.exit(f"memory.py: no such case: {unknown[0]} ({', '.join(CASES)})")

# A child of a process begins with its memory, so nothing large may be in this one.
assert resource.getrusage(resource.RUSAGE_SELF).ru_maxrss < 100 * 1024
with tempfile.TemporaryDirectory(dir=options.folder) as scratch:
    os.environ["TMPDIR"] = scratch
    results = [run(name, scratch) for name in options.cases or CASES]
sys.exit(0 if all(results) else 1)
