#!/usr/bin/env python3
"""Predicts the cycles of row kernels on a processor with AVX-512, which the machine at hand need not have.

  scripts/kernel_cycles.py [KERNEL...]     all kernels that the level avx512 has, or those named

Compiles the kernels of avx2 and of avx512 for 64 and for 32 bits, takes the inner loop of each that stores most (of
several alike the slowest), and has llvm-mca count its cycles for an Ice Lake server. Prints a table: cycles for a block of 64 pixels (64 bytes in
kernels of bytes, one row in those of glyphs) at both levels, and avx2 over avx512.

This is a prediction, not a measurement. It assumes that everything lies in the first-level cache, that no load or store
straddles cache lines and that the processor looks far enough ahead. It leaves out the ends of rows and what is set up
for each row. The tables of llvm-mca 14 count a permutation of two vectors of bytes as one step of the permuting unit;
processors take two, so one is added for each. Needs g++ and llvm-mca (Debian: llvm-14).
"""
import collections
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROWS = ROOT / "src" / "raster" / "rows"
MCA = shutil.which("llvm-mca") or shutil.which("llvm-mca-14")
MODES = {"64 bits": ["-m64"], "32 bits": ["-m32", "-msse2", "-mfpmath=sse", "-idirafter", "/usr/include/x86_64-linux-gnu"]}
ITERATIONS = 200
VECTOR_BYTES = {"x": 16, "y": 32, "z": 64}
# A step of the permuting unit that depends on nothing.
ONE_STEP = "\tvpermb\t%zmm30, %zmm30, %zmm31"

# Bytes of the band, or of marks, that a block is; kernels of 24 bits have 192.
BLOCK_BYTES = {"RopTileRow": 64, "RopSourceRow": 64, "RopSourceTileRow": 64, "MinimumRow": 64, "GrayRow24": 64,
               "GrayRow32": 64, "GrayRow16": 64, "MarkRow24": 64, "PaintGlyph24": None, "PaintGlyph8": None,
               "ExpandGlyph24": None, "ExpandGlyph8": None}


def levels():
    """Name and compiler options of the levels, lowest first."""
    lines = subprocess.run(ROOT / "scripts/kernel_levels.sh", check=True, capture_output=True, text=True).stdout
    return dict(line.split("\t") for line in lines.splitlines())


def kernels_of(level):
    """What the tables of a level name: kernel -> level whose function it is."""
    text = "".join(path.read_text() for path in sorted(ROWS.glob(f"*rows_{level}.cpp")))
    return dict((kernel, of) for kernel, of in re.findall(r"\.(\w+) = (\w+)::\w+,", text))


def functions_of(level, mode, options, folder):
    """The functions of a level's files: symbol -> lines of assembly."""
    functions = {}
    for source in sorted(ROWS.glob(f"*rows_{level}.cpp")):
        out = pathlib.Path(folder) / f"{source.stem}.s"
        command = ["g++", "-std=c++20", "-O3", "-falign-loops=64", "-fno-exceptions", "-fno-rtti", "-fno-pic", "-w",
                   f"-I{ROOT / 'src'}", f"-I{ROOT / 'include'}", *MODES[mode], *options.split(), "-S", "-o", out, source]
        subprocess.run(command, check=True)
        name, unit = None, {}
        for line in out.read_text().splitlines():
            label = re.match(r"(_Z\w+(?:\.\w+)*):", line)
            if label:
                name = label.group(1)
                unit[name] = []
            elif name and not re.match(r"\s+\.", line):
                unit[name].append(line)
        functions.update({(source.stem, symbol): lines for symbol, lines in unit.items()})
    return functions


def stored_bytes(body):
    """Bytes that a loop's vector stores write outside the stack frame."""
    total = 0
    for line in body:
        store = re.match(r"\s+v?mov\w+\s+%([xyz])mm\d+, [^%]*\((?!%[er]?[sb]p)", line)
        if store:
            half = re.match(r"\s+v?mov(q|lps|lpd)\s", line)
            total += 8 if half else VECTOR_BYTES[store.group(1)]
    return total


def loops(lines):
    """The innermost loops of a function, as lists of instructions."""
    place = {}
    for number, line in enumerate(lines):
        label = re.match(r"(\.L\w+):", line)
        if label:
            place[label.group(1)] = number
    spans = []
    for number, line in enumerate(lines):
        # Loops end with a condition; other jumps back come from code that the compiler has put aside.
        jump = re.match(r"\s+j(?!mp)\w+\s+(\.L\w+)$", line)
        if jump and jump.group(1) in place and place[jump.group(1)] < number:
            spans.append((place[jump.group(1)], number))
    for start, end in spans:
        body = [line for line in lines[start : end + 1] if re.match(r"\s+\w", line)]
        has_inner = any(other != (start, end) and start <= other[0] and other[1] <= end for other in spans)
        inside = set(re.findall(r"^(\.L\w+):", "\n".join(lines[start : end + 1]), re.M))
        leaves = any(re.match(r"\s+ret\b", line) for line in body) or any(
            label not in inside for label in re.findall(r"\sjmp\s+(\S+)", "\n".join(body)))
        if not has_inner and not leaves:
            yield body


