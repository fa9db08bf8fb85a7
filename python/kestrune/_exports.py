"""The exports of KVGasThermo through ctypes, with nothing but the standard library.

Made by tools/make_bindings.py from bindings/exports.toml; change that and run it.

    library = load("/opt/kestrune/lib/libKVGasThermo.so")
    record = MixtureRecord.of(table, count)
    status = library.FlashLVatTP(280.0, 30.0, z, record, None, 1, beta, x, y, K)

A method of Library takes the words of the export of that name: numbers by value as Python numbers; a single value
behind an address as c_double or c_int32; arrays as anything with a buffer of doubles (int32) in one piece (numpy,
array.array, ctypes), for input also as a list. An array of two dimensions has the documented shape in Fortran order or
the reversed one in C order; a square one is taken in Fortran order only, for nothing else tells rows from columns.
A method raises TypeError for a wrong type or None, ValueError for a wrong length, shape or count, before the library is
called, and returns the status (STATUS has names and texts). library.raw holds the bare functions with their argtypes,
which check nothing. Group data stay alive for the library, which is one per process however often it is opened.
Units: K, atm, cal/mol, cal/(mol K), cm3/mol, g/cm3 unless a word says otherwise.
"""
from __future__ import annotations

import ctypes
import math
import operator
import sys
from ctypes import POINTER, c_double, c_int32, c_uint8
from typing import TYPE_CHECKING, Any, Callable, Mapping, NamedTuple, Optional, Sequence

VERSION = "0.2.0"
LIBRARY = "KVGasThermo"

# Status: (name, text).
STATUS = {
    0: ("KV_OK", "success"),
    -1: ("KV_NO_WATER", "no component of the mixture has the CAS number of water"),
    1: ("KV_INHIBITOR_MASS", "the molar mass of a user-defined inhibitor is not positive"),
    4: ("KV_NO_WATER_LIMIT", "the gas takes up any amount of water at this temperature and pressure"),
    51: ("KV_NO_ROOT", "the equation of state has no root above the co-volume"),
    111: ("KV_FEED_SUM", "the feed mole fractions do not sum to one within the tolerance of the record"),
    112: ("KV_NOT_CONVERGED", "no convergence within the iteration limit; what the results hold is no answer"),
    113: ("KV_DAMPING", "the damping of the Newton step is exhausted"),
    114: ("KV_RELAXATION", "the relaxation factor fell below its limit"),
    115: ("KV_ZERO_SLOPE", "the derivative of the residual is zero"),
    116: ("KV_NO_SATURATION", "no temperature or pressure has this vapour fraction with two phases"),
    117: ("KV_UNSTABLE_POINT", "a point of this vapour fraction was found, but another phase splits off before it"),
    118: ("KV_FOURTH_PHASE", "three phases were found, but a fourth would split off; results hold these three"),
    120: ("KV_TRIVIAL", "the iteration ended on two identical phases or broke down"),
    121: ("KV_TRIVIAL_LV", "the vapour and the second liquid became the same phase"),
    134: ("KV_LV_ANSWER_DOUBTFUL", "one liquid and a vapour remain; the flash that said so had a status"),
    135: ("KV_LL_ANSWER_DOUBTFUL", "no vapour remains; the flash that said so had a status"),
    136: ("KV_NO_START", "no starting point for three phases could be built"),
    140: ("KV_ENVELOPE_OPEN", "the envelope is open: it reached the default highest pressure"),
    141: ("KV_ENVELOPE_COLD", "the envelope reached the default lowest temperature"),
    142: ("KV_ENVELOPE_FULL", "the arrays are too short for all points of the curve"),
    143: ("KV_ENVELOPE_UNSTABLE", "another phase splits off before the marked points of the curve"),
    144: ("KV_ENVELOPE_BROKEN", "the curve could not be followed to its end"),
    145: ("KV_NO_CRITICAL", "the mixture has no stable critical point"),
    146: ("KV_ENVELOPE_LIQUIDS", "a part of the curve is where a second liquid forms"),
    151: ("KV_WATER_RANGE", "temperature, pressure or gas outside the range of the water-content method"),
    1001: ("KV_PURE_UNKNOWN", "pure-component library: component unknown"),
    1002: ("KV_PURE_NO_CORRELATION", "pure-component library: no correlation for this property"),
    1003: ("KV_PURE_RANGE", "pure-component library: temperature outside the range of the correlation"),
    1004: ("KV_PURE_ARGUMENT", "pure-component library: an argument is not finite"),
    9002: ("KV_NULL_ARGUMENT", "an argument that is read or written is a null pointer"),
    9003: ("KV_COMPONENT_COUNT", "the number of components is below 1 or above 10000"),
    9004: ("KV_TEMPERATURE", "the temperature is not finite or not positive"),
    9005: ("KV_PRESSURE", "the pressure is not finite or not positive"),
    9006: ("KV_COMPOSITION", "a composition has an entry that is negative or not finite, or is all zero"),
    9007: ("KV_COMPONENT_DATA", "a critical temperature, critical pressure, acentric factor or molar mass is unusable"),
    9008: ("KV_GROUP_DATA", "no group data for this number of components: call ConvertPPR78GroupData first"),
    9009: ("KV_SPECIFICATION", "a specified quantity or option is not finite or out of range"),
    9010: ("KV_MEMORY", "not enough memory for the work arrays"),
    9011: ("KV_INTERNAL", "unexpected failure inside the library; please report it"),
    9012: ("KV_NOT_FINITE", "the equation of state gave a value that is not finite at these conditions"),
}

