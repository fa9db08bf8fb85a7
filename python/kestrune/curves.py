"""Phase envelopes, quality lines and critical points."""

from __future__ import annotations

import numbers
from typing import TYPE_CHECKING, Any, NamedTuple, Optional, Sequence, Union

import numpy as np
from numpy.typing import NDArray

from . import _native
from ._types import Array, Numbers, Value
from .errors import KestruneError, warn
from .units import Units, numbers_of

if TYPE_CHECKING:
    import pandas

    from .mixture import Mixture

__all__ = ["Critical", "Curve", "Envelope"]

#: Temperature and pressure of a point.
Point = tuple[Value, Value]
#: Statuses of a curve that is good for what it shows: closed, open at the default limits, with a line of two liquids.
_GOOD_CURVES = (0, 140, 141, 146)
_TRACED = 2000  # room for a curve whose number of points was not asked for
#: Neighbours further apart than this in ln P, or 10 times ln T, belong to different parts of the outline.
_JUMP = 1.5
_COLOURS = {"dew": "tab:blue", "bubble": "tab:red", "two liquids": "tab:green", "quality": "tab:grey"}


class Critical(NamedTuple):
    """Critical point of a mixture: T, P, molar volume V and compressibility factor Z; SI K, Pa, m3/mol."""

    T: Value
    P: Value
    V: Value
    Z: float

    @classmethod
    def of(cls, mixture: Mixture, units: Units) -> Critical:
        """The critical point of highest temperature; KestruneError 145 without a stable one."""
        values, status = np.empty(4), np.empty(1, dtype=np.int32)
        _native.call("ka_critical", mixture.handle, values.ctypes.data, status.ctypes.data)
        if status[0] != 0:
            raise KestruneError(int(status[0]), f"critical point of {mixture.title_or_names}")
        T, P = _shown(values[0], values[1], units)
        return cls(T, P, units.from_si("molar volume", values[2]), float(values[3]))


class Curve:
    """A curve of an envelope.

    Attributes
    ----------
    T, P : array
        Temperature and pressure along it.
    kind : array of str
        ``"dew"``, ``"bubble"``, ``"two liquids"``, ``"quality"``, ``"critical"``; ``"... (not stable)"`` where another
        phase splits off before.
    status : int
        0, or why it is not closed.
    """

    __slots__ = ("T", "P", "kind", "status", "cricondentherm", "cricondenbar", "critical", "_lines")

    def __init__(self, mixture: Mixture, fraction: float, limits: Sequence[float], points: int, units: Units) -> None:
        T, P, kind, extremes, self.status = _traced(mixture, fraction, limits, points)
        if T.size == 0:
            raise KestruneError(self.status, f"curve of {mixture.title_or_names} at vapour fraction {fraction:g}")
        if self.status not in _GOOD_CURVES:
            warn(_native.status_text(self.status))
        critical = kind == 0.5
        if fraction == 0.5:
            critical[:-1] = False
        self.kind = _words(kind, critical, fraction)
        self.T, self.P = units.from_si("temperature", T), units.from_si("pressure", P)
        self.cricondentherm = _place(extremes[0], extremes[1], units)
        self.cricondenbar = _place(extremes[2], extremes[3], units)
        hottest = np.argsort(-T[critical])
        self.critical = [_shown(t, p, units) for t, p in zip(T[critical][hottest], P[critical][hottest])]
        self._lines = _pieces(T, P, self.kind)

    def __repr__(self) -> str:
        return f"<curve of {len(self.kind)} points, status {self.status}>"


