#!/usr/bin/env python3
"""Makes the declarations of every host from bindings/exports.toml: the prototypes and offsets of the C headers, the
definition file of the DLL, the bindings for Python, JavaScript, Fortran, Pascal, C# and VBA, the gas of the examples and of README.md
(out of data/), and the version of CITATION.cff.

    make_bindings.py            writes what has changed
    make_bindings.py --check    writes nothing; returns 1 and names the files that are not what it would write
"""
import pathlib
import re
import sys

from bindings import c, csharp, fortran, gas, javascript, model, pascal, python, vba

ROOT = pathlib.Path(__file__).resolve().parent.parent
TEMPLATES = ROOT / "tools/bindings/templates"
MADE = "Made by tools/make_bindings.py from bindings/exports.toml; change that and run it."


def wanted(d):
    """Text by path, relative to ROOT."""
    def read(path):
        return (ROOT / path).read_text(encoding="utf-8")

    def template(name):
        return (TEMPLATES / name).read_text(encoding="utf-8")

    header, records = "include/kestrune/kvgasthermo.h", "include/kestrune/records.h"
    return {
        header: c.header(d, read(header)),
        records: c.records(d, read(records)),
        "src/KVGasThermo.def": c.definition(d),
        "CITATION.cff": re.sub(r"(?m)^version: .*", f"version: {d.version}", read("CITATION.cff")),
        "python/kestrune/_exports.py": python.make(d, template("_exports.py"), MADE),
        "bindings/fortran/kestrune.F90": fortran.make(d, template("kestrune.F90"), MADE),
        "bindings/pascal/kestrune.pas": pascal.make(d, template("kestrune.pas"), MADE),
        "bindings/csharp/Kestrune.cs": csharp.make(d, template("Kestrune.cs"), MADE),
        "bindings/vba/Kestrune.bas": vba.make(d, template("Kestrune.bas"), MADE),
        "web/kestrune/exports.js": javascript.make(d, template("exports.js"), MADE),
        "web/kestrune/exports.d.ts": javascript.types(d, template("exports.d.ts"), MADE),
    }


# The examples with the gas that stands in them.
EXAMPLES = {"examples/c/rich_gas.c": gas.c, "examples/cpp/rich_gas.cpp": gas.c, "examples/python/rich_gas.py": gas.python,
            "examples/fortran/rich_gas.f90": gas.fortran, "examples/pascal/rich_gas.pas": gas.pascal,
            "examples/csharp/RichGas.cs": gas.csharp, "examples/vba/RichGas.bas": gas.vba, "examples/javascript/rich_gas.mjs": gas.javascript}


def examples():
    rich = gas.Gas(ROOT, gas.RICH_GAS)
    texts = {path: gas.put((ROOT / path).read_text(encoding="utf-8"), lines(rich)) for path, lines in EXAMPLES.items()}
    two = gas.c(gas.Gas(ROOT, gas.README_GAS))
    return texts | {"README.md": gas.put((ROOT / "README.md").read_text(encoding="utf-8"), two)}


def main(argv):
    if argv[1:] not in ([], ["--check"]):
        sys.exit(__doc__)
    try:
        texts = wanted(model.read(ROOT)) | examples()
    except OSError as fault:
        sys.exit(f"{fault.filename}: {fault.strerror}")
    except (ValueError, KeyError, TypeError) as fault:
        sys.exit(f"bindings/exports.toml: {fault}")
    stale = []
    for path, text in texts.items():
        file = ROOT / path
        if not file.exists() or file.read_text(encoding="utf-8") != text:
            stale.append(path)
            if argv[1:] == []:
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_text(text, encoding="utf-8")
    if argv[1:] == ["--check"] and stale:
        print("not what tools/make_bindings.py makes:", *stale, sep="\n  ")
        return 1
    print(*(f"written: {path}" for path in stale), f"{len(texts)} files are what they should be", sep="\n")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
