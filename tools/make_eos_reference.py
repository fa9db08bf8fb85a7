#!/usr/bin/env python3
"""High-precision reference values of the phase evaluation (PPR78, Peng-Robinson 1978).

Writes into tests/data (or the folder given as first argument):

  eos_mixtures.csv               components and groups of every mixture, one row per mixture
  eos_reference.csv              Z, status, ln phi and its T and P derivatives, one row per state
  eos_reference_composition.csv  composition derivatives of ln phi, a subset of the states
  eos_reference_caloric.csv      residual enthalpy, entropy and heat capacities, a subset of the states

Fields are separated by commas, the entries of a list inside a field by semicolons. Every input is an exact
double printed with 17 significant digits, and the model constants are the doubles nearest to their decimal
values, so that a program that reads the files starts from the very same numbers. The calculation runs with
110 digits; derivatives are central differences of the high-precision function itself with relative steps of
1e-25, so their error is far below the double that is printed. The output is the same on every run.

Root rule: phase 1 takes the largest real root, phase 2 the smallest one above B. With one root above B both
take it; its status is 0 for the phase on whose side of the inflection point (1 - B) / 3 it lies, else 1.

Needs python3 and mpmath.
"""

import csv
import random
import sys
from pathlib import Path

from mpmath import mp, mpf

mp.dps = 110
ROOT = Path(__file__).resolve().parent.parent
STEP = mpf(10) ** -25  # relative step of a first or second difference
OUTER_STEP = mpf(10) ** -15  # of a difference of a function that holds differences itself

R = mpf(82.057)  # cm3 atm / (mol K)
OMEGA_A_R2 = mpf(3078.7575250928)
OMEGA_B_R = mpf(6.3840346)
TO_CAL = mpf(0.0242173124)  # cal per cm3 atm
U, W = mpf(2), mpf(-1)
S = mp.sqrt(U * U - 4 * W)
ATM_PER_MPA = mpf(1000000) / mpf(101325)


# ---- Data ---------------------------------------------------------------------------------------


def read_csv(name):
    with open(ROOT / "data" / name, encoding="utf-8", newline="") as handle:
        return list(csv.DictReader(handle))


COMPONENTS = {row["id"]: row for row in read_csv("components.csv")}
GROUPS = {}
for _row in read_csv("component_groups.csv"):
    if _row["covered"] == "1":
        GROUPS.setdefault(_row["id"], {})[int(_row["group_index"])] = int(_row["count"])
INTERACTIONS = {
    (int(row["k"]), int(row["l"])): (float(row["A_MPa"]), float(row["B_MPa"]))
    for row in read_csv("ppr78_interactions.csv")
    if row["status"] == "published"
}


class Mixture:
    """Components with their constants and groups; everything that does not depend on T is formed once."""

    def __init__(self, name, ids):
        self.name, self.ids, self.nc = name, ids, len(ids)
        column = lambda key: [float(COMPONENTS[i][key]) for i in ids]
        self.tc, self.pc, self.omega = column("Tc_K"), column("Pc_atm"), column("acentric_factor")
        self.mass = column("molar_mass_g_mol")
        self.groups = sorted({g for i in ids for g in GROUPS[i]})
        self.counts = [[GROUPS[i].get(g, 0) for g in self.groups] for i in ids]
        ng = len(self.groups)
        self.a_mpa = [[0.0] * ng for _ in range(ng)]
        self.b_mpa = [[0.0] * ng for _ in range(ng)]
        for k in range(ng):
            for l in range(k + 1, ng):
                pair = INTERACTIONS.get((self.groups[k], self.groups[l]), (0.0, 0.0))
                self.a_mpa[k][l], self.b_mpa[k][l] = pair
        self.b = [OMEGA_B_R * mpf(t) / mpf(p) for t, p in zip(self.tc, self.pc)]
        self.m = [slope(mpf(w)) for w in self.omega]
        self.fractions = [[mpf(n) / sum(row) for n in row] for row in self.counts]
        self.cache = {}

    def row(self):
        """One line of eos_mixtures.csv; counts one column per component, A and B column-major in MPa."""
        ng = len(self.groups)
        flat = lambda m: [m[k][l] for l in range(ng) for k in range(ng)]
        return [
            self.name, self.nc, ng, ";".join(self.ids),
            numbers(self.tc), numbers(self.pc), numbers(self.omega), numbers(self.mass),
            ";".join(str(n) for row in self.counts for n in row),
            numbers(flat(self.a_mpa)), numbers(flat(self.b_mpa)),
        ]  # fmt: skip


