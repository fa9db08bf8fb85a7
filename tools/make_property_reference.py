#!/usr/bin/env python3
"""High-precision reference values of the properties of one phase.

Writes property_reference.csv into tests/data (or the folder given as first argument): density, enthalpy,
entropy and Gibbs energy with derivatives for both phases, for gases also Z against the normal state, heat
capacities, speed of sound and Joule-Thomson coefficient. Equation of state, mixtures and number format are those
of make_eos_reference.py; the ideal gas is the closed integral of the published equation in data/pure, used
within its range only.

With free water ("free_water" is 1) any water in a liquid is liquid water beside the others, from a fraction of
1e-15 upwards.

Every derivative is a central difference of the high-precision function. Columns that end in _size are the sum
of the absolute parts that a value is the sum of: rounding in double precision is relative to them. Derivatives
with mole numbers are those of the molar value for one mole in total, a function of normalised mole numbers; for a
component of less than 1e-15 they are the limit of a trace, for the entropy with ln x at 1e-15. The output is the same
on every run. Needs python3 and mpmath.
"""

import sys
from pathlib import Path

from mpmath import mp, mpf

import make_eos_reference as eos
from make_eos_reference import OUTER_STEP, R, ROOT, STEP, TO_CAL, Mixture, number, numbers

R_IDEAL = mpf(1.9872)  # cal/(mol K), of the terms of the ideal gas
T_ZERO = mpf(298.15)
J_PER_KMOL = mpf(4184)  # per cal/mol
TRACE = 1e-15  # mole fraction below which a component counts as absent
LIMIT = mpf(10) ** -40  # mole fraction that stands for the limit of a trace

HEAT_CAPACITY = {row["cas"]: row for row in eos.read_csv("pure/ideal_gas_heat_capacity.csv")}


# ---- Ideal gas ----------------------------------------------------------------------------------


def closed_integrals(row, t):
    """Indefinite integrals of Cp and of Cp/T (the equations stand in data/pure/README.md)."""
    c = [mpf(float(row["C%d" % k])) for k in range(1, 8)]
    if row["eq"] == "100":
        over_t = mp.fsum(c[k] * t ** (k + 1) / (k + 1) for k in range(7))
        return over_t, c[0] * mp.log(t) + mp.fsum(c[k] * t**k / k for k in range(1, 7))
    if row["eq"] == "107":
        u, v = c[2] / t, c[4] / t
        over_t = c[0] * t + c[1] * c[2] * mp.coth(u) - c[3] * c[4] * mp.tanh(v)
        over_log = c[0] * mp.log(t) + c[1] * (u * mp.coth(u) - mp.log(mp.sinh(u)))
        return over_t, over_log - c[3] * (v * mp.tanh(v) - mp.log(mp.cosh(v)))
    if row["eq"] == "127":
        over_t, over_log = c[0] * t, c[0] * mp.log(t)
        for factor, theta in ((c[1], c[2]), (c[3], c[4]), (c[5], c[6])):
            u = theta / t
            n = 1 / mp.expm1(u)
            over_t += factor * theta * n
            over_log += factor * (u * n - mp.log(-mp.expm1(-u)))
        return over_t, over_log
    raise ValueError("equation " + row["eq"])


IDEAL_CACHE = {}


def ideal_component(component, t):
    """Enthalpy (cal/mol) and temperature part of the entropy (cal/(mol K)) of one component."""
    key = component, t
    if key not in IDEAL_CACHE:
        row = HEAT_CAPACITY[eos.COMPONENTS[component]["cas"]]
        if not (float(row["Tmin"]) * (1 - 1e-9) <= t <= float(row["Tmax"]) * (1 + 1e-9)):
            raise ValueError("%s at %s K is outside its range" % (component, t))
        upper, lower = closed_integrals(row, t), closed_integrals(row, T_ZERO)
        IDEAL_CACHE[key] = [(u - l) / J_PER_KMOL for u, l in zip(upper, lower)]
    return IDEAL_CACHE[key]


def ideal_parts(mix, t, p, x):
    """Terms of the ideal enthalpy and of the ideal entropy, component by component."""
    h, s = [], []
    for component, fraction in zip(mix.ids, x):
        if fraction == 0:
            continue
        enthalpy, entropy = ideal_component(component, t)
        h.append(fraction * enthalpy)
        s += [fraction * entropy, -fraction * R_IDEAL * mp.log(fraction)]
    return h, s + [-R_IDEAL * mp.log(p)]


# ---- Water --------------------------------------------------------------------------------------