# Columns of the component table, from 1.
COL_DATABANK_NUMBER = 1  # running number in the host's databank, not read
COL_MOLAR_MASS = 2  # g/mol
COL_MELTING_POINT = 3  # triple or melting point, K
COL_BOILING_POINT = 4  # normal boiling point, K
COL_TC = 5  # critical temperature, K
COL_PC = 6  # critical pressure, atm
COL_VC = 7  # critical volume, cm3/mol
COL_ZC = 8  # critical compressibility factor
COL_OMEGA = 9  # acentric factor
COL_DIPOLE = 10  # dipole moment, debye
COL_TMIN_PSAT = 11  # lowest temperature of its vapour-pressure correlation, K
COL_CP_A = 12  # own ideal-gas heat capacity: A, and B to E in the columns behind it
COL_CP_TMIN = 17  # range of it, K
COL_CP_TMAX = 18  # as the one before
COL_FAMILY = 41  # family code, KV_FAMILY_WATER marks water
COL_CAS = 43  # CAS number as a whole number: 7732185 is 7732-18-5

# Settings, routines of a host, phases and derivatives.
TABLE_COLUMNS = 43
FAMILY_WATER = 20.0
MAX_COMPONENTS = 10000
MOST_ITERATIONS = 10000
DEFAULT_CRIT = 1e-12
DEFAULT_CLIM = 1e10
DEFAULT_EPS = 1e-6
DEFAULT_ITEMAX = 200
DEFAULT_NEW = 0
DEFAULT_RELAXATION = 1.0
DEFAULT_PURE_TOLERANCE = 1e-12
DEFAULT_SUM_TOLERANCE = 1e-6
ROUTINE_COUNT = 14
ROUTINE_LL_FLASH = 1
ROUTINE_LV_FLASH = 2
ROUTINE_FUGACITY = 8
ROUTINE_LIQUID_ORDER = 10
ROUTINE_GAS_ENTHALPY = 11
ROUTINE_GAS_ENTROPY = 12
ROUTINE_LIQUID_ENTHALPY = 13
ROUTINE_LIQUID_ENTROPY = 14
PHASE_GAS = 1
PHASE_LIQUID = 2
DERIV_T = 1
DERIV_P = 2
DERIV_N = 4
FREE_WATER_FLAG = 1


class MixtureRecord(ctypes.Structure):
    """A mixture and the settings of its calculations; 125 bytes, packed. All settings 0: the defaults."""
    _pack_ = 1
    _layout_ = "ms"
    _fields_ = [
        ("count", c_int32),  # number of components, 1 .. 10 000
        ("table", POINTER(c_double)),  # ComponentTable, 43 columns of count doubles
        ("_reserved8", c_uint8 * (12 - ctypes.sizeof(ctypes.c_void_p))),
        ("flags", c_uint8),  # bit 0: FreeWaterFlag
        ("solubility_a", c_double),  # water solubility limit s(T) = exp(a - b / T), capped at 1
        ("solubility_b", c_double),  # b of that limit, K
        ("_reserved33", c_uint8 * 28),
        ("CRIT", c_double),  # convergence criterion on the iteration error
        ("CLIM", c_double),  # error level below which the method may be changed, 0: never
        ("EPS", c_double),  # stagnation tolerance
        ("ITEMAX", c_int32),  # iteration limit
        ("NEW", c_int32),  # iterations granted to the global method, in units of count + 1
        ("trace_flag", c_int32),  # not 0: write the trace
        ("trace_unit", c_int32),  # 6 standard output, 0 standard error, n the file fort.n
        ("relaxation", c_double),  # factor of the substitution, 1: full step
        ("pure_tolerance", c_double),  # a feed with one fraction above 1 - this counts as pure
        ("sum_tolerance", c_double),  # largest |sum of the feed - 1| where it is tested
    ]

    @classmethod
    def of(cls, table: Any, count: int) -> MixtureRecord:
        """Record of count components; table: 43 * count doubles, column by column, kept alive by the record."""
        record = cls()
        record.count = _integer("count", count)
        if record.count < 1:
            raise ValueError(f"count: {record.count}, but a mixture has at least one component")
        record._kept = _array(Word("table", "doubles", "in", "count*43", "", 0, ""), table, (record.count, 43))
        record.table = ctypes.cast(record._kept, POINTER(c_double))
        return record


_OFFSETS = {"count": 0, "table": 4, "flags": 16, "solubility_a": 17, "solubility_b": 25, "CRIT": 61, "CLIM": 69, "EPS": 77, "ITEMAX": 85, "NEW": 89, "trace_flag": 93, "trace_unit": 97, "relaxation": 101, "pure_tolerance": 109, "sum_tolerance": 117}
assert ctypes.sizeof(MixtureRecord) == 125, "MixtureRecord is not packed"
assert all(getattr(MixtureRecord, name).offset == at for name, at in _OFFSETS.items()), "a field has moved"


class ModelRoutines(ctypes.Structure):
    """Addresses of a host's routines, entry k at k - 1; null: the library's own."""
    _fields_ = [("entry", ctypes.c_void_p * ROUTINE_COUNT)]


class Word(NamedTuple):
    """One word of an argument list, as bindings/exports.toml has it."""
    name: str
    kind: str
    dir: str
    shape: str
    unit: str
    bit: int
    doc: str


