#!/usr/bin/env python3
"""Writes tests/water/published.csv: water contents and hydrate points from the literature.

No copy of the sources was at hand. The tables below and the coefficients of the two correlations were entered from
memory of the publications and may carry errors. Of the measured values themselves only those of ACID are here; the sets
"smoothed" are tables or correlations that their authors fitted to measurements, and share their errors.

    python3 tools/make_water_published.py
"""
import csv
import math
import os

R = 83.1447  # bar cm3/(mol K)
PSI_PER_ATM = 14.695948775513
BAR_PER_ATM = 1.01325
LB = 47484.0  # lb in 10^6 standard ft3 for a mole fraction of one, as the table of Bukacek takes it
NATURAL = "methane=0.94;ethane=0.035;propane=0.01;nitrogen=0.01;carbon_dioxide=0.005"

# T in F: A, B of W = A/P + B, lb in 10^6 standard ft3, P in psia.
BUKACEK = {-40: (131, 0.22), -20: (390, 0.48), 0: (1050, 0.97), 20: (2560, 1.85), 32: (4210, 2.65),
           40: (5780, 3.34), 50: (8460, 4.42), 60: (12200, 5.77), 70: (17200, 7.47), 80: (24100, 9.57),
           90: (33200, 12.2), 100: (45100, 15.3)}

# composition, T in F, P in psia, lb in 10^6 standard ft3
ACID = [("methane=0.89;carbon_dioxide=0.11", 100, 2000, 40.6), ("methane=0.89;carbon_dioxide=0.11", 160, 1000, 286),
        ("methane=0.80;carbon_dioxide=0.20", 100, 2000, 40.6), ("methane=0.80;carbon_dioxide=0.20", 160, 1000, 282),
        ("methane=0.80;carbon_dioxide=0.20", 160, 2000, 172),
        ("methane=0.92;hydrogen_sulfide=0.08", 130, 1500, 111),
        ("methane=0.725;hydrogen_sulfide=0.275", 160, 1367, 247),
        ("methane=0.83;hydrogen_sulfide=0.17", 160, 1000, 292),
        ("methane=0.10;carbon_dioxide=0.60;hydrogen_sulfide=0.30", 100, 1100, 81),
        ("methane=0.0531;carbon_dioxide=0.9469", 77, 1500, 109.2),
        ("methane=0.0531;carbon_dioxide=0.9469", 122, 2000, 164.6)]

# T in K, P in MPa
DEATON_FROST = [(273.7, 2.76), (274.3, 2.90), (275.4, 3.24), (275.9, 3.42), (277.1, 3.81), (279.3, 4.77),
                (280.4, 5.35), (280.9, 5.71), (281.5, 6.06), (282.6, 6.77), (284.3, 8.12), (285.9, 9.78)]


def vapour_pressure(T):
    """Water, bar: W. Wagner, A. Pruss, J. Phys. Chem. Ref. Data 22 (1993) 783."""
    x = 1 - T / 647.096
    s = (-7.85951783 * x + 1.84408259 * x**1.5 - 11.7866497 * x**3 + 22.6807411 * x**3.5 - 15.9618719 * x**4
         + 1.80122502 * x**7.5)
    return 220.64 * math.exp(s * 647.096 / T)


def methane(T, P):
    """Duan and Mao: y = Psat exp(v (P - Psat)/RT)/(phi P), P in bar; dissolved methane (below 0.5 %) left out."""
    a = (-1.42006707e-2, 1.08369910e-2, -1.59213160e-6, -1.10804676e-5, -3.14287155, 1.06338095e-3)
    log_phi = a[0] + a[1] * P + a[2] * P * P + a[3] * P * T + a[4] * P / T + a[5] * P * P / T
    ps = vapour_pressure(T)
    volume = 18.05 + 3.2 * 18.05 * (max(T - 277.0, 0.0) / 1000.0)**2
    return ps * math.exp(volume * (P - ps) / (R * T) - log_phi) / P


def redlich_kwong_volume(T, P):
    """CO2 of Spycher et al., cm3/mol: gas or liquid by the lower work."""
    a, b = 7.54e7 - 4.13e4 * T, 27.80
    c = (1.0, -R * T / P, -(R * T * b / P - a / (P * math.sqrt(T)) + b * b), -a * b / (P * math.sqrt(T)))
    f = lambda v: ((v + c[1]) * v + c[2]) * v + c[3]
    grid = [b * 1.0001 * 1.002**k for k in range(4000)]
    roots = []
    for low, high in zip(grid, grid[1:]):
        if f(low) * f(high) > 0:
            continue
        for _ in range(100):
            mid = 0.5 * (low + high)
            low, high = (mid, high) if f(low) * f(mid) > 0 else (low, mid)
        roots.append(low)
    gas, liquid = max(roots), min(roots)
    work = P * (gas - liquid)
    integral = R * T * math.log((gas - b) / (liquid - b)) + a / (math.sqrt(T) * b) * math.log(
        (gas + b) * liquid / ((liquid + b) * gas))
    return gas if integral >= work else liquid


