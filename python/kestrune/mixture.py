"""Mixtures of the databank and their flashes."""

from __future__ import annotations

import json
import math
import os
import weakref
from typing import Any, Mapping, Optional, Sequence, Union

import numpy as np

from . import _native, calls
from ._types import Array, Numbers
from .arguments import GIVEN, feed_of, kind_of, limits_of, one_of, shape_of, tuning_of
from .curves import Critical, Envelope
from .databank import Component, source_of
from .errors import GOOD, KestruneError
from .hydrate import hydrate
from .phases import Phase, properties_of
from .states import State
from .units import Units
from .water import WATER, Boundary, Water

__all__ = ["Mixture"]

class Mixture:
    """A mixture of components with its model, PPR78.

    Parameters
    ----------
    components : mapping, pairs or str
        Names and amounts, ``{"methane": 0.9, "nC4": 0.1}``, any sum; the JSON object of a mixture file; or the texts
        that the command line reads, ``"methane=0.9,nC4=0.1"``. Names, aliases, formulas and CAS numbers all do.
    basis : {"mole", "mass"}, optional
        What the amounts are; default mole, or what a file itself says.
    set : {"2022", "original"}
        Published group interactions.
    name : str
        A title.
    free_water : bool
        Water may form a liquid phase of its own, beside a liquid that holds it up to its solubility.
    solubility : (float, float), optional
        A and B of that solubility, exp(A - B/T), T in K; only with `free_water`.
    settings : mapping, optional
        Settings of the flash: ``crit``, ``clim``, ``eps``, ``itemax``, ``new``, ``relax``.
    allow_missing_pairs : bool
        Group interactions without a published value count as zero, whatever the amounts.
    units : str or Units
        Units of what goes in and comes out, default SI; see `Units`. Every method has ``units=`` for itself.

    Raises
    ------
    ValueError
        For what cannot be a mixture, with what is wrong and what would be right.

    Notes
    -----
    Several threads may use one mixture at the same time. Pickling and copying rebuild it from its description. `notes`
    holds what is to be known of it: amounts that were normalised, interactions taken as zero.
    """

    __slots__ = (
        *("_recipe", "_handle", "_units", "_info", "_finalizer", "_water"),
        *("_names", "_z", "_molar_masses", "_title", "__weakref__"),
    )

    def __init__(
        self,
        components: Any,
        basis: Optional[str] = None,
        *,
        set: str = "2022",
        name: str = "",
        free_water: bool = False,
        solubility: Optional[Sequence[float]] = None,
        settings: Optional[Mapping[str, float]] = None,
        allow_missing_pairs: bool = False,
        units: Union[str, Units] = "si",
    ) -> None:
        if solubility is not None and not free_water:
            raise ValueError("a solubility has no effect without free_water=True")
        for what, text in (("basis", basis or ""), ("set", set), ("name", name)):
            if not isinstance(text, str):
                raise TypeError(f"{what} is a text, not {text!r}")
        limits, tuning = limits_of(solubility), tuning_of(settings)
        flags = bool(allow_missing_pairs), False, bool(free_water)
        self._build((source_of(components), basis or "", set, *flags, limits, tuning, name), units)

    @classmethod
    def from_file(cls, path: Union[str, os.PathLike[str]], basis: Optional[str] = None, **options: Any) -> Mixture:
        """A mixture from a file of the command line, JSON or a component and its amount per line."""
        with open(path, encoding="utf-8-sig") as file:
            return cls(file.read() + "\n", basis, **options)

    def _build(self, recipe: tuple[Any, ...], units: Union[str, Units]) -> None:
        self._recipe, self._units = recipe, Units.of(units)
        self._water: Optional[Water] = None
        *parts, self._title = recipe
        arguments = [part.encode() if isinstance(part, str) else int(part) for part in parts]
        self._handle = _native.call("ka_mixture", *arguments)
        self._finalizer = weakref.finalize(self, _native.library().ka_free, self._handle)
        self._finalizer.atexit = False  # a thread may still calculate when the interpreter ends
        self._info = json.loads(_native.read_text("ka_describe", self._handle))
        self._names: tuple[str, ...] = tuple(c["name"] for c in self._info["components"])
        self._z = _native.constant(self._info["z"])
        self._molar_masses = _native.constant([c["molar_mass"] for c in self._info["components"]])

    @property
    def names(self) -> tuple[str, ...]:
        """Names of the components."""
        return self._names

    @property
    def z(self) -> Array:
        """Mole fractions, whose sum is 1."""
        return self._z

    @property
    def molar_masses(self) -> Array:
        """Molar masses of the components, g/mol."""
        return self._molar_masses

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Mixture):
            return NotImplemented
        return self._recipe == other._recipe and self._units == other._units

    def __hash__(self) -> int:
        return hash((self._recipe, self._units))

    def __reduce__(self) -> tuple[Any, ...]:
        return (_rebuilt, (self._recipe, self._units))

    def __repr__(self) -> str:
        parts = ", ".join(f"{name!r}: {z:.6g}" for name, z in zip(self.names, self.z))
        return f"Mixture({{{parts}}})"

    @property
    def handle(self) -> int:
        """Address of the native mixture."""
        return int(self._handle)

    @property
    def units(self) -> Units:
        """Units of what goes in and comes out."""
        return self._units

    @property
    def title_or_names(self) -> str:
        """The title, or the first components."""
        more = f", {len(self.names) - 3} more" if len(self.names) > 3 else ""
        return self._title or str(self._info["title"]) or ", ".join(self.names[:3]) + more

    @property
    def molar_mass(self) -> float:
        """Molar mass, g/mol."""
        return float(self._info["molar_mass"])

    @property
    def free_water_index(self) -> Optional[int]:
        """Place of water among the components where it may part as free water, else None."""
        cas = [c["cas"] for c in self._info["components"]]
        return cas.index(WATER) if self._recipe[5] and WATER in cas else None

    @property
    def notes(self) -> list[str]:
        """What is to be known of the mixture; empty for most."""
        return list(self._info["notes"])

    @property
    def components(self) -> list[Component]:
        """The components with their constants, in the order of `names` and `z`."""
        return [Component(**c) for c in self._info["components"]]

    def flash(
        self,
        T: Optional[Numbers] = None,
        P: Optional[Numbers] = None,
        *,
        H: Optional[Numbers] = None,
        S: Optional[Numbers] = None,
        beta: Optional[Numbers] = None,
        z: Optional[Numbers] = None,
        phases: int = 3,
        threads: Optional[int] = None,
        units: Union[str, Units, None] = None,
    ) -> State:
        """Phases at equilibrium.

        Parameters
        ----------
        T, P, H, S, beta : float or array
            Two of them: T and P, H and P, S and P, beta and P, or beta and T. Temperature, pressure, molar enthalpy and
            entropy of the whole, vapour fraction by mole; arrays broadcast against each other. SI: K, Pa, J/mol,
            J/(mol K).
        z : array, shape ``(..., count)``, optional
            Feeds, in the order of `names`, any sum; its leading shape broadcasts with the others. Of several feeds one
            with a NaN costs its own states only.
        phases : {3, 2}
            3: up to two liquids and a vapour. 2: liquid and vapour, two to three times as fast and blind for a second
            liquid; not with free water, which is one.
        threads : int, optional
            Threads of the native loop; default one per processor. Results do not depend on it, to the last bit.
        units : str or Units, optional
            Units of what goes in and comes out, instead of those of the mixture.

        Returns
        -------
        State
            With the shape that the arguments broadcast to.

        Raises
        ------
        KestruneError
            A single state without an answer. Of an array such a state has its status and NaN.
        ValueError, TypeError
            Arguments that are not numbers, do not broadcast, or are not one of these pairs.
        """
        shown = self._units if units is None else Units.of(units)
        given = {name: v for name, v in (("T", T), ("P", P), ("H", H), ("S", S), ("beta", beta)) if v is not None}
        kind, *quantities = kind_of(given)
        if phases not in (2, 3):
            raise ValueError(f"phases is 2 or 3, not {phases!r}")
        if phases == 2 and self.free_water_index is not None:
            raise ValueError("free water is a liquid of its own: flash with phases=3, or a mixture without free_water")
        feed, mass = feed_of(self, z)
        ordered = next(pair for pair in GIVEN if frozenset(pair) == frozenset(given))
        values = [shown.to_si(q, given[name], mass) for name, q in zip(ordered, quantities)]
        if "beta" in given:  # beyond 0 and 1 there is no state; NaN is refused with its status
            values[0] = np.where((values[0] >= 0.0) & (values[0] <= 1.0), values[0], np.nan)
        shape = shape_of(ordered, values, feed)
        columns = [_native.packed(np.broadcast_to(v, shape)) for v in values]
        if feed is not None:
            feed = _native.packed(np.broadcast_to(feed, (*shape, len(self.names))))
        found = calls.flash(self, kind, phases, columns, feed, shape, threads)
        state = State(self, shown, phases, *found, feed, threads)
        if not shape and state.status not in GOOD:
            at = " and ".join(shown.label(name, q, given[name]) for name, q in zip(ordered, quantities))
            raise KestruneError(state.status, f"flash of {self.title_or_names} at {at}")
        return state

    def bubble(self, *, T: Optional[Numbers] = None, P: Optional[Numbers] = None, **options: Any) -> State:
        """Bubble point at a temperature or a pressure; options and errors as of `flash`."""
        one_of("bubble", T, P)
        return self.flash(T, P, beta=0.0, **options)

    def dew(self, *, T: Optional[Numbers] = None, P: Optional[Numbers] = None, **options: Any) -> State:
        """Dew point at a temperature or a pressure; options and errors as of `flash`."""
        one_of("dew", T, P)
        return self.flash(T, P, beta=1.0, **options)

    def properties(
        self,
        T: Numbers,
        P: Numbers,
        phase: str = "gas",
        x: Optional[Numbers] = None,
        *,
        threads: Optional[int] = None,
        units: Union[str, Units, None] = None,
    ) -> Phase:
        """Properties of the mixture, or of a composition, as one phase, whether it is stable or not.

        Parameters
        ----------
        T, P : float or array
            Temperature and pressure, SI K and Pa.
        phase : {"gas", "liquid"}
            Where the equation of state has no root of that phase, the only root there is. A gas has all properties; a
            liquid no viscosity, conductivity and normal state.
        x : array, shape ``(..., count)``, optional
            Mole fractions, default those of the mixture; divided by their sum.

        Returns
        -------
        Phase
            Its attributes are the properties, with the shape of the arguments. A temperature or pressure that is not
            positive raises KestruneError when they are read; of many states it has its `property_status` and NaN.
        """
        shown = self._units if units is None else Units.of(units)
        return properties_of(self, T, P, phase, x, threads, shown)

    def kij(self, T: float, units: Union[str, Units, None] = None) -> Array:
        """Interaction parameters k_ij that the model predicts at a temperature (SI K), shape ``(count, count)``."""
        shown = self._units if units is None else Units.of(units)
        at = shown.to_si("temperature", T)
        if at.shape or not (math.isfinite(at) and at > 0.0):
            raise ValueError(f"k_ij have one temperature, above absolute zero, not {T!r}")
        values = np.empty((len(self.names), len(self.names)))
        _native.call("ka_kij", self._handle, float(at), values.ctypes.data)
        return values

    def envelope(self, quality: Sequence[float] = (), **options: Any) -> Envelope:
        """Bubble and dew curve, critical points, extremes and quality lines; see `Envelope.of`."""
        return Envelope.of(self, quality, **options)

    def critical(self, units: Union[str, Units, None] = None) -> Critical:
        """Critical point of the mixture; KestruneError 145 where there is no stable one."""
        return Critical.of(self, self._units if units is None else Units.of(units))

    @property
    def water(self) -> Water:
        """Water content and water dew points of the mixture as a gas."""
        if self._water is None:
            wet = self
            if WATER not in (c["cas"] for c in self._info["components"]):
                wet = _rebuilt((*self._recipe[:4], True, *self._recipe[5:]), self._units)
            self._water = Water(wet)
        return self._water

    def hydrate(
        self,
        *,
        T: Optional[Numbers] = None,
        P: Optional[Numbers] = None,
        inhibitor: Union[str, float, None] = None,
        percent: Optional[float] = None,
        units: Union[str, Units, None] = None,
    ) -> Boundary:
        """Where hydrate forms of the mixture as a gas: the temperature below, or the pressure above, which it does.

        Parameters
        ----------
        T, P : float or array
            One of them, SI K or Pa.
        inhibitor : str or float, optional
            ``"methanol"``, ``"MEG"``, ``"DEG"``, ``"TEG"``, ``"NaCl"``, ``"KCl"``, ``"CaCl2"`` or a molar mass, g/mol.
        percent : float, with an inhibitor
            Its mass percent in the aqueous solution, 0 to 70.

        Returns
        -------
        Boundary
            T, P and status. Beyond 200 K, 313.15 K without inhibitor and 1000 bar there is no answer: status 151 and
            NaN of many states, KestruneError of a single one.

        Notes
        -----
        By the gravity of the gas (Towler and Mokhatab 2005), with the depression of Hammerschmidt (1934). Made from
        sweet natural gases, 265 to 298 K and 12 to 400 bar.
        """
        return hydrate(self, T, P, inhibitor, percent, self._units if units is None else Units.of(units))


def _rebuilt(recipe: tuple[Any, ...], units: Union[str, Units]) -> Mixture:
    mixture = Mixture.__new__(Mixture)
    mixture._build(recipe, units)
    return mixture