def vaporisation(t):
    """Enthalpy of vaporisation of water, cal/mol."""
    tr = t / mpf(647.13)
    if tr >= 1:
        return mpf(0)
    power = mpf(0.3199) - mpf(0.212) * tr + mpf(0.25795) * tr * tr
    return mpf(12440.965583173996) * (1 - tr) ** power


def log_vapour_pressure(t):
    """ln of the vapour pressure of water in atm; above the critical point its tangent over 1/T."""
    tc = mpf(647.096)
    c1, c2, c3 = mpf(7258.2), mpf(7.3037), mpf(4.1653e-6)
    curve = lambda u: mpf(73.649) - c1 / u - c2 * mp.log(u) + c3 * u * u - mp.log(101325)
    if t <= tc:
        return curve(t)
    slope = -c1 - c2 * (-tc) + c3 * (-2 * tc**3)  # d ln p / d(1/T)
    return curve(tc) + slope * (1 / t - 1 / tc)


class State:
    def __init__(self, mix, t, p, x, phase, flag=False, beyond=False):
        self.beyond = beyond  # the ideal gas has no value
        self.mix, self.t, self.p, self.phase, self.flag = mix, mpf(t), mpf(p), phase, flag
        self.x = [mpf(v) for v in x]
        self.water = None  # index of the water that is a liquid of its own
        if flag and phase == 2 and "water" in mix.ids and x[mix.ids.index("water")] >= TRACE:
            self.water = mix.ids.index("water")

    def mixing_enthalpy(self, x):
        """Enthalpy that water and ammonia lose when they mix, in either phase, cal/mol."""
        ids = self.mix.ids
        if self.flag or "ammonia" not in ids or "water" not in ids:
            return mpf(0)
        a, w = ids.index("ammonia"), ids.index("water")
        y = 1 - 2 * x[a]
        c = [mpf(v) for v in (47.3943643, 12.15, -66.20761, -12.15, 18.813245700000003)]
        mass = x[w] * mpf(self.mix.mass[w]) + x[a] * mpf(self.mix.mass[a])
        return mass * mp.polyval(c[::-1], y)

    def parts(self, t, p, x):
        """Terms of the molar enthalpy and of the molar entropy."""
        h, s = ideal_parts(self.mix, t, p, x)
        water = self.water
        if water is None:
            residual = eos.residuals(self.mix, t, p, x, self.phase)
            return h + [residual[0], -self.mixing_enthalpy(x)], s + [residual[1]]
        xw, heat = x[water], vaporisation(t)
        others = [mpf(0) if i == water else v for i, v in enumerate(x)]
        rest = mp.fsum(others)  # 1 - x_w where the sum of x is 1; traces beside water need its digits
        if rest > 0:
            others = [v / rest for v in others]
            residual = eos.residuals(self.mix, t, p, others, self.phase)
            h, s = h + [rest * residual[0]], s + [rest * residual[1]]
        saturation = log_vapour_pressure(t) - mp.log(p)
        return h + [-xw * heat], s + [-xw * heat / t, -xw * R_IDEAL * saturation]

    def caloric(self, t, p, x):
        h, s = self.parts(t, p, x)
        return mp.fsum(h), mp.fsum(s)

    def volume(self, t, p):
        a, b, _ = eos.mixture_ab(self.mix, t, self.x)
        z, _ = eos.solve_z(a * p / (R * t) ** 2, b * p / (R * t), self.phase)
        return z * R * t / p

    def density(self, t, p):
        mass = mp.fdot([mpf(m) for m in self.mix.mass], self.x)
        return mass / self.volume(t, p)

    def pressure(self, t, v):
        a, b, _ = eos.mixture_ab(self.mix, t, self.x)
        return R * t / (v - b) - a / (v * v + 2 * b * v - b * b)


# ---- Transport ----------------------------------------------------------------------------------

VISCOSITY = {row["cas"]: row for row in eos.read_csv("pure/gas_viscosity.csv")}
CONDUCTIVITY = {row["cas"]: row for row in eos.read_csv("pure/gas_thermal_conductivity.csv")}
THIRD, SIXTH = mpf(1) / 3, mpf(1) / 6


def f(text):
    return mpf(text)


def critical(component):
    row = eos.COMPONENTS[component]
    return {key: mpf(float(row[name])) for key, name in (
        ("T", "Tc_K"), ("P", "Pc_atm"), ("V", "Vc_cm3_mol"), ("Z", "Zc"), ("M", "molar_mass_g_mol"))}  # fmt: skip


