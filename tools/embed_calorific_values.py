#!/usr/bin/env python3
"""Writes the table of calorific values of the command line host as C++.

usage: embed_calorific_values.py CALORIFIC_VALUES_CSV OUTPUT_CPP

Stops with a message when a CAS number is wrong or a value lies far from the straight line through the first and the
last temperature of its row: a misprint.
"""
import csv
import sys
from pathlib import Path

SUMMATION = ["s_0", "s_15", "s_15.55", "s_20"]
CALORIFIC = ["Hc_0", "Hc_15", "Hc_15.55", "Hc_20", "Hc_25"]
TEMPERATURES = [0.0, 15.0, 15.55, 20.0, 25.0]  # C


def check(row):
    digits = row["cas"].replace("-", "")
    if sum(int(d) * k for k, d in enumerate(reversed(digits[:-1]), 1)) % 10 != int(digits[-1]):
        sys.exit(f"{row['name']}: {row['cas']} is no CAS number")
    for keys, tolerance in ((SUMMATION, 0.03), (CALORIFIC, 0.001)):
        values = [float(row[key]) for key in keys]
        for T, value in zip(TEMPERATURES, values):
            line = values[0] + (values[-1] - values[0]) * T / TEMPERATURES[len(values) - 1]
            if abs(value - line) > tolerance * abs(line):
                sys.exit(f"{row['name']}: {value} at {T} C does not lie between its neighbours in {', '.join(keys)}")


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    out = ["// Made by tools/embed_calorific_values.py from data/calorific_values.csv.", '#include "sales_gas.hpp"', "",
           "namespace kestrune::host::tables {", "", "const CalorificEntry kCalorificValues[] = {"]
    with open(sys.argv[1], newline="", encoding="utf-8") as file:
        for row in csv.DictReader(file):
            check(row)
            s, H = (", ".join(repr(float(row[k])) for k in keys) for keys in (SUMMATION, CALORIFIC))
            out.append(f"    {{{row['cas'].replace('-', '')}, {int(row['hydrogen_atoms'])}, "
                       f"{float(row['molar_mass_g_mol'])!r}, {{{s}}}, {{{H}}}}},")
    out += ["};", "std::span<const CalorificEntry> calorific_values() { return kCalorificValues; }", "",
            "}  // namespace kestrune::host::tables", ""]
    Path(sys.argv[2]).write_text("\n".join(out), encoding="utf-8")


main()