# Export: (whether it returns a status, its words, what it does).
EXPORTS = {
    "ConvertPPR78GroupData": (False, (
        Word("nC", "int", "", "", "", 0, 'number of components'),
        Word("nG", "int", "", "", "", 0, 'number of groups'),
        Word("counts", "ints", "in", "nG*nC", "", 0, 'how often group k occurs in component i, one column a component'),
        Word("A", "doubles", "in", "nG*nG", "MPa", 0, 'group interactions, column by column, upper triangle read'),
        Word("B", "doubles", "in", "nG*nG", "MPa", 0, 'as A'),
        Word("storage", "buffers", "in", "6", "", 0, 'six buffers of doubles that stay with the host: unused, nG*nG, nG*nG, nC*nG, nG*nG, nG*nC*nC'),
    ), 'Hands over groups and group interactions, once, before any other calculation'),
    "MolecularWeight": (True, (
        Word("nc", "int", "", "", "", 0, 'number of components'),
        Word("x", "doubles", "in", "nc", "mol/mol", 0, 'composition'),
        Word("M", "doubles", "in", "nc", "g/mol", 0, 'molar masses'),
        Word("mean", "doubles", "out", "1", "g/mol", 0, 'sum of x[i] M[i]'),
    ), 'Molar mass of a mixture'),
    "FlashLVatTP": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("routines", "routines", "in", "1", "", 0, "routines of the host; null: the library's own"),
        Word("options", "int", "", "", "", 0, 'start, 1: cold start; clear: warm start from the result arguments'),
        Word("beta", "doubles", "inout", "1", "mol/mol", 0, 'vapour fraction'),
        Word("x", "doubles", "inout", "count", "mol/mol", 0, 'liquid'),
        Word("y", "doubles", "inout", "count", "mol/mol", 0, 'vapour'),
        Word("K", "doubles", "out", "count", "", 0, 'y / x'),
    ), 'Liquid and vapour at temperature and pressure'),
    "FlashLVatHP": (True, (
        Word("H", "double", "", "", "cal/mol", 0, 'enthalpy of one mole of feed'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("routines", "routines", "in", "1", "", 0, "routines of the host; null: the library's own"),
        Word("options", "int", "", "", "", 0, 'start, 1: cold start; clear: warm start from the result arguments'),
        Word("T", "doubles", "inout", "1", "K", 0, 'temperature; exactly 0 counts as no estimate'),
        Word("beta", "doubles", "inout", "1", "mol/mol", 0, 'vapour fraction'),
        Word("x", "doubles", "inout", "count", "mol/mol", 0, 'liquid'),
        Word("y", "doubles", "inout", "count", "mol/mol", 0, 'vapour'),
        Word("K", "doubles", "out", "count", "", 0, 'y / x'),
        Word("HL", "doubles", "out", "1", "cal/mol", 0, 'molar enthalpy of the liquid'),
        Word("HV", "doubles", "out", "1", "cal/mol", 0, 'molar enthalpy of the vapour'),
    ), 'Liquid and vapour at enthalpy and pressure'),
    "FlashLVatSP": (True, (
        Word("S", "double", "", "", "cal/(mol K)", 0, 'entropy of one mole of feed'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("routines", "routines", "in", "1", "", 0, "routines of the host; null: the library's own"),
        Word("options", "int", "", "", "", 0, 'start, 1: cold start; clear: warm start from the result arguments'),
        Word("T", "doubles", "inout", "1", "K", 0, 'temperature; exactly 0 counts as no estimate'),
        Word("beta", "doubles", "inout", "1", "mol/mol", 0, 'vapour fraction'),
        Word("x", "doubles", "inout", "count", "mol/mol", 0, 'liquid'),
        Word("y", "doubles", "inout", "count", "mol/mol", 0, 'vapour'),
        Word("K", "doubles", "out", "count", "", 0, 'y / x'),
        Word("SL", "doubles", "out", "1", "cal/(mol K)", 0, 'molar entropy of the liquid'),
        Word("SV", "doubles", "out", "1", "cal/(mol K)", 0, 'molar entropy of the vapour'),
    ), 'Liquid and vapour at entropy and pressure'),
    "FlashLVatWP": (True, (
        Word("W", "double", "", "", "mol/mol", 0, 'vapour fraction, 0 bubble point, 1 dew point'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("routines", "routines", "in", "1", "", 0, "routines of the host; null: the library's own"),
        Word("options", "int", "", "", "", 0, 'start, 1: cold start; clear: warm start from the result arguments'),
        Word("T", "doubles", "inout", "1", "K", 0, 'temperature; not above 0 counts as no estimate'),
        Word("x", "doubles", "inout", "count", "mol/mol", 0, 'liquid'),
        Word("y", "doubles", "inout", "count", "mol/mol", 0, 'vapour'),
        Word("K", "doubles", "out", "count", "", 0, 'y / x'),
    ), 'Temperature of a vapour fraction at a pressure'),
    "FlashLVatWT": (True, (
        Word("W", "double", "", "", "mol/mol", 0, 'vapour fraction, 0 bubble point, 1 dew point'),
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("routines", "routines", "in", "1", "", 0, "routines of the host; null: the library's own"),
        Word("options", "int", "", "", "", 0, 'start, 1: cold start; clear: warm start from the result arguments'),
        Word("P", "doubles", "inout", "1", "atm", 0, 'pressure; not above 0 counts as no estimate'),
        Word("x", "doubles", "inout", "count", "mol/mol", 0, 'liquid'),
        Word("y", "doubles", "inout", "count", "mol/mol", 0, 'vapour'),
        Word("K", "doubles", "out", "count", "", 0, 'y / x'),
    ), 'Pressure of a vapour fraction at a temperature'),
    "FlashLLVatTP": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("routines", "routines", "in", "1", "", 0, "routines of the host; null: the library's own"),
        Word("options", "int", "", "", "", 0, 'start, 1: the result arguments hold an estimate'),
        Word("beta", "doubles", "inout", "1", "mol/mol", 0, 'share of liquid A'),
        Word("V", "doubles", "inout", "1", "mol/mol", 0, 'share of the vapour'),
        Word("xA", "doubles", "inout", "count", "mol/mol", 0, 'liquid A, the lighter one'),
        Word("xB", "doubles", "inout", "count", "mol/mol", 0, 'liquid B, the denser one'),
        Word("y", "doubles", "inout", "count", "mol/mol", 0, 'vapour'),
        Word("KLL", "doubles", "out", "count", "", 0, 'xA / xB'),
        Word("KLV", "doubles", "out", "count", "", 0, 'y / xA'),
    ), 'Up to two liquids and a vapour at temperature and pressure'),
    "FlashLLVatHP": (True, (
        Word("H", "double", "", "", "cal/mol", 0, 'enthalpy of one mole of feed'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("routines", "routines", "in", "1", "", 0, "routines of the host; null: the library's own"),
        Word("options", "int", "", "", "", 0, 'start, 1: the result arguments hold an estimate'),
        Word("T", "doubles", "inout", "1", "K", 0, 'temperature; exactly 0 counts as no estimate'),
        Word("beta", "doubles", "inout", "1", "mol/mol", 0, 'share of liquid A'),
        Word("V", "doubles", "inout", "1", "mol/mol", 0, 'share of the vapour'),
        Word("xA", "doubles", "inout", "count", "mol/mol", 0, 'liquid A, the lighter one'),
        Word("xB", "doubles", "inout", "count", "mol/mol", 0, 'liquid B, the denser one'),
        Word("y", "doubles", "inout", "count", "mol/mol", 0, 'vapour'),
        Word("KLL", "doubles", "out", "count", "", 0, 'xA / xB'),
        Word("KLV", "doubles", "out", "count", "", 0, 'y / xA'),
        Word("HA", "doubles", "out", "1", "cal/mol", 0, 'molar enthalpy of liquid A'),
        Word("HB", "doubles", "out", "1", "cal/mol", 0, 'molar enthalpy of liquid B'),
        Word("HV", "doubles", "out", "1", "cal/mol", 0, 'molar enthalpy of the vapour'),
    ), 'Up to two liquids and a vapour at enthalpy and pressure'),
    "FlashLLVatSP": (True, (
        Word("S", "double", "", "", "cal/(mol K)", 0, 'entropy of one mole of feed'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("routines", "routines", "in", "1", "", 0, "routines of the host; null: the library's own"),
        Word("options", "int", "", "", "", 0, 'start, 1: the result arguments hold an estimate'),
        Word("T", "doubles", "inout", "1", "K", 0, 'temperature; exactly 0 counts as no estimate'),
        Word("beta", "doubles", "inout", "1", "mol/mol", 0, 'share of liquid A'),
        Word("V", "doubles", "inout", "1", "mol/mol", 0, 'share of the vapour'),
        Word("xA", "doubles", "inout", "count", "mol/mol", 0, 'liquid A, the lighter one'),
        Word("xB", "doubles", "inout", "count", "mol/mol", 0, 'liquid B, the denser one'),
        Word("y", "doubles", "inout", "count", "mol/mol", 0, 'vapour'),
        Word("KLL", "doubles", "out", "count", "", 0, 'xA / xB'),
        Word("KLV", "doubles", "out", "count", "", 0, 'y / xA'),
        Word("SA", "doubles", "out", "1", "cal/(mol K)", 0, 'molar entropy of liquid A'),
        Word("SB", "doubles", "out", "1", "cal/(mol K)", 0, 'molar entropy of liquid B'),
        Word("SV", "doubles", "out", "1", "cal/(mol K)", 0, 'molar entropy of the vapour'),
    ), 'Up to two liquids and a vapour at entropy and pressure'),
    "FlashLLVatWP": (True, (
        Word("W", "double", "", "", "mol/mol", 0, 'vapour fraction, 0 bubble point, 1 dew point'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("routines", "routines", "in", "1", "", 0, "routines of the host; null: the library's own"),
        Word("options", "int", "", "", "", 0, 'start, 1: the result arguments hold an estimate'),
        Word("T", "doubles", "inout", "1", "K", 0, 'temperature; not above 0 counts as no estimate'),
        Word("beta", "doubles", "inout", "1", "mol/mol", 0, 'share of liquid A'),
        Word("xA", "doubles", "inout", "count", "mol/mol", 0, 'liquid A, the lighter one'),
        Word("xB", "doubles", "inout", "count", "mol/mol", 0, 'liquid B, the denser one'),
        Word("y", "doubles", "inout", "count", "mol/mol", 0, 'vapour'),
        Word("KLL", "doubles", "out", "count", "", 0, 'xA / xB'),
        Word("KLV", "doubles", "out", "count", "", 0, 'y / xA'),
    ), 'Temperature of a vapour fraction beside up to two liquids'),
    "FlashLLVatWT": (True, (
        Word("W", "double", "", "", "mol/mol", 0, 'vapour fraction, 0 bubble point, 1 dew point'),
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("routines", "routines", "in", "1", "", 0, "routines of the host; null: the library's own"),
        Word("options", "int", "", "", "", 0, 'start, 1: the result arguments hold an estimate'),
        Word("P", "doubles", "inout", "1", "atm", 0, 'pressure; not above 0 counts as no estimate'),
        Word("beta", "doubles", "inout", "1", "mol/mol", 0, 'share of liquid A'),
        Word("xA", "doubles", "inout", "count", "mol/mol", 0, 'liquid A, the lighter one'),
        Word("xB", "doubles", "inout", "count", "mol/mol", 0, 'liquid B, the denser one'),
        Word("y", "doubles", "inout", "count", "mol/mol", 0, 'vapour'),
        Word("KLL", "doubles", "out", "count", "", 0, 'xA / xB'),
        Word("KLV", "doubles", "out", "count", "", 0, 'y / xA'),
    ), 'Pressure of a vapour fraction beside up to two liquids'),
    "FlashLLatTP": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("routines", "routines", "in", "1", "", 0, "routines of the host; null: the library's own"),
        Word("options", "int", "", "", "", 0, 'start, 1: the result arguments hold an estimate'),
        Word("beta", "doubles", "inout", "1", "mol/mol", 0, 'share of liquid 2'),
        Word("liquid1", "doubles", "inout", "count", "mol/mol", 0, 'the denser liquid'),
        Word("liquid2", "doubles", "inout", "count", "mol/mol", 0, 'the lighter liquid'),
        Word("K", "doubles", "out", "count", "", 0, 'liquid2 / liquid1'),
    ), 'Two liquids at temperature and pressure'),
    "PhaseEnvelope": (True, (
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("routines", "routines", "in", "1", "", 0, "routines of the host; null: the library's own"),
        Word("options", "int", "", "", "", 0, '0'),
        Word("first_P", "double", "", "", "atm", 0, 'first pressure, 0: 1 atm'),
        Word("max_P", "double", "", "", "atm", 0, 'highest pressure, 0: 2000 atm'),
        Word("min_T", "double", "", "", "K", 0, 'lowest temperature, 0: 50 K'),
        Word("points", "int", "", "", "", 0, 'number wanted, 0: as traced'),
        Word("capacity", "int", "", "", "", 0, 'of the three point arrays'),
        Word("fraction", "double", "", "", "mol/mol", 0, '1: bubble and dew curves; between 0 and 1: that line'),
        Word("accuracy", "double", "", "", "", 0, '0, or 1e-10 and more: every point is converged to 1e-10'),
        Word("T", "doubles", "out", "capacity", "K", 0, 'temperatures'),
        Word("P", "doubles", "out", "capacity", "atm", 0, 'pressures'),
        Word("kind", "doubles", "out", "capacity", "", 0, '1 dew, 0 bubble, 0.5 critical, 4 two liquids'),
        Word("number_of_points", "ints", "out", "1", "", 0, 'points found'),
        Word("number_of_critical_points", "ints", "out", "1", "", 0, 'critical points among them'),
        Word("cricondentherm_T", "doubles", "out", "1", "K", 0, 'highest temperature'),
        Word("cricondentherm_P", "doubles", "out", "1", "atm", 0, 'and its pressure'),
        Word("cricondenbar_T", "doubles", "out", "1", "K", 0, 'temperature of the highest pressure'),
        Word("cricondenbar_P", "doubles", "out", "1", "atm", 0, 'highest pressure'),
    ), 'Bubble and dew curves, or the line of a vapour fraction'),
    "CriticalPoint": (True, (
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("options", "int", "", "", "", 0, '0'),
        Word("Tc", "doubles", "out", "1", "K", 0, 'temperature'),
        Word("Pc", "doubles", "out", "1", "atm", 0, 'pressure'),
        Word("Vc", "doubles", "out", "1", "cm3/mol", 0, 'molar volume'),
        Word("Zc", "doubles", "out", "1", "", 0, 'compressibility factor'),
    ), 'Critical point of a mixture'),
    "WaterDewTemperature": (True, (
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("method", "int", "", "", "", 0, '1 (or 0) equation of state, 2 chart'),
        Word("routes", "int", "", "", "", 0, '0'),
        Word("unused", "int", "", "", "", 0, 'not read'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("reserved", "int", "", "", "", 0, 'not read'),
        Word("T", "doubles", "inout", "1", "K", 0, 'dew temperature, in: a start'),
    ), 'Water dew temperature at a pressure'),
    "WaterDewPressure": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("method", "int", "", "", "", 0, '1 (or 0) equation of state, 2 chart'),
        Word("routes", "int", "", "", "", 0, '0'),
        Word("unused", "int", "", "", "", 0, 'not read'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("reserved", "int", "", "", "", 0, 'not read'),
        Word("P", "doubles", "inout", "1", "atm", 0, 'dew pressure, in: a start'),
    ), 'Water dew pressure at a temperature'),
    "WaterDewLine": (True, (
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("method", "int", "", "", "", 0, '1 (or 0) equation of state, 2 chart'),
        Word("routes", "int", "", "", "", 0, '0'),
        Word("unused", "int", "", "", "", 0, 'not read'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("reserved", "int", "", "", "", 0, 'not read'),
        Word("min_P", "double", "", "", "atm", 0, 'first pressure, 0: 1 atm'),
        Word("max_P", "double", "", "", "atm", 0, 'last pressure, 0: 200 atm'),
        Word("points", "int", "", "", "", 0, 'number of points'),
        Word("T", "doubles", "out", "points", "K", 0, 'dew temperatures, 0 where there is none'),
        Word("P", "doubles", "out", "points", "atm", 0, 'pressures'),
        Word("status", "ints", "out", "points", "", 0, 'status of every point'),
        Word("found", "ints", "out", "1", "", 0, 'points with status 0'),
    ), 'Water dew temperatures at pressures evenly spaced in ln P'),
    "Humidity": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("method", "int", "", "", "", 0, '1 (or 0) equation of state, 2 chart'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("water_fraction", "doubles", "out", "1", "mol/mol", 0, 'water in the saturated gas'),
        Word("water_content", "doubles", "out", "1", "mg/Nm3", 0, 'the same in mass per normal volume, 0 C and 1 atm'),
    ), 'Water in a saturated gas'),
    "WetGasComposition": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("method_switch", "int", "", "", "", 0, '1: method 1, and method 2 where that fails'),
        Word("method", "int", "", "", "", 0, '1 (or 0) equation of state, 2 chart'),
        Word("routes", "int", "", "", "", 0, '0'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("reserved", "int", "", "", "", 0, 'not read'),
        Word("wet", "doubles", "out", "count", "mol/mol", 0, 'the saturated gas; may be z'),
    ), 'The gas saturated with water'),
    "HydrateLine": (True, (
        Word("z", "doubles", "in", "count", "mol/mol", 0, 'feed'),
        Word("kind", "int", "", "", "", 0, 'inhibitor: 0 none, 1 methanol, 2 NaCl, 3 KCl, 4 CaCl2, 5 of molar mass M'),
        Word("M", "double", "", "", "g/mol", 0, 'molar mass of inhibitor 5'),
        Word("percent", "double", "", "", "% by mass", 0, 'inhibitor in the aqueous solution'),
        Word("points", "int", "", "", "", 0, 'number of points'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("unused", "int", "", "", "", 0, 'not read'),
        Word("T", "doubles", "out", "points", "K", 0, 'temperatures'),
        Word("P", "doubles", "out", "points", "atm", 0, 'pressures'),
    ), 'Hydrate formation curve of a gas by its gravity'),
    "GasN": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("Z", "doubles", "out", "1", "", 0, 'compressibility factor at T and P'),
        Word("Z_normal", "doubles", "out", "1", "", 0, 'and at the normal state'),
        Word("density_normal", "doubles", "out", "1", "kg/m3", 0, 'density at the normal state'),
        Word("normal_volume", "doubles", "out", "1", "Nm3/m3", 0, 'normal m3 in one m3 at T and P'),
    ), 'Gas at T and P against the normal state (0 C, 1 atm)'),
    "LiquidDensity_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("density", "doubles", "out", "1", "g/cm3", 0, 'mass density'),
        Word("d_dT", "doubles", "out", "1", "g/cm3/K", 0, 'derivative with T'),
        Word("d_dP", "doubles", "out", "1", "g/cm3/atm", 0, 'derivative with P'),
        Word("d2_dTdP", "doubles", "out", "1", "g/cm3/K/atm", 0, 'second derivative'),
    ), 'Mass density of a liquid'),
    "GasDensity_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("density", "doubles", "out", "1", "g/cm3", 0, 'mass density'),
        Word("d_dT", "doubles", "out", "1", "g/cm3/K", 0, 'derivative with T'),
        Word("d_dP", "doubles", "out", "1", "g/cm3/atm", 0, 'derivative with P'),
        Word("d2_dTdP", "doubles", "out", "1", "g/cm3/K/atm", 0, 'second derivative'),
    ), 'Mass density of a gas'),
    "LiquidMolarEnthalpy_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("value", "doubles", "out", "1", "cal/mol", 0, 'molar enthalpy'),
    ), 'Molar enthalpy of a liquid'),
    "GasMolarEnthalpy_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("value", "doubles", "out", "1", "cal/mol", 0, 'molar enthalpy'),
    ), 'Molar enthalpy of a gas'),
    "LiquidMolarEntropy_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("value", "doubles", "out", "1", "cal/(mol K)", 0, 'molar entropy'),
    ), 'Molar entropy of a liquid'),
    "GasMolarEntropy_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("value", "doubles", "out", "1", "cal/(mol K)", 0, 'molar entropy'),
    ), 'Molar entropy of a gas'),
    "LiquidMolarFreeEnthalpy_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("value", "doubles", "out", "1", "cal/mol", 0, 'molar free enthalpy'),
    ), 'Molar free enthalpy of a liquid'),
    "GasMolarFreeEnthalpy_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("value", "doubles", "out", "1", "cal/mol", 0, 'molar free enthalpy'),
    ), 'Molar free enthalpy of a gas'),
    "LiquidMolarEnthalpy_Derivatives_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("mask", "int", "", "", "", 0, 'derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn'),
        Word("value", "doubles", "out", "1", "cal/mol", 0, 'molar enthalpy'),
        Word("d_dT", "doubles", "out", "1", "cal/(mol K)", 1, 'derivative with T'),
        Word("d_dP", "doubles", "out", "1", "cal/(mol atm)", 2, 'derivative with P'),
        Word("d_dn", "doubles", "out", "count", "cal/mol", 4, 'derivatives with the mole numbers'),
    ), 'Molar enthalpy of a liquid with derivatives'),
    "GasMolarEnthalpy_Derivatives_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("mask", "int", "", "", "", 0, 'derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn'),
        Word("value", "doubles", "out", "1", "cal/mol", 0, 'molar enthalpy'),
        Word("d_dT", "doubles", "out", "1", "cal/(mol K)", 1, 'derivative with T'),
        Word("d_dP", "doubles", "out", "1", "cal/(mol atm)", 2, 'derivative with P'),
        Word("d_dn", "doubles", "out", "count", "cal/mol", 4, 'derivatives with the mole numbers'),
    ), 'Molar enthalpy of a gas with derivatives'),
    "LiquidMolarEntropy_Derivatives_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("mask", "int", "", "", "", 0, 'derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn'),
        Word("value", "doubles", "out", "1", "cal/(mol K)", 0, 'molar entropy'),
        Word("d_dT", "doubles", "out", "1", "cal/(mol K2)", 1, 'derivative with T'),
        Word("d_dP", "doubles", "out", "1", "cal/(mol K atm)", 2, 'derivative with P'),
        Word("d_dn", "doubles", "out", "count", "cal/(mol K)", 4, 'derivatives with the mole numbers'),
    ), 'Molar entropy of a liquid with derivatives'),
    "GasMolarEntropy_Derivatives_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("mask", "int", "", "", "", 0, 'derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn'),
        Word("value", "doubles", "out", "1", "cal/(mol K)", 0, 'molar entropy'),
        Word("d_dT", "doubles", "out", "1", "cal/(mol K2)", 1, 'derivative with T'),
        Word("d_dP", "doubles", "out", "1", "cal/(mol K atm)", 2, 'derivative with P'),
        Word("d_dn", "doubles", "out", "count", "cal/(mol K)", 4, 'derivatives with the mole numbers'),
    ), 'Molar entropy of a gas with derivatives'),
    "LiquidPhi_Derivatives_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("option", "int", "", "", "", 0, '2'),
        Word("mask", "int", "", "", "", 0, 'derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn'),
        Word("ln_phi", "doubles", "out", "count", "", 0, 'ln of the fugacity coefficients'),
        Word("d_dT", "doubles", "out", "count", "1/K", 1, 'derivatives with T'),
        Word("d_dP", "doubles", "out", "count", "1/atm", 2, 'derivatives with P'),
        Word("d_dn", "doubles", "out", "count*count", "", 4, 'entry (i, j) = d ln phi_i / d n_j, i fastest'),
    ), 'ln phi of a liquid with derivatives'),
    "GasPhi_Derivatives_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("option", "int", "", "", "", 0, '2'),
        Word("mask", "int", "", "", "", 0, 'derivatives wanted, bits added, 1: d_dT, 2: d_dP, 4: d_dn'),
        Word("ln_phi", "doubles", "out", "count", "", 0, 'ln of the fugacity coefficients'),
        Word("d_dT", "doubles", "out", "count", "1/K", 1, 'derivatives with T'),
        Word("d_dP", "doubles", "out", "count", "1/atm", 2, 'derivatives with P'),
        Word("d_dn", "doubles", "out", "count*count", "", 4, 'entry (i, j) = d ln phi_i / d n_j, i fastest'),
    ), 'ln phi of a gas with derivatives'),
    "GasSpecificHeat_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("Cp", "doubles", "out", "1", "cal/(mol K)", 0, 'at constant pressure'),
        Word("Cv", "doubles", "out", "1", "cal/(mol K)", 0, 'at constant volume'),
        Word("speed_of_sound", "doubles", "out", "1", "m/s", 0, 'speed of sound'),
        Word("joule_thomson", "doubles", "out", "1", "K/atm", 0, 'Joule-Thomson coefficient'),
    ), 'Heat capacities of a gas and what follows from them'),
    "GasDynamicViscosity_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("viscosity", "doubles", "out", "1", "cP", 0, 'dynamic viscosity'),
    ), 'Viscosity of a gas'),
    "GasThermalConductivity_PPR78": (True, (
        Word("T", "double", "", "", "K", 0, 'temperature, above 0'),
        Word("P", "double", "", "", "atm", 0, 'pressure, above 0'),
        Word("x", "doubles", "in", "count", "mol/mol", 0, 'composition of the phase'),
        Word("mixture", "record", "inout", "1", "", 0, 'record of the mixture; only its flags change, and only during the call'),
        Word("conductivity", "doubles", "out", "1", "W/(m K)", 0, 'thermal conductivity'),
    ), 'Thermal conductivity of a gas'),
}

