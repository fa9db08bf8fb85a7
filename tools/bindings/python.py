"""python/kestrune/_exports.py: the exports through ctypes."""
def plain(name):
    """KV_COL_TC without the prefix that stands for a namespace in C."""
    return name.removeprefix("KV_")


def fields(d):
    """Fields with fillers for what is reserved; the table's address has the size of the process."""
    types = {"int": "c_int32", "double": "c_double", "byte": "c_uint8", "address": "POINTER(c_double)"}
    sizes = {"int": 4, "double": 8, "byte": 1}
    lines, end = [], 0
    for f in d.fields:
        if f["offset"] > end:
            lines.append(f'        ("_reserved{end}", c_uint8 * {f["offset"] - end}),')
        lines.append(f'        ("{f["name"]}", {types[f["kind"]]}),  # {f["doc"]}')
        end = f["offset"] + sizes.get(f["kind"], 0)
        if f["kind"] == "address":
            following = min(g["offset"] for g in d.fields if g["offset"] > f["offset"])
            lines.append(f'        ("_reserved8", c_uint8 * ({following - f["offset"]} - ctypes.sizeof(ctypes.c_void_p))),')
            end = following
    return "\n".join(lines)


def exports(d):
    lines = []
    for e in d.exports:
        lines.append(f'    "{e.name}": ({e.status}, (')
        for a in e.arguments:
            lines.append(f'        Word("{a.name}", "{a.kind}", "{a.dir}", "{a.shape}", "{a.unit}", {a.bit}, '
                         f'{", ".join([a.doc] + [f"{v}: {meaning}" for v, meaning in a.bits.items()])!r}),')
        lines.append(f"    ), {e.doc!r}),")
    return "\n".join(lines)


def make(d, template, made):
    values = {
        "MADE": made, "VERSION": d.version, "LIBRARY": d.library, "SIZE": str(d.record_size),
        "STATUSES": "\n".join(f'    {v}: ("{n}", "{t}"),' for n, v, t in d.statuses),
        "COLUMNS": "\n".join(f"{plain(n)} = {v}  # {doc}" for n, v, doc in d.columns),
        "CONSTANTS": "\n".join(f"{plain(n)} = {v}" for n, v in d.constants.items()),
        "FIELDS": fields(d),
        "OFFSETS": ", ".join(f'"{f["name"]}": {f["offset"]}' for f in d.fields),
        "EXPORTS": exports(d),
    }
    for key, text in values.items():
        template = template.replace(f"@{key}@", text)
    return template
