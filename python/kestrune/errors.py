"""What goes wrong: statuses of calculations as exceptions."""

from __future__ import annotations

import sys
import warnings

from ._native import status_text
from ._types import Status, Value

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


def answered(status: Status, what: str) -> Value:
    """The statuses of states, a number of a single one; KestruneError where that has no answer."""
    if status.shape:
        status.setflags(write=False)
        return status
    if int(status) not in GOOD:
        raise KestruneError(int(status), what)
    return int(status)


class KestruneWarning(UserWarning):
    """A result that holds, with something to be said about it."""


def warn(text: str) -> None:
    """A KestruneWarning at the line outside the package that asked for the result."""
    level, frame = 2, sys._getframe(1)
    while frame.f_back is not None and str(frame.f_globals.get("__name__", "")).startswith("kestrune."):
        frame, level = frame.f_back, level + 1
    warnings.warn(text, KestruneWarning, stacklevel=level)
