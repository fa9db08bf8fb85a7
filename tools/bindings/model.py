"""The description of the exports as objects, and the constants of the public headers."""
import re
import tomllib
from dataclasses import dataclass, field

BYTES = {"double": 8}  # of an argument on a 32-bit stack; everything else takes a word of 4
KINDS = {"double", "int", "doubles", "ints", "record", "routines", "buffers"}
FIELD_BYTES = {"int": 4, "double": 8, "byte": 1, "address": 4}


@dataclass(frozen=True)
class Argument:
    """One word of an argument list; the words are those of bindings/exports.toml."""
    name: str
    kind: str
    doc: str
    dir: str = ""
    shape: str = ""
    unit: str = ""
    bit: int = 0
    bits: dict = field(default_factory=dict, hash=False)
    optional: bool = False

    @property
    def number(self):
        """One value behind an address."""
        return self.kind in ("doubles", "ints") and self.shape == "1"

    @property
    def array(self):
        return self.kind in ("doubles", "ints") and self.shape != "1"

    @property
    def address(self):
        return self.kind in ("doubles", "ints")

    def sentence(self):
        """What a docstring says: meaning, unit, shape, direction, bits."""
        parts = [self.doc] + ([self.unit] if self.unit else [])
        if self.array:
            parts.append(f"[{self.shape.replace('*', ' * ')}]")
        if self.dir == "inout" and self.kind != "record":
            parts.append("in and out")
        if self.dir == "out":
            parts.append("out")
        if self.bit:
            parts.append(f"only with bit {self.bit} of mask")
        parts += [f"{value}: {meaning}" for value, meaning in self.bits.items()]
        return ", ".join(parts)


@dataclass(frozen=True)
class Export:
    name: str
    group: str
    doc: str
    arguments: tuple
    status: bool

    @property
    def bytes(self):
        """What the callee removes from a 32-bit stack."""
        return sum(BYTES.get(a.kind, 4) for a in self.arguments)


@dataclass(frozen=True)
class Description:
    library: str
    exports: tuple
    fields: tuple       # of MixtureRecord: dicts with name, offset, kind, doc
    record_size: int
    statuses: tuple     # (name, value, text) of status.h
    columns: tuple      # (name, value, doc) of records.h
    constants: dict     # further numbers of records.h by name, as written there
    version: str


def entries(where, table, needed, more=()):
    """table where it has the keys of needed, and no others than those of more beside them; ValueError otherwise."""
    if not isinstance(table, dict):
        raise ValueError(f"{where}: {table!r}, but a table of {', '.join(needed)} is needed")
    for key in needed:
        if key not in table:
            raise ValueError(f"{where}: {key} is missing")
    for key, value in table.items():
        if key not in (*needed, *more):
            raise ValueError(f"{where}: '{key}' is none of {', '.join([*needed, *more])}")
        if key in ("name", "kind", "doc", "group", "dir", "shape", "unit") and not isinstance(value, str):
            raise ValueError(f"{where}: {key} is {value!r}, but a text is needed")
    if "name" in table and not re.fullmatch(r"[A-Za-z][A-Za-z0-9_]{0,59}", table["name"]):
        raise ValueError(f"{where}: '{table['name']}' is no name in every language: a letter, then letters, digits and _")
    return table


def check_argument(e, a):
    """What one word of an export needs from the others."""
    where = f"{e.name}: {a.name}"
    integers = {o.name: o for o in e.arguments if o.kind == "int"}
    known = {"1", "6", *integers} | ({"count"} if any(o.kind == "record" for o in e.arguments) else set())
    if a.shape and set(a.shape.split("*")) - known:
        raise ValueError(f"{where}: shape {a.shape} is not known from the call: a product of {', '.join(sorted(known))}")
    if a.optional != (a.kind == "routines"):
        raise ValueError(f"{where}: optional stands at routines and nowhere else; bit is for derivatives")
    if a.bits and a.kind != "int":
        raise ValueError(f"{where}: bits are those of an int")
    if a.bit and (not a.address or "mask" not in integers or str(a.bit) not in map(str, integers["mask"].bits)):
        raise ValueError(f"{where}: bit {a.bit} is for an address, and one of the bits of an int called mask")


