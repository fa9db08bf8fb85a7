"""Wrong calls of the low-level binding: each ends in Python's own error before the library is called."""
import gc
import sys
import weakref
from array import array
from ctypes import c_double, c_float, c_int32

import numpy as np

from kestrune import _exports as kv

library = kv.load(sys.argv[1])
table, z = array("d", bytes(8 * 86)), [0.5, 0.5]
gas, empty = kv.MixtureRecord.of(table, 2), kv.MixtureRecord()


def two():
    return array("d", [0.0, 0.0])


def flash(z=z, gas=gas, options=1, beta=None, x=None, K=None, T=300.0):
    return library.FlashLVatTP(T, 1.0, z, gas, None, options, beta or c_double(), x or two(), two(), K or two())


def grown():
    record = kv.MixtureRecord.of(table, 2)
    record.count = 3
    return record


def groups(counts, A, nC=3, nG=2, storage=None):
    return library.ConvertPPR78GroupData(nC, nG, counts, A, A, storage)


six, four = np.ones(6, "i4"), np.ones(4)
WRONG = [
    (ValueError, "z: 3 values, 2 (count) are needed", lambda: flash(z=[1, 0, 0])),
    (ValueError, "K: 1 values", lambda: flash(K=array("d", [0.0]))),
    (TypeError, "x: elements of format 'f'", lambda: flash(x=array("f", [0, 0]))),
    (TypeError, "x: list", lambda: flash(x=[0.0, 0.0])),
    (TypeError, "x: memory that is read-only", lambda: flash(x=memoryview(two()).toreadonly())),
    (TypeError, "x: memory that is not in one piece", lambda: flash(x=memoryview(array("d", bytes(32)))[::2])),
    (TypeError, "z: None", lambda: flash(z=None)),
    (TypeError, "beta: elements of format", lambda: library.FlashLVatTP(300, 1, z, gas, None, 1, c_float(), two(), two(), two())),
    (TypeError, "mixture: list", lambda: flash(gas=[])),
    (ValueError, "mixture: a record of 0 components", lambda: flash(gas=empty)),
    (TypeError, "options: float", lambda: flash(options=1.0)),
    (ValueError, "options: 4294967296 is no 32-bit", lambda: flash(options=2**32)),
    (TypeError, "T: str, but a number", lambda: flash(T="300")),
    (TypeError, "MolecularWeight takes 4 arguments", lambda: library.MolecularWeight(2, z, z)),
    (ValueError, "table: 5 values, 86", lambda: kv.MixtureRecord.of([0.0] * 5, 2)),
    (ValueError, "mixture: count is 3, but the record was made with 2", lambda: flash(z=[1, 0, 0], gas=grown())),
    (ValueError, "table: an array of shape (2, 43) in C order, but (2, 43) (count, 43) in Fortran order",
     lambda: kv.MixtureRecord.of(np.zeros((2, 43)), 2)),
    (ValueError, "counts: an array of shape (2, 3) in C order", lambda: groups(six.reshape(2, 3), four)),
    (ValueError, "A: an array of shape (2, 2) in C order", lambda: groups(six, four.reshape(2, 2))),
    (ValueError, "z: an array of shape (1, 2) in C order, but one dimension", lambda: flash(z=np.ones((1, 2)))),
    (ValueError, "counts[0]: 4294967296 is no 32-bit", lambda: groups([2**32] * 6, four)),
    (TypeError, "z[1]: str, but a number", lambda: flash(z=[1, "0"])),
    (ValueError, "nG: 0, but at least one", lambda: groups([], [], nG=0)),
    (ValueError, "storage: six", lambda: library.ConvertPPR78GroupData(1, 1, [1], [0.0], [0.0], [None])),
    (TypeError, "d_dT: None", lambda: library.LiquidPhi_Derivatives_PPR78(300, 1, z, gas, 2, kv.DERIV_T, two(), None,
                                                                         None, None)),
]
for kind, text, call in WRONG:
    try:
        call()
    except kind as error:
        if text not in str(error):
            sys.exit(f"'{text}' expected, '{error}' said")
    else:
        sys.exit(f"not refused: {text}")

# What the rest of the table must not cost: a right call reaches the library, a derivative not asked for may be None.
mean = c_double()
assert library.MolecularWeight(2, z, [2.0, 4.0], mean) == 0 and mean.value == 3.0
assert library.LiquidPhi_Derivatives_PPR78(300, 1, z, gas, 2, 0, two(), None, None, None) >= 9000
assert library.PhaseEnvelope(z, gas, None, 0, 0, 0, 0, 0, 0, 1, 0, two()[:0], two()[:0], two()[:0], c_int32(), c_int32(),
                             *(c_double() for _ in range(4))) >= 9000

# Either order of memory is the same matrix; group data outlive the object that opened the library.
rows = np.array([[0, 1, 2], [1, 0, 0]], dtype="i4")  # groups by components
storage = [None] + [np.zeros(n) for n in (4, 4, 6, 4, 18)]
alive, seen = weakref.ref(storage[3]), []
for counts in (rows.T.ravel().tolist(), np.asfortranarray(rows), rows.T.copy()):
    groups(counts, np.asfortranarray([[0, 30.0], [0, 0]]), storage=storage)
    seen.append(storage[3].tolist())
assert seen[0] == seen[1] == seen[2] and any(seen[0]), seen
del library, storage
gc.collect()
assert alive() is not None, "the group data are gone, and the library reads them"
print(f"{len(WRONG)} wrong calls refused")
