#!/usr/bin/env python3
"""Turns the correlation tables of data/pure into one C++ source of constant arrays.

usage: make_pure_data.py TABLE_FOLDER OUTPUT

Adding a component means adding rows to the tables. Every row is checked; the first bad one ends the run with
"file:line: what is wrong" and exit code 1, and nothing is written. Standard library only.
"""

import csv
import math
import re
import sys
from decimal import Decimal
from pathlib import Path

# Property (numbered as in KV_PURE_PROPERTIES) -> its tables, unit and the equations it may use. Rows of a later
# table are alternatives: they count only where the component has no row of that equation in an earlier one.
PROPERTIES = [
    ("GasThermalConductivity", ["gas_thermal_conductivity"], "W/m/K", {102}),
    ("GasViscosity", ["gas_viscosity"], "Pa.s", {102}),
    ("HenryConstant", ["henry_water", "henry_water_iapws"], "Pa", {101}),
    ("IdealGasSpecificHeat", ["ideal_gas_heat_capacity", "ideal_gas_heat_capacity_published"], "J/kmol/K",
     {16, 100, 107, 127}),
    ("LiquidDensity", ["liquid_density"], "kmol/m3", {105, 119}),
    ("LiquidMolarVolume", ["liquid_density"], "kmol/m3", {105, 119}),
    ("LiquidSpecificHeat", ["liquid_heat_capacity"], "J/kmol/K", {16, 100, 114}),
    ("LiquidThermalConductivity", ["liquid_thermal_conductivity"], "W/m/K", {16, 100}),
    ("LiquidViscosity", ["liquid_viscosity"], "Pa.s", {101}),
    ("MeltingPressure", ["melting_pressure"], "Pa", set()),
    ("SecondVirialCoefficient", ["second_virial"], "m3/kmol", {104}),
    ("SolidDensity", ["solid_density"], "kmol/m3", {100}),
    ("SolidMolarVolume", ["solid_density"], "kmol/m3", {100}),
    ("SolidSpecificHeat", ["solid_heat_capacity"], "J/kmol/K", {16, 100}),
    ("SolidThermalConductivity", ["solid_thermal_conductivity"], "W/m/K", {100, 101}),
    ("SublimationPressure", ["sublimation_pressure"], "Pa", {10, 101}),
    ("SurfaceTension", ["surface_tension"], "N/m", {100, 106}),
    ("VaporizationEnthalpy", ["heat_of_vaporisation"], "J/kmol", {106}),
    ("VaporPressure", ["vapour_pressure"], "Pa", {10, 101}),
    ("LiquidSpecificHeatInfiniteDilution", [], "J/kmol/K", set()),
]

WATER_TC = 647.096  # K, fixed in equation 119
HENRY_IAPWS = 294
MELTING_FORM = {"R": 295, "T": 300}
SOURCE_LENGTH = 60

CORRELATION_HEADER = "cas,name,eq,C1,C2,C3,C4,C5,C6,C7,unit,T_unit,Tmin,Tmax,source"
HEADERS = {
    "henry_water_iapws": "cas,name,A,B,C,unit,T_unit,Tmin,Tmax,source",
    "melting_pressure": "cas,name,branch,form,p0,T0,a1,t1,a2,t2,a3,t3,unit,T_unit,Tmin,Tmax,source",
    "chemical_exergy": "cas,name,phase,value,unit,T0,p0,source",
}
EXERGY_PHASES = ["g", "l", "s"]
EXERGY_SOURCES = ["SZARGUT2007", "SZARGUT1988", "CALC:SZARGUT1988"]  # best first


class TableError(Exception):
    """A table that cannot be used; the text names file and line."""


