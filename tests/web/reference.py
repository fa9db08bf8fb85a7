"""Writes calls of every kind with the answers of the native library, for numbers.mjs: the same calls through WebAssembly.

    KESTRUNE_LIBRARIES=build/native/bin PYTHONPATH=python python3 tests/web/reference.py FILE [CALLS]

A call: mixture (its index), method with its argument, and status where there is no answer, else numbers by path.
"""
import json
import math
import random
import sys
import warnings

import kestrune

warnings.simplefilter("ignore")
MIXTURES = [
    {"methane": 0.85, "ethane": 0.09, "propane": 0.04, "nC4": 0.02},
    {"nitrogen": 0.01, "carbon dioxide": 0.02, "methane": 0.94, "ethane": 0.02, "propane": 0.006, "i-butane": 0.002,
     "n-butane": 0.002},
    {"N2": 0.01, "CO2": 0.02, "CH4": 0.70, "C2H6": 0.09, "C3H8": 0.06, "iC4": 0.02, "nC4": 0.03, "iC5": 0.02, "nC5": 0.02,
     "nC6": 0.03},
    {"methane": 0.7, "n-octane": 0.2, "water": 0.1},
    {"74-82-8": 0.5, "hydrogen sulfide": 0.3, "carbon dioxide": 0.2},
    {"hydrogen": 0.3, "methane": 0.4, "n-decane": 0.2, "benzene": 0.1},
    {"propane": 1.0},
    {"methane": 0.8, "ethane": 0.1, "carbon dioxide": 0.0995, "water": 0.0005},
    {"components": {"methane": 0.45, "propane": 0.10, "C7+": 0.45},
     "fractions": {"C7+": {"M": 218, "SG": 0.8515, "pieces": 4}}},
]
PROPERTIES = {"Z": "Z", "density": "density", "molarVolume": "molar_volume", "enthalpy": "enthalpy", "entropy": "entropy",
              "freeEnthalpy": "free_enthalpy", "Cp": "Cp", "Cv": "Cv", "speedOfSound": "speed_of_sound",
              "jouleThomson": "joule_thomson", "compressibility": "compressibility"}
OF_GAS = {"viscosity": "viscosity", "thermalConductivity": "thermal_conductivity", "normalDensity": "normal_density",
          "normalVolume": "normal_volume", "standardDensity": "standard_density", "standardVolume": "standard_volume",
          "standardCubicFeet": "standard_cubic_feet"}
UNITS = ["si", "engineering", "field", "C,bar", "F,psia", "C,bar,kJ/kmol"]


def properties(phase, names):
    def value(name):
        try:
            return getattr(phase, name)
        except kestrune.KestruneError as error:
            return f"status {error.status}"

    return {name: value(own) for name, own in names.items()}


def state(found):
    numbers = {"T": found.T, "P": found.P, "beta": found.beta, "enthalpy": found.enthalpy, "entropy": found.entropy,
               "molarMass": found.molar_mass, "density": found.density}
    for phase in found:
        numbers[phase.name] = {"fraction": phase.fraction}
        if phase.fraction > 0.0:
            numbers[phase.name] |= {"x": list(phase.x), "aqueous": float(phase.aqueous)}
            numbers[phase.name] |= properties(phase, {"density": "density", "Cp": "Cp"})
    return numbers


def pair(r, gas):
    """What a flash is given, in SI, at a state that the gas may have."""
    T, P = r.uniform(180.0, 420.0), 10.0 ** r.uniform(5.0, 7.2)
    kind = r.choice(["TP", "TP", "HP", "SP", "WP", "WT"])
    if kind == "TP":
        return {"T": T, "P": P}
    if kind in ("HP", "SP"):
        start = gas.flash(T, P)
        return {"H": start.enthalpy, "P": P} if kind == "HP" else {"S": start.entropy, "P": P}
    return {"beta": r.choice([0.0, 1.0, r.random()]), **({"P": P} if kind == "WP" else {"T": T})}


def flash(r, gas):
    shown = kestrune.Units(r.choice(UNITS))
    quantity = {"T": "temperature", "P": "pressure", "H": "enthalpy", "S": "entropy", "beta": "vapour fraction"}
    given = {k: shown.from_si(quantity[k], v, gas.molar_mass) for k, v in pair(r, gas).items()}
    options = {"phases": r.choice([2, 3]), "units": shown.name}
    if r.random() < 0.2 and "H" not in given and "S" not in given:
        options["z"] = [r.random() for _ in gas.names]
    return "flash", given | options, lambda: state(gas.flash(**given, **options))


