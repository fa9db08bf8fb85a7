#!/usr/bin/env python3
"""Water contents of gases evaluated with high precision, by both methods.

Writes water_reference.csv into tests/data (or the folder given as first argument): method, T_K, P_atm, gas, y. Nothing
of the library takes part. Equation of state, mixtures and number format are those of make_eos_reference.py, the
pure-component equations those of data/pure; the rest is written here from the literature:

  method 1  y P phi_w = f_w, phi_w of the gas by PPR78 with the k_ij of water in the gas of Soreide and Whitson (Fluid
            Phase Equilib. 77 (1992) 217); f_w of liquid water with its compressibility (Kell 1975) and with the CO2 and
            H2S that dissolve by Henry's law with the correction of Krichevsky and Kasarnovsky, or of ice (IAPWS R10-06)
  method 2  W = A/P + B (Bukacek 1955) with the contents of CO2 and H2S of Maddox (1974), over supercooled water (Murphy
            and Koop, 2005) below the ice point

The output is the same on every run. Needs python3 and mpmath.
"""

import sys
from pathlib import Path

from mpmath import mp, mpf

import make_eos_reference as eos
from make_eos_reference import ROOT, R, Mixture, number

mp.dps = 40
PA = mpf(101325)
TRIPLE = mpf("273.16")
GAS = 1  # phase of the largest root

# Non-aqueous k_ij; that of hydrogen sulphide has a part with its reduced temperature.
K_WATER = {
    "methane": "0.4850", "ethane": "0.4920", "propane": "0.5525", "n_butane": "0.5091", "isobutane": "0.5091",
    "nitrogen": "0.4778", "carbon_dioxide": "0.1896", "n_pentane": "0.5", "n_hexane": "0.5", "n_decane": "0.5",
}  # fmt: skip

# T in F: log10 of lb per million standard ft3 as a quadratic in log10(P/psia).
MADDOX = {
    "carbon_dioxide": {
        80: ("6.0901", "-2.5396", "0.3427"), 100: ("6.1870", "-2.3779", "0.3103"),
        130: ("6.1925", "-2.0280", "0.2400"), 160: ("6.1850", "-1.8492", "0.2139"),
    },
    "hydrogen_sulfide": {
        80: ("5.1847", "-1.9772", "0.3004"), 100: ("5.4896", "-2.0210", "0.3046"),
        130: ("6.1694", "-2.2342", "0.3319"), 160: ("6.8834", "-2.4731", "0.3646"),
        220: ("7.9773", "-2.8597", "0.4232"), 280: ("9.2783", "-3.3723", "0.4897"),
    },
}  # fmt: skip
PER_MILLION = mpf(47484)  # lb in 10^6 standard ft3 of steam
PSI = mpf("14.695948775513")  # per atm


# ---- Condensed water ----------------------------------------------------------------------------


def coefficients(name, cas):
    row = next(r for r in eos.read_csv("pure/%s.csv" % name) if r["cas"] == cas)
    return [mpf(float(row["C%d" % k])) for k in range(1, 8)]


def equation_101(name, cas, t):
    """Pressure of a table, atm."""
    c = coefficients(name, cas)
    return mp.exp(c[0] + c[1] / t + c[2] * mp.log(t) + (c[3] * t ** c[4] if c[3] else 0)) / PA


WATER = "7732-18-5"


def over_liquid(t):
    """Vapour pressure over liquid water, below the triple point over supercooled water, atm."""
    if t >= TRIPLE:
        return equation_101("vapour_pressure", WATER, t)
    n = [mpf(v) for v in ("54.842763", "6763.22", "4.210", "0.000367", "0.0415", "218.8", "53.878", "1331.22",
                          "9.44523", "0.014025")]  # fmt: skip
    curve = lambda u: n[0] - n[1] / u - n[2] * mp.log(u) + n[3] * u + mp.tanh(n[4] * (u - n[5])) * (
        n[6] - n[7] / u - n[8] * mp.log(u) + n[9] * u)  # fmt: skip
    return equation_101("vapour_pressure", WATER, TRIPLE) * mp.exp(curve(t) - curve(TRIPLE))


