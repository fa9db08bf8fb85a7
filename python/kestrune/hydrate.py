"""Hydrate formation of a gas by its gravity, with inhibitors."""

from __future__ import annotations

import math
import numbers
from typing import TYPE_CHECKING, Optional, Union

import numpy as np

from . import _native
from ._types import Numbers
from .arguments import one_of, positive
from .databank import components
from .errors import KestruneError, answered
from .units import Units
from .water import Boundary

if TYPE_CHECKING:
    from .mixture import Mixture

__all__ = ["hydrate"]

_SALTS = {"methanol": 1, "nacl": 2, "kcl": 3, "cacl2": 4}
#: Where the command line has no answer either (docs/water.md): K, and Pa, without inhibitor.
_COLDEST, _HOTTEST, _HIGHEST = 200.0, 313.15, 1000e5


def hydrate(
    mixture: Mixture,
    T: Optional[Numbers],
    P: Optional[Numbers],
    inhibitor: Union[str, float, None],
    percent: Optional[float],
    units: Units,
) -> Boundary:
    """Points of the hydrate curve; see `Mixture.hydrate`."""
    one_of("hydrate", T, P)
    (intercept, slope), shift = _lines(mixture, inhibitor, percent)
    with np.errstate(divide="ignore", invalid="ignore", over="ignore"):
        if T is None:
            given = at_P = units.to_si("pressure", P)
            at_T = intercept + slope * np.log(at_P)
        else:
            given = at_T = units.to_si("temperature", T)
            at_P = np.exp((at_T - intercept) / slope)
        within = (at_T >= _COLDEST) & (at_T + shift <= _HOTTEST) & (at_P <= _HIGHEST)
    refused = 9005 if T is None else 9004  # what no pressure and no temperature is
    status = np.asarray(np.select([~positive(given), ~within], [refused, 151], 0), dtype=np.int32)
    good = answered(status, f"hydrate of {mixture.title_or_names}")
    quantity, found = ("temperature", at_T) if T is None else ("pressure", at_P)
    shown = units.from_si(quantity, np.where(status == 0, found, np.nan))
    if T is None:
        return Boundary(shown, units.from_si("pressure", at_P), good)
    return Boundary(units.from_si("temperature", at_T), shown, good)


def _lines(
    mixture: Mixture, inhibitor: Union[str, float, None], percent: Optional[float]
) -> tuple[tuple[float, float], float]:
    """Intercept and slope of T over ln P, and how much lower the inhibitor brings T."""
    if percent is None:
        if inhibitor is not None:
            raise ValueError(f"the inhibitor {inhibitor!r} needs percent=, its mass percent in the aqueous solution")
        percent = 0.0
    if isinstance(percent, bool) or not isinstance(percent, numbers.Real):
        raise TypeError(f"percent is a number, not {percent!r}")
    if not (math.isfinite(percent) and 0.0 <= percent <= 70.0):
        raise ValueError(f"the inhibitor is 0 to 70 % of the solution by mass, not {percent!r}")
    if inhibitor is None and percent != 0.0:
        raise ValueError("a percentage needs an inhibitor: methanol, MEG, DEG, TEG, NaCl, KCl, CaCl2 or a molar mass")
    line = _line(mixture, *_inhibitor_of(inhibitor), percent)
    return line, _line(mixture, 0, 0.0, 0.0)[0] - line[0]


def _line(mixture: Mixture, kind: int, molar_mass: float, percent: float) -> tuple[float, float]:
    # The curve is a straight line of T over ln P: its first and last point say all of it.
    T, P, status = np.empty(2), np.empty(2), np.empty(1, dtype=np.int32)
    out = [T.ctypes.data, P.ctypes.data, status.ctypes.data]
    _native.call("ka_hydrate", mixture.handle, kind, molar_mass, percent, 2, *out)
    if status[0] != 0:
        raise KestruneError(int(status[0]), "hydrate curve")
    slope = float((T[1] - T[0]) / math.log(P[1] / P[0]))
    return float(T[0]) - slope * math.log(P[0]), slope


def _inhibitor_of(inhibitor: Union[str, float, None]) -> tuple[int, float]:
    """Kind of the library and molar mass."""
    if inhibitor is None:
        return 0, 0.0
    if isinstance(inhibitor, str):
        key = inhibitor.strip().lower()
        if key in _SALTS:
            return _SALTS[key], 0.0
        glycols = {"meg": "107-21-1", "deg": "111-46-6", "teg": "112-27-6"}
        found = [c for c in components(glycols.get(key, inhibitor)) if c.name.endswith("glycol")]
        exact = [c for c in found if c.name == key] or found
        if len(exact) == 1:
            return 5, exact[0].molar_mass
        raise ValueError(
            f"{inhibitor!r} is no hydrate inhibitor: use methanol, MEG, DEG, TEG, NaCl, KCl, CaCl2 or a molar mass"
        )
    if isinstance(inhibitor, bool) or not isinstance(inhibitor, numbers.Real):
        raise TypeError(f"inhibitor is a name or a molar mass, not {inhibitor!r}")
    if not 30.0 <= float(inhibitor) <= 200.0:
        raise ValueError(f"{inhibitor!r} g/mol is no molar mass of a hydrate inhibitor: 30 to 200 g/mol")
    return 5, float(inhibitor)
