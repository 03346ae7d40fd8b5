# SPDX-License-Identifier: Apache-2.0
"""The trial of one tree: a copy of it, the faults drawn for it, and what the tests say of each."""
import os
import random
import resource
import shutil
import signal
import subprocess
import time
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path

import faults
import rooms

# A build beyond this is one that a fault has made endless.
BUILD_SECONDS = 1800
# A test may take this many times what it took without a fault, and this much besides.
SLOWER = 5
SLACK_SECONDS = 30
# What a process has to end by itself once it is asked to.
GRACE_SECONDS = 10
# A fault may make a program take all the memory there is.
MEMORY_BYTES = 8 << 30
NOT_COPIED = shutil.ignore_patterns(".git", "build", "__pycache__")


class TrialError(Exception):
    """The tree as it is cannot be tried."""


@dataclass(frozen=True)
class Candidate:
    room: str
    source: str
    line: int
    fault: faults.Fault


def candidates(tree, chosen_rooms, pattern="*"):
    """Every fault of the rooms' sources whose path matches, in a fixed order."""
    found = []
    for room in chosen_rooms:
        for source in rooms.sources_of(tree, room):
            if Path(source).match(pattern):
                text = Path(tree, source).read_text(encoding="utf-8")
                found += [Candidate(room, source, fault.line_in(text), fault)
                          for fault in faults.faults_in(text)]
    return found


def drawn(all_candidates, seed):
    """The same ones in the same order for the same seed and tree. One of each line: faults of one
    line are mostly seen by the same tests."""
    order = list(all_candidates)
    random.Random(seed).shuffle(order)
    first = {}
    for candidate in order:
        first.setdefault((candidate.source, candidate.line), candidate)
    return list(first.values())


@contextmanager
def planted(path, fault):
    """The fault stands in the file within the block, and the file is as it was after it."""
    original = path.read_bytes()
    path.write_text(fault.planted_in(original.decode("utf-8")), encoding="utf-8")
    try:
        yield
    finally:
        path.write_bytes(original)


def end(process):
    """Ends the process and all of its group. Ninja starts its compilers in groups of their own and
    ends them when it is asked to end, so it is asked first."""
    for number in (signal.SIGTERM, signal.SIGKILL):
        try:
            os.killpg(process.pid, number)
            process.wait(GRACE_SECONDS)
        except (ProcessLookupError, subprocess.TimeoutExpired):
            pass
    process.wait()


def ended_within(command, seconds, environment, folder, limit_memory=False):
    """The exit status, or None when the command was still running. Ends all that it started."""
    def limits():
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        if limit_memory:
            resource.setrlimit(resource.RLIMIT_AS, (MEMORY_BYTES, MEMORY_BYTES))

    process = subprocess.Popen(command, cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                               start_new_session=True, preexec_fn=limits)
    try:
        return process.wait(seconds)
    except subprocess.TimeoutExpired:
        return None
    finally:
        end(process)


class Trial:
    """Works in `folder`, an empty one that its owner removes."""

    def __init__(self, tree, folder, jobs):
        self.copy = Path(folder, "tree")
        self.build_folder = Path(folder, "build")
        self.scratch = Path(folder, "scratch")
        self.jobs = jobs
        self.seconds = {}
        self.environment = {**os.environ, "TMPDIR": str(self.scratch), "CCACHE_NOHASHDIR": "1",
                            "CCACHE_BASEDIR": str(folder)}
        self.environment.pop("TRELLANT_REAL_FILES", None)
        shutil.copytree(tree, self.copy, ignore=NOT_COPIED)
        self.scratch.mkdir()

    def configure(self):
        command = ["cmake", "-S", str(self.copy), "-B", str(self.build_folder), "-G", "Ninja",
                   "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0",
                   "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST",
                   "-DTRELLANT_WERROR=OFF", "-DTRELLANT_INSTALL=OFF"]
        if shutil.which("ccache"):
            command.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        if ended_within(command, BUILD_SECONDS, self.environment, self.copy) != 0:
            raise TrialError("cmake cannot configure the tree")

    def builds(self, targets):
        command = ["ninja", "-C", str(self.build_folder), "-j", str(self.jobs), *targets]
        return ended_within(command, BUILD_SECONDS, self.environment, self.copy) == 0

    def passes(self, test):
        command = [str(self.build_folder / test.program), "--gtest_brief=1", "--gtest_fail_fast"]
        limit = SLACK_SECONDS + SLOWER * self.seconds.get(test.target, BUILD_SECONDS)
        try:
            return ended_within(command, limit, self.environment, self.build_folder, True) == 0
        finally:
            shutil.rmtree(self.scratch, ignore_errors=True)
            self.scratch.mkdir(exist_ok=True)

    def prepare(self, chosen_rooms):
        """Builds and times the tests without any fault; they must pass."""
        self.configure()
        tests = list(dict.fromkeys(test for room in chosen_rooms for test in rooms.TESTS[room]))
        if not self.builds([test.target for test in tests]):
            raise TrialError("the tree does not build")
        for test in tests:
            start = time.monotonic()
            # A busy machine may make a test late once.
            if not self.passes(test) and not self.passes(test):
                raise TrialError(f"{test.target} fails without any fault")
            self.seconds[test.target] = time.monotonic() - start
        # What is compiled with a fault is of no use to a later build.
        self.environment["CCACHE_READONLY"] = "1"

    def is_built(self, source):
        """False for a source of another system or of an option that is off. Headers are built
        with whatever includes them."""
        ninja = (self.build_folder / "build.ninja").read_text(encoding="utf-8")
        return source.endswith(".h") or str(self.copy / source) in ninja

    def verdict(self, candidate):
        """"killed", "survived", or "not planted" when the fault does not compile."""
        if not self.is_built(candidate.source):
            return "not planted"
        with planted(self.copy / candidate.source, candidate.fault):
            for test in rooms.TESTS[candidate.room]:
                if not self.builds([test.target]):
                    return "not planted"
                if not self.passes(test):
                    return "killed"
        return "survived"
