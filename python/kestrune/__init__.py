"""Phase equilibria and properties of natural gases and hydrocarbon mixtures with water, by PPR78.

>>> import kestrune
>>> gas = kestrune.Mixture({"methane": 0.85, "ethane": 0.09, "propane": 0.04, "nC4": 0.02})
>>> state = gas.flash(T=213.15, P=40e5)
>>> round(state.beta, 6)
0.783152
"""

from __future__ import annotations

from ._native import status_text, version
from .curves import Critical, Curve, Envelope
from .databank import Component, components
from .errors import KestruneError, KestruneWarning
from .mixture import Mixture
from .phases import Phase
from .states import State
from .units import Units

__all__ = [
    "Component",
    "Critical",
    "Curve",
    "Envelope",
    "KestruneError",
    "KestruneWarning",
    "Mixture",
    "Phase",
    "State",
    "Units",
    "components",
    "status_text",
]


def __getattr__(name: str) -> str:
    if name == "__version__":
        return version()
    raise AttributeError(f"module 'kestrune' has no attribute {name!r}")
