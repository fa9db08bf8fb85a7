"""One phase of one or many states and its properties."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, NamedTuple, Optional, overload

import numpy as np
from numpy.typing import NDArray

from . import _native, calls
from ._types import Array, Numbers, Status, Value
from .arguments import feed_of, positive, shape_of
from .errors import GOOD, KestruneError, warn
from .units import Units

if TYPE_CHECKING:
    from .mixture import Mixture

__all__ = ["Phase"]

#: More water than this is free water to the library, as kWaterRich of the command line.
_WATER_RICH = 0.9999
#: What free water has: its other properties would be those of water by the equation of state.
_OF_FREE_WATER = ("enthalpy", "entropy", "free_enthalpy")
#: What is said of it, as the command line does.
_NEGATIVE_HEAT = (
    "negative heat capacity: the model's own, where its k_ij change steeply with temperature; no property of a fluid, "
    "nor are the speed of sound and the Joule-Thomson coefficient that it makes"
)
#: Phases as the native library numbers them.
GAS, LIQUID, LIGHT = 1, 2, 3


class _Row(NamedTuple):
    """A property: its row in the native library, its quantity, and what is calculated together with it."""

    row: int
    quantity: str
    group: int


PROPERTIES = {
    "Z": _Row(0, "ratio", 0b10000000111),
    "density": _Row(1, "density", 0b10000000111),
    "molar_volume": _Row(2, "molar volume", 0b10000000111),
    "enthalpy": _Row(3, "enthalpy", 1 << 3),
    "entropy": _Row(4, "entropy", 1 << 4),
    "free_enthalpy": _Row(5, "enthalpy", 1 << 5),
    "Cp": _Row(6, "entropy", 0b1111000000),
    "Cv": _Row(7, "entropy", 0b1111000000),
    "speed_of_sound": _Row(8, "speed", 0b1111000000),
    "joule_thomson": _Row(9, "Joule-Thomson coefficient", 0b1111000000),
    "compressibility": _Row(10, "compressibility", 0b10000000111),
    "viscosity": _Row(11, "viscosity", 1 << 11),
    "thermal_conductivity": _Row(12, "thermal conductivity", 1 << 12),
    "normal_density": _Row(13, "density", 0b11 << 13),
    "normal_volume": _Row(14, "ratio", 0b11 << 13),
    "standard_density": _Row(15, "density", 0b111 << 15),
    "standard_volume": _Row(16, "ratio", 0b111 << 15),
    "standard_cubic_feet": _Row(17, "ratio", 0b111 << 15),
}


class _Property:
    """A property of a phase as an attribute: calculated when it is first asked for."""

    def __init__(self, doc: str) -> None:
        self.__doc__ = doc
        self.name = ""

    def __set_name__(self, owner: type, name: str) -> None:
        self.name = name

    @overload
    def __get__(self, phase: None, owner: Optional[type] = None) -> _Property: ...

    @overload
    def __get__(self, phase: Phase, owner: Optional[type] = None) -> Value: ...

    def __get__(self, phase: Optional[Phase], owner: Optional[type] = None) -> Value:
        return self if phase is None else phase.shown(self.name)


class Phase:
    """One phase of one or many states, with the shape of the states.

    A phase that is absent has the fraction 0 and NaN for everything else. Every property is calculated when it is first
    read, for all states at once, from the exports of the library for this phase. A property of a single state that
    fails raises `KestruneError`; one of many is NaN and stands in `property_status`. Free water has enthalpy, entropy
    and free enthalpy alone, and NaN for the rest.

    Attributes
    ----------
    name : str
        ``"vapour"``, ``"liquid"`` or ``"liquid2"``.
    fraction : float or array
        Moles of the phase in one mole of the whole; NaN without an answer.
    x : array, shape ``(..., count)``
        Mole fractions.
    """

    __slots__ = (
        "name",
        "fraction",
        "x",
        "_T",
        "_P",
        "_mixture",
        "_units",
        "_kind",
        "_threads",
        "_refused",
        "_values",
        "_statuses",
    )

    Z = _Property("Compressibility factor, P v/(R T).")
    density = _Property("Mass density, SI kg/m3; of the equation of state, without volume translation.")
    molar_volume = _Property("Molar volume, SI m3/mol.")
    enthalpy = _Property("Molar enthalpy, SI J/mol; zero: ideal gas of each component at 298.15 K.")
    entropy = _Property("Molar entropy, SI J/(mol K); zero: ideal gas of each component at 298.15 K and 1 atm.")
    free_enthalpy = _Property("Molar free enthalpy H - T S, SI J/mol.")
    Cp = _Property("Molar heat capacity at constant pressure, SI J/(mol K).")
    Cv = _Property("Molar heat capacity at constant volume, SI J/(mol K).")
    speed_of_sound = _Property("Speed of sound, SI m/s.")
    joule_thomson = _Property("Joule-Thomson coefficient, dT/dP at constant enthalpy, SI K/Pa.")
    compressibility = _Property("Isothermal compressibility, (d rho/dP)/rho, SI 1/Pa.")
    viscosity = _Property("Dynamic viscosity of a gas, SI Pa s; NaN of a liquid.")
    thermal_conductivity = _Property("Thermal conductivity of a gas, SI W/(m K); NaN of a liquid.")
    normal_density = _Property("Density of a gas at 0 C and 1 atm, SI kg/m3; NaN of a liquid.")
    normal_volume = _Property("Normal m3 (0 C, 1 atm) in one m3 of a gas; NaN of a liquid.")
    standard_density = _Property("Density of a gas at 15 C and 1 atm, SI kg/m3; NaN of a liquid.")
    standard_volume = _Property("Standard m3 (15 C, 1 atm) in one m3 of a gas; NaN of a liquid.")
    standard_cubic_feet = _Property("Standard cubic feet (60 F, 14.696 psia) in one ft3 of a gas; NaN of a liquid.")

    def __init__(
        self,
        name: str,
        mixture: Mixture,
        units: Units,
        kind: int,
        T: Array,
        P: Array,
        fraction: Any,
        x: Array,
        threads: Optional[int],
        refused: Any = 0,
    ) -> None:
        for array in (T, P, fraction, x):
            if isinstance(array, np.ndarray):
                array.setflags(write=False)
        self.name = name
        self.fraction = fraction
        self._refused = refused  # status of states that nothing can be calculated of, else 0
        self.x = x
        self._T, self._P, self._mixture, self._units, self._kind = T, P, mixture, units, kind
        self._threads = threads
        self._values: dict[str, Array] = {}
        self._statuses: dict[str, Status] = {}

    def __repr__(self) -> str:
        if np.ndim(self.fraction) == 0:
            return f"<{self.name}: {self.fraction:.6g} mol/mol of {self._mixture.title_or_names}>"
        return f"<{self.name} of {np.size(self.fraction)} states>"

    @property
    def molar_mass(self) -> Value:
        """Molar mass, g/mol in all units."""
        return scalar(self.x @ self._mixture.molar_masses)

    @property
    def aqueous(self) -> Value:
        """True where the phase is more than half water, alcohols, glycols and ammonia, and at least 1 % water."""
        return scalar(calls.aqueous(self._mixture, self.x))

    def ln_phi(self) -> Array:
        """ln of the fugacity coefficients, shape ``(..., count)``. KestruneError for a single state without them."""
        if not np.ndim(self._refused) and self._refused:
            raise KestruneError(int(self._refused), "fugacity coefficients")
        return calls.ln_phi(self._mixture, self._kind, self._T, self._P, self.x, self._threads)

    def property_status(self, name: str) -> Value:
        """Status of a property, 0 where it has a value or the phase has none of the kind."""
        self.in_si(name)
        return scalar(self._statuses[name])

    def in_si(self, name: str) -> Array:
        """A property in SI; NaN where it has no value."""
        if not isinstance(name, str) or name not in PROPERTIES:
            raise ValueError(f"no property {name!r}: use {', '.join(PROPERTIES)}")
        if name not in self._values:
            wanted = PROPERTIES[name].group
            values, status = calls.properties(
                self._mixture, self._kind, self._T, self._P, self.x, wanted, self._threads
            )
            status = np.where(self._refused, self._refused, status).astype(np.int32)
            status.setflags(write=False)
            free = self._free_water()
            for other, row in PROPERTIES.items():
                if wanted >> row.row & 1:
                    value = values[row.row]
                    value[np.not_equal(self._refused, 0)] = np.nan
                    if other not in _OF_FREE_WATER:
                        value[free] = np.nan
                    value.setflags(write=False)
                    self._values[other], self._statuses[other] = value, status
            if wanted == PROPERTIES["Cp"].group:
                self._warn_of_heat()
        return self._values[name]

    def _warn_of_heat(self) -> None:
        """Says where a heat capacity is below zero; the speed of sound and the Joule-Thomson coefficient rest on it."""
        with np.errstate(invalid="ignore"):
            negative = (self._values["Cp"] < 0.0) | (self._values["Cv"] < 0.0)
        if negative.any():
            where = f" in {int(negative.sum())} of {negative.size} states" if negative.ndim else ""
            warn(f"{self.name}{where}: {_NEGATIVE_HEAT}")

    def _free_water(self) -> NDArray[np.bool_]:
        """Where the phase is a liquid of water by its solubility, not by the equation of state."""
        index = self._mixture.free_water_index
        if index is None or self.name == "vapour":
            return np.zeros(self.x.shape[:-1], dtype=bool)
        with np.errstate(invalid="ignore"):
            return np.asarray(self.x[..., index] > _WATER_RICH)

    def shown(self, name: str) -> Value:
        value = self.in_si(name)
        status = self._statuses[name]
        if status.ndim == 0 and int(status) not in GOOD and np.isnan(value):
            raise KestruneError(int(status), f"{name} of the {self.name}")
        return self._units.from_si(PROPERTIES[name].quantity, value, self.molar_mass)


def scalar(array: Any) -> Any:
    """A plain number instead of an array without dimensions."""
    return array.item() if isinstance(array, np.ndarray) and array.ndim == 0 else array


def properties_of(
    mixture: Mixture, T: Numbers, P: Numbers, phase: str, x: Optional[Numbers], threads: Optional[int], units: Units
) -> Phase:
    """A composition as one phase; see `Mixture.properties`."""
    if phase not in ("gas", "vapour", "liquid"):
        raise ValueError(f"phase is 'gas' or 'liquid', not {phase!r}")
    name, kind = ("liquid", LIQUID) if phase == "liquid" else ("vapour", GAS)
    values = [units.to_si("temperature", T), units.to_si("pressure", P)]
    feed, _ = feed_of(mixture, x)
    shape = shape_of(("T", "P"), values, feed)
    at_T, at_P = (_native.packed(np.broadcast_to(v, shape)) for v in values)
    full = np.broadcast_to(mixture.z if feed is None else feed, (*shape, len(mixture.names)))
    one = np.ones(shape) if shape else 1.0
    _native.thread_count(threads)
    refused = np.select([~positive(at_T), ~positive(at_P), np.isnan(full).any(axis=-1)], [9004, 9005, 9006], 0)
    return Phase(name, mixture, units, kind, at_T, at_P, one, np.array(full, dtype=float, order="C"), threads, refused)