def viscosity_curve(component, t):
    """Shape in T of the low-pressure viscosity."""
    tr = t / critical(component)["T"]
    special = {"hydrogen": ("47.65", "0.657", "20.0", "0.858", "19.0", "3.995"),
               "helium": ("52.57", "0.656", "18.9", "1.144", "17.9", "5.182")}  # fmt: skip
    general = ("46.1", "0.618", "20.4", "0.449", "19.4", "4.058")
    a, b, c, d, e, g = map(f, special.get(component, general))
    return 1 + a * tr**b - c * mp.exp(-d * tr) + e * mp.exp(-g * tr)


def conductivity_curve(component, t):
    """Shape in T of the low-pressure conductivity: translation, and for hydrocarbons the inner degrees of freedom."""
    c = critical(component)
    tr, m = min(t / c["T"], mpf(20)), c["M"]
    translation = f("8.757") * (mp.exp(f("0.0464") * tr) - mp.exp(-f("0.2412") * tr))
    if component == "water":
        return translation
    factor = f("0.003458") * m * m + f("0.01688") * m - f("0.03098") if m < 40 else f("0.3013") * m - f("5.8749")
    inner = tr * (-f("0.152") + f("1.191") * tr - f("0.039") * tr * tr)
    return translation + max(factor, 0) * max(inner, 0)


def dilute(table, curve, component, t):
    row = table[eos.COMPONENTS[component]["cas"]]
    end = min(max(t, mpf(float(row["Tmin"]))), mpf(float(row["Tmax"])))
    c = [mpf(float(row["C%d" % k])) for k in range(1, 5)]
    value = c[0] * end ** c[1] / (1 + c[2] / end + c[3] / end**2)
    return value * curve(component, t) / curve(component, end)


def transport_columns(q):
    """Viscosity in cP and conductivity in W/(m K) of a gas."""
    there = [(i, x) for i, x in zip(q.mix.ids, q.x) if x >= TRACE]
    total = mp.fsum(x for _, x in there)
    ids, x = [i for i, _ in there], [v / total for _, v in there]
    c = [critical(i) for i in ids]
    mix = {key: mp.fsum(v * part[key] for v, part in zip(x, c)) for key in "TPVZM"}
    mix["P"] = f("82.057366080960") * mix["Z"] * mix["T"] / mix["V"]
    mu = [1000 * dilute(VISCOSITY, viscosity_curve, i, q.t) for i in ids]
    values = {"viscosity": mu, "conductivity": [dilute(CONDUCTIVITY, conductivity_curve, i, q.t) for i in ids]}
    mean = {}
    for name, own in values.items():
        mean[name] = mpf(0)
        for i, v in enumerate(own):
            weights = [(1 + mp.sqrt(mu[i] / mu[j]) * (c[j]["M"] / c[i]["M"]) ** mpf(0.25)) ** 2
                       / mp.sqrt(8 * (1 + c[i]["M"] / c[j]["M"])) for j in range(len(ids))]  # fmt: skip
            mean[name] += x[i] * v / mp.fdot(x, weights)
    r = mix["V"] / q.volume(q.t, q.p)
    quartic = lambda u: mp.polyval([f(k) for k in ("0.0093324", "-0.040758", "0.058533", "0.023364", "0.1023")], u)
    dense = (quartic(r) ** 4 - quartic(0) ** 4) * mp.sqrt(mix["M"]) * mix["P"] ** (2 * THIRD) / mix["T"] ** SIXTH
    pieces = ((mpf(0), f("1.22e-2"), f("0.535")), (mpf(0.5), f("1.14e-2"), f("0.67")), (mpf(2), f("2.60e-3"), f("1.155")))
    ends = [mpf(0.5), mpf(2), mp.inf]
    conducted = mp.fsum(k * (mp.exp(e * min(r, end)) - mp.exp(e * start))
                        for (start, k, e), end in zip(pieces, ends) if r > start)  # fmt: skip
    gamma = 210 * (mix["T"] * mix["M"] ** 3 / (mix["P"] * f("1.01325")) ** 4) ** SIXTH
    return {"viscosity": mean["viscosity"] + dense, "conductivity": mean["conductivity"] + conducted / (gamma * mix["Z"] ** 5)}


# ---- Columns ------------------------------------------------------------------------------------


def central(function, at, step):
    h = step * at
    return (function(at + h) - function(at - h)) / (2 * h)


