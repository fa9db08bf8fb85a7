"""Calls of the native library on arrays of states."""

from __future__ import annotations

import ctypes
import time
from typing import TYPE_CHECKING, Iterator, NamedTuple, Optional, Sequence

import numpy as np
from numpy.typing import NDArray

from . import _native
from ._types import Array, Status
from .errors import GOOD, KestruneError

if TYPE_CHECKING:
    from .mixture import Mixture

#: Seconds of one native call, and states of the first one: between two of them an interrupt from the keyboard is
#: looked at.
_SECONDS, _FIRST = 0.2, 1024
#: Rows of properties, KA_PROPERTY_COUNT of arrays.h.
ROWS = 18


class Found(NamedTuple):
    """Results of a flash in SI: T, P and status, then a fraction and a composition for each phase."""

    T: Array
    P: Array
    fractions: list[Array]
    x: list[Array]
    status: Status


def slabs(count: int) -> Iterator[slice]:
    """The states from 0 to count in pieces, each as large as the pace of the one before it lets pass in `_SECONDS`."""
    start, size = 0, _FIRST
    while start < count:
        stop, began = min(start + size, count), time.perf_counter()
        yield slice(start, stop)
        wanted = (stop - start) * _SECONDS / max(time.perf_counter() - began, 1e-6)
        start, size = stop, int(min(max(wanted, size / 4, 128), 4 * size))


def flash(
    mixture: Mixture,
    kind: int,
    phases: int,
    columns: Sequence[Array],
    feed: Optional[Array],
    shape: tuple[int, ...],
    threads: Optional[int],
) -> Found:
    """A flash of columns of the same shape."""
    used, count = _native.thread_count(threads), len(mixture.names)
    T, P = np.empty(shape), np.empty(shape)
    status = np.empty(shape, dtype=np.int32)
    fractions = [np.empty(shape) for _ in range(phases)]
    x = [np.empty((*shape, count)) for _ in range(phases)]
    given = [a.reshape(-1) for a in columns]
    found = [a.reshape(-1) for a in (T, P)]
    flat_status = status.reshape(-1)
    flat_fractions = [a.reshape(-1) for a in fractions]
    flat_x = [a.reshape(-1, count) for a in x]
    flat_feed = None if feed is None else feed.reshape(-1, count)
    for slab in slabs(T.size):
        job = _native.FlashJob(
            kind,
            phases,
            slab.stop - slab.start,
            used,
            0,
            *(a[slab].ctypes.data for a in given),
            None if flat_feed is None else flat_feed[slab].ctypes.data,
            *(a[slab].ctypes.data for a in found),
            (ctypes.c_void_p * 3)(*(a[slab].ctypes.data for a in flat_fractions)),
            (ctypes.c_void_p * 3)(*(a[slab].ctypes.data for a in flat_x)),
            flat_status[slab].ctypes.data,
        )
        _native.call("ka_flash", mixture.handle, ctypes.byref(job))
    return Found(T, P, fractions, x, status)


def properties(
    mixture: Mixture, kind: int, T: Array, P: Array, x: Array, wanted: int, threads: Optional[int]
) -> tuple[dict[int, Array], Status]:
    """SI values by the rows that are wanted, and statuses of the states."""
    flat_T, flat_P, flat_x = _states(mixture, T, P, x)
    values = {row: np.empty(T.size) for row in range(ROWS) if wanted >> row & 1}
    status, used = np.empty(T.size, dtype=np.int32), _native.thread_count(threads)
    for slab in slabs(T.size):
        piece = np.empty((ROWS, slab.stop - slab.start))
        arrays = [a[slab].ctypes.data for a in (flat_T, flat_P, flat_x)]
        out = [piece.ctypes.data, status[slab].ctypes.data]
        _native.call("ka_properties", mixture.handle, kind, piece.shape[1], *arrays, wanted, used, *out)
        for row, value in values.items():
            value[slab] = piece[row]
    return {row: value.reshape(T.shape) for row, value in values.items()}, status.reshape(T.shape)


def ln_phi(mixture: Mixture, kind: int, T: Array, P: Array, x: Array, threads: Optional[int]) -> Array:
    """ln of fugacity coefficients; KestruneError for a single state without them."""
    flat_T, flat_P, flat_x = _states(mixture, T, P, x)
    values = np.empty(flat_x.shape)
    status, used = np.empty(T.size, dtype=np.int32), _native.thread_count(threads)
    for slab in slabs(T.size):
        arrays = [a[slab].ctypes.data for a in (flat_T, flat_P, flat_x)]
        out = [values[slab].ctypes.data, status[slab].ctypes.data]
        _native.call("ka_ln_phi", mixture.handle, kind, slab.stop - slab.start, *arrays, used, *out)
    if not T.shape and int(status[0]) not in GOOD:
        raise KestruneError(int(status[0]), "fugacity coefficients")
    return values.reshape(*T.shape, -1)


def aqueous(mixture: Mixture, x: Array) -> NDArray[np.bool_]:
    """Where compositions are those of an aqueous liquid."""
    flat = _native.packed(x).reshape(-1, len(mixture.names))
    flags = np.zeros(len(flat), dtype=np.int8)
    for slab in slabs(len(flat)):
        arrays = [flat[slab].ctypes.data, flags[slab].ctypes.data]
        _native.call("ka_aqueous", mixture.handle, slab.stop - slab.start, *arrays)
    return flags.astype(bool).reshape(x.shape[:-1])


def _states(mixture: Mixture, T: Array, P: Array, x: Array) -> tuple[Array, Array, Array]:
    flat_x = _native.packed(x).reshape(-1, len(mixture.names))
    return _native.packed(T).reshape(-1), _native.packed(P).reshape(-1), flat_x
