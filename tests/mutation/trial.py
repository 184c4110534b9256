"""Runs the tests against what a workplace has built."""
import os
import re
import select
import shutil
import signal
import subprocess
import tempfile
import time
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path

STALL_SECONDS = 30
WHOLE_SECONDS = 600
OUTPUT_LIMIT = 50_000_000
FAST_MILLISECONDS = 300
GROUPS = 4
LIKELY = 12
# Against mutants that never stop to take memory, or time.
LIMITS = ["prlimit", "--as=4000000000", "--cpu=120", "--core=0"]
ENDED = re.compile(rb"^\[       OK \] (\S+?),? .*\((\d+) ms\)$", re.M)
FAILED = re.compile(rb"^\[  FAILED  \] ([^\s,]+).*\(\d+ ms\)$", re.M)
STARTED = re.compile(rb"^\[ RUN      \] (\S+)", re.M)
PASSED = re.compile(rb"^\[  PASSED  \] (\d+) test", re.M)


@dataclass(frozen=True)
class Outcome:
    state: str  # passed, failed, crashed or hung
    test: str = ""
    times: tuple = ()

    @property
    def passed(self):
        return self.state == "passed"


def read_all(process, stall, whole):
    """The output, and whether the program ended by itself in time."""
    output, end = bytearray(), time.monotonic() + whole
    while len(output) < OUTPUT_LIMIT and time.monotonic() < end:
        if not select.select([process.stdout], [], [], stall)[0]:
            break
        piece = os.read(process.stdout.fileno(), 1 << 16)
        if not piece:
            return bytes(output), True
        output += piece
    return bytes(output), False


def outcome_of(output, ended, code, count):
    names = [match[1].decode() for match in STARTED.finditer(output)]
    last = names[-1] if names else "the start"
    if not ended:
        return Outcome("hung", last)
    passed = PASSED.search(output)
    if code == 0 and passed and (count is None or int(passed[1]) == count):
        times = tuple((match[1].decode(), int(match[2])) for match in ENDED.finditer(output))
        return Outcome("passed", times=times)
    failed = FAILED.search(output)
    return Outcome("failed", failed[1].decode()) if failed else Outcome("crashed", last)


class Trial:
    """The tests of both programs, sorted by the time they take without a mutant."""

    def __init__(self, process_tests, quick=False, stall=STALL_SECONDS):
        self.process_tests, self.quick, self.stall = process_tests, quick, stall
        self.fast, self.slow, self.process = {}, {}, {}
        self.killers = {}  # for each source, the tests that killed its mutants

    def run(self, place, program, tests, stall=None, shard=None):
        """Runs these tests of a program, or its part of those that match a pattern, with a folder
        for temporary files of its own."""
        temporary = tempfile.mkdtemp(dir=place.folder)
        environment = {**os.environ, "TMPDIR": temporary, "LD_LIBRARY_PATH": str(place.folder)}
        if shard is not None:
            environment |= {"GTEST_TOTAL_SHARDS": str(GROUPS), "GTEST_SHARD_INDEX": str(shard)}
            tests, count = [tests], None
        else:
            count = len(tests)
        arguments = ["--gtest_fail_fast", "--gtest_filter=" + ":".join(tests)]
        process = subprocess.Popen([*LIMITS, str(program), *arguments], cwd=place.folder, env=environment,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT, start_new_session=True)
        output, ended = b"", False
        try:
            output, ended = read_all(process, stall or self.stall, WHOLE_SECONDS)
        finally:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()
            process.stdout.close()
            shutil.rmtree(temporary, ignore_errors=True)
        return outcome_of(output, ended, process.returncode, count)

    def measure(self, place, files, pattern="*"):
        """Builds these files and runs everything without a mutant; raises when that fails."""
        place.make_unchanged(files)
        place.make_library()
        checked = subprocess.run([self.process_tests], capture_output=True, text=True, check=True,
                                 env={**os.environ, "LD_LIBRARY_PATH": str(place.folder),
                                      "LD_TRACE_LOADED_OBJECTS": "1"}).stdout
        if str(place.library) not in checked:
            raise RuntimeError("the tests of a process do not load the mutants' library")
        programs = [(place.program, shard) for shard in range(GROUPS)]
        programs += [(self.process_tests, shard) for shard in range(GROUPS)] if not self.quick else []
        with ThreadPoolExecutor(2 * GROUPS) as pool:
            outcomes = list(pool.map(lambda p: self.run(place, p[0], pattern, 4 * self.stall, p[1]), programs))
        for (program, _), outcome in zip(programs, outcomes):
            if not outcome.passed:
                raise RuntimeError(f"without a mutant, the tests {outcome.state}: {outcome.test}")
            for name, took in outcome.times:
                slow = self.slow if program == place.program else self.process
                (self.fast if slow is self.slow and took < FAST_MILLISECONDS else slow)[name] = took

    def judge(self, place, file):
        """What the tests say of the mutant that the workplace holds: the quick ones first, of these
        the ones of its subject and those that killed most mutants of the same file; in the end all
        others, several at a time, since most of their time is waiting."""
        known = self.killers.setdefault(file, Counter())
        subject = Path(file).stem
        likely = {name for name in self.fast if subject in name.split(".")[0]}
        likely.update(name for name, _ in known.most_common(LIKELY))
        for tests in (name for name in self.fast if name in likely), (
                name for name in self.fast if name not in likely):
            outcome = self.confirmed(place, place.program, list(tests))
            if not outcome.passed:
                known[outcome.test] += outcome.test in self.fast
                return outcome
        if self.quick:
            return outcome
        place.make_library()
        groups = [(place.program, g) for g in self.groups(self.slow)]
        groups += [(self.process_tests, g) for g in self.groups(self.process)]
        with ThreadPoolExecutor(GROUPS) as pool:
            outcomes = list(pool.map(lambda group: self.confirmed(place, *group, 4 * self.stall), groups))
        return next((outcome for outcome in outcomes if not outcome.passed), Outcome("passed"))

    @staticmethod
    def groups(tests):
        """The tests in groups that take about the same time."""
        names = sorted(tests, key=tests.get, reverse=True)
        return [group for group in (names[i::GROUPS] for i in range(GROUPS)) if group]

    def confirmed(self, place, program, tests, stall=None):
        """A test that fails, crashes or hangs must do so again: what a busy machine does is no kill."""
        if not tests:
            return Outcome("passed")
        outcome = self.run(place, program, tests, stall)
        if not outcome.passed:
            again = [outcome.test] if outcome.test in tests else tests
            if self.run(place, program, again, stall).passed:
                outcome = self.run(place, program, tests, stall)
        return outcome