def slope(w):
    if w <= mpf(0.491):
        return mpf(0.37464) + mpf(1.54226) * w - mpf(0.26992) * w**2
    return mpf(0.379642) + mpf(1.48503) * w - mpf(0.164423) * w**2 + mpf(0.016666) * w**3


# ---- Model --------------------------------------------------------------------------------------


def pair_matrix(mix, temperature):
    """a_ij(T) = sqrt(a_i a_j) (1 - k_ij), k_ij from the double sum over groups."""
    if temperature in mix.cache:
        return mix.cache[temperature]
    nc, ng = mix.nc, len(mix.groups)
    a = []
    for i in range(nc):
        psi = 1 + mix.m[i] * (1 - mp.sqrt(temperature / mpf(mix.tc[i])))
        a.append(OMEGA_A_R2 * mpf(mix.tc[i]) ** 2 / mpf(mix.pc[i]) * psi**2)
    delta = [mp.sqrt(a[i]) / mix.b[i] for i in range(nc)]
    group = {}
    for k in range(ng):
        for l in range(k + 1, ng):
            a_kl, b_kl = mpf(mix.a_mpa[k][l]) * ATM_PER_MPA, mpf(mix.b_mpa[k][l]) * ATM_PER_MPA
            if a_kl != 0:
                group[k, l] = a_kl * (mpf(298.15) / temperature) ** (b_kl / a_kl - 1)
    matrix = [[mpf(0)] * nc for _ in range(nc)]
    for i in range(nc):
        matrix[i][i] = a[i]
        for j in range(i):
            difference = [p - q for p, q in zip(mix.fractions[j], mix.fractions[i])]
            used = [k for k in range(ng) if difference[k] != 0]
            total = mpf(0)
            for k in used:
                for l in used:
                    total += difference[k] * difference[l] * group.get((min(k, l), max(k, l)), 0)
            excess = -total / 2
            kij = (excess - (delta[i] - delta[j]) ** 2) / (2 * delta[i] * delta[j])
            matrix[i][j] = matrix[j][i] = mp.sqrt(a[i] * a[j]) * (1 - kij)
    if len(mix.cache) > 200:
        mix.cache.clear()
    mix.cache[temperature] = matrix
    return matrix


def mixture_ab(mix, temperature, x):
    matrix = pair_matrix(mix, temperature)
    rows = [mp.fdot(matrix[i], x) for i in range(mix.nc)]
    return mp.fdot(rows, x), mp.fdot(mix.b, x), rows


def cubic_roots(c1, c2, c3):
    """Real roots, ascending. Newton from outside the outermost root, then the quadratic that is left."""
    value = lambda z: ((z + c1) * z + c2) * z + c3
    slope_at = lambda z: (3 * z + 2 * c1) * z + c2
    bound = 1 + max(abs(c1), abs(c2), abs(c3))
    z = bound if value(-c1 / 3) < 0 else -bound
    for _ in range(2000):
        step = value(z) / slope_at(z)
        z -= step
        if abs(step) <= abs(z) * mpf(10) ** (8 - mp.dps):
            break
    p, q = c1 + z, c2 + z * (c1 + z)
    discriminant = p * p - 4 * q
    if discriminant < 0:
        return [z]
    root = mp.sqrt(discriminant)
    far = (-p - root) / 2 if p >= 0 else (-p + root) / 2
    near = q / far
    return sorted([z, far, near])


