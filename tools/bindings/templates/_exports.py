"""The exports of @LIBRARY@ through ctypes, with nothing but the standard library.

@MADE@

    library = load("/opt/kestrune/lib/libKVGasThermo.so")
    record = MixtureRecord.of(table, count)
    status = library.FlashLVatTP(280.0, 30.0, z, record, None, 1, beta, x, y, K)

A method of Library takes the words of the export of that name: numbers by value as Python numbers; a single value
behind an address as c_double or c_int32; arrays as anything with a buffer of doubles (int32) in one piece (numpy,
array.array, ctypes), for input also as a list. An array of two dimensions has the documented shape in Fortran order or
the reversed one in C order; a square one is taken in Fortran order only, for nothing else tells rows from columns.
A method raises TypeError for a wrong type or None, ValueError for a wrong length, shape or count, before the library is
called, and returns the status (STATUS has names and texts). library.raw holds the bare functions with their argtypes,
which check nothing. Group data stay alive for the library, which is one per process however often it is opened.
Units: K, atm, cal/mol, cal/(mol K), cm3/mol, g/cm3 unless a word says otherwise.
"""
from __future__ import annotations

import ctypes
import math
import operator
import sys
from ctypes import POINTER, c_double, c_int32, c_uint8
from typing import TYPE_CHECKING, Any, Callable, Mapping, NamedTuple, Optional, Sequence

VERSION = "@VERSION@"
LIBRARY = "@LIBRARY@"

# Status: (name, text).
STATUS = {
@STATUSES@
}

# Columns of the component table, from 1.
@COLUMNS@

# Settings, routines of a host, phases and derivatives.
@CONSTANTS@
FREE_WATER_FLAG = 1


class MixtureRecord(ctypes.Structure):
    """A mixture and the settings of its calculations; 125 bytes, packed. All settings 0: the defaults."""
    _pack_ = 1
    _layout_ = "ms"
    _fields_ = [
@FIELDS@
    ]

    @classmethod
    def of(cls, table: Any, count: int) -> MixtureRecord:
        """Record of count components; table: 43 * count doubles, column by column, kept alive by the record."""
        record = cls()
        record.count = _integer("count", count)
        if record.count < 1:
            raise ValueError(f"count: {record.count}, but a mixture has at least one component")
        record._kept = _array(Word("table", "doubles", "in", "count*43", "", 0, ""), table, (record.count, 43))
        record.table = ctypes.cast(record._kept, POINTER(c_double))
        return record


_OFFSETS = {@OFFSETS@}
assert ctypes.sizeof(MixtureRecord) == @SIZE@, "MixtureRecord is not packed"
assert all(getattr(MixtureRecord, name).offset == at for name, at in _OFFSETS.items()), "a field has moved"


class ModelRoutines(ctypes.Structure):
    """Addresses of a host's routines, entry k at k - 1; null: the library's own."""
    _fields_ = [("entry", ctypes.c_void_p * ROUTINE_COUNT)]


class Word(NamedTuple):
    """One word of an argument list, as bindings/exports.toml has it."""
    name: str
    kind: str
    dir: str
    shape: str
    unit: str
    bit: int
    doc: str


# Export: (whether it returns a status, its words, what it does).
EXPORTS = {
@EXPORTS@
}

_NUMBERS: dict[str, Any] = {"doubles": c_double, "ints": c_int32}
_TYPES: dict[str, Any] = {"double": c_double, "int": c_int32, "doubles": POINTER(c_double), "ints": POINTER(c_int32),
          "record": POINTER(MixtureRecord), "routines": POINTER(ModelRoutines), "buffers": POINTER(POINTER(c_double))}
_FORMATS = {"doubles": {"d", "<d", "=d"}, "ints": {"i", "l", "<i", "=i", "<l", "=l"}}


def _integer(name: str, value: Any) -> int:
    if not hasattr(value, "__index__"):
        raise TypeError(f"{name}: {type(value).__name__}, but an integer is needed")
    number = operator.index(value)
    if not -2**31 <= number < 2**31:
        raise ValueError(f"{name}: {number} is no 32-bit integer")
    return number


