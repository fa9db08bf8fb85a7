"""What the methods of a mixture are given, checked and as the native library takes it."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Mapping, Optional, Sequence

import numpy as np
from numpy.typing import NDArray

from ._types import Array, Numbers
from .units import numbers_of

if TYPE_CHECKING:
    from .mixture import Mixture

#: What a flash can be given, by its number in the native library, with the quantities of the two.
GIVEN = {
    ("T", "P"): (0, "temperature", "pressure"),
    ("H", "P"): (1, "enthalpy", "pressure"),
    ("S", "P"): (2, "entropy", "pressure"),
    ("beta", "P"): (3, "vapour fraction", "pressure"),
    ("beta", "T"): (4, "vapour fraction", "temperature"),
}


def positive(values: Array) -> NDArray[np.bool_]:
    """Where numbers are finite and above zero."""
    return np.asarray(np.isfinite(values) & (values > 0.0))


def limits_of(solubility: Optional[Sequence[float]]) -> str:
    """A and B of the solubility as the native library reads them; ValueError for anything but two numbers."""
    if solubility is None:
        return ""
    limits = numbers_of("solubility", solubility)
    if limits.shape != (2,):
        raise ValueError(f"solubility is two numbers (A, B), not {solubility!r}")
    return ",".join(repr(float(v)) for v in limits)


def tuning_of(settings: Optional[Mapping[str, float]]) -> str:
    """Settings as the native library reads them; TypeError for what is not a number by name."""
    if settings is None:
        return ""
    if not isinstance(settings, Mapping):
        raise TypeError(f"settings are given as {{'eps': 1e-8}}, not {settings!r}")
    pairs = []
    for key, value in settings.items():
        number = numbers_of(f"the setting {key}", value)
        if number.shape:
            raise TypeError(f"the setting {key} is one number, not {value!r}")
        pairs.append(f"{key}={float(number):.17g}")
    return ",".join(pairs)


def kind_of(given: Mapping[str, Any]) -> tuple[int, str, str]:
    """Number of a flash and its two quantities; ValueError for another pair."""
    for names, kind in GIVEN.items():
        if frozenset(names) == frozenset(given):
            return kind
    pairs = ", ".join(f"{a} and {b}" for a, b in GIVEN)
    raise ValueError(f"a flash is given {pairs}, not {' and '.join(given) or 'nothing'}")


def one_of(name: str, T: Any, P: Any) -> None:
    """ValueError for a point that is not given one of T and P."""
    if (T is None) == (P is None):
        raise ValueError(f"a {name} point is given T or P, one of them")


def feed_of(mixture: Mixture, z: Optional[Numbers]) -> tuple[Optional[Array], Any]:
    """Feeds divided by their sums, and their molar masses; ValueError for what is no composition of the mixture."""
    if z is None:
        return None, mixture.molar_mass
    names, feed = mixture.names, numbers_of("z", z)
    if feed.ndim == 0 or feed.shape[-1] != len(names):
        raise ValueError(f"z has {len(names)} fractions in its last axis, those of {', '.join(names)}")
    known = feed[~np.isnan(feed).any(axis=-1)] if feed.ndim > 1 else feed
    if not (np.isfinite(known).all() and (known >= 0.0).all() and (known.sum(axis=-1) > 0.0).all()):
        raise ValueError("fractions of z are finite, not negative, and not all zero")
    feed = feed / feed.sum(axis=-1, keepdims=True)
    return feed, feed @ mixture.molar_masses


def shape_of(names: Sequence[str], values: Sequence[Array], feed: Optional[Array]) -> tuple[int, ...]:
    """Shape that the arguments broadcast to; ValueError with their shapes where they do not."""
    shapes = [v.shape for v in values] + ([] if feed is None else [feed.shape[:-1]])
    try:
        return np.broadcast_shapes(*shapes)
    except ValueError:
        shown = ", ".join(f"{name} {shape}" for name, shape in zip((*names, "z"), shapes))
        raise ValueError(f"shapes do not broadcast against each other: {shown}") from None