def liquid_volume(t):
    """cm3/mol of the saturated liquid; below the triple point as there."""
    c = coefficients("liquid_density", WATER)
    x = mp.cbrt(1 - max(t, TRIPLE) / mpf("647.096"))
    return 1000 / mp.fsum(ci * x**k for ci, k in zip(c, (0, 1, 2, 5, 16, 43, 110)))


def pure_steam(t, p):
    """ln phi of steam."""
    return eos.evaluate(Mixture("steam", ["water"]), t, p, [mpf(1)], GAS)[2][0]


def ln_liquid(t, p, dissolved):
    """ln of the fugacity of liquid water; dissolved: fugacities in the gas, atm, by CAS number."""
    psat, rt, kappa = over_liquid(t), R * t, mpf("4.6e-5")
    ratio = mpf(0)
    for cas, (fugacity, volume) in dissolved.items():
        ratio += fugacity / (equation_101("henry_water", cas, t) * mp.exp(mpf(volume) * (p - psat) / rt))
    compressed = liquid_volume(t) / (rt * kappa) * mp.log(1 + kappa * (p - psat))
    return mp.log(psat) + pure_steam(t, psat) + compressed - mp.log(1 + ratio)


def ln_ice(t, p):
    psub = equation_101("sublimation_pressure", WATER, t)
    return mp.log(psub) + pure_steam(t, psub) + mpf("19.652") * (p - psub) / (R * t)


# ---- Contents -----------------------------------------------------------------------------------


def in_the_gas(mix, t):
    """The pair parameters of the gas, with water's own k_ij, where eos.evaluate looks for them."""
    matrix = eos.pair_matrix(mix, t)
    w = mix.nc - 1
    for i, name in enumerate(mix.ids[:w]):
        k = None
        if name == "hydrogen_sulfide":
            k = mpf("0.19031") - mpf("0.05965") * t / mpf(mix.tc[i])
        elif name in K_WATER:
            k = mpf(K_WATER[name])
        if k is not None:
            matrix[i][w] = matrix[w][i] = mp.sqrt(matrix[i][i] * matrix[w][w]) * (1 - k)
    return mix


def balance(mix, t, p, dry, u):
    """ln of water's fugacity in the gas with the fraction exp(u), less that of the condensed phase."""
    y = mp.exp(u)
    ln_phi = eos.evaluate(mix, t, p, [(1 - y) * v for v in dry] + [y], GAS)[2]
    dissolved = {}
    for name, cas, volume in (("carbon_dioxide", "124-38-9", "32.6"), ("hydrogen_sulfide", "7783-06-4", "34.9")):
        if name in mix.ids:
            i = mix.ids.index(name)
            dissolved[cas] = ((1 - y) * dry[i] * p * mp.exp(ln_phi[i]), volume)
    condensed = ln_liquid(t, p, dissolved)
    if t < TRIPLE:
        condensed = min(condensed, ln_ice(t, p))
    return u + ln_phi[-1] + mp.log(p) - condensed


def by_fugacities(t, p, gas):
    ids = list(gas)
    mix = in_the_gas(Mixture("", ids + ["water"]), t)
    dry = [mpf(v) / mp.fsum(mpf(w) for w in gas.values()) for v in gas.values()]
    start = mp.log(over_liquid(t) / p)
    return mp.exp(mp.findroot(lambda u: balance(mix, t, p, dry, u), (start, start + mpf("0.1")), solver="secant"))


def chart_line(t, p):
    return over_liquid(t) / p + mpf(10) ** (mpf("6.69449") - mpf("3083.87") / (t * mpf("1.8"))) / PER_MILLION


