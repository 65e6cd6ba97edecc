#!/usr/bin/env python3
"""Remembers which tests have passed and on what they depend, so that ./check need not run them again.

  scripts/test_record.py tests PRESET           what is known about each test of a build, one line each:
                                                  passed NAME PASSED SECONDS DATE   nothing has changed since then
                                                  run NAME                          anything else
  scripts/test_record.py script NAME            the same for a script that checks the whole project
  scripts/test_record.py store PRESET|NAME      reads lines NAME PASSED FAILED SECONDS and keeps those that passed;
                                                the state that counts is that of the question before

A test depends on its command, its environment, the processor, the installed packages, and on files. A test program:
itself, the shared libraries beside it, and the data of the folders that test programs read (pictures, corpora, recorded
pages). Everything else, such as a test that is a script: every file of the project and every program of its build. The
record is build/test_record.json; without it everything runs.
"""
import hashlib
import json
import os
import pathlib
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build"
RECORD = BUILD / "test_record.json"
ASKED = BUILD / "test_record_asked.json"
HASHES = BUILD / "test_record_hashes.json"
DATA_FOLDERS = ("tests", "fuzz", "examples", "bench")
NO_DATA = (".cpp", ".h", ".c", ".in", ".md", ".sh", ".py")


def read_json(path):
    try:
        return json.loads(path.read_text())
    except (OSError, ValueError):
        return {}


def write_json(path, value):
    beside = path.with_suffix(".new")
    beside.write_text(json.dumps(value))
    os.replace(beside, path)


class Hashes:
    """Checksums of files, kept as long as size and time of a file stay."""

    def __init__(self):
        self.known = read_json(HASHES)
        self.used = {}

    def of(self, path):
        try:
            state = path.stat()
        except OSError:
            return "missing"
        name, stamp = str(path), [state.st_mtime_ns, state.st_size]
        entry = self.known.get(name)
        if entry is None or entry[:2] != stamp:
            entry = stamp + [hashlib.sha256(path.read_bytes()).hexdigest()]
        self.known[name] = self.used[name] = entry
        return entry[2]

    def of_all(self, paths):
        whole = hashlib.sha256()
        for path in sorted(paths):
            whole.update(f"{path}\0{self.of(path)}\n".encode())
        return whole.hexdigest()


def project_files():
    names = subprocess.check_output(["git", "ls-files", "-coz", "--exclude-standard"], cwd=ROOT, text=True).split("\0")
    return [ROOT / name for name in filter(None, names)]


def is_data(path):
    return path.relative_to(ROOT).parts[0] in DATA_FOLDERS and path.suffix not in NO_DATA


def machine():
    """What else a result depends on: the processor and the installed packages."""
    processor = [line for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines()
                 if line.startswith(("model name", "flags"))][:2]
    packages = subprocess.run(["dpkg-query", "-W"], stdout=subprocess.PIPE, text=True, check=False).stdout
    return hashlib.sha256("\n".join(processor + [os.uname().release, packages]).encode()).hexdigest()


def files_below(folder):
    return [path for path in folder.rglob("*") if path.is_file()]


def key_of_test(test, folder, hashes, data, everything):
    command = test.get("command", [])
    known = [data]
    program = next((pathlib.Path(word) for word in command if word.startswith(str(folder / "bin"))), None)
    if program is None or not program.is_file() or any(word.endswith((".sh", "cmake")) and "wine.sh" not in word
                                                         for word in command):
        known = [everything, hashes.of_all(files_below(folder / "bin"))]
    else:
        libraries = [path for place in {program.parent, folder / "bin"} for path in place.iterdir()
                     if path.suffix in (".so", ".dll")]
        known.append(hashes.of_all([program] + libraries))
    described = [test["name"], command, test.get("properties"), known]
    return hashlib.sha256(json.dumps(described, sort_keys=True).encode()).hexdigest()


def ask(names_and_keys):
    record, asked = read_json(RECORD), {}
    for name, full_name, key in names_and_keys:
        asked[full_name] = key
        entry = record.get(full_name)
        if entry and entry["key"] == key:
            print("passed", name, entry["passed"], entry["seconds"], entry["date"])
        else:
            print("run", name)
    write_json(ASKED, asked)


def main():
    if len(sys.argv) != 3 or sys.argv[1] not in ("tests", "script", "store"):
        sys.exit(__doc__)
    action, name = sys.argv[1:]
    BUILD.mkdir(exist_ok=True)
    if action == "store":
        record, asked = read_json(RECORD), read_json(ASKED)
        for line in sys.stdin:
            test, passed, failed, seconds = line.split()
            full_name = f"{name}/{test}"
            record.pop(full_name, None)
            if full_name in asked and int(passed) > 0 and int(failed) == 0:
                record[full_name] = {"key": asked[full_name], "passed": int(passed), "seconds": float(seconds),
                                     "date": time.strftime("%Y-%m-%dT%H:%M")}
        write_json(RECORD, record)
        return
    hashes, files = Hashes(), project_files()
    place = machine()
    everything = place + hashes.of_all(files)
    if action == "script":
        ask([(name, f"{name}/{name}", everything)])
    else:
        data = place + hashes.of_all([path for path in files if is_data(path)])
        listing = json.loads(subprocess.check_output(["ctest", "--preset", name, "--show-only=json-v1"], cwd=ROOT))
        ask([(test["name"], f"{name}/{test['name']}", key_of_test(test, BUILD / name, hashes, data, everything))
             for test in listing["tests"]])
    write_json(HASHES, hashes.known)


if __name__ == "__main__":
    main()