def saturation(r, gas):
    name = r.choice(["bubble", "dew"])
    given = {"P": 10.0 ** r.uniform(5.0, 6.8)} if r.random() < 0.5 else {"T": r.uniform(180.0, 320.0)}
    return name, given, lambda: state(getattr(gas, name)(**given))


def one_phase(r, gas):
    kind = r.choice(["gas", "liquid"])
    given = {"T": r.uniform(200.0, 450.0), "P": 10.0 ** r.uniform(5.0, 7.3), "phase": kind}
    names = PROPERTIES | (OF_GAS if kind == "gas" else {})

    def found():
        phase = gas.properties(**given)
        return properties(phase, names) | {"lnPhi()": list(phase.ln_phi())}

    return "properties", given, found


def envelope(r, gas):
    quality = [r.uniform(0.1, 0.9)] if r.random() < 0.3 else []
    points = r.choice([0, 0, 50])

    def place(p):
        return None if p is None else {"T": p[0], "P": p[1]}

    def found():
        e = gas.envelope(quality, points=points)
        numbers = {"T": list(e.T), "P": list(e.P), "status": e.status, "critical": [place(p) for p in e.critical],
                   "cricondentherm": place(e.cricondentherm), "cricondenbar": place(e.cricondenbar)}
        if quality:
            numbers["quality"] = [list(e.quality[quality[0]].T)]
        return numbers

    return "envelope", {"quality": quality, "points": points}, found


def critical(r, gas):
    del r
    return "critical", {}, lambda: gas.critical()._asdict()


def kij(r, gas):
    given = {"T": r.uniform(200.0, 500.0)}
    return "kij", given, lambda: [list(row) for row in gas.kij(**given)]


def water(r, gas):
    method = r.choice(["eos", "chart"])
    T, P = r.uniform(240.0, 350.0), 10.0 ** r.uniform(5.5, 7.2)
    kind = r.choice(["content", "dew at T", "dew at P"])
    if kind == "content":
        def content():
            return {"fraction": gas.water.content(T, P, method=method).fraction,
                    "content": gas.water.content(T, P, method=method).content}

        return "water.content", {"T": T, "P": P, "method": method}, content
    given = {"water": 10.0 ** r.uniform(-5.0, -2.5), "method": method} | ({"P": P} if kind == "dew at P" else {"T": T})
    return "water.dew", given, lambda: gas.water.dew(**given)._asdict()


def hydrate(r, gas):
    given = r.choice([{}, {"inhibitor": "MEG", "percent": 20.0}, {"inhibitor": "methanol", "percent": 10.0},
                      {"inhibitor": "NaCl", "percent": 5.0}, {"inhibitor": 92.1, "percent": 15.0}])
    given |= {"P": 10.0 ** r.uniform(6.0, 7.5)} if r.random() < 0.5 else {"T": r.uniform(262.0, 298.0)}
    return "hydrate", given, lambda: gas.hydrate(**given)._asdict()


KINDS = [(flash, 50), (saturation, 10), (one_phase, 15), (envelope, 4), (critical, 1), (kij, 2), (water, 12), (hydrate, 6)]


def plain(value):
    """Without NaN, which JSON has not, and with numpy's numbers as Python's."""
    if isinstance(value, dict):
        return {k: plain(v) for k, v in value.items()}
    if isinstance(value, list):
        return [plain(v) for v in value]
    if value is None or isinstance(value, str):
        return value
    return "NaN" if math.isnan(value) else float(value)


def main(file, calls):
    r = random.Random(20)
    gases = [kestrune.Mixture(m, allow_missing_pairs=True) for m in MIXTURES]
    table = []
    while len(table) < calls:
        index = r.randrange(len(gases))
        kind = r.choices([k for k, _ in KINDS], [w for _, w in KINDS])[0]
        entry = {"mixture": index}
        try:
            entry["method"], entry["given"], found = kind(r, gases[index])
            entry["numbers"] = plain(found())
        except kestrune.KestruneError as error:
            if "method" not in entry:
                continue  # the state that a flash was to start from
            entry["status"] = error.status
        table.append(entry)
    with open(file, "w", encoding="utf-8") as out:
        json.dump({"mixtures": MIXTURES, "calls": table}, out)
    answered = sum("numbers" in entry for entry in table)
    print(f"{len(table)} calls, {answered} with an answer")


if __name__ == "__main__":
    main(sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 2000)