def solve_z(big_a, big_b, phase):
    """Root of the phase and its status by the root rule above."""
    c1 = (U - 1) * big_b - 1
    c2 = big_a + (W - U) * big_b**2 - U * big_b
    c3 = -(big_a + W * big_b * (big_b + 1)) * big_b
    roots = [z for z in cubic_roots(c1, c2, c3) if z > big_b]
    if not roots:
        raise ValueError("no root above B")
    if len(roots) == 3:
        return (roots[-1] if phase == 1 else roots[0]), 0
    gas_like = roots[0] > -c1 / 3
    return roots[0], 0 if gas_like == (phase == 1) else 1


def evaluate(mix, temperature, pressure, x, phase):
    """Z, status, ln phi[nc]."""
    a, b, rows = mixture_ab(mix, temperature, x)
    big_a, big_b = a * pressure / (R * temperature) ** 2, b * pressure / (R * temperature)
    z, status = solve_z(big_a, big_b, phase)
    logarithm = mp.log((2 * z + (U - S) * big_b) / (2 * z + (U + S) * big_b))
    ln_phi = [
        mix.b[i] / b * (z - 1) - mp.log(z - big_b)
        + big_a / (big_b * S) * (2 * rows[i] / a - mix.b[i] / b) * logarithm
        for i in range(mix.nc)
    ]  # fmt: skip
    return z, status, ln_phi


def da_dt(mix, temperature, x):
    h = STEP * temperature
    return (mixture_ab(mix, temperature + h, x)[0] - mixture_ab(mix, temperature - h, x)[0]) / (2 * h)


def d2a_dt2(mix, temperature, x):
    h = STEP * temperature
    middle = mixture_ab(mix, temperature, x)[0]
    outer = mixture_ab(mix, temperature + h, x)[0] + mixture_ab(mix, temperature - h, x)[0]
    return (outer - 2 * middle) / (h * h)


def residuals(mix, temperature, pressure, x, phase):
    """Residual enthalpy (cal/mol) and entropy (cal/(mol K))."""
    a, b, _ = mixture_ab(mix, temperature, x)
    slope_a = da_dt(mix, temperature, x)
    big_a, big_b = a * pressure / (R * temperature) ** 2, b * pressure / (R * temperature)
    z, _ = solve_z(big_a, big_b, phase)
    logarithm = mp.log((2 * z + (U - S) * big_b) / (2 * z + (U + S) * big_b))
    enthalpy = (a - temperature * slope_a) / (b * S) * logarithm + R * temperature * (z - 1)
    ratio = (z + mpf(2.414213562373095) * big_b) / (z - mpf(0.41421356237309515) * big_b)
    entropy = slope_a / mpf(1.4142135623730951) * mpf(0.5) / b * mp.log(ratio) + R * mp.log(z - big_b)
    return enthalpy * TO_CAL, entropy * TO_CAL


# ---- Rows ---------------------------------------------------------------------------------------


def number(value):
    return "%.17g" % float(value)


def numbers(values):
    return ";".join(number(v) for v in values)


def differences(mix, t, p, x, phase):
    """T and P derivatives of Z and of ln phi."""
    result = []
    for dt, dp in ((STEP * t, 0), (0, STEP * p)):
        z_up, _, up = evaluate(mix, t + dt, p + dp, x, phase)
        z_low, _, low = evaluate(mix, t - dt, p - dp, x, phase)
        width = 2 * (dt + dp)
        result.append(((z_up - z_low) / width, [(u - v) / width for u, v in zip(up, low)]))
    return result


