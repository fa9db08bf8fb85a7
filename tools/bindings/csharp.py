"""bindings/csharp/Kestrune.cs."""
from bindings.text import fill, records_of

WIDTH = 118
OWN = "ConvertPPR78GroupData"  # written by hand in the template: its buffers belong to the class
VALUES = {"double": "double", "int": "int", "routines": "IntPtr"}


def word(a, record):
    if a.kind in VALUES:
        return f"{VALUES[a.kind]} {a.name}"
    if a.kind == "record":
        return f"{record} {a.name}"
    if a.kind == "buffers":
        return f"IntPtr[] {a.name}"
    number = "double" if a.kind == "doubles" else "int"
    return f"{number}[] {a.name}" if a.array else f"ref {number} {a.name}"


def passed(a):
    if a.kind == "record":
        return f"ref {a.name}.Record"
    return f"ref {a.name}" if a.number else a.name


def extern(e):
    head = f"        internal static extern {'int' if e.status else 'void'} {e.name}("
    words = [word(a, "ref MixtureRecord") for a in e.arguments]
    return '        [DllImport("KVGasThermo")]\n' + fill(head, words, ");", WIDTH, " " * 12)


def checks(e):
    record = next((a.name for a in e.arguments if a.kind == "record"), None)
    counted = any("count" in a.shape for a in e.arguments if a.array)
    if record:
        yield f"{'int count = ' if counted else ''}Check.Count({record});"
    for a in e.arguments:
        if a.array:
            guard = f"if ((mask & {a.bit}) != 0 || {a.name} != null) " if a.bit else ""
            size = " * ".join(a.shape.split("*"))
            yield f'{guard}Check.Length({a.name}, {"(long)" if "*" in a.shape else ""}{size}, "{a.name}");'


def escaped(text):
    return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")


def method(e):
    indent = " " * 8
    lines = [f"{indent}/// <summary>{escaped(e.doc)}. Returns the status.</summary>"]
    lines += [f'{indent}/// <param name="{a.name}">{escaped(a.sentence())}</param>' for a in e.arguments]
    lines += [fill(f"{indent}public static int {e.name}(", [word(a, "Mixture") for a in e.arguments], ")", WIDTH, " " * 12),
              indent + "{"]
    lines += [f"{indent}    {check}" for check in checks(e)]
    lines.append(fill(f"{indent}    return Native.{e.name}(", [passed(a) for a in e.arguments], ");", WIDTH, " " * 16))
    return "\n".join(lines + [indent + "}"])


def fields(d):
    types = {"int": "int", "double": "double", "byte": "byte", "address": "IntPtr"}
    return "\n".join(f"        [FieldOffset({f['offset']})] public {types[f['kind']]} {f['name']}; // {f['doc']}"
                     for f in d.fields)


def constant(name, value):
    return f"        public const {'double' if '.' in value or 'e' in value else 'int'} {name} = {value};"


def make(d, template, made):
    return records_of(d, template, {
        "MADE": made, "FIELDS": fields(d),
        "STATUSES": "\n".join(constant(n, str(v)) for n, v, _ in d.statuses),
        "TEXTS": "\n".join(f'                case {v}: return "{t}";' for _, v, t in d.statuses),
        "COLUMNS": "\n".join(f"{constant(n, str(v))} // {doc}" for n, v, doc in d.columns),
        "CONSTANTS": "\n".join(constant(n, v) for n, v in d.constants.items()),
        "METHODS": "\n\n".join(method(e) for e in d.exports if e.name != OWN),
        "EXTERNS": "\n\n".join(extern(e) for e in d.exports),
    })
