"""Reader of the binary files of ``kestrune batch --format binary``; needs numpy alone.

The format stands in docs/batch.md: a description in JSON, then blocks of rows, each with its columns one after the other.
"""

from __future__ import annotations

import json
import os
from typing import Any, Iterator, Union

import numpy as np

__all__ = ["blocks", "description", "read"]

_MAGIC = b"KSTRBAT1"
_TYPES = {"f8": "<f8", "i8": "<i8", "S8": "S8"}


def description(path: Union[str, "os.PathLike[str]"]) -> dict[str, Any]:
    """What a file says of itself: ``program``, ``version``, ``mixture`` and ``columns`` with ``name``, ``type``, ``unit``.

    ValueError for a file that is none of the batch.
    """
    return _head(path)[0]


def blocks(path: Union[str, "os.PathLike[str]"]) -> Iterator[dict[str, np.ndarray]]:
    """The blocks of a file in order, each a dict of columns by name, mapped from the disk: for files beyond the memory.

    A block that is not whole at the end, of a run that was ended, is left out.
    """
    head, offset = _head(path)
    columns = head["columns"]
    size = os.path.getsize(path)
    if size == offset:
        return
    data = np.memmap(path, dtype=np.uint8, mode="r")
    while offset + 8 <= size:
        rows = int(data[offset : offset + 8].view("<u8")[0])
        offset += 8
        if rows == 0 or offset + 8 * rows * len(columns) > size:
            return
        block = {}
        for column in columns:
            block[column["name"]] = data[offset : offset + 8 * rows].view(_TYPES[column["type"]])
            offset += 8 * rows
        yield block


def read(path: Union[str, "os.PathLike[str]"]) -> dict[str, np.ndarray]:
    """All rows of a file, as a dict of columns by name in the units of the file; ``pandas.DataFrame(read(path))`` works."""
    parts = list(blocks(path))
    columns = _head(path)[0]["columns"]
    return {
        c["name"]: np.concatenate([p[c["name"]] for p in parts] or [np.empty(0, dtype=_TYPES[c["type"]])])
        for c in columns
    }


def _head(path: Union[str, "os.PathLike[str]"]) -> tuple[dict[str, Any], int]:
    with open(path, "rb") as file:
        start = file.read(16)
        if len(start) != 16 or start[:8] != _MAGIC:
            raise ValueError(f"{os.fspath(path)} is no binary file of kestrune batch: it begins with {start[:8]!r}")
        length = int.from_bytes(start[8:], "little")
        return json.loads(file.read(length)), 16 + length