def amplification(mix, t, p, x, phase):
    """Largest of |d ln Z / d ln A| and |d ln Z / d ln B|: how rounding errors of A and B reach Z."""
    a, b, _ = mixture_ab(mix, t, x)
    big_a, big_b = a * p / (R * t) ** 2, b * p / (R * t)
    z, _ = solve_z(big_a, big_b, phase)
    d = 3 * z**2 + 2 * z * ((U - 1) * big_b - 1) + (W - U) * big_b**2 - U * big_b + big_a
    by_a = (big_b - z) / d
    top = big_a + 2 * W * big_b + 3 * W * big_b**2 - (U - 1) * z**2 - (2 * (W - U) * big_b - U) * z
    return max(abs(by_a * big_a / z), abs(top / d * big_b / z))


def main_row(state):
    name, mix, t, p, x, phase, kind = state
    t, p, x = mpf(t), mpf(p), [mpf(v) for v in x]
    z, status, ln_phi = evaluate(mix, t, p, x, phase)
    (dz_dt, dphi_dt), (dz_dp, dphi_dp) = differences(mix, t, p, x, phase)
    factor = amplification(mix, t, p, x, phase)
    return [
        name, mix.name, kind, number(t), number(p), phase, numbers(x), status, number(z),
        number(dz_dt), number(dz_dp), "%.3g" % float(factor),
        numbers(ln_phi), numbers(dphi_dt), numbers(dphi_dp),
    ]  # fmt: skip


def composition_row(state):
    """d ln phi_i / d n_j at constant T, P and other mole numbers, one mole in total; i fastest."""
    name, mix, t, p, x, phase, _ = state
    t, p, x = mpf(t), mpf(p), [mpf(v) for v in x]
    entries = []
    for j in range(mix.nc):
        sides = []
        for sign in (1, -1):
            n = list(x)
            n[j] += sign * STEP
            total = mp.fsum(n) / mp.fsum(x)
            sides.append(evaluate(mix, t, p, [v / total for v in n], phase)[2])
        entries += [(u - v) / (2 * STEP) for u, v in zip(*sides)]
    return [name, numbers(entries)]


def caloric_row(state):
    name, mix, t, p, x, phase, _ = state
    t, p, x = mpf(t), mpf(p), [mpf(v) for v in x]
    a, b, _ = mixture_ab(mix, t, x)
    second = d2a_dt2(mix, t, x)
    big_a, big_b = a * p / (R * t) ** 2, b * p / (R * t)
    z, _ = solve_z(big_a, big_b, phase)
    enthalpy, entropy = residuals(mix, t, p, x, phase)
    h = OUTER_STEP * t
    cp = (residuals(mix, t + h, p, x, phase)[0] - residuals(mix, t - h, p, x, phase)[0]) / (2 * h)
    logarithm = mp.log((2 * z + (U - S) * big_b) / (2 * z + (U + S) * big_b))
    cv = -t * second / (b * S) * logarithm * TO_CAL
    dphi_dt = differences(mix, t, p, x, phase)[0][1]
    partial = [-R * t * t * d * TO_CAL for d in dphi_dt]
    return [
        name, number(a), number(b), number(da_dt(mix, t, x)), number(big_a), number(big_b), number(second),
        number(enthalpy), number(entropy), numbers(partial), number(cp), number(cv),
    ]  # fmt: skip


# ---- States -------------------------------------------------------------------------------------

PURES = ["methane", "water", "n_eicosane", "hydrogen", "helium", "carbon_dioxide"]
BINARIES = [
    ("methane", "propane"),
    ("carbon_dioxide", "hydrogen_sulfide"),
    ("hydrogen", "n_eicosane"),
    ("nitrogen", "n_heptane"),
    ("methane", "water"),
    ("helium", "n_decane"),
]
GAS7 = ["methane", "ethane", "propane", "n_butane", "n_pentane", "n_hexane", "nitrogen"]
GAS7_Z = [0.9430, 0.0270, 0.0074, 0.0049, 0.0027, 0.0010, 0.0140]
GAS10 = ["methane", "ethane", "propane", "isobutane", "n_butane", "isopentane", "n_pentane", "n_hexane",
         "nitrogen", "carbon_dioxide"]  # fmt: skip
