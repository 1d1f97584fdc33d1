#!/usr/bin/env python3
"""The messages of the last commits: a subject of at most 72 characters, a blank line, and a body that says why. Where no
history is (a source package, a shallow clone) there is nothing to check: ends with 77, which counts as skipped."""
import subprocess
import sys

COMMITS = 20
LONGEST = 72


def findings(message):
    lines = message.rstrip("\n").split("\n")
    if len(lines[0]) > LONGEST:
        yield f"subject of {len(lines[0])} characters"
    if len(lines) > 1 and lines[1].strip():
        yield "no blank line behind the subject"
    if not any(line.strip() for line in lines[2:]):
        yield "no body that says why"


def git(root, *args):
    return subprocess.run(["git", "-C", root, *args], capture_output=True, text=True, check=False)


def main(root):
    shallow = git(root, "rev-parse", "--is-shallow-repository").stdout.strip()
    log = git(root, "log", "--no-merges", f"--max-count={COMMITS}", "-z", "--format=%h %B")
    if shallow != "false" or log.returncode != 0:
        print("commits: skipped, there is no history here")
        return 77
    found = 0
    for entry in filter(None, log.stdout.split("\0")):
        commit, message = entry.split(" ", 1)
        for finding in findings(message):
            print(f"{commit} {message.splitlines()[0] if message else ''}: {finding}")
            found += 1
    print(f"commits: {found} findings")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1] if len(sys.argv) > 1 else "."))
