"""What goes wrong: statuses of calculations as exceptions."""

from __future__ import annotations

import warnings

import numpy as np

from ._native import status_text

#: Statuses that come with a value: success, and a correlation continued beyond its range.
GOOD = (0, 1003)


class KestruneError(ArithmeticError):
    """A calculation that ended without an answer.

    Attributes
    ----------
    status : int
        Status of the library, see ``kestrune/status.h``.
    text : str
        What it means.
    """

    def __init__(self, status: int, what: str = "") -> None:
        self.status = int(status)
        self.what = what
        self.text = status_text(status)
        super().__init__(f"{what + ': ' if what else ''}{self.text} (status {self.status})")

    def __reduce__(self) -> tuple[type, tuple[int, str]]:
        return (KestruneError, (self.status, self.what))


def count_failures(status: np.ndarray, what: str, level: int = 4) -> None:
    """Raises KestruneError for a single state without an answer, warns of those among several."""
    failed = status[~np.isin(status, GOOD)]
    if not failed.size:
        return
    if not status.shape:
        raise KestruneError(int(status), what)
    found, counts = np.unique(failed, return_counts=True)
    kinds = "; ".join(f"{n} x {s}: {status_text(int(s))}" for s, n in zip(found, counts))
    text = f"{what}: {failed.size} of {status.size} states without an answer: {kinds}"
    warnings.warn(text, KestruneWarning, stacklevel=level)


class KestruneWarning(UserWarning):
    """A result that holds, with something to be said about it."""