def _real(name: str, value: Any) -> float:
    if isinstance(value, (str, bytes)) or not hasattr(value, "__float__") and not hasattr(value, "__index__"):
        raise TypeError(f"{name}: {type(value).__name__}, but a number is needed")
    try:
        return float(value)
    except (TypeError, ValueError, OverflowError) as error:
        raise type(error)(f"{name}: {error}") from None


def _order(word: Word, view: memoryview, wanted: tuple[int, ...]) -> None:
    """Refuses more dimensions than one unless they tell how their elements lie in memory."""
    shape, square = tuple(view.shape or ()), len(wanted) > 1 and len(set(word.shape.split("*"))) == 1
    if shape == wanted and view.f_contiguous or shape == wanted[::-1] and view.c_contiguous and not square:
        return
    said = f"{word.name}: an array of shape {shape} in {'C' if view.c_contiguous else 'Fortran'} order, but "
    if len(wanted) > 1:
        said += f"{wanted} ({word.shape.replace('*', ', ')}) in Fortran order (numpy.asfortranarray), "
        said += "" if square else f"{wanted[::-1]} in C order, "
    raise ValueError(said + ("or " if len(wanted) > 1 else "") + "one dimension is needed")


def _array(word: Word, value: Any, wanted: Sequence[int]) -> Any:
    """ctypes array over the memory of value (a copy where it is only read); wanted: the factors of its shape."""
    need, shape = math.prod(wanted), word.shape.replace("*", " * ")
    number = _NUMBERS[word.kind]
    noun = "doubles" if number is c_double else "32-bit integers"
    if isinstance(value, (list, tuple)) and word.dir == "in":
        if len(value) == need:
            convert = _real if number is c_double else _integer
            return (number * need)(*(convert(f"{word.name}[{k}]", v) for k, v in enumerate(value)))
        raise ValueError(f"{word.name}: {len(value)} values, {need} ({shape}) are needed")
    try:
        view = memoryview(value)
    except TypeError:
        raise TypeError(f"{word.name}: {type(value).__name__}, but {noun} in one piece of memory are needed") from None
    if view.format not in _FORMATS[word.kind] or view.itemsize != ctypes.sizeof(number):
        raise TypeError(f"{word.name}: elements of format '{view.format}', but {noun} are needed")
    if not view.contiguous or (view.readonly and word.dir != "in"):
        raise TypeError(f"{word.name}: memory that is {'read-only' if view.readonly else 'not in one piece'}")
    length = view.nbytes // view.itemsize
    if length != need:
        raise ValueError(f"{word.name}: {length} values, {need} ({shape}) are needed")
    if view.ndim > 1:
        _order(word, view, tuple(wanted))
    kind = number * need
    if view.readonly or not (view.c_contiguous or hasattr(value, "T")):
        if word.dir != "in":
            raise TypeError(f"{word.name}: {type(value).__name__} in Fortran order, but numpy's or one dimension is needed")
        return kind.from_buffer_copy(view.tobytes("A"))
    return kind.from_buffer(value if view.c_contiguous else value.T)


def _record(word: Word, value: Any) -> Any:
    if not isinstance(value, MixtureRecord):
        raise TypeError(f"{word.name}: {type(value).__name__}, but a MixtureRecord is needed")
    if value.count < 1 or not value.table:
        raise ValueError(f"{word.name}: a record of {value.count} components {'with' if value.table else 'without'} a table")
    made = getattr(value, "_kept", None)
    if made is not None and ctypes.addressof(made) == ctypes.addressof(value.table.contents):
        if len(made) != 43 * value.count:
            raise ValueError(f"{word.name}: count is {value.count}, but the record was made with {len(made) // 43} components")
    return ctypes.byref(value)


def _pointer(word: Word, value: Any, known: Mapping[str, int], mask: int) -> Any:
    """What stands for one address in the call."""
    if value is None and (word.kind == "routines" or (word.bit and not mask & word.bit)):
        return None
    if value is None:
        raise TypeError(f"{word.name}: None, but {word.doc} is needed")
    if word.kind == "record":
        return _record(word, value)
    if word.kind == "routines":
        if not isinstance(value, ModelRoutines):
            raise TypeError(f"{word.name}: {type(value).__name__}, but ModelRoutines or None is needed")
        return ctypes.byref(value)
    if word.shape == "1" and isinstance(value, _NUMBERS[word.kind]):
        return ctypes.byref(value)
    return _array(word, value, [max(0, known[f]) if f in known else int(f) for f in word.shape.split("*")])


