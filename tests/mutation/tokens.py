"""Cuts C++ source text into tokens, well enough to change one of them."""
import re
from dataclasses import dataclass

# In this order: what comes first wins.
PARTS = [
    ("comment", r"//[^\n]*|/\*.*?\*/"),
    ("directive", r"(?m:^[ \t]*\#(?:\\\n|[^\n])*)"),
    ("string", r'(?:u8|[uUL])?R"([^ ()\\\n]*)\(.*?\)\1"|(?:u8|[uUL])?"(?:\\.|[^"\\\n])*"'),
    ("char", r"[uUL]?'(?:\\.|[^'\\\n])+'"),
    ("number", r"\.?\d(?:'?[\w.]|(?<=[eEpP])[+-])*"),
    ("word", r"[A-Za-z_]\w*"),
    ("mark", r"<<=|>>=|->\*|\.\.\.|::|\+\+|--|->|&&|\|\||==|!=|<=|>=|<<|[-+*/%&|^]=|[^\s\w]"),
]
PATTERN = re.compile("|".join(f"(?P<{kind}>{part})" for kind, part in PARTS), re.S)


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    begin: int

    @property
    def end(self):
        return self.begin + len(self.text)


def tokens_of(source):
    """The tokens of a source text without its comments and preprocessor lines."""
    return [Token(match.lastgroup, match.group(), match.start())
            for match in PATTERN.finditer(source) if match.lastgroup not in ("comment", "directive")]


def partners(tokens):
    """For each bracket's index, that of its partner."""
    found, opened = {}, []
    for at, token in enumerate(tokens):
        if token.kind == "mark" and token.text in ("(", "[", "{"):
            opened.append(at)
        elif token.kind == "mark" and token.text in (")", "]", "}"):
            start = opened.pop()
            found[start], found[at] = at, start
    return found
