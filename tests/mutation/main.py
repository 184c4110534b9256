"""Changes src/ in one place at a time and runs the tests; scripts/mutate calls this."""
import argparse
import json
import queue
import random
import shutil
import signal
import sys
import tempfile
import threading
import time
from pathlib import Path

import report
import selftest
from builder import Build, Workplace, sources_of
from finder import mutants_of
from trial import Trial

ROOT = Path(__file__).resolve().parents[2]
FOLDER = ROOT / "build/mutate"
RESULTS = FOLDER / "mutants.jsonl"
SCRATCH_BYTES = 1_500_000_000  # a precompiled header takes 30 to 90 MB, and each source has its own
DONE = ("killed", "hung", "not compiled")
ENDINGS = (signal.SIGINT, signal.SIGTERM)
LIST = ROOT / "tests/mutation/equivalent.txt"


def arguments():
    parser = argparse.ArgumentParser(prog="mutate", description=__doc__)
    parser.add_argument("--only", metavar="FILE", action="append", help="mutants of this source file only")
    parser.add_argument("--sample", metavar="N", type=int, help="that many of them, drawn at random")
    parser.add_argument("--seed", metavar="S", type=int, default=1, help="for the drawing (default: 1)")
    parser.add_argument("--again", action="store_true", help="only what no run since the last whole one has killed")
    parser.add_argument("--listed", action="store_true", help="those of the list only, which must survive")
    parser.add_argument("--quick", action="store_true", help="with the quick tests only")
    parser.add_argument("--list", action="store_true", help="only print the mutants")
    parser.add_argument("--self-test", action="store_true", help="only show that the script can fail")
    parser.add_argument("-j", metavar="N", type=int, default=2, help="mutants at a time (default: 2)")
    return parser.parse_args()


def fast_folder():
    """Memory, where there is enough: all these small files would keep a disk busy."""
    folder = Path("/dev/shm")
    return folder if folder.is_dir() and shutil.disk_usage(folder).free >= SCRATCH_BYTES else None


def chosen(options, mutants, equivalents):
    """The mutants that the options ask for."""
    if options.only:
        unknown = set(options.only) - {mutant.file for mutant in mutants}
        if unknown:
            sys.exit(f"mutate: there is nothing to change in {', '.join(sorted(unknown))}")
        mutants = [mutant for mutant in mutants if mutant.file in options.only]
    if options.again:
        if not RESULTS.exists():
            sys.exit("mutate: there was no run yet that could be done again")
        last = {tuple(entry["key"]): entry["state"] for entry in map(json.loads, RESULTS.open())}
        mutants = [mutant for mutant in mutants if last.get(mutant.key) not in DONE]
    if options.listed:
        mutants = [mutant for mutant in mutants if mutant.key in equivalents]
    if options.sample is not None and options.sample < len(mutants):
        mutants = random.Random(options.seed).sample(mutants, options.sample)
    return mutants


class Run:
    """Takes mutants from a queue with several workers."""

    def __init__(self, build, trial, mutants, skipped, printed):
        self.build, self.trial, self.skipped, self.printed = build, trial, skipped, printed
        self.waiting = queue.SimpleQueue()
        for mutant in mutants:
            self.waiting.put(mutant)
        self.lock = threading.Lock()
        self.failure = None
        self.results = RESULTS.open("a")

    def judge(self, place, mutant):
        if mutant.key in self.skipped:
            return "listed", ""
        if not place.make(mutant):
            return "not compiled", ""
        outcome = self.trial.judge(place, mutant.file)
        return {"passed": "survived", "hung": "hung"}.get(outcome.state, "killed"), outcome.test

    def work(self, place):
        try:
            while self.failure is None and not self.waiting.empty():
                try:
                    mutant = self.waiting.get_nowait()
                except queue.Empty:
                    return
                state, test = self.judge(place, mutant)
                with self.lock:
                    self.printed.add(mutant, state, test)
                    print(json.dumps({"key": mutant.key, "state": state, "test": test}),
                          file=self.results, flush=True)
        except Exception as problem:  # raised again by the main thread
            self.failure = problem

    def all(self, places):
        threads = [threading.Thread(target=self.work, args=[place]) for place in places]
        for thread in threads:
            thread.start()
        try:
            for thread in threads:
                thread.join()
        except BaseException:
            self.failure = RuntimeError("ended from outside")
            # Their folders are removed next.
            print("mutate: ending with the changes under way", flush=True)
            for thread in threads:
                thread.join()
            raise
        if self.failure is not None:
            raise self.failure


def run(options, mutants, equivalents, scratch):
    start = time.monotonic()
    build = Build(ROOT, FOLDER, scratch)
    places = [Workplace(build, number) for number in range(options.j)]
    trial = Trial(FOLDER / "tests/process/tavo_process_tests", options.quick)
    print("mutate: the tests without a mutant", flush=True)
    files = {mutant.file for mutant in mutants}
    trial.measure(places[0], files)
    print(f"mutate: {len(trial.fast)} quick tests, {len(trial.slow) + len(trial.process)} others;"
          f" {len(mutants)} changes of {len(files)} files", flush=True)
    printed = report.Report(len(mutants), options.listed)
    Run(build, trial, mutants, {} if options.listed else equivalents, printed).all(places)
    return printed.finish(time.monotonic() - start)


def end(number, _):
    for ending in ENDINGS:
        signal.signal(ending, lambda *_: None)
    sys.exit(128 + number)


def main():
    options = arguments()
    for ending in ENDINGS:
        signal.signal(ending, end)
    every = [m for file in sources_of(ROOT) for m in mutants_of(file, (ROOT / file).read_text())]
    equivalents = report.equivalents_of(LIST)
    mutants = chosen(options, every, equivalents)
    if options.list:
        for mutant in mutants:
            print(f"{mutant.file}:{mutant.line}: {mutant.kind}", *report.quoted(mutant), sep="\n")
        print(f"mutate: {len(mutants)} changes, {sum(m.key in equivalents for m in mutants)} listed")
        return True
    stale = report.stale(equivalents, every)
    for file, before, after, nth in stale:
        print(f"{LIST.relative_to(ROOT)}: no longer a mutant of {file}:\n- {before}\n+ {after}", file=sys.stderr)
    if not any((options.again, options.listed, options.only, options.sample, options.quick, options.self_test)):
        RESULTS.write_text("")
    scratch = Path(tempfile.mkdtemp(prefix="mutate-", dir=fast_folder()))
    try:
        if options.self_test:
            return selftest.passes(Build(ROOT, FOLDER, scratch), FOLDER)
        return run(options, mutants, equivalents, scratch) and not stale
    finally:
        shutil.rmtree(scratch)


if __name__ == "__main__":
    sys.exit(0 if main() else 1)