class Line:
    """One data line of a table with its place, for messages."""

    def __init__(self, path, number, fields):
        self.path, self.number, self.fields = path, number, fields

    def fail(self, text):
        raise TableError(f"{self.path}:{self.number}: {text}")

    def text(self, column):
        return self.fields[column]

    def number_of(self, column):
        try:
            value = float(self.fields[column])
        except ValueError:
            self.fail(f"column {column}: '{self.fields[column]}' is not a number")
        if not math.isfinite(value):
            self.fail(f"column {column}: '{self.fields[column]}' is not finite")
        return value

    def integer(self, column):
        if not re.fullmatch(r"[0-9]+", self.fields[column]):
            self.fail(f"column {column}: '{self.fields[column]}' is not a whole number")
        return int(self.fields[column])

    def cas(self):
        text = self.fields["cas"]
        match = re.fullmatch(r"([0-9]{2,7})-([0-9]{2})-([0-9])", text)
        if not match:
            self.fail(f"'{text}' is not a CAS number")
        digits = match[1] + match[2]
        check = sum(i * int(d) for i, d in enumerate(reversed(digits), 1)) % 10
        if check != int(match[3]):
            self.fail(f"CAS number {text}: check digit should be {check}")
        value = int(digits + match[3])
        if value > 2**31 - 1:
            self.fail(f"CAS number {text} does not fit 32 bits")
        return value

    def expect(self, column, wanted):
        if self.fields[column] != wanted:
            self.fail(f"column {column}: '{self.fields[column]}', expected '{wanted}'")

    def source(self):
        text = self.fields["source"]
        if not re.fullmatch(r'[ -!#-\[\]-~]{1,%d}' % SOURCE_LENGTH, text):
            self.fail(f"source '{text}' is empty, not plain ASCII or longer than {SOURCE_LENGTH} characters")
        return text


def read_table(folder, stem):
    path = folder / f"{stem}.csv"
    header = HEADERS.get(stem, CORRELATION_HEADER)
    lines = []
    try:
        with path.open(newline="", encoding="utf-8") as file:
            reader = csv.reader(file)
            if next(reader, None) != header.split(","):
                raise TableError(f"{path}:1: the header is not '{header}'")
            for fields in reader:
                line = Line(path, reader.line_num, dict(zip(header.split(","), fields)))
                if len(fields) != len(header.split(",")):
                    line.fail(f"{len(fields)} fields, expected {len(header.split(','))}")
                lines.append(line)
    except (OSError, UnicodeDecodeError) as error:
        raise TableError(f"{path}: {error}") from error
    return lines


def temperature_range(line):
    line.expect("T_unit", "K")
    t_min, t_max = line.number_of("Tmin"), line.number_of("Tmax")
    if not 0.0 <= t_min < t_max:
        line.fail(f"range {t_min} to {t_max} K")
    return t_min, t_max


def check_coefficients(line, eq, c, t_max):
    """Conditions without which an equation breaks down; returns the upper end, cut at the critical point."""
    if eq in (107, 127):
        for i in (1, 3) if eq == 107 else (1, 3, 5):
            if c[i] != 0.0 and c[i + 1] <= 0.0:
                line.fail(f"equation {eq}: C{i + 2} must be positive where C{i + 1} is not 0")
            if c[i] == 0.0:
                c[i + 1] = 1.0  # unused term
    if eq == 105 and (c[0] <= 0.0 or c[1] <= 0.0 or c[3] <= 0.0):
        line.fail("equation 105: C1, C2 and C4 must be positive")
    tc = {105: c[2], 106: c[5], 114: c[5], 119: WATER_TC}.get(eq)
    if tc is None:
        return t_max
    if tc <= 0.0:
        line.fail(f"equation {eq}: critical temperature {tc} K")
    if eq == 114 and t_max >= tc:
        line.fail(f"equation 114 has no value at its critical temperature {tc} K")
    return min(t_max, tc)


def correlation(line, unit, allowed):
    eq = line.integer("eq")
    if eq not in allowed:
        line.fail(f"equation {eq}; this property uses {sorted(allowed)}")
    line.expect("unit", unit)
    c = [line.number_of(f"C{k}") for k in range(1, 8)] + [0.0]
    t_min, t_max = temperature_range(line)
    return eq, t_min, check_coefficients(line, eq, c, t_max), c


def henry_iapws(line, unit):
    line.expect("unit", unit)
    t_min, t_max = temperature_range(line)
    if t_max >= WATER_TC:
        line.fail(f"range ends above {WATER_TC} K")
    return HENRY_IAPWS, t_min, t_max, [line.number_of(k) for k in "ABC"] + [0.0] * 5


def melting_curve(line, unit):
    line.expect("unit", unit)
    if line.text("form") not in MELTING_FORM:
        line.fail(f"form '{line.text('form')}', expected R or T")
    t_min, t_max = temperature_range(line)
    c = [line.number_of(k) for k in ("p0", "T0", "a1", "t1", "a2", "t2", "a3", "t3")]
    if c[1] <= 0.0:
        line.fail(f"T0 {c[1]} K")
    return MELTING_FORM[line.text("form")], t_min, t_max, c


