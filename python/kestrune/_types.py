"""Types of what the package is given and gives back."""

from __future__ import annotations

from typing import Any, Protocol, Sequence, Union

import numpy as np
from numpy.typing import NDArray

__all__ = ["Array", "Numbers", "Status", "Value"]

#: Numbers with the shape of the states, or of their compositions.
Array = NDArray[np.float64]
#: Statuses with the shape of the states.
Status = NDArray[np.int32]
#: What a result is depends on values: a float of one state, an array of many, a pint quantity with ``units="pint"``.
Value = Any


class _HasArray(Protocol):
    """Arrays, their scalars, masked arrays and columns of tables."""

    def __array__(self) -> NDArray[Any]: ...


class _Quantity(Protocol):
    """A quantity of pint, with one number or an array in it."""

    @property
    def magnitude(self) -> Any: ...

    @property
    def dimensionality(self) -> Any: ...


#: A number, an array of any shape, lists of numbers or a quantity; no text.
Numbers = Union[
    float,
    _HasArray,
    _Quantity,
    Sequence[float],
    Sequence[_HasArray],
    Sequence[Sequence[float]],
    Sequence[Sequence[Sequence[float]]],
]
