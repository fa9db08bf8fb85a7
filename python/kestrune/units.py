"""Units of what goes in and comes out. Inside everything is in K, Pa, J/mol, kg/m3 and mole fractions."""

from __future__ import annotations

import functools
import json
from typing import Any, Mapping, NamedTuple, Union

import numpy as np

from . import _native
from ._types import Array, Value

__all__ = ["Unit", "Units"]

#: SI unit of each quantity as pint writes it.
_PINT = {
    "temperature": "kelvin",
    "pressure": "pascal",
    "enthalpy": "joule / mole",
    "entropy": "joule / mole / kelvin",
    "density": "kilogram / meter ** 3",
    "molar volume": "meter ** 3 / mole",
    "speed": "meter / second",
    "viscosity": "pascal * second",
    "thermal conductivity": "watt / meter / kelvin",
    "Joule-Thomson coefficient": "kelvin / pascal",
    "compressibility": "1 / pascal",
}


class Unit(NamedTuple):
    """A unit: value in SI = (value + offset) * factor, per mass times the molar mass in kg/mol."""

    name: str
    factor: float
    offset: float
    per_mass: bool

    def scale(self, molar_mass: Any) -> Any:
        """Factor of a mixture or phase of this molar mass, g/mol."""
        return self.factor * np.asarray(molar_mass) / 1000.0 if self.per_mass else self.factor


def _is_pint(value: Any) -> bool:
    return hasattr(value, "magnitude") and hasattr(value, "dimensionality")


class Units:
    """Units in which numbers are given and results shown.

    Parameters
    ----------
    name : str
        ``"si"`` (K, Pa, J/mol), ``"engineering"`` (C, bar, kJ/kg), ``"field"`` (F, psia, Btu/lb), a pair such as
        ``"C,bar"``, with a third one for energies ``"C,bar,kJ/kmol"``, or ``"pint"``: results are pint quantities in
        SI. The names are those of the command line. ValueError for another one.
    """

    __slots__ = ("name", "_table")

    def __init__(self, name: str) -> None:
        if not isinstance(name, str):
            raise TypeError(f"units is a name such as 'si', 'engineering' or 'C,bar', not {name!r}")
        self.name = name
        self._table = _table("si" if name == "pint" else name)
        if name == "pint":
            _pint_registry()

    @classmethod
    def of(cls, units: Union[str, Units]) -> Units:
        """The units themselves, or those of a name."""
        return units if isinstance(units, Units) else cls(units)

    def __repr__(self) -> str:
        return f"Units({self.name!r})"

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Units) and self.name == other.name

    def __hash__(self) -> int:
        return hash(self.name)

    def __reduce__(self) -> tuple[type, tuple[str]]:
        return (Units, (self.name,))

    def symbol(self, quantity: str) -> str:
        """Name of the unit of a quantity: ``"temperature"``, ``"pressure"``, ``"enthalpy"``, ``"density"``, ..."""
        if quantity not in self._table:
            raise ValueError(f"no quantity {quantity!r}: use {', '.join(self._table)}")
        return self._table[quantity].name

    def label(self, name: str, quantity: str, value: Any) -> str:
        """A given number with its unit, as messages show it."""
        if _is_pint(value):
            return f"{name} = {value}"
        symbol = self.symbol(quantity) if quantity in self._table else ""
        return f"{name} = {float(numbers_of(quantity, value)):.6g} {symbol}".rstrip()

    def to_si(self, quantity: str, value: Any, molar_mass: Any = 0.0) -> Array:
        """Numbers in these units, or pint quantities of any unit, as an array of floats in SI."""
        if _is_pint(value):
            return _from_pint(quantity, value, molar_mass)
        numbers = numbers_of(quantity, value)
        unit = self._table[quantity]
        return np.asarray((numbers + unit.offset) * unit.scale(molar_mass))

    def from_si(self, quantity: str, value: Any, molar_mass: Any = 0.0) -> Value:
        """An array in SI in these units, a new one; a single number as a float."""
        if self.name == "pint":
            return _pint_registry().Quantity(_plain(np.array(value)), _PINT.get(quantity, "dimensionless"))
        unit = self._table[quantity]
        if unit.factor == 1.0 and unit.offset == 0.0 and not unit.per_mass:
            return _plain(np.array(value))
        return _plain(np.asarray(value) / unit.scale(molar_mass) - unit.offset)


def numbers_of(name: str, value: Any) -> Array:
    """An array of floats of its own, NaN for what is masked; of a pint quantity without a unit its number."""
    if value is None:
        raise TypeError(f"{name} is a number or an array of numbers, not None")
    if _is_pint(value):
        return _from_pint(name, value, 0.0)
    if isinstance(value, (list, tuple)) and any(map(_is_pint, value)):
        raise TypeError(f"{name} is one quantity with an array in it, not a list of quantities")
    try:
        raw = value if isinstance(value, np.ma.MaskedArray) else np.asarray(value)
        if raw.dtype.kind in "iufO":  # no truth values, texts, dates or complex numbers
            floats: Any = raw.astype(float)
            return np.asarray(floats.filled(np.nan) if hasattr(floats, "filled") else floats)
    except (TypeError, ValueError):
        pass
    raise TypeError(f"{name} is a number or an array of numbers, not {value!r}")


def _plain(array: Array) -> Value:
    return float(array) if array.ndim == 0 else array


@functools.lru_cache(maxsize=64)
def _table(name: str) -> Mapping[str, Unit]:
    read = json.loads(_native.read_text("ka_units", name.encode()))
    return {quantity: Unit(**unit) for quantity, unit in read.items()}


def _pint_registry() -> Any:
    try:
        import pint as _pint
    except ImportError:
        raise ImportError("units='pint' needs the package pint") from None
    pint: Any = _pint  # without types in some versions
    return pint.get_application_registry()


def _from_pint(quantity: str, value: Any, molar_mass: Any) -> Array:
    unit = _PINT.get(quantity, "dimensionless")
    try:
        return numbers_of(quantity, value.to(unit).magnitude)
    except Exception as error:
        if quantity not in ("enthalpy", "entropy"):
            raise ValueError(f"{quantity} cannot be {value.units}: {error}") from None
    try:
        per_mass = numbers_of(quantity, value.to(unit.replace("mole", "kilogram", 1)).magnitude)
    except Exception as error:
        raise ValueError(f"{quantity} cannot be {value.units}: {error}") from None
    return np.asarray(per_mass * molar_mass / 1000.0)
