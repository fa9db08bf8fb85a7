"""web/kestrune/exports.js and exports.d.ts: the exports of the WebAssembly module."""
from bindings import text


def plain(name):
    """KV_COL_TC without the prefix that stands for a namespace in C."""
    return name.removeprefix("KV_")


def words(e):
    return "".join(f'    ["{a.name}", "{a.kind}", "{a.dir}", "{a.shape}", {a.bit}],\n' for a in e.arguments)


def make(d, template, made):
    size = {"int": "Int32", "double": "Float64", "byte": "Uint8"}
    values = {
        "MADE": made,
        "STATUSES": "\n".join(f'  {v if v >= 0 else f"[{v}]"}: ["{n}", "{t}"],' for n, v, t in d.statuses),
        "COLUMNS": "\n".join(f"  {plain(n)}: {v}, // {doc}" for n, v, doc in d.columns),
        "CONSTANTS": "\n".join(f"  {plain(n)}: {v}," for n, v in d.constants.items()),
        "FIELDS": "\n".join(f'  {f["name"]}: [{f["offset"]}, "{size[f["kind"]]}"], // {f["doc"]}'
                            for f in d.fields if f["kind"] in size and f["name"] != "count"),
        "TABLE": str(next(f["offset"] for f in d.fields if f["kind"] == "address")),
        "EXPORTS": "\n".join(f"  {e.name}: [\n{words(e)}  ]," for e in d.exports),
    }
    return text.records_of(d, template, values)


def typescript(a):
    """The type of a word."""
    if a.kind in ("double", "int"):
        return "number"
    if a.kind in ("doubles", "ints"):
        array = "Float64Array" if a.kind == "doubles" else "Int32Array"
        read = f"{array} | readonly number[]" if a.dir == "in" else array
        return f"{read} | null" if a.bit else read
    return {"record": "MixtureRecord", "routines": "null", "buffers": "null"}[a.kind]


def declaration(e):
    lines = [f"  /**\n   * {e.doc}." + (" Returns the status." if e.status else "")]
    lines += [f"   * @param {a.name} {a.sentence()}" for a in e.arguments]
    arguments = ", ".join(f"{a.name}: {typescript(a)}" for a in e.arguments)
    return "\n".join(lines) + f"\n   */\n  {e.name}({arguments}): {'number' if e.status else 'void'};"


def types(d, template, made):
    fields = [f for f in d.fields if f["kind"] != "address" and f["name"] != "count"]
    values = {
        "MADE": made,
        "COLUMNS": "\n".join(f"  readonly {plain(n)}: {v};" for n, v, _ in d.columns),
        "CONSTANTS": "\n".join(f"  readonly {plain(n)}: number;" for n in d.constants),
        "FIELDS": "\n".join(f"  /** {f['doc']} */\n  {f['name']}: number;" for f in fields),
        "EXPORTS": "\n".join(map(declaration, d.exports)),
    }
    return text.records_of(d, template, values)
