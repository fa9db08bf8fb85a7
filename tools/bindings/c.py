"""Prototypes and offsets inside the C headers, and the definition file of the DLL."""
import re

WIDTH = 112
TYPES = {"double": "double ", "int": "int32_t ", "record": "MixtureRecord* ", "routines": "const ModelRoutines* ",
         "buffers": "double* const* "}


def argument(a):
    if a.kind in TYPES:
        return TYPES[a.kind] + a.name
    return ("const " if a.dir == "in" else "") + {"doubles": "double", "ints": "int32_t"}[a.kind] + "* " + a.name


def prototype(e):
    """As clang-format lays it out: filled lines, aligned with the first argument."""
    line = f"KV_API {'StatusCode' if e.status else 'void'} KV_CALL {e.name}("
    indent, lines = " " * len(line), []
    words = [argument(a) for a in e.arguments]
    for k, word in enumerate(words):
        end = ");" if k + 1 == len(words) else ","
        if len(line) + len(word) + len(end) > WIDTH and not line.endswith("("):
            lines.append(line.rstrip())
            line = indent
        line += word + end + ("" if end == ");" else " ")
    return "\n".join(lines + [line])


def header(d, text):
    """kvgasthermo.h with its prototypes made new; its words stay as they are."""
    found = re.findall(r"KV_API \w+ KV_CALL (\w+)\(", text)
    wanted = [e.name for e in d.exports]
    if found != wanted:
        raise ValueError(f"kvgasthermo.h and exports.toml list the exports differently: {sorted(set(found) ^ set(wanted))}"
                         " (or in another order)")
    for e in d.exports:
        made = prototype(e)
        text = re.sub(rf"KV_API \w+ KV_CALL {e.name}\([^)]*\);", lambda _: made, text)
    return text


def records(d, text):
    """records.h with the offsets and sizes that it asserts made new."""
    types = {"int": "int32_t", "double": "double", "byte": "uint8_t", "address": "void*"}
    made = "".join(f"KV_ASSERT_FIELD(MixtureRecord, {f['name']}, {f['offset']}, {types[f['kind']]});\n" for f in d.fields)
    text = re.sub(r"(KV_ASSERT_FIELD\(MixtureRecord, .*\);\n)+", lambda _: made, text)
    return re.sub(r"sizeof\(MixtureRecord\) == \d+", f"sizeof(MixtureRecord) == {d.record_size}", text)


def definition(d):
    names = "".join(f"  {name}\n" for name in sorted(e.name for e in d.exports))
    return f"; The exports of {d.library}: {len(d.exports)} names, undecorated.\nLIBRARY {d.library}\nEXPORTS\n{names}"