def property_rows(folder, stems, unit, allowed):
    """Rows (cas, rank, eq, t_min, t_max, c, source), sorted; the own choice of a component first."""
    rows, seen = [], {}
    for table, stem in enumerate(stems):
        for line in read_table(folder, stem):
            cas, rank = line.cas(), table
            if stem == "henry_water_iapws":
                eq, t_min, t_max, c = henry_iapws(line, unit)
            elif stem == "melting_pressure":
                eq, t_min, t_max, c = melting_curve(line, unit)
                rank = line.integer("branch")
            else:
                eq, t_min, t_max, c = correlation(line, unit, allowed)
            word, number = ("branch", rank) if stem == "melting_pressure" else ("equation", eq)
            key = (cas, number)
            if seen.get(key) == table:
                line.fail(f"second row of this component with {word} {number}")
            if key in seen:
                continue  # an alternative table repeats the equation of the main one
            seen[key] = table
            rows.append((cas, rank, eq, t_min, t_max, c, line.source()))
    return sorted(rows, key=lambda row: row[:2])


def exergies(folder):
    """For each phase the list (cas, J/kmol) from the best source."""
    best = {}
    for line in read_table(folder, "chemical_exergy"):
        line.expect("unit", "kJ/mol")
        line.expect("T0", "298.15")
        line.expect("p0", "101325")
        line.number_of("value")
        if line.text("phase") not in EXERGY_PHASES:
            line.fail(f"phase '{line.text('phase')}', expected one of {EXERGY_PHASES}")
        if line.source() not in EXERGY_SOURCES:
            line.fail(f"source '{line.source()}', expected one of {EXERGY_SOURCES}")
        key = (line.text("phase"), line.cas())
        rank = EXERGY_SOURCES.index(line.source())
        if key in best and best[key][0] == rank:
            line.fail("second row of this component with the same phase and source")
        if key not in best or rank < best[key][0]:
            best[key] = (rank, float(Decimal(line.text("value")) * 10**6))
    return [sorted((cas, best[p, cas][1]) for p, cas in best if p == phase) for phase in EXERGY_PHASES]


def array(declaration, items, indent="    "):
    return f"const {declaration}[] = {{\n" + ",\n".join(indent + item for item in items) + "};\n"


def cpp_row(row):
    _, _, eq, t_min, t_max, c, source = row
    return f"{{{eq}, {t_min!r}, {t_max!r}, {{{', '.join(map(repr, c))}}}, \"{source}\"}}"


def generate(folder):
    out = ["// Generated by tools/make_pure_data.py from data/pure; do not edit.", '#include "pure/row.hpp"', "",
           "namespace kestrune::pure {", "namespace {", ""]
    entries, done, known = ["{nullptr, nullptr, 0}"], {}, set()
    for name, stems, unit, allowed in PROPERTIES:
        rows = property_rows(folder, stems, unit, allowed)
        known.update(row[0] for row in rows)
        if not rows:
            entries.append("{nullptr, nullptr, 0}")
            continue
        key = done.setdefault(tuple(stems), f"{stems[0]}")
        if f"const Row {key}_rows" not in "".join(out):
            out.append(array(f"std::int32_t {key}_cas", [str(row[0]) for row in rows]))
            out.append(array(f"Row {key}_rows", [cpp_row(row) for row in rows]))
        entries.append(f"{{{key}_cas, {key}_rows, {len(rows)}}}")
    phases = exergies(folder)
    exergy_entries = []
    for phase, rows in zip(("vapour", "liquid", "solid"), phases):
        known.update(row[0] for row in rows)
        if rows:
            out.append(array(f"Exergy exergy_{phase}", [f"{{{cas}, {value!r}}}" for cas, value in rows]))
        exergy_entries.append(f"{{exergy_{phase}, {len(rows)}}}" if rows else "{nullptr, 0}")
    out += ["}  // namespace", ""]
    out.append(array("Table property_tables", entries))
    out.append(array("ExergyTable exergy_tables", exergy_entries))
    out.append(array("std::int32_t component_cas", [str(cas) for cas in sorted(known)]))
    out.append(f"const std::int32_t n_components = {len(known)};\n")
    out += ["}  // namespace kestrune::pure", ""]
    return "\n".join(out)


def main(arguments):
    if len(arguments) != 3:
        print(__doc__.split("\n\n")[1], file=sys.stderr)
        return 2
    try:
        text = generate(Path(arguments[1]))
    except TableError as error:
        print(error, file=sys.stderr)
        return 1
    Path(arguments[2]).write_text(text, encoding="ascii")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