GAS10_Z = [0.70, 0.09, 0.06, 0.015, 0.025, 0.01, 0.01, 0.01, 0.03, 0.05]


class States:
    def __init__(self):
        self.rows, self.mixtures = [], {}
        self.random = random.Random(20781)

    def mixture(self, name, ids):
        return self.mixtures.setdefault(name, Mixture(name, ids))

    def add(self, mix, t, p, x, phases=(1, 2), kind="plain"):
        for phase in phases:
            self.rows.append(("s%04d" % (len(self.rows) + 1), mix, float(t), float(p), x, phase, kind))

    def scatter(self, mix, x, count, t_low, t_high, p_low, p_high, kind="plain"):
        """count states, T uniform, P log-uniform; the phases alternate."""
        for i in range(count):
            t = self.random.uniform(t_low, t_high)
            p = p_low * (p_high / p_low) ** self.random.random()
            self.add(mix, t, p, x, ((i % 2) + 1,), kind)


def normalised(values):
    total = sum(values)
    return [v / total for v in values]


def spinodal_pressures(mix, t, x):
    """Pressures of the mechanical spinodal (liquid branch, vapour branch); None where there is none."""
    t, x = mpf(t), [mpf(v) for v in x]
    a, b, _ = mixture_ab(mix, t, x)
    slope_at = lambda v: -R * t / (v - b) ** 2 + a * 2 * (v + b) / (v * v + 2 * b * v - b * b) ** 2
    pressure = lambda v: R * t / (v - b) - a / (v * v + 2 * b * v - b * b)
    grid = [b * (1 + mpf(10) ** (mpf(k) / 20 - 2)) for k in range(120)]
    found = []
    for low, high in zip(grid, grid[1:]):
        if slope_at(low) * slope_at(high) < 0:
            found.append(pressure(mp.findroot(slope_at, (low, high), solver="anderson", tol=mpf(10) ** -80)))
    return found


def add_pure_states(states):
    """Subcritical, near-critical and supercritical states, and the corners of the range."""
    for name in PURES:
        mix = states.mixture(name, [name])
        tc, pc = mix.tc[0], mix.pc[0]
        for tr, pr in ((0.7, 0.05), (0.95, 0.7), (1.001, 1.002), (1.5, 3.0)):
            states.add(mix, tr * tc, pr * pc, [1.0])
        states.scatter(mix, [1.0], 2, 60.0, 1500.0, 1e-8, 5000.0)
    methane, water = states.mixture("methane", ["methane"]), states.mixture("water", ["water"])
    for t, p in ((60.0, 1e-8), (60.0, 5000.0), (1500.0, 1e-8), (1500.0, 5000.0)):
        states.add(methane, t, p, [1.0])
        states.add(water, t, p, [1.0], (2,))


def add_binary_states(states):
    for ids in BINARIES:
        mix = states.mixture("+".join(ids), list(ids))
        for first in (0.5, 0.03, 0.9):
            states.scatter(mix, [first, 1.0 - first], 2, 90.0, 700.0, 1e-3, 1000.0)
        states.add(mix, 298.15, 30.0, [0.25, 0.75])


def add_multicomponent_states(states):
    gas7, gas10 = states.mixture("gas7", GAS7), states.mixture("gas10", GAS10)
    for mix, z in ((gas7, normalised(GAS7_Z)), (gas10, normalised(GAS10_Z))):
        for t, p in ((200.0, 20.0), (250.0, 60.0), (300.0, 1.0), (400.0, 300.0)):
            states.add(mix, t, p, z)
        states.scatter(mix, z, 4, 60.0, 1500.0, 1e-8, 5000.0)
    ids = [i for i in COMPONENTS if i in GROUPS and i not in ("sulfur_dioxide", "ammonia", "carbonyl_sulfide")]
    gas40 = states.mixture("gas40", ids[:40])
    z = normalised([1.0 / (1 + i % 7) for i in range(40)])
    for t, p in ((250.0, 10.0), (350.0, 80.0)):
        states.add(gas40, t, p, z)
    states.scatter(gas40, z, 4, 150.0, 1000.0, 1e-4, 2000.0)


