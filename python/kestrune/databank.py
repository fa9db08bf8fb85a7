"""Components of the databank, and what a user writes down as a mixture."""

from __future__ import annotations

import json
import math
from typing import Any, Mapping, NamedTuple, Optional, Union

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
    return [Component(**c) for c in json.loads(_native.read_text("ka_components", filter.encode()))]


def source_of(given: Any, name: str) -> str:
    """What the native library reads for what a user wrote."""
    if isinstance(given, str):
        return given
    if isinstance(given, Mapping) and "components" in given:
        return json.dumps(given, allow_nan=False)
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
    whole: dict[str, Any] = {"components": amounts}
    return json.dumps({"name": name, **whole} if name else whole)


def _amount(component: Any, amount: Any) -> Union[float, str]:
    if not isinstance(component, str):
        raise ValueError(f"a component is named by a text, not {component!r}")
    if isinstance(amount, str):
        return amount
    try:
        value = float(amount)
    except (TypeError, ValueError):
        raise ValueError(f"the amount of {component} must be a number, not {amount!r}") from None
    if not math.isfinite(value):
        raise ValueError(f"the amount of {component} must be a finite number, not {value}")
    return value
