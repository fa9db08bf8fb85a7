"""bindings/pascal/kestrune.pas."""
from bindings.text import comment, fill, records_of, shape

WIDTH = 118
OWN = "ConvertPPR78GroupData"  # written by hand in the template: its buffers belong to the unit
RAW = {"double": "Double", "int": "LongInt", "doubles": "PDouble", "ints": "PLongInt", "record": "PMixture",
       "routines": "PModelRoutines", "buffers": "PPDouble"}


def external(e):
    head = f"{'function' if e.status else 'procedure'} c_{e.name}("
    tail = "): LongInt;" if e.status else ");"
    words = [f"{a.name}: {RAW[a.kind]}" for a in e.arguments]
    text = fill(head, words, tail, WIDTH, "  ").replace(", ", "; ").replace(",\n", ";\n")
    return (f"{text} {{$ifdef win32}}stdcall{{$else}}cdecl{{$endif}};\n"
            f"  external LibraryName name '{e.name}';")


def word(a):
    if a.kind in ("double", "int", "routines"):
        return f"{a.name}: {RAW[a.kind]}"
    if a.kind == "record":
        return f"var {a.name}: TMixtureRecord"
    number = "Double" if a.kind == "doubles" else "LongInt"
    passed = "const" if a.dir == "in" else "var"
    return f"{passed} {a.name}: {'array of ' if a.array else ''}{number}"


def head(e):
    return fill(f"function {e.name}(", [word(a) for a in e.arguments], "): LongInt;", WIDTH, "  ").replace(
        ", ", "; ").replace(",\n", ";\n")


def passed(a):
    if a.array:
        return f"First({a.name})"
    return f"@{a.name}" if a.number or a.kind == "record" else a.name


def length(a):
    """The count of the record is a variable of the function; 64 bits keep products of the host's words exact."""
    factors = a.shape.split("*")
    return " * ".join([f"Int64({factors[0]})", *factors[1:]]) if len(factors) > 1 else factors[0]


def function(e):
    record = next((a.name for a in e.arguments if a.kind == "record"), None)
    lines = [head(e)]
    body = []
    counted = any("count" in shape(a) for a in e.arguments if a.array)
    if record:
        body.append(f"count := CountOf({record}, '{e.name}');" if counted else f"CountOf({record}, '{e.name}');")
    for a in e.arguments:
        if a.array:
            guard = f"if (mask and {a.bit} <> 0) or (High({a.name}) >= 0) then " if a.bit else ""
            body.append(f"{guard}Need(High({a.name}) + 1, {length(a)}, '{e.name}', '{a.name}');")
    body.append(fill(f"Result := c_{e.name}(", [passed(a) for a in e.arguments], ");", WIDTH - 2, "    "))
    lines += ["var\n  count: LongInt;"] if counted else []
    return "\n".join(lines + ["begin"] + [f"  {line}" for line in body] + ["end;", ""])


def fields(d):
    types = {"int": "LongInt", "double": "Double", "byte": "Byte", "address": "PDouble"}
    sizes = {"int": 4, "double": 8, "byte": 1}
    lines, end = [], 0
    for f in d.fields:
        if f["offset"] > end:
            lines.append(f"    reserved{end}: array[0..{f['offset'] - end - 1}] of Byte;")
        lines.append(f"    {f['name']}: {types[f['kind']]}; {{ {f['offset']}: {f['doc']} }}")
        end = f["offset"] + sizes.get(f["kind"], 0)
        if f["kind"] == "address":
            following = min(g["offset"] for g in d.fields if g["offset"] > f["offset"])
            lines.append(f"    reserved8: array[0..{following - f['offset'] - 1} - SizeOf(Pointer)] of Byte;")
            end = following
    return "\n".join(lines)


def make(d, template, made):
    functions = [e for e in d.exports if e.name != OWN]
    quoted = [(n, t.replace("'", "''")) for n, _, t in d.statuses]
    return records_of(d, template, {
        "MADE": made, "FIELDS": fields(d),
        "STATUSES": "\n".join(f"  {n} = {v};" for n, v, _ in d.statuses),
        "TEXTS": "\n".join(f"    {n}: Result := '{t}';" for n, t in quoted),
        "COLUMNS": "\n".join(f"  {n} = {v}; {{ {doc} }}" for n, v, doc in d.columns),
        "CONSTANTS": "\n".join(f"  {n} = {v};" for n, v in d.constants.items()),
        "DECLARATIONS": "\n\n".join(comment(e, "{ ", "    ", " }") + "\n" + head(e) for e in functions),
        "EXTERNALS": "type\n  PMixture = ^TMixtureRecord;\n  PPDouble = ^PDouble;\n\n"
                     + "\n".join(external(e) for e in d.exports),
        "FUNCTIONS": "\n".join(function(e) for e in functions),
    })
