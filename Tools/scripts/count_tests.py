"""Adds up the cases of all test programs: prints 'N passed, N failed' and exits 1 on a failure.

A program that crashed left no report; ctest's log names it, and it counts as one failure.
"""

import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

build = pathlib.Path(sys.argv[1])
log = (build / "ctest.log").read_text(errors="replace")

passed = failed = 0
reported = set()
for report in (build / "results").glob("*.xml"):
    try:
        suites = ElementTree.parse(report).getroot()
    except ElementTree.ParseError:
        continue
    reported.add(report.stem)
    bad = int(suites.get("failures", 0)) + int(suites.get("errors", 0))
    failed += bad
    passed += int(suites.get("tests", 0)) - bad - int(suites.get("disabled", 0))

# A program that ran more than once is told by its last run.
verdicts = dict(re.findall(r"Test\s+#\d+: (\S+) [.\s]*(Passed|\*\*\*\S+)", log))
for name, verdict in verdicts.items():
    if name in reported:
        # A report without failures from a program that failed all the same: a sanitizer spoke at exit.
        if verdict != "Passed":
            root = ElementTree.parse(build / "results" / f"{name}.xml").getroot()
            if int(root.get("failures", 0)) + int(root.get("errors", 0)) == 0:
                failed += 1
    elif verdict == "Passed":
        passed += 1
    else:
        failed += 1

if passed + failed == 0:
    failed = 1
print(f"{passed} passed, {failed} failed")
sys.exit(1 if failed else 0)