_NUMBERS: dict[str, Any] = {"doubles": c_double, "ints": c_int32}
_TYPES: dict[str, Any] = {"double": c_double, "int": c_int32, "doubles": POINTER(c_double), "ints": POINTER(c_int32),
          "record": POINTER(MixtureRecord), "routines": POINTER(ModelRoutines), "buffers": POINTER(POINTER(c_double))}
_FORMATS = {"doubles": {"d", "<d", "=d"}, "ints": {"i", "l", "<i", "=i", "<l", "=l"}}


def _integer(name: str, value: Any) -> int:
    if not hasattr(value, "__index__"):
        raise TypeError(f"{name}: {type(value).__name__}, but an integer is needed")
    number = operator.index(value)
    if not -2**31 <= number < 2**31:
        raise ValueError(f"{name}: {number} is no 32-bit integer")
    return number


def _real(name: str, value: Any) -> float:
    if isinstance(value, (str, bytes)) or not hasattr(value, "__float__") and not hasattr(value, "__index__"):
        raise TypeError(f"{name}: {type(value).__name__}, but a number is needed")
    try:
        return float(value)
    except (TypeError, ValueError, OverflowError) as error:
        raise type(error)(f"{name}: {error}") from None


def _order(word: Word, view: memoryview, wanted: tuple[int, ...]) -> None:
    """Refuses more dimensions than one unless they tell how their elements lie in memory."""
    shape, square = tuple(view.shape or ()), len(wanted) > 1 and len(set(word.shape.split("*"))) == 1
    if shape == wanted and view.f_contiguous or shape == wanted[::-1] and view.c_contiguous and not square:
        return
    said = f"{word.name}: an array of shape {shape} in {'C' if view.c_contiguous else 'Fortran'} order, but "
    if len(wanted) > 1:
        said += f"{wanted} ({word.shape.replace('*', ', ')}) in Fortran order (numpy.asfortranarray), "
        said += "" if square else f"{wanted[::-1]} in C order, "
    raise ValueError(said + ("or " if len(wanted) > 1 else "") + "one dimension is needed")