def by_chart(t, p, gas):
    factor = mpf(1)
    for name, rows in MADDOX.items():
        if name not in gas:
            continue
        marks = sorted(rows)
        rankine = [f + mpf("459.67") for f in marks]
        r = min(max(t * mpf("1.8"), rankine[0]), rankine[-1])
        k = max(i for i in range(len(marks) - 1) if rankine[i] <= r)
        share = (1 / r - 1 / rankine[k]) / (1 / rankine[k + 1] - 1 / rankine[k])
        c = [(1 - share) * mpf(a) + share * mpf(b) for a, b in zip(rows[marks[k]], rows[marks[k + 1]])]
        psia = min(max(p * PSI, mpf(100)), mpf(3000))
        x = mp.log10(psia)
        own = mpf(10) ** (c[0] + c[1] * x + c[2] * x * x) / PER_MILLION
        factor += mpf(gas[name]) * max(mpf(0), own / chart_line(r / mpf("1.8"), psia / PSI) - 1)
    return chart_line(t, p) * factor


# ---- States -------------------------------------------------------------------------------------

SOUR = {"methane": 0.6, "carbon_dioxide": 0.25, "hydrogen_sulfide": 0.15}
RICH = {"methane": 0.7, "ethane": 0.1, "propane": 0.08, "n_butane": 0.05, "n_pentane": 0.03, "nitrogen": 0.04}
STATES = [
    (1, 310.0, 50.0, {"carbon_dioxide": 1.0}),
    (1, 350.0, 150.0, {"carbon_dioxide": 1.0}),
    (1, 311.0, 136.0, {"methane": 0.8, "carbon_dioxide": 0.2}),
    (1, 450.0, 600.0, {"methane": 0.5, "carbon_dioxide": 0.5}),
    (1, 344.0, 40.0, {"hydrogen_sulfide": 1.0}),
    (1, 344.0, 93.0, {"methane": 0.725, "hydrogen_sulfide": 0.275}),
    (1, 420.0, 400.0, {"methane": 0.5, "hydrogen_sulfide": 0.5}),
    (1, 311.0, 75.0, {"methane": 0.1, "carbon_dioxide": 0.6, "hydrogen_sulfide": 0.3}),
    (1, 300.0, 60.0, SOUR),
    (1, 380.0, 300.0, SOUR),
    (1, 490.0, 100.0, SOUR),
    (1, 290.0, 40.0, RICH),
    (1, 360.0, 1500.0, RICH),
    (1, 255.0, 30.0, RICH),
    (1, 235.0, 400.0, {"methane": 1.0}),
    (1, 330.0, 80.0, {"methane": 0.8, "n_hexane": 0.02, "n_decane": 0.001, "isobutane": 0.05, "oxygen": 0.1,
                      "benzene": 0.029}),
    (2, 300.0, 60.0, RICH),
    (2, 250.0, 20.0, RICH),
    (2, 305.0, 60.0, {"methane": 0.8, "carbon_dioxide": 0.2}),
    (2, 320.0, 136.0, {"methane": 0.8, "carbon_dioxide": 0.2}),
    (2, 340.0, 180.0, {"methane": 0.65, "carbon_dioxide": 0.35}),
    (2, 303.0, 50.0, {"methane": 0.8, "hydrogen_sulfide": 0.2}),
    (2, 318.0, 90.0, {"methane": 0.7, "hydrogen_sulfide": 0.3}),
    (2, 335.0, 4.0, {"methane": 0.7, "hydrogen_sulfide": 0.3}),
    (2, 360.0, 130.0, {"methane": 0.7, "hydrogen_sulfide": 0.3}),
    (2, 400.0, 200.0, {"methane": 0.7, "hydrogen_sulfide": 0.3}),
    (2, 330.0, 100.0, {"methane": 0.7, "carbon_dioxide": 0.2, "hydrogen_sulfide": 0.1}),
    (2, 290.0, 250.0, {"methane": 0.97, "carbon_dioxide": 0.03}),
]  # fmt: skip


def main():
    folder = Path(sys.argv[1]) if len(sys.argv) > 1 else ROOT / "tests" / "data"
    rows = []
    for method, t, p, gas in STATES:
        y = (by_fugacities if method == 1 else by_chart)(mpf(t), mpf(p), gas)
        text = ";".join("%s=%s" % (name, number(x)) for name, x in gas.items())
        rows.append([method, number(t), number(p), text, number(y)])
    eos.write(folder, "water_reference.csv", ["method", "T_K", "P_atm", "gas", "y"], rows)


if __name__ == "__main__":
    main()
