"""Flashes of large tables over the workers of dask.distributed.

The workers need this package in the same version, nothing else. A task that is lost with its worker is run again on
another one, and the result of a state depends on nothing but the state: what comes back is that of `Mixture.flash`,
to the bit.
"""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Optional, Sequence, Union

import numpy as np
from numpy.typing import NDArray

from ._types import Numbers
from .arguments import feed_of
from .mixture import Mixture
from .states import State
from .units import Units, numbers_of

if TYPE_CHECKING:
    import pandas
    from distributed import Client

__all__ = ["flash", "flash_table"]

_CONDITIONS = ("T", "P", "H", "S", "beta")


def flash(
    client: Client,
    mixture: Mixture,
    T: Optional[Numbers] = None,
    P: Optional[Numbers] = None,
    *,
    H: Optional[Numbers] = None,
    S: Optional[Numbers] = None,
    beta: Optional[Numbers] = None,
    z: Optional[Numbers] = None,
    phases: int = 3,
    threads: int = 1,
    units: Union[str, Units, None] = None,
    rows: int = 4096,
    retries: int = 3,
) -> State:
    """`Mixture.flash` of arrays, in tasks of `rows` states on the workers of a client.

    Parameters
    ----------
    client : distributed.Client
        Its workers have this package installed.
    T, P, H, S, beta, z, phases, units
        As of `Mixture.flash`; at least one of them is an array.
    threads : int
        Threads of a task on its worker.
    rows : int
        States of a task: some ten milliseconds of work and a few megabytes of results at the default.
    retries : int
        How often a task that fails is tried again. A task whose worker dies is moved to another one by the scheduler,
        whatever this is, until it has lost ``distributed.scheduler.allowed-failures`` workers.

    Returns
    -------
    State
        As of the local call, with the shape of the arguments.

    Raises
    ------
    ValueError, TypeError
        As of the local call, before a task is sent.
    distributed.scheduler.KilledWorker
        A task took too many workers with it.
    """
    if rows < 1:
        raise ValueError(f"rows is a whole number from 1, not {rows!r}")
    given = {name: v for name, v in zip(_CONDITIONS, (T, P, H, S, beta)) if v is not None}
    if any(hasattr(v, "magnitude") for v in (*given.values(), z)):
        raise TypeError("states for workers are plain numbers, with their units in units=, not pint quantities")
    numbers = {name: numbers_of(name, v) for name, v in given.items()}
    if z is not None:
        feed_of(mixture, z)  # refuses what is wrong, here
        z = numbers_of("z", z)
    leading = [v.shape for v in numbers.values()] + ([] if z is None else [np.shape(z)[:-1]])
    shape = np.broadcast_shapes(*leading)
    if not shape:
        raise ValueError("the workers take arrays of states: Mixture.flash is for a single one")
    flat: dict[str, Any] = {name: np.broadcast_to(v, shape).reshape(-1) for name, v in numbers.items()}
    if z is not None:
        flat["z"] = np.broadcast_to(z, (*shape, np.shape(z)[-1])).reshape(-1, np.shape(z)[-1])
    options: dict[str, Any] = {"phases": phases, "threads": threads, "units": units}
    empty = mixture.flash(**{name: v[:0] for name, v in flat.items()}, **options)  # refuses what is wrong, here
    count = int(np.prod(shape))
    parts = [{name: v[at : at + rows] for name, v in flat.items()} for at in range(0, count, rows)]
    workers: Any = client  # its methods have no types
    tasks = workers.map(_part, parts, mixture=mixture, options=options, pure=False, retries=retries)
    return _joined([empty, *workers.gather(tasks)], shape)


def flash_table(
    client: Client,
    mixture: Mixture,
    table: pandas.DataFrame,
    properties: Sequence[str] = (),
    **options: Any,
) -> pandas.DataFrame:
    """`flash` of a pandas table with two of the columns T, P, H, S and beta.

    Returns
    -------
    pandas.DataFrame
        `State.to_frame` of the states, with the index of the table: a row for each of its rows, in its order.
    """
    named: list[str] = [name for name in _CONDITIONS if name in table.columns]
    columns: dict[str, Any] = {name: table[name].to_numpy() for name in named}
    state = flash(client, mixture, **columns, **options)
    return state.to_frame(properties).set_index(table.index)


def _part(given: dict[str, Any], mixture: Mixture, options: dict[str, Any]) -> State:
    return mixture.flash(**given, **options)


def _joined(parts: Sequence[State], shape: tuple[int, ...]) -> State:
    first = parts[0]

    def join(arrays: Sequence[Any], *last: int) -> NDArray[Any]:
        return np.asarray(np.concatenate([np.asarray(a) for a in arrays]).reshape(*shape, *last))

    count = len(first.mixture.names)
    phases = [*zip(*(tuple(part) for part in parts))]
    z = None if first.z is None else join([part.z for part in parts], count)
    return State(
        first.mixture,
        first.units,
        first.phases,
        join([part.T_si for part in parts]),
        join([part.P_si for part in parts]),
        [join([phase.fraction for phase in slot]) for slot in phases],
        [join([phase.x for phase in slot], count) for slot in phases],
        join([part.status for part in parts]),
        z,
    )
