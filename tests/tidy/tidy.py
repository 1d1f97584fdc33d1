#!/usr/bin/env python3
"""Style as a test: include arrows, lengths, banned calls. Prints each finding and exits with 1 if any."""
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()

# Which rooms a room may include; the arrows of the house point down only.
UNDER = {"platform": [], "platform/qt": ["platform"]}
ORDER = ["titles", "modul", "luecken", "datafiles", "feed", "bestand", "backfill", "supervision", "session",
         "fensterwerk", "titlewindows", "windows"]
for i, room in enumerate(ORDER):
    UNDER[room] = ["platform"] + ORDER[:i]
UNDER["backfill"].remove("bestand")
UNDER["datafiles"].remove("luecken")
UNDER["werkzeug"] = ["platform", "titles", "modul", "luecken", "datafiles"]
UNDER["feed/tws"] = ["platform"]
UNDER["feed"].append("feed/tws")
for room in ("bestand", "backfill", "supervision", "session"):
    UNDER[room].append("feed/tws")
for room in ("fensterwerk", "windows", "titlewindows"):
    UNDER[room] += ["platform/qt"]

MAX_LINE = 120
MAX_FUNCTION = 70
# Functions that are longer than the rule; the list may only get shorter.
LONG_ALLOWED = set(filter(None, (ROOT / "tests/tidy/lange_funktionen.txt").read_text().split("\n")))

BANNED = [
    (r"\batof\(|\bstrtod\(|\bstod\(|\bstoi\(|\bstrtol\(|\batoi\(|\bsscanf\(", "Zahlwert/Ganzzahl or std::from_chars"),
    (r"\bsetlocale\(|std::locale", "platform/text"),
    (r"\b(u|nano)?sleep\(|sleep_for|sleep_until", "the pump"),
    (r"\b(SIGNAL|SLOT)\(", "connect by pointer"),
    (r"\bTODO\b|\bFIXME\b|\bXXX\b", "an issue"),
]
CLOCKS = (r"QDateTime::current|QTime::current|QDate::current|system_clock::now|\btime\(nullptr\)|\blocaltime", "Uhr")

findings = []


def find(path, line, text):
    findings.append(f"{path.relative_to(ROOT)}:{line}: {text}")


def room_of(path):
    parts = path.relative_to(ROOT / "src").parts
    two = "/".join(parts[:2])
    return two if two in UNDER else parts[0]


def check_includes(path, lines):
    room = room_of(path)
    for number, line in enumerate(lines, 1):
        match = re.match(r'#include "([^"]+)"', line)
        if match:
            target = match.group(1)
            parts = target.split("/")
            if len(parts) == 1:
                find(path, number, f'include "{target}" without its room')
                continue
            other = "/".join(parts[:2]) if "/".join(parts[:2]) in UNDER else parts[0]
            if other != room and other not in UNDER[room]:
                find(path, number, f"{room} may not include {other}")
        elif re.match(r"#include <Q", line) and room not in ("fensterwerk", "windows", "titlewindows", "platform/qt"):
            find(path, number, "Qt in an engine room")


def check_functions(path, lines):
    """A function is a block that ends with a brace in column 0 or at a class's indent and starts with a signature."""
    start = None
    for number, line in enumerate(lines, 1):
        if re.match(r"^[A-Za-z_~].*\)\s*(const)?\s*(noexcept)?\s*(override)?\s*(:.*)?\{$", line):
            start = (number, line)
        elif line == "}" and start:
            if number - start[0] > MAX_FUNCTION:
                name = f"{path.relative_to(ROOT)}: {start[1].split('(')[0]}"
                if name not in LONG_ALLOWED:
                    find(path, start[0], f"function of {number - start[0]} lines ({start[1].split('(')[0]})")
            start = None


def check_file(path, engine):
    lines = path.read_text(encoding="utf-8").split("\n")
    for number, line in enumerate(lines, 1):
        if len(line) > MAX_LINE:
            find(path, number, f"{len(line)} characters")
        if line != line.rstrip():
            find(path, number, "blanks at the end")
        code = line.split("//")[0] if "TODO" not in line else line
        for pattern, instead in BANNED:
            if re.search(pattern, code):
                find(path, number, f"banned: use {instead}")
        if "src/platform" not in str(path) and engine and re.search(CLOCKS[0], code):
            find(path, number, f"banned: use {CLOCKS[1]}")
    if engine:
        check_includes(path, lines)
        check_functions(path, lines)


def check_format(names):
    program = shutil.which("clang-format-14")
    if program is None:
        find(ROOT / ".clang-format", 0, "clang-format-14 is missing; scripts/installiere brings it")
        return
    existing = [str(ROOT / name) for name in names if (ROOT / name).is_file()]
    done = subprocess.run([program, "--dry-run", *existing], capture_output=True, text=True, check=False)
    for path, line in re.findall(r"^(/[^:\n]+):(\d+):\d+: warning", done.stderr, re.MULTILINE):
        find(pathlib.Path(path), int(line), "not as clang-format has it")


def main():
    files = subprocess.run(["git", "-C", str(ROOT), "ls-files", "-co", "--exclude-standard"], capture_output=True,
                           text=True, check=True).stdout.split("\n")
    for name in filter(None, files):
        path = ROOT / name
        if not path.is_file():
            continue
        if name.endswith((".cpp", ".h")):
            check_file(path, engine=name.startswith("src/"))
    check_format([name for name in files if name.endswith((".cpp", ".h"))])
    print("\n".join(findings))
    print(f"tidy: {len(findings)} findings")
    return 1 if findings else 0


sys.exit(main())
