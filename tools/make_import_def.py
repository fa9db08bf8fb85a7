#!/usr/bin/env python3
"""Decorated module-definition file of a 32-bit library, for making its import library.

The library exports undecorated names; a 32-bit compiler asks for _Name@N, N being the bytes of the
arguments. N is read from the prototypes of the public header, the set of names from the library's own .def
file; a name that stands in only one of the two is an error.

    make_import_def.py HEADER DEF [OUTPUT]     without OUTPUT: prints to standard output
"""
import re
import sys

WORD = 4  # every argument takes whole words; a double takes two
SIZES = {"double": 8, "int32_t": WORD, "uint32_t": WORD, "StatusCode": WORD}


def exported_names(def_text):
    """Library name and exported names of a .def file, in its order."""
    library, names, in_exports = None, [], False
    for line in def_text.splitlines():
        words = line.split(";")[0].split()
        if not words:
            continue
        if words[0] == "LIBRARY":
            library = words[1]
        elif words[0] == "EXPORTS":
            in_exports = True
        elif in_exports:
            names.append(words[0])
    return library, names


def argument_bytes(arguments):
    """Bytes that the callee of a __stdcall function removes."""
    if arguments.strip() in ("", "void"):
        return 0
    total = 0
    for argument in arguments.split(","):
        if "*" in argument:
            total += WORD
            continue
        kinds = [SIZES[word] for word in argument.split() if word in SIZES]
        if len(kinds) != 1:
            raise ValueError(f"cannot tell the size of the argument '{argument.strip()}'")
        total += kinds[0]
    return total


def prototypes(header_text):
    """Bytes of the arguments by name, of every KV_API function of a header."""
    text = re.sub(r"/\*.*?\*/", " ", header_text, flags=re.S)
    found = re.findall(r"KV_API\s+[\w\s]+?\s+KV_CALL\s+(\w+)\s*\(([^)]*)\)\s*;", text)
    return {name: argument_bytes(arguments) for name, arguments in found}


def main(argv):
    if len(argv) not in (3, 4):
        sys.exit(__doc__)
    with open(argv[1], encoding="utf-8") as header, open(argv[2], encoding="utf-8") as definition:
        sizes = prototypes(header.read())
        library, names = exported_names(definition.read())
    odd = sorted(set(sizes).symmetric_difference(names))
    if odd or library is None:
        sys.exit(f"{argv[1]} and {argv[2]} disagree on: {', '.join(odd) or 'the library name'}")
    lines = [f"LIBRARY {library}.dll", "EXPORTS"] + [f"  {name}@{sizes[name]}" for name in names]
    text = "\n".join(lines) + "\n"
    if len(argv) == 4:
        with open(argv[3], "w", encoding="utf-8") as output:
            output.write(text)
    else:
        sys.stdout.write(text)


if __name__ == "__main__":
    main(sys.argv)