def check(exports, fields, size):
    """ValueError naming what no host could declare."""
    names = [e.name.lower() for e in exports]
    if len(set(names)) != len(names):
        raise ValueError("an export stands twice")
    for e in exports:
        words = [a.name.lower() for a in e.arguments]
        for a in e.arguments:
            if a.kind not in KINDS:
                raise ValueError(f"{e.name}: {a.name}: kind '{a.kind}' is none of {', '.join(sorted(KINDS))}")
            if a.kind in ("double", "int") and (a.dir or a.shape):
                raise ValueError(f"{e.name}: {a.name} goes by value: it has no direction and no shape")
            if a.kind not in ("double", "int") and (a.dir not in ("in", "out", "inout") or not a.shape):
                raise ValueError(f"{e.name}: {a.name} is an address: dir is in, out or inout, and shape is needed")
            if words.count(a.name.lower()) > 1 or a.name.lower() in names:
                raise ValueError(f"{e.name}: {a.name}: not the only one of that name where case does not count")
            check_argument(e, a)
    end, fields_seen = 0, set()
    for f in fields:
        if f["name"].lower() in fields_seen:
            raise ValueError(f"record: {f['name']} stands twice")
        fields_seen.add(f["name"].lower())
        if not isinstance(f["offset"], int):
            raise ValueError(f"record: {f['name']}: offset {f['offset']!r} is no integer")
        if f["offset"] < end or f["kind"] not in FIELD_BYTES:
            raise ValueError(f"record: {f['name']} overlaps the field before it, or its kind is not known")
        end = f["offset"] + FIELD_BYTES[f["kind"]]
    if end > size:
        raise ValueError(f"record: the last field ends at {end}, behind the size {size}")


def read(root):
    """Description of the tree at root (a pathlib.Path)."""
    data = tomllib.loads((root / "bindings/exports.toml").read_text(encoding="utf-8"))
    entries("the file", data, ("library", "record", "words", "export"))
    more = ("dir", "shape", "unit", "bit", "bits", "optional")

    def made(where, table):
        return Argument(**entries(where, table, ("name", "kind", "doc"), more))

    words = {key: made(f"words: {key}", word) for key, word in data["words"].items()}
    unused = set(words)

    def argument(export, item):
        if not isinstance(item, str):
            return made(f"{export}: {item.get('name', item)}" if isinstance(item, dict) else export, item)
        if item not in words:
            raise ValueError(f"{export}: '{item}' is no entry of words")
        unused.discard(item)
        return words[item]

    def export(e):
        entries(f"export {e.get('name', '')}", e, ("name", "group", "doc", "arguments"), ("returns",))
        if e.get("returns", "status") not in ("status", "nothing"):
            raise ValueError(f"{e['name']}: returns is {e['returns']!r}, but status or nothing is known")
        return Export(e["name"], e["group"], e["doc"], tuple(argument(e["name"], i) for i in e["arguments"]),
                      e.get("returns", "status") == "status")

    exports = tuple(export(e) for e in data["export"])
    if unused:
        raise ValueError(f"words that no export takes: {', '.join(sorted(unused))}")
    record = entries("record", data["record"], ("size", "fields"))
    for k, f in enumerate(record["fields"]):
        entries(f"record: field {k + 1}", f, ("name", "offset", "kind", "doc"))
    check(exports, record["fields"], record["size"])
    status = (root / "include/kestrune/status.h").read_text(encoding="utf-8")
    statuses = tuple((n, int(v), t) for n, v, t in re.findall(r'X\((KV_\w+), (-?\d+),[\s\\]*"(.*?)"\)', status))
    records = (root / "include/kestrune/records.h").read_text(encoding="utf-8")
    columns = tuple((n, int(v), d or "as the one before") for n, v, d in
                    re.findall(r"(KV_COL_\w+) = (\d+),?(?: +/\* (.*?) \*/)?", records))
    constants = dict(re.findall(r"#define (KV_\w+) ([-+.\de]+)$", records, re.M))
    constants |= dict(re.findall(r"\b(KV_(?:DERIV|PHASE|ROUTINE)_\w+) = (\d+)", records))
    version = (root / "include/kestrune/version.h").read_text(encoding="utf-8")
    version = ".".join(re.findall(r"^#define KESTRUNE_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)", version, re.M))
    return Description(data["library"], exports, tuple(record["fields"]), record["size"], statuses, columns,
                       constants, version)