def add_trace_states(states):
    """Fractions that are zero or next to zero."""
    gas7 = states.mixture("gas7", GAS7)
    for small in (0.0, 1e-300):
        z = [0.8 - 3 * small, 0.1, small, 0.05, small, 0.05, small]
        for t, p in ((190.0, 15.0), (320.0, 90.0)):
            states.add(gas7, t, p, z, kind="trace")
        states.add(gas7, 150.0, 5.0, [1.0 - 6 * small] + 6 * [small], kind="trace")
    two = states.mixture("methane+water", ["methane", "water"])
    states.add(two, 300.0, 50.0, [0.0, 1.0], kind="trace")
    states.add(two, 300.0, 50.0, [1.0, 1e-300], kind="trace")


def add_double_root_states(states):
    """Pressures at relative distances 1e-3 .. 1e-9 on both sides of a double root of the cubic."""
    cases = [
        ("methane", [1.0], 170.0), ("carbon_dioxide", [1.0], 290.0), ("water", [1.0], 640.0),
        ("gas10", normalised(GAS10_Z), 190.0), ("methane+propane", [0.5, 0.5], 235.0),
    ]  # fmt: skip
    for name, x, t in cases:
        mix = states.mixtures[name]
        for branch, p_double in enumerate(spinodal_pressures(mix, t, x)):
            if p_double <= 0:
                continue
            for exponent in (3, 6, 9):
                for sign in (1, -1):
                    p = float(p_double * (1 + sign * mpf(10) ** -exponent))
                    phases = (1, 2) if exponent == 9 else (2 - branch,)
                    states.add(mix, t, p, x, phases, "double")


def write(folder, name, header, rows):
    with open(folder / name, "w", encoding="ascii", newline="") as handle:
        writer = csv.writer(handle, lineterminator="\n")
        writer.writerow(header)
        writer.writerows(rows)
    print("%s: %d rows" % (name, len(rows)))


def main():
    folder = Path(sys.argv[1]) if len(sys.argv) > 1 else ROOT / "tests" / "data"
    states = States()
    add_pure_states(states)
    add_binary_states(states)
    add_multicomponent_states(states)
    add_trace_states(states)
    add_double_root_states(states)
    rows = states.rows
    small = [s for i, s in enumerate(rows) if s[1].nc <= 10 and (i % 4 == 0 or s[6] == "trace")]
    caloric = [s for i, s in enumerate(rows) if s[1].nc <= 10 and s[6] != "double" and i % 3 == 0]
    write(folder, "eos_mixtures.csv",
          ["mixture", "nc", "ng", "ids", "Tc_K", "Pc_atm", "omega", "M", "counts", "A_MPa", "B_MPa"],
          [m.row() for m in states.mixtures.values()])  # fmt: skip
    write(folder, "eos_reference.csv",
          ["state", "mixture", "kind", "T_K", "P_atm", "phase", "x", "status", "Z", "dZ_dT", "dZ_dP",
           "amplification", "ln_phi", "dln_phi_dT", "dln_phi_dP"],
          [main_row(s) for s in rows])  # fmt: skip
    write(folder, "eos_reference_composition.csv", ["state", "dln_phi_dn"], [composition_row(s) for s in small])
    write(folder, "eos_reference_caloric.csv",
          ["state", "a", "b", "da_dT", "A", "B", "d2a_dT2", "H_res", "S_res", "h_i", "Cp_res", "Cv_res"],
          [caloric_row(s) for s in caloric])  # fmt: skip


if __name__ == "__main__":
    main()