def density_columns(q):
    t, p, h, k = q.t, q.p, STEP * q.t, STEP * q.p
    corners = q.density(t + h, p + k) - q.density(t + h, p - k) - q.density(t - h, p + k) + q.density(t - h, p - k)
    return {
        "density": q.density(t, p),
        "density_dT": central(lambda u: q.density(u, p), t, STEP),
        "density_dP": central(lambda u: q.density(t, u), p, STEP),
        "density_dTdP": corners / (4 * h * k),
    }


def caloric_columns(q):
    t, p, x = q.t, q.p, q.x
    h, s = q.parts(t, p, x)
    enthalpy, entropy = mp.fsum(h), mp.fsum(s)
    columns = {"H": enthalpy, "S": entropy, "G": enthalpy - t * entropy}
    columns["H_size"] = mp.fsum(abs(v) for v in h)
    columns["S_size"] = mp.fsum(abs(v) for v in s)
    pair = lambda up, low, width: [(u - l) / width for u, l in zip(up, low)]
    d = OUTER_STEP
    by_t = pair(q.caloric(t * (1 + d), p, x), q.caloric(t * (1 - d), p, x), 2 * d * t)
    by_p = pair(q.caloric(t, p * (1 + d), x), q.caloric(t, p * (1 - d), x), 2 * d * p)
    by_n = []
    for j in range(len(x)):
        absent = x[j] < TRACE
        middle = x[:j] + [LIMIT if absent else x[j]] + x[j + 1 :]
        h = d * middle[j]
        sides = []
        for sign in (1, -1):
            n = [v + sign * h * (i == j) for i, v in enumerate(middle)]
            sides.append(q.caloric(t, p, [v / mp.fsum(n) for v in n]))
        by_n.append(pair(*sides, 2 * h))
        if absent:
            by_n[j][1] += R_IDEAL * mp.log(LIMIT / mpf(TRACE))
    for i, name in enumerate("HS"):
        columns[name + "_dT"], columns[name + "_dP"] = by_t[i], by_p[i]
        columns[name + "_dn"] = [v[i] for v in by_n]
    return columns


def gas_columns(q, cp):
    """Cp, Cv, speed of sound, Joule-Thomson coefficient and the comparison with the normal state."""
    t, p = q.t, q.p
    v = q.volume(t, p)
    dp_dv = central(lambda u: q.pressure(t, u), v, STEP)
    dp_dt = central(lambda u: q.pressure(u, v), t, STEP)
    dv_dt = central(lambda u: q.volume(u, p), t, STEP)
    mass = mp.fdot([mpf(m) for m in q.mix.mass], q.x)
    cv = cp - t * dp_dt**2 / -dp_dv * TO_CAL
    normal = q.volume(mpf(273.15), mpf(1))
    return {
        "Cp": cp,
        "Cv": cv,
        "w": 10 * mp.sqrt(mpf(1.01325) * cp / cv * (-v * v * dp_dv) / mass),
        "JT": -(v - t * dv_dt) * TO_CAL / cp,
        "Z": p * v / (R * t),
        "Z_normal": normal / (R * mpf(273.15)),
        "density_normal": 1000 * mass / normal,
        "normal_volume": normal / v,
    }


COLUMNS = [
    "density", "density_dT", "density_dP", "density_dTdP", "H", "H_size", "H_dT", "H_dP", "H_dn",
    "S", "S_size", "S_dT", "S_dP", "S_dn", "G", "Cp", "Cv", "w", "JT", "Z", "Z_normal", "density_normal",
    "normal_volume", "viscosity", "conductivity",
]  # fmt: skip


def row(index, q):
    columns = {}
    if not q.beyond:
        columns = density_columns(q)
        columns.update(caloric_columns(q))
        if q.phase == 1:
            columns.update(gas_columns(q, columns["H_dT"]))
    if q.phase == 1:
        columns.update(transport_columns(q))
    chop = lambda value: number(value if not abs(value) < 1e-30 else 0)
    text = lambda v: "" if v is None else ";".join(map(chop, v)) if isinstance(v, list) else chop(v)
    head = ["p%03d" % (index + 1), ";".join(q.mix.ids), int(q.flag), number(q.t), number(q.p), q.phase, numbers(q.x)]
    return head + [text(columns.get(name)) for name in COLUMNS]


# ---- States -------------------------------------------------------------------------------------

