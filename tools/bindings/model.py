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
            known = {"1", "6", "count", *(o.name for o in e.arguments if o.kind == "int")}
            if set(a.shape.split("*")) - known - {""}:
                raise ValueError(f"{e.name}: {a.name}: shape {a.shape} is not known from the call")
    end = 0
    for f in fields:
        if f["offset"] < end or f["kind"] not in FIELD_BYTES:
            raise ValueError(f"record: {f['name']} overlaps the field before it, or its kind is not known")
        end = f["offset"] + FIELD_BYTES[f["kind"]]
    if end > size:
        raise ValueError(f"record: the last field ends at {end}, behind the size {size}")


def read(root):
    """Description of the tree at root (a pathlib.Path)."""
    data = tomllib.loads((root / "bindings/exports.toml").read_text(encoding="utf-8"))
    words = {key: Argument(**word) for key, word in data["words"].items()}
    unused = set(words)

    def argument(item):
        if isinstance(item, str):
            unused.discard(item)
            return words[item]
        return Argument(**item)

    exports = tuple(
        Export(e["name"], e["group"], e["doc"], tuple(argument(i) for i in e["arguments"]),
               e.get("returns", "status") == "status") for e in data["export"])
    if unused:
        raise ValueError(f"words that no export takes: {', '.join(sorted(unused))}")
    record = data["record"]
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