class Envelope:
    """Bubble and dew curve of a mixture, with quality lines, what `Mixture.envelope` returns.

    Attributes
    ----------
    curve : Curve
        Bubble and dew curve; its `T`, `P`, `kind` and `status` are those of the envelope too.
    quality : dict of float to Curve
        Lines of these vapour fractions.
    critical : list of (T, P)
        Critical points on the curve, the hottest first.
    cricondentherm, cricondenbar : (T, P) or None
        Points of highest temperature and of highest pressure.
    """

    __slots__ = ("mixture", "units", "curve", "quality")

    def __init__(self, mixture: Mixture, units: Units, curve: Curve, quality: dict[float, Curve]) -> None:
        self.mixture, self.units, self.curve, self.quality = mixture, units, curve, quality

    @classmethod
    def of(
        cls,
        mixture: Mixture,
        quality: Sequence[float] = (),
        *,
        points: int = 0,
        first_P: Optional[Numbers] = None,
        highest_P: Optional[Numbers] = None,
        lowest_T: Optional[Numbers] = None,
        units: Union[str, Units, None] = None,
    ) -> Envelope:
        """Traces the curves.

        Parameters
        ----------
        quality : sequence of float
            Vapour fractions of quality lines, between 0 and 1.
        points : int
            Points per curve, evenly spaced; 0: as traced.
        first_P, highest_P, lowest_T : float, optional
            Limits; default 1 atm, 2000 atm and 50 K.

        Raises
        ------
        KestruneError
            A curve without any point. One that is not complete comes with a `KestruneWarning` and its status.
        """
        shown = mixture.units if units is None else Units.of(units)
        lines = [float(q) for q in np.atleast_1d(numbers_of("quality", quality))]
        if any(not 0.0 < q < 1.0 for q in lines):
            raise ValueError(f"quality lines have vapour fractions between 0 and 1, not {lines}")
        if not isinstance(points, numbers.Integral) or not 0 <= points <= 100000:
            raise ValueError(f"points is a whole number from 0 to 100000, not {points!r}")
        limits = [
            _limit(shown, name, quantity, value)
            for name, quantity, value in (
                ("first_P", "pressure", first_P),
                ("highest_P", "pressure", highest_P),
                ("lowest_T", "temperature", lowest_T),
            )
        ]
        if limits[0] >= limits[1] > 0.0:
            raise ValueError(f"first_P is below highest_P, not {first_P!r} and {highest_P!r}")
        made = [Curve(mixture, fraction, limits, int(points), shown) for fraction in (1.0, *lines)]
        return cls(mixture, shown, made[0], dict(zip(lines, made[1:])))

    @property
    def T(self) -> Value:
        """Temperatures of the bubble and dew curve."""
        return self.curve.T

    @property
    def P(self) -> Value:
        """Pressures of the bubble and dew curve."""
        return self.curve.P

    @property
    def kind(self) -> NDArray[np.str_]:
        """What its points are, see `Curve`."""
        return self.curve.kind

    @property
    def status(self) -> int:
        """Its status."""
        return self.curve.status

    @property
    def critical(self) -> list[Point]:
        """Critical points on it, the hottest first."""
        return self.curve.critical

    @property
    def cricondentherm(self) -> Optional[Point]:
        """Its point of highest temperature; None where there is none."""
        return self.curve.cricondentherm

    @property
    def cricondenbar(self) -> Optional[Point]:
        """Its point of highest pressure; None where there is none."""
        return self.curve.cricondenbar

    def __repr__(self) -> str:
        return f"<envelope of {self.mixture.title_or_names}, {len(self.kind)} points, status {self.status}>"

    def to_frame(self) -> pandas.DataFrame:
        """A pandas table with a row per point: T, P, kind, fraction (1 of the bubble and dew curve)."""
        import pandas

        parts = [
            pandas.DataFrame({"T": c.T, "P": c.P, "kind": c.kind, "fraction": fraction})
            for fraction, c in ((1.0, self.curve), *self.quality.items())
        ]
        return pandas.concat(parts, ignore_index=True)

    def plot(self, ax: Any = None, points: Optional[tuple[Numbers, Numbers]] = None) -> Any:
        """Draws the curves, critical points and operating points.

        Parameters
        ----------
        ax : matplotlib Axes, optional
            Where to draw; default a new figure.
        points : (T, P), optional
            Operating points, in the units of the envelope.

        Returns
        -------
        matplotlib Axes
        """
        if ax is None:
            from matplotlib import pyplot

            ax = pyplot.subplots()[1]
        self._draw(ax, self.curve)
        for fraction, curve in self.quality.items():
            self._draw(ax, curve, f"vapour fraction {fraction:g}")
        for k, (T, P) in enumerate(self.critical):
            ax.plot(_bare(T), _bare(P), "ko", label="critical" if k == 0 else None)
        if points is not None:
            T, P = (
                _bare(self.units.from_si(q, self.units.to_si(q, v))).ravel()
                for q, v in zip(("temperature", "pressure"), points)
            )
            ax.plot(T, P, "kx", label="states")
        ax.set_xlabel(f"temperature, {self.units.symbol('temperature')}")
        ax.set_ylabel(f"pressure, {self.units.symbol('pressure')}")
        ax.legend()
        return ax

    def _draw(self, ax: Any, curve: Curve, label: str = "") -> None:
        shown = set()
        for word, first, last in curve._lines:
            style = ":" if "not stable" in word else "--" if word == "quality" else "-"
            name = label or word
            ax.plot(
                _bare(curve.T)[first:last],
                _bare(curve.P)[first:last],
                style,
                color=_COLOURS.get(word.split(" (")[0], "tab:orange"),
                label=None if name in shown else name,
            )
            shown.add(name)


