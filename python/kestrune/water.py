"""Water in a gas: its content at saturation and its dew points."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, NamedTuple, Optional, Union

import numpy as np

from . import _native
from .errors import count_failures
from .units import Units, numbers_of

if TYPE_CHECKING:
    from .mixture import Mixture

__all__ = ["Saturation", "Water"]

_METHODS = {"eos": 1, "chart": 2}


class Saturation(NamedTuple):
    """A gas saturated with water: its mole fraction of water and kg of water in one normal m3 (0 C, 1 atm) of it."""

    fraction: Any
    content: Any
    status: Any


class Water:
    """Water of a mixture as a gas, reached as ``mixture.water``.

    Notes
    -----
    ``method="eos"`` is a balance of fugacities in the gas and in liquid water or ice, 150 to 640 K; ``"chart"`` a chart
    correlation with acid-gas correction (Bukacek 1955, Maddox 1974), 233.15 to 510.93 K. Whether the mixture is a gas
    at the state is not looked at. `water` is its mole fraction in the wet gas, default that of the mixture. A single
    state without an answer raises KestruneError; of an array it has NaN, and a `KestruneWarning` says how many there are
    and why.
    """

    __slots__ = ("_mixture",)

    def __init__(self, mixture: Mixture) -> None:
        self._mixture = mixture

    def __repr__(self) -> str:
        return f"<water of {self._mixture.title_or_names}>"

    def content(
        self,
        T: Any,
        P: Any,
        *,
        method: str = "eos",
        threads: Optional[int] = None,
        units: Union[str, Units, None] = None,
    ) -> Saturation:
        """Water of the gas at saturation at T and P (SI K, Pa), which broadcast."""
        shown = self._units(units)
        at_T, at_P = _together(shown.to_si("temperature", T), shown.to_si("pressure", P))
        fraction, content = np.empty(at_T.shape), np.empty(at_T.shape)
        status = np.empty(at_T.shape, dtype=np.int32)
        out: list[np.ndarray] = [fraction, content, status]
        _native.call(
            "ka_saturation",
            self._mixture.handle,
            _number(method),
            at_T.size,
            at_T.ctypes.data,
            at_P.ctypes.data,
            None,
            _native.thread_count(threads),
            *(a.ctypes.data for a in out),
        )
        count_failures(status, "water content", level=3)
        return Saturation(*(a.item() if not a.shape else a for a in out))

    def dew_temperature(self, P: Any, *, water: Any = None, **options: Any) -> Any:
        """Temperature at which liquid water or ice begins to form at a pressure (SI K from Pa)."""
        return self._dew(P, True, water, **options)

    def dew_pressure(self, T: Any, *, water: Any = None, **options: Any) -> Any:
        """Pressure at which liquid water or ice begins to form at a temperature (SI Pa from K)."""
        return self._dew(T, False, water, **options)

    def _dew(
        self,
        given: Any,
        at_pressure: bool,
        water: Any,
        *,
        method: str = "eos",
        threads: Optional[int] = None,
        units: Union[str, Units, None] = None,
    ) -> Any:
        shown = self._units(units)
        quantity, wanted = ("pressure", "temperature") if at_pressure else ("temperature", "pressure")
        amounts = self._amounts(water)
        value, amount = _together(shown.to_si(quantity, given), amounts)
        feed = self._feed(amount)
        found, status = np.empty(value.shape), np.empty(value.shape, dtype=np.int32)
        addresses = [a.ctypes.data for a in (value, feed)]
        used = _native.thread_count(threads)
        _native.call(
            "ka_water_dew",
            self._mixture.handle,
            _number(method),
            int(at_pressure),
            value.size,
            *addresses,
            used,
            found.ctypes.data,
            status.ctypes.data,
        )
        count_failures(status, f"water dew {wanted}")
        return shown.from_si(wanted, found)

    def _units(self, units: Union[str, Units, None]) -> Units:
        return self._mixture.units if units is None else Units.of(units)

    def _index(self) -> int:
        return [c.cas for c in self._mixture.components].index("7732-18-5")

    def _amounts(self, water: Any) -> np.ndarray:
        own = self._mixture.z[self._index()]
        amounts = np.asarray(own) if water is None else numbers_of("water", water)
        known = amounts[~np.isnan(amounts)] if amounts.ndim else amounts
        if not ((known > 0.0) & (known < 1.0)).all():
            raise ValueError(
                "a dew point needs water in the gas, a mole fraction between 0 and 1: in the mixture, or as water=60e-6"
            )
        return amounts

    def _feed(self, water: np.ndarray) -> np.ndarray:
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


def _together(*values: np.ndarray) -> list[np.ndarray]:
    shape = np.broadcast_shapes(*(np.shape(v) for v in values))
    return [_native.packed(np.broadcast_to(v, shape)) for v in values]
