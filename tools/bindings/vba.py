"""bindings/vba/Kestrune.bas. Visual Basic knows no difference of case and has words of its own (OPTION)."""
from bindings.text import fill, records_of

WIDTH = 112
OWN = "ConvertPPR78GroupData"  # written by hand in the template: its buffers belong to the module
RESERVED = {"option", "next", "loop", "type", "get", "put", "set", "print", "write"}
RAW = {"double": "ByVal {} As Double", "int": "ByVal {} As Long", "routines": "ByVal {} As LongPtr",
       "record": "ByRef {} As Byte", "doubles": "ByRef {} As Double", "ints": "ByRef {} As Long",
       "buffers": "ByRef {} As LongPtr"}
NUMBERS = {"doubles": "Double", "ints": "Long"}


def name(a):
    return a.name + "_" if a.name.lower() in RESERVED else a.name


def declare(e, safe, pointer):
    words = [RAW[a.kind].format(name(a)).replace("LongPtr", pointer) for a in e.arguments]
    kind = "Function" if e.status else "Sub"
    return fill(f'Private Declare {safe}{kind} c_{e.name} Lib "KVGasThermo.dll" Alias "{e.name}" (', words,
                ") As Long" if e.status else ")", WIDTH, "    ", " _")


def word(a):
    if a.kind in ("double", "int", "routines"):
        return RAW[a.kind].format(name(a))
    if a.kind == "record":
        return f"{name(a)}() As Byte"
    return f"{name(a)}() As {NUMBERS[a.kind]}" if a.array else f"ByRef {name(a)} As {NUMBERS[a.kind]}"


def passed(a):
    return f"{name(a)}(LBound({name(a)}))" if a.array or a.kind == "record" else name(a)


def function(e):
    record = next((name(a) for a in e.arguments if a.kind == "record"), None)
    lines = [f"' {e.doc}. Returns the status."] + [f"'   {name(a)}: {a.sentence()}" for a in e.arguments]
    lines.append(fill(f"Public Function {e.name}(", [word(a) for a in e.arguments], ") As Long", WIDTH, "    ", " _"))
    if record:
        lines += ["    Dim count As Long", f'    count = CountOf({record}, "{e.name}")']
    for a in e.arguments:
        if a.array:
            size = "CDbl(" + ") * ".join(a.shape.split("*")) if "*" in a.shape else a.shape
            lines.append(f'    Need{NUMBERS[a.kind]}s {name(a)}, {size}, "{e.name}", "{name(a)}"')
    lines.append(fill(f"    {e.name} = c_{e.name}(", [passed(a) for a in e.arguments], ")", WIDTH, "        ", " _"))
    return "\n".join(lines + ["End Function", ""])


def constant(key, value):
    real = "." in value or "e" in value
    return f"Public Const {key} As {'Double' if real else 'Long'} = {value.upper() if real else value}"


def make(d, template, made):
    return records_of(d, template, {
        "MADE": made,
        "STATUSES": "\n".join(constant(n, str(v)) for n, v, _ in d.statuses),
        "TEXTS": "\n".join(f'        Case {v}: StatusText = "{t}"' for _, v, t in d.statuses),
        "COLUMNS": "\n".join(f"{constant(n, str(v))} ' {doc}" for n, v, doc in d.columns),
        "CONSTANTS": "\n".join(constant(n, v) for n, v in d.constants.items()),
        "OFFSETS": "\n".join(f"Public Const AT_{f['name']} As Long = {f['offset']} ' {f['kind']}: {f['doc']}" for f in d.fields),
        "DECLARES7": "\n".join(declare(e, "PtrSafe ", "LongPtr") for e in d.exports),
        "DECLARES6": "\n".join(declare(e, "", "Long") for e in d.exports),
        "FUNCTIONS": "\n".join(function(e) for e in d.exports if e.name != OWN).rstrip(),
    })