def _array(word: Word, value: Any, wanted: Sequence[int]) -> Any:
    """ctypes array over the memory of value (a copy where it is only read); wanted: the factors of its shape."""
    need, shape = math.prod(wanted), word.shape.replace("*", " * ")
    number = _NUMBERS[word.kind]
    noun = "doubles" if number is c_double else "32-bit integers"
    if isinstance(value, (list, tuple)) and word.dir == "in":
        if len(value) == need:
            convert = _real if number is c_double else _integer
            return (number * need)(*(convert(f"{word.name}[{k}]", v) for k, v in enumerate(value)))
        raise ValueError(f"{word.name}: {len(value)} values, {need} ({shape}) are needed")
    try:
        view = memoryview(value)
    except TypeError:
        raise TypeError(f"{word.name}: {type(value).__name__}, but {noun} in one piece of memory are needed") from None
    if view.format not in _FORMATS[word.kind] or view.itemsize != ctypes.sizeof(number):
        raise TypeError(f"{word.name}: elements of format '{view.format}', but {noun} are needed")
    if not view.contiguous or (view.readonly and word.dir != "in"):
        raise TypeError(f"{word.name}: memory that is {'read-only' if view.readonly else 'not in one piece'}")
    length = view.nbytes // view.itemsize
    if length != need:
        raise ValueError(f"{word.name}: {length} values, {need} ({shape}) are needed")
    if view.ndim > 1:
        _order(word, view, tuple(wanted))
    kind = number * need
    if view.readonly or not (view.c_contiguous or hasattr(value, "T")):
        if word.dir != "in":
            raise TypeError(f"{word.name}: {type(value).__name__} in Fortran order, but numpy's or one dimension is needed")
        return kind.from_buffer_copy(view.tobytes("A"))
    return kind.from_buffer(value if view.c_contiguous else value.T)


