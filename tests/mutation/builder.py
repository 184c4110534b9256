"""Compiles mutants and links what the tests need: the test program, and the shared object for the
tests of a whole process."""
import json
import re
import shlex
import shutil
import subprocess
from pathlib import Path

OBJECTS = "src/CMakeFiles/TavoRemotingObjects.dir/"


def sources_of(root):
    return sorted(str(path.relative_to(root)) for path in (root / "src").rglob("*")
                  if path.suffix in (".cpp", ".h"))


class Build:
    """What is the same for every mutant: the commands of a finished build, and a precompiled header
    of what the sources include of other libraries."""

    def __init__(self, root, folder, scratch):
        self.root, self.folder, self.scratch = root, folder, scratch
        self.texts = {file: (root / file).read_text() for file in sources_of(root)}
        entries = json.loads((folder / "compile_commands.json").read_text())
        self.compiling = {str(Path(entry["file"]).relative_to(root)): shlex.split(entry["command"])
                          for entry in entries if OBJECTS in entry["command"]}
        self.program = self.link_command("tavo_tests", "tests/tavo_tests")
        self.library = self.link_command("TavoRemotingLib", "src/libTavoRemotingLib.so")
        self.header = scratch / "others.h"
        self.precompile()

    def link_command(self, target, output):
        commands = subprocess.run(["ninja", "-C", self.folder, "-t", "commands", target],
                                  check=True, capture_output=True, text=True).stdout.splitlines()
        line = next(c for c in reversed(commands) if re.search(rf"-o {re.escape(output)}[\d.]* ", c))
        words = shlex.split(line)
        return words[words.index("&&") + 1:words.index("&&", words.index("&&") + 1)]

    def precompile(self):
        own = [*(self.root / "include").rglob("*.h"), *(self.root / "framework/include").rglob("*.h")]
        texts = [*self.texts.values(), *(path.read_text() for path in own)]
        included = set(re.findall(r"^#include <(?!TavoRemotingLib|MirrinFramework)(.*)>", "\n".join(texts), re.M))
        self.header.write_text("".join(f"#include <{name}>\n" for name in sorted(included)))
        command = self.command(next(iter(self.compiling)), f"{self.header}.gch")
        command[-2:] = ["-x", "c++-header", str(self.header)]
        subprocess.run(command, cwd=self.folder, check=True)

    def command(self, source, output):
        """A source's compile command without warnings, which are no test; the source comes last."""
        words = self.compiling[source]
        words = words[next(i for i, word in enumerate(words) if word.endswith("++")):]
        words = [word for word in words if word != "-Werror"]
        at = words.index("-o")
        return [*words[:at], "-w", "-D_GLIBCXX_ASSERTIONS", "-o", str(output), "-c", words[-1]]

    def users(self, file):
        """The sources to compile anew when this file is another."""
        if file.endswith(".cpp"):
            return [file]
        name = file.removeprefix("src/")
        users = set()
        for other, text in self.texts.items():
            if f'#include "{name}"' in text:
                users.update(self.users(other))
        return sorted(users)


class Workplace:
    """A copy of the sources and what is built of it, one mutant at a time."""

    def __init__(self, build, number):
        self.build = build
        self.folder = build.scratch / f"worker{number}"
        self.objects = {}
        self.program = self.folder / "tavo_tests"
        self.library = self.folder / "libTavoRemotingLib.so.1"
        shutil.copytree(build.root / "src", self.folder / "src")

    def make(self, mutant):
        """Builds the test program with the mutant (None: without). False when that cannot be."""
        self.objects = {}
        if mutant is not None:
            place = self.folder / mutant.file
            place.write_text(mutant.apply(self.build.texts[mutant.file]))
            try:
                for source in self.build.users(mutant.file):
                    self.objects[source] = self.compile(source)
                self.link(self.build.program, self.program)
                return True
            except subprocess.CalledProcessError:
                return False
            finally:
                place.write_text(self.build.texts[mutant.file])
        self.link(self.build.program, self.program)
        return True

    def make_library(self):
        """Builds the shared object with the same mutant."""
        self.link(self.build.library, self.library)

    def compile(self, source):
        output = self.folder / (source.replace("/", "-") + ".o")
        command = self.build.command(source, output)
        old, new = f"{self.build.root}/src", f"{self.folder}/src"
        command = [word.replace(old, new) if word.startswith(("-I", "/")) else word for word in command]
        self.run([command[0], "-include", str(self.build.header), *command[1:]])
        return output

    def link(self, command, output):
        changed = {OBJECTS + source.removeprefix("src/") + ".o": str(made)
                   for source, made in self.objects.items()}
        words = [changed.get(word, word) for word in command]
        words[words.index("-o") + 1] = str(output)
        self.run([words[0], "-fuse-ld=gold", *words[1:]])

    def run(self, command):
        subprocess.run(command, cwd=self.build.folder, check=True, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