def _limit(units: Units, name: str, quantity: str, value: Any) -> float:
    """A limit in SI, 0 for the default."""
    if value is None:
        return 0.0
    limit = units.to_si(quantity, value)
    if limit.shape or not (np.isfinite(limit) and limit > 0.0):
        raise ValueError(f"{name} is a {quantity} above zero, not {value!r}")
    return float(limit)


def _bare(values: Any) -> Array:
    """Numbers of what may be pint quantities."""
    return np.asarray(getattr(values, "magnitude", values))


def _traced(
    mixture: Mixture, fraction: float, limits: Sequence[float], points: int
) -> tuple[Array, Array, Array, Array, int]:
    capacity = max(points, _TRACED)
    T, P, kind = np.empty(capacity), np.empty(capacity), np.empty(capacity)
    extremes, range_of = np.empty(4), np.asarray(limits, dtype=float)
    found, status = np.empty(1, dtype=np.int32), np.empty(1, dtype=np.int32)
    arrays: list[NDArray[Any]] = [T, P, kind, found, extremes, status]
    addresses = [a.ctypes.data for a in arrays]
    _native.call("ka_envelope", mixture.handle, fraction, range_of.ctypes.data, points, capacity, *addresses)
    if status[0] >= 9000:
        raise KestruneError(int(status[0]), f"curve of {mixture.title_or_names}")
    n = min(int(found[0]), capacity)
    return T[:n], P[:n], kind[:n], extremes, int(status[0])


def _words(kind: Array, critical: NDArray[np.bool_], fraction: float) -> NDArray[np.str_]:
    """Points in words, by the numbers of PhaseEnvelope: 2 more where another phase splits off, 4 two liquids."""
    stable = (kind < 2.0) | (kind == 4.0)
    plain = np.where(stable, kind, kind - 2.0)
    if fraction < 1.0:
        words = np.full(kind.shape, "quality", dtype=object)
    else:
        words = np.select([plain == 4.0, plain == 1.0], ["two liquids", "dew"], "bubble").astype(object)
    words = np.where(stable, words, words + " (not stable)")
    return np.where(critical, "critical", words).astype(str)


def _shown(T: float, P: float, units: Units) -> Point:
    return units.from_si("temperature", T), units.from_si("pressure", P)


def _place(T: float, P: float, units: Units) -> Optional[Point]:
    return _shown(T, P, units) if T > 0.0 else None


def _pieces(T: Array, P: Array, kind: NDArray[np.str_]) -> list[tuple[str, int, int]]:
    """Kind, first and end of the stretches that are drawn as one line; neighbours share a point."""
    pieces: list[tuple[str, int, int]] = []
    for k in range(T.size):
        apart = k > 0 and np.hypot(10.0 * np.log(T[k] / T[k - 1]), np.log(P[k] / P[k - 1])) > _JUMP
        word = pieces[-1][0] if pieces and kind[k] == "critical" else str(kind[k])
        if not pieces or apart or word != pieces[-1][0]:
            pieces.append((word, k if apart or k == 0 else k - 1, k + 1))
        else:
            pieces[-1] = (word, pieces[-1][1], k + 1)
    return pieces
