"""States of a mixture: the phases of a flash and their properties together."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Iterator, Optional, Sequence

import numpy as np
from numpy.typing import NDArray

from . import _native
from ._types import Array, Status, Value
from .errors import GOOD
from .phases import LIGHT, LIQUID, PROPERTIES, Phase, scalar
from .units import Units

if TYPE_CHECKING:
    import pandas

    from .mixture import Mixture

__all__ = ["State"]


class State:
    """One or many states of a mixture at equilibrium, what `Mixture.flash` returns.

    Attributes
    ----------
    T, P : float or array
        Temperature and pressure in the units of the state, SI K and Pa; NaN where they were asked for and not found.
    T_si, P_si : array
        The same in K and Pa.
    status : int or array of int
        Status of each flash: 0 success, else see `status_text`.
    vapour, liquid, liquid2 : Phase
        The phases. Of two liquids `liquid` is the lighter one; `liquid2` is absent where there is one. With
        ``phases=2`` it is always absent, and of two liquids the lighter one is called vapour. At a bubble or dew point
        the phase about to form has its composition and the fraction 0.
    mixture : Mixture
        The mixture; `z` is the feed where it was not that of the mixture.
    """

    __slots__ = ("mixture", "units", "phases", "status", "z", "T_si", "P_si", "vapour", "liquid", "liquid2")

    def __init__(
        self,
        mixture: Mixture,
        units: Units,
        phases: int,
        T: Array,
        P: Array,
        fractions: Sequence[Array],
        x: Sequence[Array],
        status: Status,
        z: Optional[Array] = None,
        threads: Optional[int] = None,
    ) -> None:
        arrays: list[NDArray[Any]] = [T, P, status, *fractions, *x, *(() if z is None else (z,))]
        for array in arrays:
            array.setflags(write=False)  # the properties are calculated from them, some of them later
        self.mixture, self.units, self.phases, self.z = mixture, units, phases, z
        self.T_si, self.P_si = T, P
        self.status: Value = int(status) if status.ndim == 0 else status
        three = [*zip(("vapour", "liquid", "liquid2"), (LIGHT, LIQUID, LIQUID))]
        made = []
        for slot, (name, kind) in enumerate(three):
            if slot < len(x):
                fraction, composition = fractions[slot], x[slot]
            else:
                fraction = np.where(np.isnan(fractions[0]), np.nan, 0.0)
                composition = np.broadcast_to(np.nan, x[0].shape)
            made.append(Phase(name, mixture, units, kind, T, P, scalar(fraction), composition, threads))
        self.vapour, self.liquid, self.liquid2 = made

    @property
    def T(self) -> Value:
        """Temperature, SI K."""
        return self.units.from_si("temperature", self.T_si)

    @property
    def P(self) -> Value:
        """Pressure, SI Pa."""
        return self.units.from_si("pressure", self.P_si)

    @property
    def shape(self) -> tuple[int, ...]:
        """Shape of the states, ``()`` of a single one."""
        return self.T_si.shape

    @property
    def size(self) -> int:
        """Number of states."""
        return int(self.T_si.size)

    @property
    def ok(self) -> Value:
        """True where there is an answer."""
        good = np.isin(self.status, GOOD)
        return bool(good) if good.ndim == 0 else good

    @property
    def beta(self) -> Value:
        """Vapour fraction, moles of vapour in one mole; NaN without an answer."""
        return self.vapour.fraction

    @property
    def K(self) -> Array:
        """y/x of the vapour and the (lighter) liquid, shape ``(..., count)``; NaN where one of them is absent."""
        with np.errstate(divide="ignore", invalid="ignore"):
            return np.asarray(self.vapour.x / self.liquid.x)

    def __iter__(self) -> Iterator[Phase]:
        return iter((self.vapour, self.liquid, self.liquid2)[: self.phases])

    def __len__(self) -> int:
        if not self.shape:
            raise TypeError("a single state has no length")
        return self.shape[0]

    def __getitem__(self, index: Any) -> State:
        """Some of the states, by an index of their shape."""
        if not self.shape:
            raise IndexError("a single state has no parts")
        key = index if isinstance(index, tuple) else (index,)
        rows = (*key, slice(None))  # and all components
        parts = list(self)
        return State(
            self.mixture,
            self.units,
            self.phases,
            np.asarray(self.T_si[key]),
            np.asarray(self.P_si[key]),
            [np.asarray(phase.fraction[key]) for phase in parts],
            [phase.x[rows] for phase in parts],
            np.asarray(self.status[key]),
            None if self.z is None else self.z[rows],
        )

    def __repr__(self) -> str:
        if self.shape:
            return f"<{self.size} states of {self.mixture.title_or_names}, {int(np.sum(self.ok))} with an answer>"
        units = Units("si") if self.units.name == "pint" else self.units
        T, P = units.from_si("temperature", self.T_si), units.from_si("pressure", self.P_si)
        present = " + ".join(f"{p.fraction:.6g} {p.name}" for p in self if p.fraction > 0.0)
        at = f"{T:.6g} {units.symbol('temperature')} and {P:.6g} {units.symbol('pressure')}"
        return f"<{self.mixture.title_or_names} at {at}: {present}>"

    def status_text(self) -> str:
        """What the statuses mean, each that occurs on a line of its own with its number of states."""
        found, counts = np.unique(np.asarray(self.status), return_counts=True)
        return "\n".join(f"{n} x {s}: {_native.status_text(int(s))}" for s, n in zip(found, counts))

    def liquid_fraction(self, aqueous: bool = False) -> Value:
        """Moles of the aqueous liquid in one mole, or of the other liquids."""
        total = np.zeros(self.shape)
        for phase in (self.liquid, self.liquid2):
            total = total + np.where(np.equal(phase.aqueous, aqueous), phase.fraction, 0.0)
        return scalar(np.where(np.isnan(self.vapour.fraction), np.nan, total))

    def _whole(self, name: str, quantity: str) -> Value:
        value = self._whole_si(name)
        if not self.shape and np.isnan(value):
            for phase in self:
                if phase.fraction > 0.0:
                    phase.shown(name)  # raises for what failed
        return self.units.from_si(quantity, value, self.molar_mass)

    def _whole_si(self, name: str) -> Array:
        total = np.where(np.isnan(self.vapour.fraction), np.nan, 0.0)
        for phase in self:
            present = np.asarray(phase.fraction) > 0.0
            if present.any():
                total = total + np.where(present, phase.fraction * phase.in_si(name), 0.0)
        return total

    @property
    def molar_mass(self) -> Value:
        """Molar mass of the whole, g/mol."""
        if self.z is None:
            return self.mixture.molar_mass
        return scalar(self.z @ self.mixture.molar_masses)

    @property
    def enthalpy(self) -> Value:
        """Molar enthalpy of all phases together, SI J/mol."""
        return self._whole("enthalpy", "enthalpy")

    @property
    def entropy(self) -> Value:
        """Molar entropy of all phases together, SI J/(mol K)."""
        return self._whole("entropy", "entropy")

    @property
    def free_enthalpy(self) -> Value:
        """Molar free enthalpy of all phases together, SI J/mol."""
        return self._whole("free_enthalpy", "enthalpy")

    @property
    def molar_volume(self) -> Value:
        """Molar volume of all phases together, SI m3/mol; NaN with free water, which has none."""
        return self._whole("molar_volume", "molar volume")

    @property
    def density(self) -> Value:
        """Mass density of all phases together, SI kg/m3; NaN with free water, which has none."""
        with np.errstate(divide="ignore", invalid="ignore"):
            value = 1e-3 * self.molar_mass / self._whole_si("molar_volume")
        return self.units.from_si("density", value, self.molar_mass)

    def to_frame(self, properties: Sequence[str] = ()) -> pandas.DataFrame:
        """A pandas table with a row per state.

        Parameters
        ----------
        properties : sequence of str
            Properties of the phases, such as ``["density", "viscosity"]``, which become columns ``vapour.density`` ...

        Returns
        -------
        pandas.DataFrame
            Columns T, P, status, and of each phase its fraction, mole fractions (``vapour.methane``) and properties, in
            the units of the state.
        """
        import pandas

        if isinstance(properties, str):
            raise TypeError(f"properties is a list of names such as [{properties!r}], not one text")
        columns: dict[str, Any] = {"T": _flat(self.T), "P": _flat(self.P), "status": np.atleast_1d(np.asarray(self.status).ravel())}
        for phase in self:
            columns[f"{phase.name}.fraction"] = _flat(phase.fraction)
            table = phase.x.reshape(-1, len(self.mixture.names))
            for i, component in enumerate(self.mixture.names):
                columns[f"{phase.name}.{component}"] = table[:, i]
            for name in properties:
                value = phase.in_si(name)
                shown = self.units.from_si(PROPERTIES[name].quantity, value, phase.molar_mass)
                columns[f"{phase.name}.{name}"] = _flat(shown)
        return pandas.DataFrame(columns)

    def plot(self, ax: Any = None, **options: Any) -> Any:
        """Draws the states as points on the envelope of the mixture; see `Envelope.plot`."""
        return self.mixture.envelope(units=self.units).plot(ax=ax, points=(self.T, self.P), **options)

    def __reduce__(self) -> tuple[Any, ...]:
        parts = list(self)
        arrays = [np.asarray(phase.fraction) for phase in parts], [phase.x for phase in parts]
        return (
            State,
            (self.mixture, self.units, self.phases, self.T_si, self.P_si, *arrays, np.asarray(self.status), self.z),
        )


def _flat(values: Any) -> Array:
    return np.asarray(getattr(values, "magnitude", values)).reshape(-1)
