#!/usr/bin/env python3
"""Do the tests notice faults? Puts one fault at a time into a copy of the tree, and runs tests.

    run_faults.py [NAME...]      names may have * in them; without any, every fault is tried

tests/faults.json is a list of objects: "name"; "file"; "old", which has to stand exactly once in
that file; "new", which takes its place; and "tests", a regular expression for the tests (as
`ctest -R` takes it) of which one has to fail. They have to pass without a fault, which is tried
first. Prints a line a fault. The exit status is 1 when fewer than 95 % are caught, or when one
does not apply any more.

The copy and its build lie in build/faults and are kept, so that only what changed is built again.
"""

import ctypes
import fcntl
import fnmatch
import json
import os
import pathlib
import re
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
WORK = ROOT / "build" / "faults"
TREE = WORK / "tree"
BUILD = WORK / "build"
SHARE_WANTED = 95  # per cent
PATIENCE = 20  # seconds that a test may take longer than three times what it takes without a fault


class Problem(Exception):
    """Why a fault cannot be tried."""


def say(*words):
    print(*words, flush=True)


def run(*command):
    return subprocess.run(
        command, cwd=ROOT, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)


def copy_tree():
    """Brings the copy up to date; what an interrupted run has left in it goes as well."""
    listed = run("git", "ls-files", "-z", "--cached", "--others", "--exclude-standard").stdout
    names = {name for name in listed.split("\0") if (ROOT / name).is_file()}
    for name in names:
        source, copy = ROOT / name, TREE / name
        contents = source.read_bytes()
        if not copy.is_file() or copy.read_bytes() != contents:
            copy.parent.mkdir(parents=True, exist_ok=True)
            copy.write_bytes(contents)
            copy.chmod(source.stat().st_mode)
    for copy in TREE.rglob("*"):
        if copy.is_file() and str(copy.relative_to(TREE)) not in names:
            copy.unlink()


def configure():
    done = run("cmake", "-S", str(TREE), "-B", str(BUILD), "-G", "Ninja",
               "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=", "-DTAVELOR_BENCH=OFF")
    if done.returncode:
        sys.exit(done.stdout)


def all_tests():
    """What ctest knows of each test, by name."""
    listed = run("ctest", "--test-dir", str(BUILD), "--show-only=json-v1")
    return {test["name"]: test for test in json.loads(listed.stdout)["tests"]}


def build(names):
    """Builds these tests. Raises what the compiler says first where it fails."""
    # A test on another desktop is the same program.
    targets = {name.replace("OnWayland", "") for name in names}
    done = run("cmake", "--build", str(BUILD), "--target", *sorted(targets))
    if done.returncode:
        errors = [line for line in done.stdout.splitlines() if "error" in line]
        raise Problem("does not build: " + (errors or ["?"])[0])


def end_with_parent():
    ctypes.CDLL(None).prctl(1, signal.SIGKILL)  # PR_SET_PDEATHSIG


def failure_of(test, limit):
    """Runs a test. None when it passes, otherwise what is to be said of it."""
    properties = {one["name"]: one["value"] for one in test["properties"]}
    environment = dict(os.environ)
    environment.update(line.split("=", 1) for line in properties.get("ENVIRONMENT", []))
    try:
        done = subprocess.run(
            test["command"], cwd=properties["WORKING_DIRECTORY"], env=environment, timeout=limit,
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            preexec_fn=end_with_parent)
    except subprocess.TimeoutExpired:
        return test["name"] + " (time limit)"
    return test["name"] if done.returncode else None


class Faults:
    def __init__(self):
        copy_tree()
        configure()
        self.tests = all_tests()
        self.limits = {}  # seconds by the name of a test that passes without a fault
        self.broken = {}  # what is wrong by the expression of tests that do not pass without one

    def names(self, expression):
        return [name for name in self.tests if re.search(expression, name)]

    def try_without_fault(self, expression):
        """Once for each expression, so that no fault is caught by a test that fails anyway."""
        if expression not in self.broken:
            self.broken[expression] = self.what_is_broken(expression)
        if self.broken[expression]:
            raise Problem(self.broken[expression])

    def what_is_broken(self, expression):
        names = self.names(expression)
        if not names:
            return f"no test is called {expression}"
        try:
            build(names)
        except Problem as problem:
            return f"without a fault it {problem}"
        self.tests = all_tests()  # a program is known once it is there
        for name in names:
            if name in self.limits:
                continue
            start = time.monotonic()
            failure = failure_of(self.tests[name], 600)
            if failure:
                return f"{failure} fails without a fault"
            self.limits[name] = 3 * (time.monotonic() - start) + PATIENCE
        return None

    def catcher(self, fault):
        """The test that notices the fault, or None."""
        path = TREE / fault["file"]
        text = path.read_text() if path.is_file() else ""
        count = text.count(fault["old"])
        if count != 1:
            raise Problem(f"no longer applies: `old` stands {count} times in {fault['file']}")
        self.try_without_fault(fault["tests"])
        names = self.names(fault["tests"])
        try:
            path.write_text(text.replace(fault["old"], fault["new"]))
            build(names)
            failures = (failure_of(self.tests[name], self.limits[name]) for name in names)
            return next(filter(None, failures), None)
        finally:
            path.write_text(text)


def chosen(names):
    faults = json.loads((ROOT / "tests" / "faults.json").read_text())
    known = [fault["name"] for fault in faults]
    twice = {name for name in known if known.count(name) > 1}
    unknown = [name for name in names if not fnmatch.filter(known, name)]
    if twice or unknown:
        sys.exit(f"twice: {', '.join(twice)}" if twice else f"no such fault: {', '.join(unknown)}")
    return [fault for fault in faults
            if not names or any(fnmatch.fnmatch(fault["name"], name) for name in names)]


def main():
    wanted = chosen(sys.argv[1:])
    WORK.mkdir(parents=True, exist_ok=True)
    with open(WORK / "lock", "w") as lock:
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            sys.exit("another run is at it")
        faults = Faults()
        caught = problems = 0
        for fault in wanted:
            try:
                catcher = faults.catcher(fault)
                say(f"{fault['name']}: " + (f"caught by {catcher}" if catcher else "MISSED"))
                caught += bool(catcher)
            except Problem as problem:
                say(f"{fault['name']}: {problem}")
                problems += 1
    share = 100 * caught / len(wanted)
    say(f"{caught} of {len(wanted)} faults caught ({share:.0f} %)")
    sys.exit(1 if problems or share < SHARE_WANTED else 0)


if __name__ == "__main__":
    try:
        main()
    except KeyboardInterrupt:
        sys.exit(130)