def dry_states():
    """(components, x, [(T, P, phase), ...])"""
    gas7, gas10 = eos.normalised(eos.GAS7_Z), eos.normalised(eos.GAS10_Z)
    return [
        (["methane"], [1.0], [(120, 0.5, 1), (300, 1e-6, 1), (200, 30, 1), (300, 100, 1), (298.15, 1, 1),
                              (1400, 500, 1), (200, 500, 1), (120, 10, 2), (150, 50, 2)]),
        (["carbon_dioxide"], [1.0], [(300, 1, 1), (280, 30, 1), (350, 300, 1), (250, 50, 2), (220, 2000, 2)]),
        (["nitrogen"], [1.0], [(100, 1, 1), (80, 1e-6, 1), (300, 200, 1), (900, 1000, 1), (85, 20, 2)]),
        (["methane", "propane"], [0.5, 0.5], [(250, 10, 1), (350, 150, 1), (210, 60, 2), (170, 5, 2)]),
        (["hydrogen", "carbon_dioxide"], [0.7, 0.3], [(320, 80, 1), (260, 1e-6, 1)]),
        (eos.GAS7, gas7, [(200, 20, 1), (300, 1e-6, 1), (350, 80, 1), (700, 600, 1), (160, 30, 2), (180, 400, 2)]),
        (eos.GAS10, gas10, [(250, 5, 1), (300, 1e-6, 1), (320, 40, 1), (400, 300, 1), (180, 40, 2), (250, 250, 2)]),
        (eos.GAS10, [0.0, 0.3, 0.2, 0.0, 0.2, 0.1, 0.1, 0.1, 0.0, 0.0], [(420, 5, 1), (300, 40, 2)]),
    ]  # fmt: skip


def wet_states():
    """(components, x, free water, [(T, P, phase), ...])"""
    oil = ["methane", "propane", "n_hexane", "water", "n_decane"]
    light, solution = ["methane", "n_hexane", "water"], ["water", "ammonia"]
    wet = [0.1, 0.1, 0.3, 0.2, 0.3]
    traces = [[0.6, 0.4 - 1e-9, 1e-9], [0.6, 0.4, 1e-15], [0.6, 0.4, 9e-16]]  # of water
    rich = [[0.0015, 0.0015, 0.997], [2e-9, 1e-9, 1 - 3e-9], [0.0, 1e-12, 1 - 1e-12], [0.0, 0.0, 1.0]]
    return [
        (oil, wet, True, [(280, 20, 2), (350, 60, 2), (450, 120, 2), (640, 300, 2), (275, 20, 2), (310, 20, 2)]),
        (oil, [0.3, 0.3, 0.1, 0.2, 0.1], True, [(450, 10, 1)]),
        (oil, wet, False, [(350, 60, 2)]),
        *((light, x, True, [(300, 30, 2)]) for x in traces),
        *((light, x, True, [(280, 30, 2), (400, 90, 2)]) for x in rich),
        (["propane", "water"], [0.0, 1.0], True, [(300, 1, 2), (500, 80, 2)]),
        (["water"], [1.0], True, [(640, 300, 2), (700, 400, 2)]),
        (["water"], [1.0], False, [(500, 10, 1), (320, 5, 2)]),
        (solution, [0.7, 0.3], False, [(300, 5, 2), (360, 40, 2)]),
        (solution, [0.2, 0.8], False, [(300, 50, 2), (450, 5, 1)]),
        *((solution, x, False, [(300, 50, 2)]) for x in ([1.0, 0.0], [0.0, 1.0])),
        (["methane", "ammonia", "water"], [0.2, 0.3, 0.5], False, [(320, 100, 2)]),
    ]  # fmt: skip


def beyond_states():
    """Gases at temperatures beyond the correlations of the ideal gas: transport only."""
    return [
        (["hydrogen"], [1.0], [(3400, 20), (12, 0.1)]),
        (["helium"], [1.0], [(2600, 100)]),
        (["hydrogen", "helium", "methane"], [0.3, 0.3, 0.4], [(3600, 50)]),
        (["n_hexane", "water"], [0.6, 0.4], [(1900, 400)]),
        (["propane"], [1.0], [(60, 1e-8), (2500, 300)]),
    ]  # fmt: skip


def main():
    folder = Path(sys.argv[1]) if len(sys.argv) > 1 else ROOT / "tests" / "data"
    states = []
    for ids, x, flag, points in [(i, x, False, p) for i, x, p in dry_states()] + wet_states():
        mix = Mixture("", ids)
        states += [State(mix, t, p, x, phase, flag) for t, p, phase in points]
    for ids, x, points in beyond_states():
        states += [State(Mixture("", ids), t, p, x, 1, beyond=True) for t, p in points]
    header = ["state", "ids", "free_water", "T_K", "P_atm", "phase", "x"] + COLUMNS
    eos.write(folder, "property_reference.csv", header, [row(i, q) for i, q in enumerate(states)])


if __name__ == "__main__":
    main()
