#!/usr/bin/env bash
# Fails when src/ calls an operation of a toolkit stand-in (a public member declared in
# platform/*.h) that platform/README.md does not list under "Operations src/ may call": the set's
# own toolkit may not have it. Names each call by file, line and operation.
set -euo pipefail
cd "$(dirname "$0")/.."

python3 - <<'PY'
import glob, re, sys

readme = open("platform/README.md").read()
section = readme.split("## Operations src/ may call", 1)[1].split("\n## ", 1)[0]
allowed = set(re.findall(r"^\| `\w+::(\w+)`", section, re.M))
if not allowed:
    sys.exit("check-toolkit: no operations listed in platform/README.md")

# Public member functions of the toolkit stand-ins; the shell's interface is the plug-in's own.
declared = set()
for header in sorted(glob.glob("platform/*.h")):
    if header.endswith("utilinterface.h"):
        continue
    access = "private"
    for line in open(header):
        if re.match(r"\s*(class|struct)\s+\w+[^;]*$", line):
            access = "public" if line.split()[0] == "struct" else "private"
        elif re.match(r"\s*(public|protected|private)\b[^:]*:\s*$", line) or re.match(r"\s*signals\s*:", line):
            access = line.split()[0].rstrip(":")
        elif access == "public" and not line.strip().startswith("//"):
            match = re.search(r"(~?\w+)\s*\(", line)
            if match and match.group(1) not in ("Q_OBJECT", "Q_DECLARE_INTERFACE"):
                declared.add(match.group(1))

failures = 0
for source in sorted(glob.glob("src/*.cpp") + glob.glob("src/*.h")):
    for number, line in enumerate(open(source), 1):
        code = line.split("//", 1)[0]
        for match in re.finditer(r"(?:->|\.|::)\s*(\w+)\s*\(", code):
            name = match.group(1)
            if name in declared and name not in allowed:
                print(f"{source}:{number}: {name} is not an operation the set's toolkit promises"
                      " (platform/README.md)")
                failures += 1
if failures:
    sys.exit(f"check-toolkit: {failures} call(s) outside the set's toolkit")
print(f"check-toolkit: src/ calls only the {len(allowed)} listed toolkit operations")
PY
