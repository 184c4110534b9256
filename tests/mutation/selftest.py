"""Shows that scripts/mutate can fail: that it tells the mutants that the tests kill from those that
they do not, and knows what is no mutant."""
import contextlib
import io
from dataclasses import replace
from pathlib import Path

import report
from builder import Workplace
from finder import mutants_of
from trial import Outcome, Trial

FILE = "src/HalcyrREST/EncodeURL.cpp"
SOURCE = r'''#include "a == b"
// if (a == 1) { b(); }
namespace {
const char* const text = "a\n";
/* true */
}
bool Sum(int a, std::vector<int>&& b) {
    static_assert(sizeof(int) == 4, "four");
    if (a < 2 && !b.empty()) {
        throw std::runtime_error("");
    }
    Call('a');
    return a > 0 ? true : Other(-1);
}
'''
EXPECTED = r'''
const char* const text = "ax";
if (a <= 2 && !b.empty()) {
if (a >= 2 && !b.empty()) {
if (a < 3 && !b.empty()) {
if (a < 2 || !b.empty()) {
if (a < 2 && b.empty()) {
if (!(a < 2 && !b.empty())) {
if (true) {
if (false) {
;
throw std::runtime_error("x");
;
Call('x');
return {};
return a >= 0 ? true : Other(-1);
return a <= 0 ? true : Other(-1);
return a > 1 ? true : Other(-1);
return true ? true : Other(-1);
return false ? true : Other(-1);
return a > 0 ? false : Other(-1);
return a > 0 ? true : Other(1);
return a > 0 ? true : Other(-0);
return a > 0 ? true : Other(-2);
'''
# A change of the file above, and what must become of it.
CHANGES = [
    ("address += character;", ";", "killed"),
    ("std::size_t next = 0;", "std::size_t next{0};", "survived"),
    ("++next;", ";", "hung"),
    ("address.append(value, 0, next);", "std::abort();", "killed"),
    ("std::string encoded;", ";", "not compiled"),
]


def expect(wrong, what, right):
    print(f"mutate: {what}: {'yes' if right else 'NO'}", flush=True)
    if not right:
        wrong.append(what)


def found_as_expected():
    found = [mutant.after for mutant in mutants_of("a.cpp", SOURCE)]
    return sorted(found) == sorted(EXPECTED.strip().splitlines())


def list_as_expected(folder):
    mutants = mutants_of("a.cpp", SOURCE)
    path = Path(folder) / "equivalent.txt"
    path.write_text("# A comment\na.cpp\n- Call('a');\n+ Call('x');\n  A reason\n  of two lines\n\n"
                    "a.cpp\n- Call('b');\n+ Call('x');\n  Another\n")
    listed = report.equivalents_of(path)
    return (listed["a.cpp", "Call('a');", "Call('x');", 1] == "A reason of two lines"
            and report.stale(listed, mutants) == [("a.cpp", "Call('b');", "Call('x');", 1)])


def state_of(place, trial, before, after):
    source = place.build.texts[FILE]
    mutant = replace(mutants_of(FILE, source)[0], begin=source.index(before),
                     end=source.index(before) + len(before), text=after)
    if not place.make(mutant):
        return "not compiled"
    outcome = trial.judge(place, FILE)
    return {"passed": "survived", "hung": "hung"}.get(outcome.state, "killed")


def verdict(state, survivors_wanted=False):
    """Whether a run passes whose only mutant comes to this."""
    printed = report.Report(1, survivors_wanted)
    with contextlib.redirect_stdout(io.StringIO()):
        printed.add(mutants_of("a.cpp", SOURCE)[0], state, "A.B")
        return printed.finish(0)


def once_is_no_kill(trial, state):
    """What one run of the tests says, and no other."""
    outcomes = [Outcome(state, "A.B"), Outcome("passed"), Outcome("passed")]
    stub = Trial(trial.process_tests)
    stub.run = lambda *_: outcomes.pop(0)
    return stub.confirmed(None, None, ["A.A", "A.B"]).passed and not outcomes


def unwritable_raises(place):
    """With a folder in the way of the object file."""
    mutant = mutants_of(FILE, place.build.texts[FILE])[0]
    place.make(mutant)
    made = place.objects[FILE]
    made.unlink()
    made.mkdir()
    try:
        place.make(mutant)
    except RuntimeError as problem:
        return made.name in str(problem)
    return False


def passes(build, folder):
    wrong = []
    expect(wrong, "the mutants of a text are found, and nothing else", found_as_expected())
    expect(wrong, "an entry of the list that is no mutant is noticed", list_as_expected(build.scratch))
    expect(wrong, "a survivor fails the run", verdict("killed") and not verdict("survived"))
    expect(wrong, "a listed mutant that is killed fails the run",
           verdict("survived", True) and not verdict("killed", True) and not verdict("hung", True))
    place = Workplace(build, 0)
    trial = Trial(folder / "tests/process/tavo_process_tests", quick=True, stall=10)
    trial.measure(place, [FILE], "EncodeURL.*")
    for before, after, state in CHANGES:
        expect(wrong, f"'{before}' as '{after}' is {state}", state_of(place, trial, before, after) == state)
    for state in ("failed", "crashed", "hung"):
        expect(wrong, f"tests that {state} only once kill nothing", once_is_no_kill(trial, state))
    expect(wrong, "a compiler that cannot write ends the run", unwritable_raises(place))
    return not wrong