def _record(word: Word, value: Any) -> Any:
    if not isinstance(value, MixtureRecord):
        raise TypeError(f"{word.name}: {type(value).__name__}, but a MixtureRecord is needed")
    if value.count < 1 or not value.table:
        raise ValueError(f"{word.name}: a record of {value.count} components {'with' if value.table else 'without'} a table")
    made = getattr(value, "_kept", None)
    if made is not None and ctypes.addressof(made) == ctypes.addressof(value.table.contents):
        if len(made) != 43 * value.count:
            raise ValueError(f"{word.name}: count is {value.count}, but the record was made with {len(made) // 43} components")
    return ctypes.byref(value)


def _pointer(word: Word, value: Any, known: Mapping[str, int], mask: int) -> Any:
    """What stands for one address in the call."""
    if value is None and (word.kind == "routines" or (word.bit and not mask & word.bit)):
        return None
    if value is None:
        raise TypeError(f"{word.name}: None, but {word.doc} is needed")
    if word.kind == "record":
        return _record(word, value)
    if word.kind == "routines":
        if not isinstance(value, ModelRoutines):
            raise TypeError(f"{word.name}: {type(value).__name__}, but ModelRoutines or None is needed")
        return ctypes.byref(value)
    if word.shape == "1" and isinstance(value, _NUMBERS[word.kind]):
        return ctypes.byref(value)
    return _array(word, value, [max(0, known[f]) if f in known else int(f) for f in word.shape.split("*")])


