"""Hydrate formation of a gas by its gravity, with inhibitors."""

from __future__ import annotations

import math
import numbers
from typing import TYPE_CHECKING, Any, Union

import numpy as np

from . import _native
from .databank import components
from .errors import KestruneError, count_failures
from .units import Units

if TYPE_CHECKING:
    from .mixture import Mixture

__all__ = ["Hydrate"]

_SALTS = {"methanol": 1, "nacl": 2, "kcl": 3, "cacl2": 4}
#: Where the command line has no answer either (docs/water.md): K, and Pa, without inhibitor.
_COLDEST, _HOTTEST, _HIGHEST = 200.0, 313.15, 1000e5


class Hydrate:
    """Hydrate curve of a mixture as a gas, reached as ``mixture.hydrate``.

    Notes
    -----
    By the gravity of the gas (Towler and Mokhatab 2005), with the depression of Hammerschmidt (1934). Made from sweet
    natural gases, 265 to 298 K and 12 to 400 bar; beyond 200 K, 313.15 K without inhibitor and 1000 bar the answer is
    NaN with a `KestruneWarning`, of a single state KestruneError 151.

    Every method takes ``inhibitor``: None, ``"methanol"``, ``"MEG"``, ``"DEG"``, ``"TEG"``, ``"NaCl"``, ``"KCl"``,
    ``"CaCl2"`` or a molar mass in g/mol, and ``percent``: its mass percent in the aqueous solution.
    """

    __slots__ = ("_mixture",)

    def __init__(self, mixture: Mixture) -> None:
        self._mixture = mixture

    def __repr__(self) -> str:
        return f"<hydrate of {self._mixture.title_or_names}>"

    def temperature(
        self,
        P: Any,
        inhibitor: Union[str, float, None] = None,
        percent: float = 0.0,
        *,
        units: Union[str, Units, None] = None,
    ) -> Any:
        """Temperature below which hydrate forms at a pressure (SI K from Pa); arrays too."""
        shown = self._units(units)
        line, shift = self._lines(inhibitor, percent)
        pressure = shown.to_si("pressure", P)
        with np.errstate(divide="ignore", invalid="ignore"):
            T = line[0] + line[1] * np.log(pressure)
        return shown.from_si("temperature", _within(T, pressure, shift, T))

    def pressure(
        self,
        T: Any,
        inhibitor: Union[str, float, None] = None,
        percent: float = 0.0,
        *,
        units: Union[str, Units, None] = None,
    ) -> Any:
        """Pressure above which hydrate forms at a temperature (SI Pa from K); arrays too."""
        shown = self._units(units)
        line, shift = self._lines(inhibitor, percent)
        temperature = shown.to_si("temperature", T)
        with np.errstate(over="ignore"):
            P = np.exp((temperature - line[0]) / line[1])
        return shown.from_si("pressure", _within(temperature, P, shift, P))

    def _units(self, units: Union[str, Units, None]) -> Units:
        return self._mixture.units if units is None else Units.of(units)

    def _lines(self, inhibitor: Union[str, float, None], percent: float) -> tuple[tuple[float, float], float]:
        """Intercept and slope of T over ln P, and how much lower the inhibitor brings T."""
        if isinstance(percent, bool) or not isinstance(percent, numbers.Real):
            raise TypeError(f"percent is a number, not {percent!r}")
        if not (math.isfinite(percent) and 0.0 <= percent <= 70.0):
            raise ValueError(f"the inhibitor is 0 to 70 % of the solution by mass, not {percent!r}")
        if inhibitor is None and percent != 0.0:
            raise ValueError(
                "a percentage needs an inhibitor: methanol, MEG, DEG, TEG, NaCl, KCl, CaCl2 or a molar mass"
            )
        line = self._line(*_inhibitor_of(inhibitor), percent)
        return line, self._line(0, 0.0, 0.0)[0] - line[0]

    def _line(self, kind: int, molar_mass: float, percent: float) -> tuple[float, float]:
        # The curve is a straight line of T over ln P: its first and last point say all of it.
        T, P, status = np.empty(2), np.empty(2), np.empty(1, dtype=np.int32)
        out = [T.ctypes.data, P.ctypes.data, status.ctypes.data]
        _native.call("ka_hydrate", self._mixture.handle, kind, molar_mass, percent, 2, *out)
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


def _within(T: np.ndarray, P: np.ndarray, shift: float, wanted: np.ndarray) -> np.ndarray:
    good = (T >= _COLDEST) & (T + shift <= _HOTTEST) & (P > 0.0) & (P <= _HIGHEST)
    count_failures(np.asarray(np.where(good, 0, 151)), "hydrate")
    return np.where(good, wanted, np.nan)
