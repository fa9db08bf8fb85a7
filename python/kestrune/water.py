"""Water in a gas: its content at saturation and its dew points."""

from __future__ import annotations

from typing import TYPE_CHECKING, NamedTuple, Optional, Union

import numpy as np

from . import _native
from ._types import Array, Numbers, Value
from .arguments import one_of, shape_of
from .calls import slabs
from .errors import answered
from .phases import scalar
from .units import Units, numbers_of

if TYPE_CHECKING:
    from .mixture import Mixture

__all__ = ["Boundary", "Saturation", "Water"]

WATER = "7732-18-5"  # CAS number
_METHODS = {"eos": 1, "chart": 2}


class Saturation(NamedTuple):
    """A gas saturated with water: its mole fraction of water, kg of water in one normal m3 (0 C, 1 atm), and status."""

    fraction: Value
    content: Value
    status: Value


class Boundary(NamedTuple):
    """Where something begins to form, a water dew point or hydrate: T and P, SI K and Pa, and the status."""

    T: Value
    P: Value
    status: Value


class Water:
    """Water of a mixture as a gas, reached as ``mixture.water``.

    Notes
    -----
    ``method="eos"`` is a balance of fugacities in the gas and in liquid water or ice, 150 to 640 K; ``"chart"`` a chart
    correlation with acid-gas correction (Bukacek 1955, Maddox 1974), 233.15 to 510.93 K. Whether the mixture is a gas
    at the state is not looked at. A single state without an answer raises KestruneError; of many it has its status and
    NaN.
    """

    __slots__ = ("_mixture",)

    def __init__(self, mixture: Mixture) -> None:
        self._mixture = mixture

    def __repr__(self) -> str:
        return f"<water of {self._mixture.title_or_names}>"

    def content(
        self,
        T: Numbers,
        P: Numbers,
        *,
        method: str = "eos",
        threads: Optional[int] = None,
        units: Union[str, Units, None] = None,
    ) -> Saturation:
        """Water of the gas at saturation.

        Parameters
        ----------
        T, P : float or array
            Temperature and pressure, SI K and Pa; they broadcast.
        method : {"eos", "chart"}
            See the notes of the class.
        threads, units
            As of `Mixture.flash`.
        """
        shown = self._mixture.units if units is None else Units.of(units)
        number, used = _number(method), _native.thread_count(threads)
        at_T, at_P = shown.to_si("temperature", T), shown.to_si("pressure", P)
        shape = shape_of(("T", "P"), (at_T, at_P), None)
        at_T, at_P = (_native.packed(np.broadcast_to(v, shape)).reshape(-1) for v in (at_T, at_P))
        fraction, content = np.empty(at_T.size), np.empty(at_T.size)
        status = np.empty(at_T.size, dtype=np.int32)
        for slab in slabs(at_T.size):
            given = [a[slab].ctypes.data for a in (at_T, at_P)]
            out = [fraction[slab].ctypes.data, content[slab].ctypes.data, status[slab].ctypes.data]
            count = slab.stop - slab.start
            _native.call("ka_saturation", self._mixture.handle, number, count, *given, None, used, *out)
        what = f"water content of {self._mixture.title_or_names}"
        good = answered(status.reshape(shape), what)
        return Saturation(scalar(fraction.reshape(shape)), scalar(content.reshape(shape)), good)

    def dew(
        self,
        *,
        T: Optional[Numbers] = None,
        P: Optional[Numbers] = None,
        water: Optional[Numbers] = None,
        method: str = "eos",
        threads: Optional[int] = None,
        units: Union[str, Units, None] = None,
    ) -> Boundary:
        """Where liquid water or ice begins to form, at a temperature or a pressure.

        Parameters
        ----------
        T, P : float or array
            One of them, SI K or Pa.
        water : float or array, optional
            Mole fraction of water in the wet gas, default that of the mixture; broadcasts with T or P.
        method, threads, units
            As of `content`.

        Returns
        -------
        Boundary
            T, P and status with the shape of the arguments.
        """
        one_of("water dew", T, P)
        shown = self._mixture.units if units is None else Units.of(units)
        number, used = _number(method), _native.thread_count(threads)
        given = shown.to_si("temperature", T) if P is None else shown.to_si("pressure", P)
        amount = self._amounts(water)
        shape = shape_of(("T" if P is None else "P", "water"), (given, amount), None)
        given, amount = (_native.packed(np.broadcast_to(v, shape)).reshape(-1) for v in (given, amount))
        found, status = np.empty(given.size), np.empty(given.size, dtype=np.int32)
        for slab in slabs(given.size):
            feed = self._feed(amount[slab])
            arrays = [given[slab].ctypes.data, feed.ctypes.data]
            out = [found[slab].ctypes.data, status[slab].ctypes.data]
            count = slab.stop - slab.start
            _native.call("ka_water_dew", self._mixture.handle, number, int(T is None), count, *arrays, used, *out)
        at_T, at_P = (v.reshape(shape) for v in ((found, given) if T is None else (given, found)))
        good = answered(status.reshape(shape), f"water dew point of {self._mixture.title_or_names}")
        return Boundary(shown.from_si("temperature", at_T), shown.from_si("pressure", at_P), good)

    def _index(self) -> int:
        return [c.cas for c in self._mixture.components].index(WATER)

    def _amounts(self, water: Optional[Numbers]) -> Array:
        own = self._mixture.z[self._index()]
        amounts = np.asarray(own) if water is None else numbers_of("water", water)
        known = amounts[~np.isnan(amounts)] if amounts.ndim else amounts
        if not ((known > 0.0) & (known < 1.0)).all():
            raise ValueError(
                "a dew point needs water in the gas, a mole fraction between 0 and 1: in the mixture, or as water=60e-6"
            )
        return amounts

    def _feed(self, water: Array) -> Array:
        """Feeds with so much water, the dry components in proportion."""
        index = self._index()
        dry = np.array(self._mixture.z)
        dry[index] = 0.0
        if not dry.sum() > 0.0:
            raise ValueError("there is nothing but water in the mixture")
        feed = (1.0 - water[..., None]) * (dry / dry.sum())
        feed[..., index] = water
        return _native.packed(feed)


def _number(method: str) -> int:
    if not isinstance(method, str) or method not in _METHODS:
        raise ValueError(f"method is 'eos' or 'chart', not {method!r}")
    return _METHODS[method]
