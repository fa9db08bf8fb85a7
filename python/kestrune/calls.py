"""Calls of the native library on arrays of states."""

from __future__ import annotations

import ctypes
from typing import TYPE_CHECKING, NamedTuple, Optional, Sequence

import numpy as np

from . import _native
from .errors import GOOD, KestruneError

if TYPE_CHECKING:
    from .mixture import Mixture

#: States of one native call: between two of them an interrupt from the keyboard is looked at.
_SLAB = 32768
#: Rows of properties, KA_PROPERTY_COUNT of arrays.h.
ROWS = 18


class Found(NamedTuple):
    """Results of a flash in SI: T, P and status, then a fraction and a composition for each phase."""

    T: np.ndarray
    P: np.ndarray
    fractions: list[np.ndarray]
    x: list[np.ndarray]
    status: np.ndarray


def flash(
    mixture: Mixture,
    kind: int,
    phases: int,
    columns: Sequence[np.ndarray],
    feed: Optional[np.ndarray],
    shape: tuple[int, ...],
    threads: Optional[int],
) -> Found:
    """A flash of columns of the same shape, in slabs."""
    used, count = _native.thread_count(threads), len(mixture.names)
    T, P = np.empty(shape), np.empty(shape)
    status = np.empty(shape, dtype=np.int32)
    fractions = [np.empty(shape) for _ in range(phases)]
    x = [np.empty((*shape, count)) for _ in range(phases)]
    flat = [a.reshape(-1) for a in (*columns, T, P, status)]
    flat_fractions = [a.reshape(-1) for a in fractions]
    flat_x = [a.reshape(-1) for a in x]
    flat_feed = None if feed is None else feed.reshape(-1)
    for start in range(0, T.size, _SLAB):
        size = min(_SLAB, T.size - start)
        addresses = [a[start:].ctypes.data for a in flat]
        job = _native.FlashJob(
            kind,
            phases,
            size,
            used,
            0,
            addresses[0],
            addresses[1],
            None if flat_feed is None else flat_feed[start * count :].ctypes.data,
            addresses[2],
            addresses[3],
            (ctypes.c_void_p * 3)(*(a[start:].ctypes.data for a in flat_fractions)),
            (ctypes.c_void_p * 3)(*(a[start * count :].ctypes.data for a in flat_x)),
            addresses[4],
        )
        _native.call("ka_flash", mixture.handle, ctypes.byref(job))
    return Found(T, P, fractions, x, status)


def properties(
    mixture: Mixture, kind: int, T: np.ndarray, P: np.ndarray, x: np.ndarray, wanted: int, threads: Optional[int]
) -> tuple[np.ndarray, np.ndarray]:
    """SI values, a row per property, and statuses of the states."""
    T, P, x = (_native.packed(a) for a in (T, P, x))
    values = np.full((ROWS, *T.shape), np.nan)
    status = np.empty(T.shape, dtype=np.int32)
    arrays = [T.ctypes.data, P.ctypes.data, x.ctypes.data]
    out = [values.ctypes.data, status.ctypes.data]
    used = _native.thread_count(threads)
    _native.call("ka_properties", mixture.handle, kind, T.size, *arrays, wanted, used, *out)
    return values, status


def ln_phi(
    mixture: Mixture, kind: int, T: np.ndarray, P: np.ndarray, x: np.ndarray, threads: Optional[int]
) -> np.ndarray:
    """ln of fugacity coefficients; KestruneError for a single state without them."""
    T, P, x = (_native.packed(a) for a in (T, P, x))
    values = np.empty((*T.shape, len(mixture.names)))
    status = np.empty(T.shape, dtype=np.int32)
    arrays = [T.ctypes.data, P.ctypes.data, x.ctypes.data]
    used = _native.thread_count(threads)
    _native.call(
        "ka_ln_phi", mixture.handle, kind, T.size, *arrays, used, values.ctypes.data, status.ctypes.data
    )
    if not T.shape and int(status) not in GOOD:
        raise KestruneError(int(status), "fugacity coefficients")
    return values
