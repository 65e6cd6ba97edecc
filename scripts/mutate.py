#!/usr/bin/env python3
"""Changes one operator, constant or comparison of the library at a time and counts what the tests catch.

  scripts/mutate.py [--count 500] [--seed 1] [--jobs CORES] [--files REGEX] [--only NUMBER...] [--first NUMBER]
                    [--list]

A mutation is a token that is replaced; a seed always gives the same list for the same sources. Each job has a copy of
the project under build/mutation, changes a file there, builds what depends on it and runs the suites that can see it,
the quickest first, until one fails. What does not compile is drawn again and not counted.

A mutation that no test can catch, because what it computes is the same, is listed in scripts/mutation_equivalents.txt
with its reason and is not counted. The last line says how many of the others were caught; the ones that were not are
printed as they are found, with the line that was changed, and stand in build/mutation/survivors.txt.
"""
import argparse
import collections
import concurrent.futures
import os
import pathlib
import queue
import random
import re
import shutil
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
WORK = ROOT / "build" / "mutation"
EQUIVALENTS = ROOT / "scripts" / "mutation_equivalents.txt"

# Pattern of a token and what stands for it afterwards. Spaces keep templates, shifts and pointers apart.
REPLACEMENTS = [
    (r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "), (r" >= ", " > "), (r" == ", " != "), (r" != ", " == "),
    (r" < ", " > "), (r" \+ ", " - "), (r" - ", " + "), (r" \* ", " + "), (r" / ", " * "), (r" % ", " / "),
    (r" << ", " >> "), (r" >> ", " << "), (r" & ", " | "), (r" \| ", " & "), (r" \^ ", " & "),
    (r" && ", " || "), (r" \|\| ", " && "), (r" \+= ", " -= "), (r" -= ", " += "), (r" \^= ", " = "), (r" &= ", " |= "),
    (r"\+\+", "--"), (r"!(?=[\w(])", ""), (r"(?<=[ (])-(?=\w)", ""), (r"~(?=[\w(])", ""),
    (r"\btrue\b", "false"), (r"\bfalse\b", "true"), (r"\bMinOf\b", "MaxOf"), (r"\bMaxOf\b", "MinOf"),
    (r"\bstd::min\b", "std::max"), (r"\bstd::max\b", "std::min"),
    (r"\bleft\b", "right"), (r"\bright\b", "left"), (r"\btop\b", "bottom"), (r"\bbottom\b", "top"),
    (r"\bwidth\b", "height"), (r"\bfirst\b", "last"), (r"\bbkColor\b", "TextColor"), (r"\bTextColor\b", "bkColor"),
    (r"\bcontinue;", "break;"), (r"\bbreak;", "continue;"),
    (r"(?<![\w.'])0(?![\w.'])", "1"), (r"(?<![\w.'-])1(?![\w.'])", "0"), (r"(?<![\w.'-])1(?![\w.'])", "2"),
    (r"(?<![\w.'])2(?![\w.'])", "3"), (r"(?<![\w.'])3(?![\w.'])", "2"), (r"(?<![\w.'])7(?![\w.'])", "8"),
    (r"(?<![\w.'])8(?![\w.'])", "7"), (r"(?<![\w.'])16(?![\w.'])", "15"), (r"(?<![\w.'])32(?![\w.'])", "31"),
    (r"\b0xFF\b", "0x7F"), (r"\b0xFFFF\b", "0xFFFE"),
]
# Lines without anything that runs: declarations of types, templates, assertions that the compiler checks.
SKIPPED_LINE = re.compile(r"\s*(#|//|\*|/\*|using |namespace |template|static_assert|class |struct |enum |return;|friend )")
# The smaller or larger of two values, where < and <= give the same.
MIN_OR_MAX = re.compile(r"(\S+) [<>]=? (\S+) \? (?:\1 : \2|\2 : \1)\b")
# The kernels of avx512 are left out where the processor cannot run them: no suite would see a change.
HAS_AVX512 = "avx512_vbmi" in pathlib.Path("/proc/cpuinfo").read_text().split()
AVX512_ONLY = r"_avx512\.cpp$|rows/(bit_vectors|byte_moves|vector64)\.h$"
SKIPPED_FILE = re.compile(r"entry/record_layout\.cpp$" + ("" if HAS_AVX512 else "|" + AVX512_ONLY))

Mutation = collections.namedtuple("Mutation", "file line column old new text")


def code_of(line):
    """The line without its comment and with blanks for what stands in quotes."""
    line = re.sub(r'"(\\.|[^"\\])*"|\'(\\.|[^\'\\])\'', lambda m: " " * len(m.group()), line)
    return line.split("//")[0]


def only_ties_change(code, match, new):
    """Whether a comparison that chooses the smaller or larger value changes for equal values only."""
    old, new = match.group().strip(), new.strip()
    return (old + new in ("<<=", "<=<", ">>=", ">=>")
            and any(m.start() <= match.start() < m.end() for m in MIN_OR_MAX.finditer(code)))


def all_mutations(files):
    found = []
    for path in sorted((ROOT / "src").rglob("*")):
        name = str(path.relative_to(ROOT))
        if path.suffix not in (".cpp", ".h") or SKIPPED_FILE.search(name) or not re.search(files, name):
            continue
        in_assert = False
        for number, line in enumerate(path.read_text().split("\n"), 1):
            code = code_of(line)
            in_assert = in_assert or "static_assert" in code
            if not in_assert and not SKIPPED_LINE.match(code):
                for pattern, new in REPLACEMENTS:
                    for match in re.finditer(pattern, code):
                        if only_ties_change(code, match, new):
                            continue
                        found.append(Mutation(name, number, match.start(), match.group(), new, line.strip()))
            if in_assert and ";" in code:
                in_assert = False
    return found


def drawn(mutations, seed):
    """All of them in a random order in which the folders take turns, so that small ones are not drowned."""
    order = random.Random(seed)
    folders = collections.defaultdict(list)
    for mutation in mutations:
        folders[os.path.dirname(mutation.file)].append(mutation)
    keyed = []
    for folder in folders.values():
        order.shuffle(folder)
        keyed += [((rank + order.random()) / len(folder) ** 0.7, mutation) for rank, mutation in enumerate(folder)]
    return [mutation for _, mutation in sorted(keyed)]


def read_equivalents():
    """Lines of "file | line of source | old -> new | reason"."""
    known = {}
    if EQUIVALENTS.exists():
        for line in EQUIVALENTS.read_text().splitlines():
            parts = [part.strip() for part in line.split(" | ")]
            if line.startswith("#") or len(parts) < 4:
                continue
            known[(parts[0], " | ".join(parts[1:-2]), parts[-2])] = parts[-1]
    return known


def key_of(mutation):
    return (mutation.file, mutation.text, f"{mutation.old.strip()} -> {mutation.new.strip()}".strip())


# Each suite: the target that it needs and the command, relative to the build folder.
RANDOM = ("random_tests", ["bin/random_tests", "--cases", "20000"])
GOLDEN = ("golden_tests", ["bin/golden_tests", "--gtest_fail_fast", "--gtest_brief=1"])
INTERFACE = ("interface_tests", ["bin/interface_tests", "--gtest_fail_fast", "--gtest_brief=1"])
ROBUSTNESS = ("robustness_tests", ["bin/robustness_tests", "--gtest_fail_fast", "--gtest_brief=1"])
UNIT = ("unit_tests", ["bin/unit_tests", "--gtest_fail_fast", "--gtest_brief=1"])


# Processor seconds that a run of a suite may take: several times what it takes without a mutation.
suite_seconds = {}


def suites_for(file):
    level = re.search(r"_(plain|sse2|ssse3)\.cpp$", file)
    if level:  # the library of this machine does not run these; one that is capped does
        capped = level.group(1)
        return [UNIT, (f"random_tests_{capped}", [f"bin/levels/{capped}/random_tests", "--cases", "20000"])]
    if "/rows/" in file:
        return [UNIT, RANDOM, GOLDEN, INTERFACE]
    return [RANDOM, GOLDEN, INTERFACE, UNIT, ROBUSTNESS]


class Worker:
    """A copy of the project with a build of its own."""

    def __init__(self, number):
        self.tree = WORK / f"tree{number}"
        self.build = self.tree / "build"

    def prepare(self):
        self.tree.mkdir(parents=True, exist_ok=True)
        files = subprocess.check_output(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, text=True).split("\n")
        for name in filter(None, files):
            source, copy = ROOT / name, self.tree / name
            if not source.is_file() or (copy.exists() and copy.read_bytes() == source.read_bytes()):
                continue
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(source, copy)
        for copy in (self.tree / "src").rglob("*"):
            if copy.is_file() and not (ROOT / copy.relative_to(self.tree)).exists():
                copy.unlink()
        options = ["-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_CXX_FLAGS_RELEASE=-O1", "-DCMAKE_CXX_COMPILER=g++"]
        self.run(["cmake", "-G", "Ninja", "-S", str(self.tree), "-B", str(self.build)] + options, check=True)
        everything = sorted({s[0] for file in ("a.cpp", "a_plain.cpp", "a_sse2.cpp", "a_ssse3.cpp")
                             for s in suites_for(file)})
        self.run(["ninja", "-C", str(self.build)] + everything, check=True)

    def run(self, command, timeout=None, check=False):
        done = subprocess.run(command, cwd=self.build if self.build.exists() else None, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=timeout, text=True, errors="replace")
        if check and done.returncode:
            sys.exit(f"{' '.join(command)} failed:\n{done.stdout[-2000:]}")
        return done.returncode

    def suite_fails(self, suite):
        """A loop without end fails by the limit of processor seconds, which a busy machine does not shorten."""
        limited = ["sh", "-c", 'ulimit -t "$0" && exec "$@"', str(suite_seconds.get(suite[0], 600))] + suite[1]
        try:
            return self.run(["nice"] + limited, timeout=1800) != 0
        except subprocess.TimeoutExpired:
            return True

    def verdict(self, mutation):
        """The suite that caught it, "" for none, None when it does not compile."""
        path = self.tree / mutation.file
        original = path.read_text()
        lines = original.split("\n")
        line = lines[mutation.line - 1]
        end = mutation.column + len(mutation.old)
        lines[mutation.line - 1] = line[: mutation.column] + mutation.new + line[end:]
        path.write_text("\n".join(lines))
        try:
            # Programs that are only linked anew need no building: they load the library.
            for suite in suites_for(mutation.file):
                if self.run(["nice", "ninja", "-C", str(self.build), suite[0]]) != 0:
                    return None
                if self.suite_fails(suite):
                    return suite[0]
            return ""
        finally:
            path.write_text(original)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--count", type=int, default=500, help="mutations to try")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--files", default="", help="only files whose name matches this regular expression")
    parser.add_argument("--only", type=int, nargs="*", help="numbers of a list to try again")
    parser.add_argument("--first", type=int, default=0, help="begin with this number of the list, to go on with a run")
    parser.add_argument("--list", action="store_true", help="print the mutations and try none")
    options = parser.parse_args()

    equivalents = read_equivalents()
    order = drawn(all_mutations(options.files), options.seed)
    numbered = [(n, m) for n, m in enumerate(order) if n >= options.first and key_of(m) not in equivalents]
    if options.only:
        numbered = [(n, m) for n, m in numbered if n in options.only]
    if options.list:
        for number, mutation in numbered[: options.count]:
            print(number, f"{mutation.file}:{mutation.line}", " -> ".join(key_of(mutation)[2:]), "|", mutation.text)
        return 0

    WORK.mkdir(parents=True, exist_ok=True)
    workers = [Worker(number) for number in range(options.jobs)]
    free = queue.Queue()
    for worker in workers:
        worker.prepare()
        free.put(worker)
    for suite in (RANDOM, GOLDEN, INTERFACE, UNIT, ROBUSTNESS):
        before = os.times()
        if workers[0].suite_fails(suite):
            sys.exit(f"{suite[0]} fails without any mutation")
        after = os.times()
        taken = after.children_user + after.children_system - before.children_user - before.children_system
        for name in (suite[0], *(f"{suite[0]}_{level}" for level in ("plain", "sse2", "ssse3"))):
            suite_seconds[name] = int(6 * taken) + 5

    def attempt(item):
        worker = free.get()
        try:
            return item, worker.verdict(item[1])
        finally:
            free.put(worker)

    caught, survivors, start = collections.Counter(), [], time.time()
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool, open(WORK / "survivors.txt", "w") as file:
        waiting = iter(numbered)
        running = {pool.submit(attempt, item) for item, _ in zip(waiting, range(options.jobs))}
        while running:
            done, running = concurrent.futures.wait(running, return_when=concurrent.futures.FIRST_COMPLETED)
            for future in done:
                (number, mutation), verdict = future.result()
                if verdict:
                    caught[verdict] += 1
                elif verdict == "":
                    survivors.append(mutation)
                    line = f"{number} {mutation.file}:{mutation.line} | {mutation.text} | {key_of(mutation)[2]}"
                    print("survived", line, flush=True)
                    print(line, file=file, flush=True)
                tried = caught.total() + len(survivors)
                if tried + len(running) < options.count:
                    item = next(waiting, None)
                    if item:
                        running.add(pool.submit(attempt, item))
                if tried and tried % 25 == 0:
                    print(f"{tried} tried up to number {number}, {caught.total()} caught, {time.time() - start:.0f} s",
                          flush=True)
    total = caught.total() + len(survivors)
    print("caught by", ", ".join(f"{name} {count}" for name, count in caught.most_common()))
    print(f"{caught.total()} of {total} caught ({100 * caught.total() / max(total, 1):.1f} %), seed {options.seed}, "
          f"{len(equivalents)} equivalents known")
    return 0 if survivors == [] else 1


if __name__ == "__main__":
    sys.exit(main())
