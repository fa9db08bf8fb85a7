"""The native library: finding it, its prototypes, its errors as exceptions. Nothing here knows thermodynamics."""

from __future__ import annotations

import ctypes
import functools
import numbers
import os
import sys
from pathlib import Path
from typing import Any, Optional

import numpy as np

from ._types import Array

_I, _L, _D, _P, _S = ctypes.c_int32, ctypes.c_int64, ctypes.c_double, ctypes.c_void_p, ctypes.c_char_p
_ERROR_SIZE = 4096

#: Arguments of every function of the native library, without the text buffer and its size that end each list.
_PROTOTYPES: dict[str, list[Any]] = {
    "ka_open": [_S],
    "ka_components": [_S],
    "ka_units": [_S],
    "ka_mixture": [_S, _S, _S, _I, _I, _I, _S, _S],
    "ka_describe": [_P],
    "ka_flash": [_P, _P],
    "ka_properties": [_P, _I, _L, _P, _P, _P, _I, _I, _P, _P],
    "ka_ln_phi": [_P, _I, _L, _P, _P, _P, _I, _P, _P],
    "ka_aqueous": [_P, _L, _P, _P],
    "ka_envelope": [_P, _D, _P, _I, _I, _P, _P, _P, _P, _P, _P],
    "ka_critical": [_P, _P, _P],
    "ka_kij": [_P, _D, _P],
    "ka_saturation": [_P, _I, _L, _P, _P, _P, _I, _P, _P, _P],
    "ka_water_dew": [_P, _I, _I, _L, _P, _P, _I, _P, _P],
    "ka_hydrate": [_P, _I, _D, _D, _I, _P, _P, _P],
}


class FlashJob(ctypes.Structure):
    """KaFlash of arrays.h."""

    _fields_ = [
        ("given", _I),
        ("phases", _I),
        ("count", _L),
        ("threads", _I),
        ("reserved", _I),
        ("first", _P),
        ("second", _P),
        ("z", _P),
        ("T", _P),
        ("P", _P),
        ("fraction", _P * 3),
        ("x", _P * 3),
        ("status", _P),
    ]


def library_folder() -> Path:
    """Folder of the native libraries: that of the package, else the one the variable KESTRUNE_LIBRARIES names."""
    own = Path(__file__).resolve().parent / "_lib"
    if own.is_dir():
        return own
    named = os.environ.get("KESTRUNE_LIBRARIES")
    if named:
        return Path(named).resolve()
    raise ImportError(
        f"kestrune has no native libraries: neither {own} nor a folder named by KESTRUNE_LIBRARIES; "
        "install the wheel that scripts/wheel.sh builds"
    )


def _file_name(name: str) -> str:
    if sys.platform == "win32":
        return name + ".dll"
    return f"lib{name}.so"


def _path_bytes(path: Path) -> bytes:
    """A path for the native library, which on Windows reads the code page of the system."""
    try:
        return str(path).encode("mbcs") if sys.platform == "win32" else os.fsencode(path)
    except UnicodeEncodeError:
        why = "has characters outside the code page of the system: install kestrune in another folder"
        raise ImportError(f"{path} {why}") from None


@functools.lru_cache(maxsize=None)
def library() -> ctypes.CDLL:
    """The native library with KVGasThermo opened, loaded at the first call."""
    folder = library_folder()
    for name in ("KVToolsLite", "KVCmpdPureLite"):
        ctypes.CDLL(str(folder / _file_name(name)))
    loaded = ctypes.CDLL(str(folder / _file_name("kestrune_arrays")))
    for name, arguments in _PROTOTYPES.items():
        function = getattr(loaded, name)
        function.argtypes = [*arguments, _S, _I]
        function.restype = _P if name == "ka_mixture" else _I
    loaded.ka_free.argtypes, loaded.ka_free.restype = [_P], None
    loaded.ka_version.argtypes, loaded.ka_version.restype = [], _S
    loaded.ka_status_text.argtypes, loaded.ka_status_text.restype = [_I], _S
    text = ctypes.create_string_buffer(_ERROR_SIZE)
    if loaded.ka_open(_path_bytes(folder / _file_name("KVGasThermo")), text, _ERROR_SIZE) < 0:
        raise ImportError(text.value.decode(errors="replace"))
    return loaded


def call(name: str, *arguments: Any) -> Any:
    """Calls a function of the native library; ValueError with its message where it refuses its input."""
    _no_nul(arguments)
    text = ctypes.create_string_buffer(_ERROR_SIZE)
    result = getattr(library(), name)(*arguments, text, _ERROR_SIZE)
    if result is None or (name != "ka_mixture" and result < 0):
        raise ValueError(text.value.decode(errors="replace"))
    return result


def read_text(name: str, *arguments: Any) -> str:
    """What a function of the native library writes as a text, of any length."""
    _no_nul(arguments)
    size = _ERROR_SIZE
    while True:
        text = ctypes.create_string_buffer(size)
        length = getattr(library(), name)(*arguments, text, size)
        if length < 0:
            raise ValueError(text.value.decode(errors="replace"))
        if length < size:
            return text.value.decode()
        size = length + 1


def _no_nul(arguments: tuple[Any, ...]) -> None:
    for argument in arguments:
        if isinstance(argument, bytes) and b"\0" in argument:
            shown = argument.decode(errors="replace")
            raise ValueError(f"a text has a NUL character, at which the native library would end it: {shown[:60]!r}")


def status_text(status: int) -> str:
    """What a status means, in English."""
    return str(library().ka_status_text(int(status)).decode())


def version() -> str:
    """Version of the native library."""
    return str(library().ka_version().decode())


def packed(array: Any) -> Array:
    """The numbers as a contiguous array of doubles, with the shape they have."""
    return np.asarray(array, dtype=float, order="C")


def constant(values: Any) -> Array:
    """Numbers as an array that nobody writes to."""
    array = np.array(values, dtype=float)
    array.setflags(write=False)
    return array


def processors() -> int:
    """Processors that this process may use."""
    if hasattr(os, "sched_getaffinity"):
        return len(os.sched_getaffinity(0))
    return os.cpu_count() or 1


def thread_count(threads: Optional[int]) -> int:
    """Threads of a call: those asked for, else one per processor."""
    if threads is None:
        return processors()
    if isinstance(threads, bool) or not isinstance(threads, numbers.Integral) or threads < 1:
        raise ValueError(f"threads is a whole number from 1, or None for one per processor, not {threads!r}")
    return int(threads)
