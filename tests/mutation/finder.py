"""Finds the mutants of a source file: each is the text with one small change."""
import re
from dataclasses import dataclass

from tokens import partners, tokens_of

SWAPS = {
    "==": ["!="], "!=": ["=="], "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "+=": ["="], "-=": ["+="], "++": ["--"], "--": ["++"],
}
BINARY = {"<", ">", "&&", "+", "-", "*", "/", "%"}  # also have other meanings
DEFAULTS = {"{}", "0", "nullptr", "false"}
KEEP = {"static_assert", "using", "namespace", "friend", "typedef", "case", "default", "else"}
ENDS = {"(", "[", "{", ",", ";", "=", "return", "?", ":", "<<", "+="}


@dataclass(frozen=True)
class Mutant:
    file: str
    kind: str
    begin: int
    end: int
    text: str
    line: int
    before: str  # the changed lines, white space aside
    after: str
    nth: int     # of those in this file with the same `before` and `after`

    @property
    def key(self):
        return (self.file, self.before, self.after, self.nth)

    def apply(self, source):
        return source[:self.begin] + self.text + source[self.end:]


class Finder:
    def __init__(self, file, source):
        self.file, self.source = file, source
        self.tokens = tokens_of(source)
        self.partner = partners(self.tokens)
        self.changes = []  # (kind, begin, end, text)

    def add(self, kind, begin, end, text):
        self.changes.append((kind, begin, end, text))

    def text(self, first, last):
        """From one token to another, both included."""
        return self.source[self.tokens[first].begin:self.tokens[last].end]

    def is_binary(self, at):
        """Whether an operator stands between two operands: with a space on both sides, as the
        formatter sets it. Texts can only be added."""
        token = self.tokens[at]
        if token.text == "+" and "string" in (self.tokens[at - 1].kind, self.tokens[at + 1].kind):
            return False
        return self.source[token.begin - 1] in " \n" and self.source[token.end] in " \n"

    def operators(self, at, token):
        if token.text in SWAPS and (token.text not in BINARY or self.is_binary(at)):
            for other in SWAPS[token.text]:
                self.add("operator", token.begin, token.end, other)
        elif token.text == "-" and self.tokens[at + 1].kind == "number":
            self.add("operator", token.begin, token.end, "")
        elif token.text == "!":
            self.add("operator", token.begin, token.end, "")

    def constants(self, token):
        if token.kind == "number":
            whole, suffix = re.fullmatch(r"((?:0[xX])?[\d.]+)([uUlLfF]*)", token.text).groups()
            number = float(whole) if "." in whole else int(whole, 0)
            others = [1 - number] if number in (0, 1) else [number + 1]
            if number == 1 and "." not in whole:
                others.append(2)
            for other in others:
                self.add("constant", token.begin, token.end, f"{other}{suffix}")
        elif token.text in ("true", "false"):
            self.add("constant", token.begin, token.end, "false" if token.text == "true" else "true")

    def texts(self, token):
        """Changes the character in the middle: who notices that, compares the whole text."""
        quote = token.text.index('"' if token.kind == "string" else "'") + 1
        units = re.findall(r"\\(?:x[0-9a-fA-F]+|[0-7]{1,3}|.)|.", token.text[quote:-1])
        middle = len(units) // 2
        units[middle:middle + 1] = "y" if units[middle:middle + 1] == ["x"] else "x"
        if "R" not in token.text[:quote]:
            self.add("text", token.begin, token.end, token.text[:quote] + "".join(units) + token.text[-1])

    def condition(self, first, last):
        begin, end = self.tokens[first].begin, self.tokens[last].end
        marks = {t.text for t in self.tokens[first:last + 1] if t.kind == "mark"}
        # A lone comparison or negation is turned round as an operator already.
        if marks & {"&&", "||"} or not marks & {"==", "!=", "<", "<=", ">", ">=", "!"}:
            self.add("condition", begin, end, f"!({self.text(first, last)})")
        for other in ("true", "false"):
            self.add("condition", begin, end, other)

    def conditions(self, at, token):
        following = self.tokens[at + 1].text if at + 1 < len(self.tokens) else ""
        if token.text in ("if", "while") and following == "(":
            self.condition(at + 2, self.partner[at + 1] - 1)
        elif token.text == "for" and following == "(":
            stops = [i for i in range(at + 2, self.partner[at + 1]) if self.tokens[i].text == ";"]
            if len(stops) == 2 and stops[1] > stops[0] + 1:
                self.condition(stops[0] + 1, stops[1] - 1)
        elif token.text == "?" and token.kind == "mark":
            first = at
            while self.tokens[first - 1].text not in ENDS:
                first = self.partner.get(first - 1, first - 1)
            self.condition(first, at - 1)

    def bodies(self):
        """For each index, whether it is inside a function."""
        inside, stack = [], []
        for at, token in enumerate(self.tokens):
            if token.text == "{" and token.kind == "mark":
                stack.append(bool(stack and stack[-1]) or self.opens_body(at))
            elif token.text == "}" and token.kind == "mark":
                stack.pop()
            inside.append(bool(stack and stack[-1]))
        return inside

    def opens_body(self, at):
        """Whether this bracket, outside of functions, opens one's body."""
        first = at
        while first > 0 and self.tokens[first - 1].text not in (";", "{", "}"):
            first = self.partner[first - 1] if self.tokens[first - 1].text == ")" else first - 1
        words = {token.text for token in self.tokens[first:at]}
        return "(" in words and not words & {"namespace", "=", "enum"}

    def statement(self, first, last):
        """Statements are removed, and return what is the default of their type."""
        word = self.tokens[first].text
        begin, end = self.tokens[first].begin, self.tokens[last].end
        if word == "return" and last > first + 1:
            if self.text(first + 1, last - 1) not in DEFAULTS:
                self.add("return", begin, end, "return {};")
        elif word not in KEEP and not self.declares(first, last):
            self.add("throw" if word == "throw" else "statement", begin, end, ";")

    def declares(self, first, last):
        """Whether the statement gives a name that is used later its first value: nothing compiles
        without it."""
        words = [token for token in self.tokens[first:last] if token.text not in ("*", "&", "::")]
        equals = next((i for i, token in enumerate(words) if token.text == "="), 0)
        if equals < 2 or words[equals - 1].kind != "word" or words[equals - 2].text in (".", "->"):
            return False
        return any(token.text == words[equals - 1].text for token in self.tokens[last:])

    def statements(self):
        inside = self.bodies()
        first, depth = 0, 0
        for at, token in enumerate(self.tokens):
            if token.kind != "mark":
                continue
            depth += (token.text in ("(", "[")) - (token.text in (")", "]"))
            if depth == 0 and token.text in ("{", "}"):
                first = at + 1
            elif depth == 0 and token.text == ";":
                if inside[at]:
                    self.statement(self.start(first), at)
                first = at + 1

    def start(self, first):
        """Past the heads of the statements around this one."""
        while self.tokens[first].text in ("if", "while", "for", "else", "do", "try"):
            first += 1
            if self.tokens[first].text == "(":
                first = self.partner[first] + 1
        return first

    def mutants(self):
        for at, token in enumerate(self.tokens):
            if token.kind == "mark":
                self.operators(at, token)
            if token.kind in ("string", "char"):
                self.texts(token)
            if token.kind in ("number", "word"):
                self.constants(token)
            self.conditions(at, token)
        self.statements()
        return self.described(self.without_asserts(self.changes))

    def without_asserts(self, changes):
        """What is checked by the compiler only is left alone."""
        spans = [(token.begin, self.tokens[self.partner[at + 1]].end)
                 for at, token in enumerate(self.tokens) if token.text == "static_assert"]
        return [c for c in changes if not any(begin <= c[1] < end for begin, end in spans)]

    def described(self, changes):
        found, results, counts = [], {self.source}, {}
        for kind, begin, end, text in sorted(changes, key=lambda c: (c[1], c[2])):
            result = self.source[:begin] + text + self.source[end:]
            if result in results:
                continue
            results.add(result)
            left = self.source.rfind("\n", 0, begin) + 1
            right = (self.source + "\n").find("\n", end)
            before = " ".join(self.source[left:right].split())
            after = " ".join((self.source[left:begin] + text + self.source[end:right]).split())
            nth = counts[before, after] = counts.get((before, after), 0) + 1
            line = self.source.count("\n", 0, begin) + 1
            found.append(Mutant(self.file, kind, begin, end, text, line, before, after, nth))
        return found


def mutants_of(file, source):
    """Every mutant of a source text, in the order of their places."""
    return Finder(file, source).mutants()
