#!/usr/bin/env python3
"""A payload in Python: handles one command. Run it by

    tavo agent --server HOST:PORT --id P1 --progress-every 10 -- examples/agent/handler.py

What it writes is the answer; an exit code other than 0 says that the command failed. What is written
before the end goes out as progress, so flush it."""
import os
import sys


def survey(lines):
    for line in range(1, lines + 1):
        print(f"line {line} of {lines} is done", flush=True)


def main():
    # The whole command is on standard input too, whatever its length and its bytes.
    words = sys.stdin.buffer.read().decode("utf-8", "replace").split()
    if words[:1] == ["survey"] and len(words) == 2 and words[1].isdigit():
        survey(int(words[1]))
    elif words == ["who"]:
        print(f"payload {os.environ['TAVO_ID']}, command {os.environ['TAVO_TAG']}")
    else:
        sys.exit(f"unknown command {' '.join(words)!r}")


if __name__ == "__main__":
    main()
