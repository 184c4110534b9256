"""Compiles mutants and links what the tests need: the test program, and the shared object for the
tests of a whole process."""
import json
import os
import re
import shlex
import shutil
import subprocess
import threading
from pathlib import Path

OBJECTS = "src/CMakeFiles/TavoRemotingObjects.dir/"
ERROR_IN_SOURCE = re.compile(r":\d+:\d+: error: ")


class DoesNotCompile(Exception):
    """The compiler found an error in a source."""


def sources_of(root):
    return sorted(str(path.relative_to(root)) for path in (root / "src").rglob("*")
                  if path.suffix in (".cpp", ".h"))


class Build:
    """What is the same for every mutant: the commands of a finished build, and precompiled
    headers."""

    def __init__(self, root, folder, scratch):
        self.root, self.folder, self.scratch = root, folder, scratch
        self.texts = {file: (root / file).read_text() for file in sources_of(root)}
        entries = json.loads((folder / "compile_commands.json").read_text())
        self.compiling = {str(Path(entry["file"]).relative_to(root)): shlex.split(entry["command"])
                          for entry in entries if OBJECTS in entry["command"]}
        self.program = self.link_command("tavo_tests", "tests/tavo_tests")
        self.library = self.link_command("TavoRemotingLib", "src/libTavoRemotingLib.so")
        self.headers, self.lock = {}, threading.Lock()
        self.linker = "-fuse-ld=lld" if shutil.which("ld.lld") else "-fuse-ld=gold"

    def link_command(self, target, output):
        commands = subprocess.run(["ninja", "-C", self.folder, "-t", "commands", target],
                                  check=True, capture_output=True, text=True).stdout.splitlines()
        line = next(c for c in reversed(commands) if re.search(rf"-o {re.escape(output)}[\d.]* ", c))
        words = shlex.split(line)
        return words[words.index("&&") + 1:words.index("&&", words.index("&&") + 1)]

    def header(self, source):
        """A precompiled header of what a source includes of the library's public headers and of
        other libraries, made on first use. It takes most of the time to compile a source."""
        with self.lock:
            if source not in self.headers:
                text = self.texts[source]
                own = [self.texts["src/" + name] for name in re.findall(r'^#include "(.*)"', text, re.M)]
                header = self.scratch / (source.replace("/", "-") + ".h")
                names = set(re.findall(r"^#include <.*>", "\n".join([text, *own]), re.M))
                header.write_text("\n".join(sorted(names)) + "\n")
                command = self.command(source, f"{header}.gch")
                self.run([*command[:-2], "-x", "c++-header", str(header)])
                self.headers[source] = header
            return self.headers[source]

    def run(self, command):
        """Runs a compiler or linker. That it is killed, say, or finds a full disk, tells nothing of
        what it was given and raises another error."""
        done = subprocess.run(command, cwd=self.folder, stdin=subprocess.DEVNULL, text=True,
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                              env={**os.environ, "LC_ALL": "C"})
        if done.returncode != 0:
            raise (DoesNotCompile if ERROR_IN_SOURCE.search(done.stderr) else RuntimeError)(done.stderr)

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

    def make_unchanged(self, files):
        """Builds the test program with these files as they are. Raises when that cannot be, since
        then no mutant of them could be built either."""
        self.objects = {source: self.compile(source)
                        for source in sorted({user for file in files for user in self.build.users(file)})}
        self.link(self.build.program, self.program)

    def make(self, mutant):
        """Builds the test program with the mutant. False when it does not compile."""
        self.objects = {}
        place = self.folder / mutant.file
        place.write_text(mutant.apply(self.build.texts[mutant.file]))
        try:
            for source in self.build.users(mutant.file):
                self.objects[source] = self.compile(source)
        except DoesNotCompile:
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
        self.build.run([command[0], "-include", str(self.build.header(source)), *command[1:]])
        return output

    def link(self, command, output):
        changed = {OBJECTS + source.removeprefix("src/") + ".o": str(made)
                   for source, made in self.objects.items()}
        words = [changed.get(word, word) for word in command]
        words[words.index("-o") + 1] = str(output)
        self.build.run([words[0], self.build.linker, *words[1:]])
