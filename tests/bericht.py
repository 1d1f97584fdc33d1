#!/usr/bin/env python3
"""Sums up reports of ctest (JUnit form): what failed, with its output, and how many tests passed. Ends with 1 if any
failed or none ran."""
import re
import sys
import xml.etree.ElementTree

passed = failed = skipped = 0
for path in sys.argv[1:]:
    for case in xml.etree.ElementTree.parse(path).getroot().iter("testcase"):
        output = case.findtext("system-out") or ""
        why = case.find("skipped")
        if why is not None and why.get("message", "").startswith("SKIP_RETURN_CODE"):
            skipped += 1
            continue
        # A program of many tests counts each of them.
        own = re.search(r"^\[  PASSED  \] (\d+) tests?\.", output, re.MULTILINE)
        left_out = re.search(r"^\[  SKIPPED \] (\d+) tests?, listed below", output, re.MULTILINE)
        broken = re.search(r"^\[  FAILED  \] (\d+) tests?, listed below", output, re.MULTILINE)
        skipped += int(left_out.group(1)) if left_out else 0
        passed += int(own.group(1)) if own else case.get("status") == "run"
        if case.get("status") != "run":
            failed += int(broken.group(1)) if broken else 1
            lines = [line for line in output.splitlines() if not re.match(r"\[ RUN|\[ +OK|\[---", line)]
            print(f"\n---- {case.get('name')}: {case.get('status')}\n" + "\n".join(lines[-200:]))
print(f"{passed} passed, {failed} failed" + (f", {skipped} skipped" if skipped else ""))
sys.exit(1 if failed or not passed else 0)
