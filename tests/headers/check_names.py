#!/usr/bin/env python3
"""Bytes of the arguments of the 39 exports, from independent sources that must agree with exports.inc:
the import-definition script and, on 32-bit Windows, the names that the compiler itself asks for.

    check_names.py EXPORTS_INC SCRIPT HEADER DEF [NM OBJECT]
"""
import re
import subprocess
import sys


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def differing(wanted, found, source):
    for name in sorted(set(wanted) | set(found)):
        if wanted.get(name) != found.get(name):
            yield f"{source}: {name}: {wanted.get(name)} bytes expected, {found.get(name)} found"


def main(argv):
    with open(argv[1], encoding="utf-8") as table:
        wanted = {n: int(b) for n, b in re.findall(r"^EXPORT\((\w+), (\d+)\)$", table.read(), flags=re.M)}
    faults = [] if len(wanted) == 39 else [f"{argv[1]}: {len(wanted)} names, 39 expected"]
    by_script = output_of(sys.executable, argv[2], argv[3], argv[4])
    found = {n: int(b) for n, b in re.findall(r"^  (\w+)@(\d+)$", by_script, flags=re.M)}
    faults += differing(wanted, found, "import definition")
    if len(argv) > 5:
        symbols = output_of(argv[5], "--undefined-only", argv[6])
        found = {n: int(b) for n, b in re.findall(r"\b__imp__(\w+)@(\d+)$", symbols, flags=re.M)}
        faults += differing(wanted, found, "compiler")
    print("\n".join(faults) if faults else f"{len(wanted)} names agree")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