# Group data by handle of the library, which is one per process however often it is opened: they stay alive for it.
_group_data: dict[int, list[Any]] = {}


class Library:
    """The opened library; a method for every export."""

    if TYPE_CHECKING:
        def __getattr__(self, export: str) -> Callable[..., Any]: ...

    def __init__(self, path: Any) -> None:
        stdcall = sys.platform == "win32" and ctypes.sizeof(ctypes.c_void_p) == 4
        self.raw: ctypes.CDLL = getattr(ctypes, "WinDLL" if stdcall else "CDLL")(str(path))
        for name, (status, words, _) in EXPORTS.items():
            function = getattr(self.raw, name)
            function.restype = c_int32 if status else None
            function.argtypes = [_TYPES[word.kind] for word in words]

    def _buffers(self, word: Word, value: Any, known: Mapping[str, int]) -> tuple[list[Any], Any]:
        """Six addresses; the buffers stay alive until others take their place. None: buffers of our own."""
        nC, nG = known["nC"], known["nG"]
        if nC < 1 or nG < 1:
            raise ValueError(f"{'nC' if nC < 1 else 'nG'}: {min(nC, nG)}, but at least one is needed")
        needs = (0, nG * nG, nG * nG, nC * nG, nG * nG, nG * nC * nC)
        if value is None:
            value = [(c_double * need)() for need in needs]
        if not isinstance(value, (list, tuple)):
            raise TypeError(f"{word.name}: {type(value).__name__}, but a list of six buffers or None is needed")
        if len(value) != len(needs):
            raise ValueError(f"{word.name}: six buffers are needed")
        kept: list[Any] = [None] + [_array(Word(f"{word.name}[{k}]", "doubles", "out", "doubles", "", 0, ""), value[k], [needs[k]])
                         for k in range(1, len(needs))]
        addresses: list[Any] = [ctypes.cast(buffer, POINTER(c_double)) if buffer is not None else None for buffer in kept]
        return kept, (POINTER(c_double) * len(needs))(*addresses)

    def _call(self, name: str, arguments: Sequence[Any]) -> Any:
        words = EXPORTS[name][1]
        if len(arguments) != len(words):
            raise TypeError(f"{name} takes {len(words)} arguments ({', '.join(w.name for w in words)}), "
                            f"{len(arguments)} were given")
        known: dict[str, int] = {}
        passed: list[Any] = []
        kept: Optional[list[Any]] = None
        for word, value in zip(words, arguments):
            if word.kind == "int":
                known[word.name] = _integer(word.name, value)
            elif word.kind == "record":
                _record(word, value)
                known["count"] = value.count
        for word, value in zip(words, arguments):
            if word.kind == "double":
                passed.append(_real(word.name, value))
            elif word.kind == "int":
                passed.append(known[word.name])
            elif word.kind == "buffers":
                kept, addresses = self._buffers(word, value, known)
                passed.append(addresses)
            else:
                passed.append(_pointer(word, value, known, known.get("mask", 0)))
        result = getattr(self.raw, name)(*passed)
        if kept is not None:
            _group_data[self.raw._handle] = kept
        return result


def _method(name: str, words: Sequence[Word], doc: str) -> Callable[..., Any]:
    def method(self: Library, *arguments: Any) -> Any:
        return self._call(name, arguments)

    method.__name__, method.__qualname__ = name, f"Library.{name}"
    lines = [f"    {w.name}: {w.doc}" + (f", {w.unit}" if w.unit else "")
             + (f", [{w.shape.replace('*', ' * ')}]" if w.kind in _NUMBERS and w.shape != "1" else "")
             + {"out": ", out", "inout": ", in and out"}.get(w.dir, "")
             + (f", only with bit {w.bit} of mask" if w.bit else "") for w in words]
    method.__doc__ = "\n".join([f"{doc}." + (" Returns the status." if EXPORTS[name][0] else ""), ""] + lines)
    return method


for _name, (_status, _words, _doc) in EXPORTS.items():
    setattr(Library, _name, _method(_name, _words, _doc))


def load(path: Any) -> Library:
    """Opens the library file; its two siblings lie beside it. OSError where it cannot be loaded."""
    return Library(path)
