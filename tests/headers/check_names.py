#!/usr/bin/env python3
"""Bytes of the arguments of the exports, from independent sources that must agree with exports.inc:
the import-definition script, the declarations of the bindings for other languages and, on 32-bit Windows, the names
that the compiler itself asks for.

    check_names.py EXPORTS_INC SCRIPT HEADER DEF BINDINGS_FOLDER [NM OBJECT]
"""
import pathlib
import re
import subprocess
import sys


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def differing(wanted, found, source):
    for name in sorted(set(wanted) | set(found)):
        if wanted.get(name) != found.get(name):
            yield f"{source}: {name}: {wanted.get(name)} bytes expected, {found.get(name)} found"


# Declarations of a language: name, list of words; separator and look of a double by value.
DECLARATIONS = {
    "vba/Kestrune.bas": (r"Declare PtrSafe \w+ c_(\w+) Lib [^(]*\(([^)]*)\)", ",", r"ByVal \w+ As Double"),
    "vba/Kestrune.bas, older": (r"Declare \w+ c_(\w+) Lib [^(]*\(([^)]*)\)", ",", r"ByVal \w+ As Double"),
    "csharp/Kestrune.cs": (r"static extern \w+ (\w+)\(([^)]*)\)", ",", r"double \w+"),
    "pascal/kestrune.pas": (r"\w+ c_(\w+)\(([^)]*)\)[^;]*; \{\$ifdef win32\}stdcall", ";", r"\w+: Double"),
}


def declared(folder):
    """Bytes by name for every language."""
    for language, (pattern, separator, double) in DECLARATIONS.items():
        text = (folder / language.split(",")[0]).read_text(encoding="utf-8")
        words = {name: [" ".join(w.replace(" _\n", " ").split()) for w in arguments.split(separator)]
                 for name, arguments in re.findall(pattern, text)}
        yield language, {name: sum(8 if re.fullmatch(double, w) else 4 for w in ws) for name, ws in words.items()}
    text = re.sub(r" &\n\s*", " ", (folder / "fortran/kestrune.F90").read_text(encoding="utf-8"))
    bodies = re.findall(r"(?:function|subroutine) c_(\w+)\(([^)]*)\) bind(.*?)end ", text, re.S)
    values = {name: sum(len(line.split(",")) for line in re.findall(r"real\(c_double\), value :: (.*)", body))
              for name, _, body in bodies}
    yield "fortran/kestrune.F90", {name: 4 * len(ws.split(",")) + 4 * values[name] for name, ws, _ in bodies}


def main(argv):
    with open(argv[1], encoding="utf-8") as table:
        wanted = {n: int(b) for n, b in re.findall(r"^EXPORT\((\w+), (\d+)\)$", table.read(), flags=re.M)}
    faults = [] if wanted else [f"{argv[1]}: no names"]
    by_script = output_of(sys.executable, argv[2], argv[3], argv[4])
    found = {n: int(b) for n, b in re.findall(r"^  (\w+)@(\d+)$", by_script, flags=re.M)}
    faults += differing(wanted, found, "import definition")
    for language, found in declared(pathlib.Path(argv[5])):
        faults += differing(wanted, found, language)
    if len(argv) > 6:
        symbols = output_of(argv[6], "--undefined-only", argv[7])
        found = {n: int(b) for n, b in re.findall(r"\b__imp__(\w+)@(\d+)$", symbols, flags=re.M)}
        faults += differing(wanted, found, "compiler")
    print("\n".join(faults) if faults else f"{len(wanted)} names agree")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