# Group data by handle of the library, which is one per process however often it is opened: they stay alive for it.
_group_data: dict[int, list[Any]] = {}


class Library:
    """The opened library; a method for every export."""

    if TYPE_CHECKING:
        def __getattr__(self, export: str) -> Callable[..., Any]: ...

    def __init__(self, path: Any) -> None:
        stdcall = sys.platform == "win32" and ctypes.sizeof(ctypes.c_void_p) == 4
        self.raw: ctypes.CDLL = getattr(ctypes, "WinDLL" if stdcall else "CDLL")(str(path))
        for name, (status, words, _) in EXPORTS.items():
            function = getattr(self.raw, name)
            function.restype = c_int32 if status else None
            function.argtypes = [_TYPES[word.kind] for word in words]

    def _buffers(self, word: Word, value: Any, known: Mapping[str, int]) -> tuple[list[Any], Any]:
        """Six addresses; the buffers stay alive until others take their place. None: buffers of our own."""
        nC, nG = known["nC"], known["nG"]
        if nC < 1 or nG < 1:
            raise ValueError(f"{'nC' if nC < 1 else 'nG'}: {min(nC, nG)}, but at least one is needed")
        needs = (0, nG * nG, nG * nG, nC * nG, nG * nG, nG * nC * nC)
        if value is None:
            value = [(c_double * need)() for need in needs]
        if not isinstance(value, (list, tuple)):
            raise TypeError(f"{word.name}: {type(value).__name__}, but a list of six buffers or None is needed")
        if len(value) != len(needs):
            raise ValueError(f"{word.name}: six buffers are needed")
        kept: list[Any] = [None] + [_array(Word(f"{word.name}[{k}]", "doubles", "out", "doubles", "", 0, ""), value[k], [needs[k]])
                         for k in range(1, len(needs))]
        addresses: list[Any] = [ctypes.cast(buffer, POINTER(c_double)) if buffer is not None else None for buffer in kept]
        return kept, (POINTER(c_double) * len(needs))(*addresses)

    def _call(self, name: str, arguments: Sequence[Any]) -> Any:
        words = EXPORTS[name][1]
        if len(arguments) != len(words):
            raise TypeError(f"{name} takes {len(words)} arguments ({', '.join(w.name for w in words)}), "
                            f"{len(arguments)} were given")
        known: dict[str, int] = {}
        passed: list[Any] = []
        kept: Optional[list[Any]] = None
        for word, value in zip(words, arguments):
            if word.kind == "int":
                known[word.name] = _integer(word.name, value)
            elif word.kind == "record":
                _record(word, value)
                known["count"] = value.count
        for word, value in zip(words, arguments):
            if word.kind == "double":
                passed.append(_real(word.name, value))
            elif word.kind == "int":
                passed.append(known[word.name])
            elif word.kind == "buffers":
                kept, addresses = self._buffers(word, value, known)
                passed.append(addresses)
            else:
                passed.append(_pointer(word, value, known, known.get("mask", 0)))
        result = getattr(self.raw, name)(*passed)
        if kept is not None:
            _group_data[self.raw._handle] = kept
        return result


def _method(name: str, words: Sequence[Word], doc: str) -> Callable[..., Any]:
    def method(self: Library, *arguments: Any) -> Any:
        return self._call(name, arguments)

    method.__name__, method.__qualname__ = name, f"Library.{name}"
    lines = [f"    {w.name}: {w.doc}" + (f", {w.unit}" if w.unit else "")
             + (f", [{w.shape.replace('*', ' * ')}]" if w.kind in _NUMBERS and w.shape != "1" else "")
             + {"out": ", out", "inout": ", in and out"}.get(w.dir, "")
             + (f", only with bit {w.bit} of mask" if w.bit else "") for w in words]
    method.__doc__ = "\n".join([f"{doc}." + (" Returns the status." if EXPORTS[name][0] else ""), ""] + lines)
    return method


for _name, (_status, _words, _doc) in EXPORTS.items():
    setattr(Library, _name, _method(_name, _words, _doc))


def load(path: Any) -> Library:
    """Opens the library file; its two siblings lie beside it. OSError where it cannot be loaded."""
    return Library(path)
