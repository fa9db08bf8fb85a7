"""Components of the databank, and what a user writes down as a mixture."""

from __future__ import annotations

import json
import math
from typing import Any, Mapping, NamedTuple, Optional, Union

import numpy as np

from . import _native

__all__ = ["Component", "components"]


class Component(NamedTuple):
    """Constants of a component: molar mass g/mol, Tc K, Pc Pa, Vc m3/mol, Tb K; None where not known."""

    name: str
    formula: str
    cas: str
    molar_mass: float
    Tc: float
    Pc: float
    omega: float
    Vc: Optional[float]
    Tb: Optional[float]
    groups: str


def components(filter: str = "") -> list[Component]:
    """Components of the databank whose name, alias, formula or CAS number contains the text; all for none."""
    if not isinstance(filter, str):
        raise TypeError(f"components are searched by a text, not {filter!r}")
    return [Component(**c) for c in json.loads(_native.read_text("ka_components", filter.encode()))]


def source_of(given: Any) -> str:
    """What the native library reads for what a user wrote."""
    if isinstance(given, str):
        return given
    if isinstance(given, Mapping) and "components" in given:
        return json.dumps(given, allow_nan=False, default=_json_of)
    pairs = given.items() if hasattr(given, "items") else given
    try:
        listed = [(component, amount) for component, amount in pairs]
    except (TypeError, ValueError):
        raise TypeError(f"a mixture is given as {{'methane': 0.9, 'ethane': 0.1}}, not {given!r}") from None
    amounts: dict[str, Any] = {}
    for component, amount in listed:
        if component in amounts:
            raise ValueError(f"{component} is given twice")
        amounts[component] = _amount(component, amount)
    return json.dumps({"components": amounts})


def _json_of(value: Any) -> Any:
    """Numbers and arrays of numpy as those of Python."""
    if isinstance(value, (np.generic, np.ndarray)):
        return value.tolist()
    raise TypeError(f"a mixture file has numbers, texts, lists and objects, not {value!r}")


def _amount(component: Any, amount: Any) -> Union[float, str]:
    if not isinstance(component, str):
        raise ValueError(f"a component is named by a text, not {component!r}")
    if isinstance(amount, str):
        return amount
    try:
        if isinstance(amount, (bool, np.bool_)):
            raise TypeError
        value = float(amount)
    except (TypeError, ValueError):
        raise ValueError(f"the amount of {component} must be a number, not {amount!r}") from None
    if not math.isfinite(value):
        raise ValueError(f"the amount of {component} must be a finite number, not {value}")
    return value
