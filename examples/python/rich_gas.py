"""A rich gas: flash, dew point, extremes of the envelope, properties of its vapour, through the bare exports.

    PYTHONPATH=python python3 examples/python/rich_gas.py FILE_OF_THE_LIBRARY
"""
import sys
from array import array
from ctypes import c_double, c_int32

from kestrune import _exports as kv

# The gas of data/components.csv and data/ppr78_interactions.csv, by tools/make_bindings.py.
z = [0.76, 0.09, 0.06, 0.04, 0.03, 0.02]  # methane, ethane, propane, n-butane, n-pentane, carbon dioxide
columns = {
    2: [16.04246, 30.06904, 44.09562, 58.12220, 72.14878, 44.00950],  # molar mass, g/mol
    3: [90.6941, 90.368, 85.525, 134.895, 143.47, 216.592],  # triple point, K
    4: [111.6672, 184.5686, 231.0362, 272.6599, 309.2093, 194.67],  # normal boiling point, K
    5: [190.564, 305.32, 369.83, 425.12, 469.7, 304.21],  # critical temperature, K
    6: [45.388601, 48.082902, 41.924500, 37.463607, 33.259314, 72.864545],  # critical pressure, atm
    7: [98.6, 145.5, 200.0, 255.0, 313.0, 94.0],  # critical volume, cm3/mol
    8: [0.28620, 0.27924, 0.27630, 0.27385, 0.27010, 0.27438],  # critical compressibility factor
    9: [0.0115478, 0.099493, 0.152291, 0.200164, 0.251506, 0.223621],  # acentric factor
    10: [0.0, 0.0, 0.08, 0.0, 0.0, 0.0],  # dipole moment, debye
    11: [90.69, 90.35, 85.47, 134.86, 143.42, 216.58],  # lowest temperature of the vapour pressure, K
    41: [0.0, 0.0, 0.0, 0.0, 0.0, 0.0],  # family code
    43: [74828.0, 74840.0, 74986.0, 106978.0, 109660.0, 124389.0],  # CAS number
}
# Groups CH3, CH2, CH4, C2H6, CO2: how often in each component, and their interactions in MPa.
counts = [
    0, 0, 1, 0, 0,
    0, 0, 0, 1, 0,
    2, 1, 0, 0, 0,
    2, 2, 0, 0, 0,
    2, 3, 0, 0, 0,
    0, 0, 0, 0, 1]
A = [
    0.0, 0.0, 0.0, 0.0, 0.0,
    65.54, 0.0, 0.0, 0.0, 0.0,
    28.48, 37.75, 0.0, 0.0, 0.0,
    3.775, 29.85, 9.951, 0.0, 0.0,
    144.8, 141.4, 136.6, 136.2, 0.0]
B = [
    0.0, 0.0, 0.0, 0.0, 0.0,
    105.7, 0.0, 0.0, 0.0, 0.0,
    20.25, 74.81, 0.0, 0.0, 0.0,
    8.922, 65.88, 13.73, 0.0, 0.0,
    401.5, 237.1, 214.8, 235.7, 0.0]
# end of the gas


def require(what, status):
    """Ends the program unless the status is 0."""
    if status != 0:
        sys.exit(f"{what}: status {status}, {kv.STATUS.get(status, ('', 'unknown'))[1]}")


def show(name, value):
    print(f"{name:<18} {float(getattr(value, 'value', value))!r}")


def zeros(length):
    return array("d", bytes(8 * length))


def flash(library, mixture, T, P):
    """Shows a flash and a dew point; returns the vapour."""
    n = len(z)
    beta, x, y, K = c_double(), zeros(n), zeros(n), zeros(n)
    require("flash", library.FlashLVatTP(T, P, z, mixture, None, 1, beta, x, y, K))
    show("vapour_fraction", beta)
    for k in K:
        show("K", k)
    dew_T = c_double()
    require("dew point", library.FlashLVatWP(1.0, P, z, mixture, None, 1, dew_T, zeros(n), zeros(n), zeros(n)))
    show("dew_temperature", dew_T)
    return y


def envelope(library, mixture):
    capacity = 500
    points, critical_points = c_int32(), c_int32()
    extremes = [c_double() for _ in range(4)]
    require("envelope", library.PhaseEnvelope(z, mixture, None, 0, 0.0, 0.0, 200.0, 0, capacity, 1.0, 0.0, zeros(capacity),
                                              zeros(capacity), zeros(capacity), points, critical_points, *extremes))
    for name, value in zip(("cricondentherm_T", "cricondentherm_P", "cricondenbar_T", "cricondenbar_P"), extremes):
        show(name, value)


def properties(library, mixture, T, P, y):
    density, H, viscosity = c_double(), c_double(), c_double()
    Cp, Cv, sound, joule_thomson = (c_double() for _ in range(4))
    require("density", library.GasDensity_PPR78(T, P, y, mixture, density, c_double(), c_double(), c_double()))
    require("enthalpy", library.GasMolarEnthalpy_PPR78(T, P, y, mixture, H))
    require("heat", library.GasSpecificHeat_PPR78(T, P, y, mixture, Cp, Cv, sound, joule_thomson))
    require("viscosity", library.GasDynamicViscosity_PPR78(T, P, y, mixture, viscosity))
    show("density", density)
    show("enthalpy", H)
    show("speed_of_sound", sound)
    show("viscosity", viscosity)


def main(argv):
    if len(argv) != 2:
        sys.exit(__doc__)
    library = kv.load(argv[1])
    n, groups = len(z), round(len(A) ** 0.5)
    table = zeros(kv.TABLE_COLUMNS * n)
    for column, values in columns.items():
        table[(column - 1) * n:column * n] = array("d", values)
    library.ConvertPPR78GroupData(n, groups, counts, A, B, None)
    mixture = kv.MixtureRecord.of(table, n)
    y = flash(library, mixture, 260.0, 40.0)  # K, atm
    envelope(library, mixture)
    properties(library, mixture, 260.0, 40.0, y)


if __name__ == "__main__":
    main(sys.argv)