def carbon_dioxide(T, P):
    """Spycher, Pruess and Ennis-King: water in CO2, P in bar."""
    t = T - 273.15
    a, b = 7.54e7 - 4.13e4 * T, 27.80
    v = redlich_kwong_volume(T, P)

    def phi(a_k, b_k):
        rt15 = R * T**1.5
        log = (math.log(v / (v - b)) + b_k / (v - b) - 2 * a_k / (rt15 * b) * math.log((v + b) / v)
               + a * b_k / (rt15 * b * b) * (math.log((v + b) / v) - b / (v + b)) - math.log(P * v / (R * T)))
        return math.exp(log)

    k_water = 10**(-2.209 + 3.097e-2 * t - 1.098e-4 * t * t + 2.048e-7 * t**3)
    k_gas = 10**(1.189 + 1.304e-2 * t - 5.446e-5 * t * t)
    if v < 94 and T < 304.2:
        k_gas = 10**(1.169 + 1.368e-2 * t - 5.380e-5 * t * t)
    A = k_water / (phi(7.89e7, 18.18) * P) * math.exp((P - 1) * 18.1 / (R * T))
    B = phi(a, b) * P / (55.508 * k_gas) * math.exp(-(P - 1) * 32.6 / (R * T))
    return (1 - B) / (1 / A - B)


def kelvin(F):
    return (F + 459.67) / 1.8


def content_rows():
    for F, (A, B) in BUKACEK.items():
        for psia in (200, 1000):
            kind = "chart of natural gas" if F >= 32 else "chart of natural gas below the ice point"
            yield kind, "smoothed", "Bukacek 1955 as tabulated in ASTM D1142", kelvin(F), psia / PSI_PER_ATM, NATURAL, \
                (A / psia + B) / LB
    for T in (283.15, 310.93, 344.26, 377.59, 444.26):
        for P in (10, 30, 60, 100, 200, 400, 700):
            if vapour_pressure(T) < 0.5 * P:
                kind = "methane" if P <= 200 else "methane 400 and 700 bar"
                yield kind, "smoothed", "Duan and Mao 2006 (fit to Olds 1942 and eleven others)", T, P / BAR_PER_ATM, \
                    "methane=1", methane(T, P)
    for T in (288.15, 304.21, 323.15, 373.15):
        for P in (10, 50, 100, 200, 400, 600):
            yield "carbon dioxide", "smoothed", "Spycher Pruess and Ennis-King 2003 (fit to Wiebe and Gaddy 1941 and others)", \
                T, P / BAR_PER_ATM, "carbon_dioxide=1", carbon_dioxide(T, P)
    for mixture, F, psia, lb in ACID:
        strong = "hydrogen" in mixture
        rich = "0.9469" in mixture
        kind = "carbon dioxide with 5 % methane" if rich else "sour gas" if strong else "methane with carbon dioxide"
        yield kind, "measured", "Lukacs and Robinson 1963; Song and Kobayashi 1989; as quoted in the GPSA data book", \
            kelvin(F), psia / PSI_PER_ATM, mixture, lb / LB


def hydrate_rows():
    for T, P in DEATON_FROST:
        yield "hydrate of methane", "measured", "Deaton and Frost 1946", T, P * 10 / BAR_PER_ATM, "methane=1", T
    yield "hydrate of gas by gravity", "smoothed", "Katz 1945 chart: gravity 0.603; example of Sloan", kelvin(50), \
        450 / PSI_PER_ATM, "methane=0.9267;ethane=0.0529;propane=0.0138;isobutane=0.00182;n_butane=0.00338;n_pentane=0.0014", \
        kelvin(50)
    yield "hydrate of gas by gravity", "smoothed", "Katz 1945 chart: gravity 0.69; example of the GPSA data book", \
        kelvin(50), 320 / PSI_PER_ATM, \
        "methane=0.784;ethane=0.06;propane=0.036;isobutane=0.005;n_butane=0.019;nitrogen=0.094;carbon_dioxide=0.002", \
        kelvin(50)


def main():
    path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "water", "published.csv")
    with open(path, "w", newline="") as file:
        file.write("# Made by tools/make_water_published.py: from memory of the sources, may carry errors.\n"
                   "# value: mole fraction of water in the saturated gas; temperature in K for hydrates.\n")
        out = csv.writer(file, lineterminator="\n")
        out.writerow(["set", "kind", "source", "T_K", "P_atm", "gas", "value"])
        for row in list(content_rows()) + list(hydrate_rows()):
            out.writerow([*row[:3], f"{row[3]:.4f}", f"{row[4]:.5f}", row[5], f"{row[6]:.6g}"])


if __name__ == "__main__":
    main()
