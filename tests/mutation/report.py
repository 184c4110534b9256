"""The list of equivalent mutants, and what is printed."""
import re

STATES = ("killed", "hung", "survived", "not compiled", "listed")


def quoted(mutant):
    lines = [f"- {mutant.before}", f"+ {mutant.after}"]
    if mutant.nth > 1:
        lines[0] += f"  [{mutant.nth}]"
    return lines


def equivalents_of(path):
    """The list's entries: for each mutant's key the reason why no test can tell it. A block of
    the list is a file, the lines without and with the change, and the reason."""
    found = {}
    text = "\n".join(line for line in path.read_text().splitlines() if not line.startswith("#"))
    for block in filter(None, re.split(r"\n\s*\n", text.strip())):
        lines = block.splitlines()
        changes = [line for line in lines[1:] if line.startswith(("- ", "+ "))]
        reason = " ".join(line.strip() for line in lines[1 + len(changes):])
        if not changes or not reason or len(changes) % 2 != 0:
            raise ValueError(f"{path}: not a file, changes and a reason:\n{block}")
        for before, after in zip(changes[::2], changes[1::2]):
            before, nth = re.fullmatch(r"- (.*?)(?:  \[(\d+)\])?", before).groups()
            found[lines[0], before, after[2:], int(nth or 1)] = reason
    return found


def stale(equivalents, mutants):
    """The entries of the list that no mutant is any more."""
    keys = {mutant.key for mutant in mutants}
    return [key for key in equivalents if key not in keys]


class Report:
    """Prints each survivor at once, and the sum in the end."""

    def __init__(self, total, survivors_wanted=False):
        self.total, self.survivors_wanted = total, survivors_wanted
        self.counts = dict.fromkeys(STATES, 0)
        self.wrong = 0

    def add(self, mutant, state, test=""):
        self.counts[state] += 1
        done = sum(self.counts.values())
        unwanted = state in ("killed", "hung") if self.survivors_wanted else state == "survived"
        if unwanted:
            self.wrong += 1
            what = f"is listed as equivalent, but {test} tells it" if self.survivors_wanted else "survived"
            print(f"{mutant.file}:{mutant.line}: {mutant.kind} {what}", *quoted(mutant), sep="\n", flush=True)
        if done % 100 == 0 and done < self.total:
            print(f"mutate: {done} of {self.total}", flush=True)

    def finish(self, seconds):
        counts = self.counts
        mutants = sum(counts.values()) - counts["not compiled"]
        print(f"mutate: {mutants} mutants in {seconds / 60:.0f} minutes,"
              f" and {counts['not compiled']} changes that do not compile")
        print(f"mutate: {counts['killed'] + counts['hung']} killed, {counts['hung']} of them by a time limit;"
              f" {counts['listed']} listed as equivalent; {counts['survived']} survived")
        return self.wrong == 0