def with_calls(functions, unit, body):
    """A loop with the bodies of the functions that it calls; nothing when one of these has a loop."""
    whole = []
    for line in body:
        call = re.match(r"\s+call\s+(\S+)", line)
        if not call:
            whole.append(line)
            continue
        called = functions.get((unit, call.group(1)))
        if called is None or any(loops(called)):
            return []
        whole += [inner for inner in called if re.match(r"\s+(?!ret)\w", inner)]
    return whole


def reachable(functions, unit, symbol):
    """A function and those of the same file that it calls or jumps to."""
    seen, todo = set(), [symbol]
    while todo:
        name = todo.pop()
        if name in seen or (unit, name) not in functions:
            continue
        seen.add(name)
        for line in functions[unit, name]:
            target = re.match(r"\s+(?:call|jmp)\s+(_Z\S+)$", line)
            # Kernels of other levels are not this kernel's loops.
            if target and ("_GLOBAL__N_" in target.group(1) or not re.match(r"_ZN3qnv\d", target.group(1))):
                todo.append(target.group(1))
    return [functions[unit, name] for name in seen]


def cycles(body):
    """Cycles of one iteration."""
    text = []
    for line in body:
        # Where a jump leads does not matter, nor do symbols.
        text.append(re.sub(r"(\s+j\w+\s+)\S+", r"\g<1>.Lnowhere", line))
        if re.match(r"\s+vperm[ti]2[bw]\s", line):
            text.append(ONE_STEP)
    done = subprocess.run([MCA, "-mtriple=x86_64-linux-gnu", "-mcpu=icelake-server", f"-iterations={ITERATIONS}",
                           "-instruction-info=0", "-resource-pressure=0"],
                          input="\n".join(text) + "\n", stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    total = re.search(r"Total Cycles:\s+(\d+)", done.stdout)
    if not total:
        sys.exit(f"{MCA} failed:\n{done.stderr}\n" + "\n".join(text))
    return int(total.group(1)) / ITERATIONS


def predicted(functions, level, kernel):
    """Cycles of a block, or None when the kernel has no loop that stores vectors."""
    symbol = f"_ZN3qnv{len(level)}{level}{len(kernel)}{kernel}E"
    found = []
    for unit, name in functions:
        if name.startswith(symbol):
            for lines in reachable(functions, unit, name):
                bodies = [with_calls(functions, unit, body) for body in loops(lines)]
                found += [(stored_bytes(body), body) for body in bodies]
    most = max((stored for stored, _ in found), default=0)
    if not most:
        return None
    alike = [body for stored, body in found if stored == most]
    # Loops without masks are those for the inner part of a row, one for each kind of operation. Where all have masks,
    # the others are for the ends of rows and for clipped glyphs.
    inner = [body for body in alike if not any(re.search(r"%[xyz]mm\d+, .*\){%k", line) for line in body)]
    found = max(map(cycles, inner)) if inner else min(map(cycles, alike))
    block = BLOCK_BYTES.get(kernel, 64 if kernel.endswith("8") else 192)
    return found * block / most if block else found


def main():
    if not MCA:
        sys.exit("llvm-mca is not installed: apt-get install llvm")
    if len(sys.argv) > 1 and sys.argv[1].startswith("-"):
        print(__doc__)
        sys.exit(0 if sys.argv[1] in ("-h", "--help") else 2)
    options = levels()
    names = list(options)
    top = kernels_of("avx512")
    below = {}
    for level in names[names.index("avx2") :: -1]:
        for kernel, of in kernels_of(level).items():
            below.setdefault(kernel, of)
    wanted = sys.argv[1:] or [kernel for kernel, of in top.items() if of == "avx512"]
    table = collections.defaultdict(list)
    with tempfile.TemporaryDirectory() as folder:
        for mode in MODES:
            functions = {level: functions_of(level, mode, options[level], folder) for level in names[1:]}
            for kernel in wanted:
                if kernel not in top:
                    sys.exit(f"no kernel {kernel}")
                old = predicted(functions.get(below[kernel], {}), below[kernel], kernel)
                new = predicted(functions["avx512"], "avx512", kernel)
                table[kernel].append((old, new))
    print("| kernel | " + " | ".join(f"{mode}: avx2 | avx512 | ratio" for mode in MODES) + " |")
    print("|---|" + "---|---|---|" * len(MODES))
    for kernel, pairs in table.items():
        cells = []
        for old, new in pairs:
            cells += [f"{old:.1f}" if old else "-", f"{new:.1f}" if new else "-", f"{old / new:.1f}" if old and new else "-"]
        print(f"| `{kernel}` | " + " | ".join(cells) + " |")


if __name__ == "__main__":
    main()
