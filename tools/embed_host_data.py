#!/usr/bin/env python3
"""Writes the component and group data of the command line host as C++ tables.

usage: embed_host_data.py DATA_FOLDER ALIASES_CSV OUTPUT_CPP

Reads components.csv, component_groups.csv, ppr78_groups.csv, ppr78_interactions.csv,
ppr78_original_interactions.csv and, of pure/, vapour_pressure.csv, ideal_gas_heat_capacity.csv and gas_viscosity.csv.
A component without a gas viscosity there carries its heat capacity itself (polynomials only): the calculation library then
takes its transport properties by corresponding states. Stops with a message when a table refers to
something that another table does not have.
"""
import csv
import sys
from pathlib import Path


def rows(path):
    """Rows of a CSV file as dictionaries; lines that start with # are comments."""
    with open(path, newline="", encoding="utf-8") as file:
        yield from csv.DictReader(line for line in file if not line.startswith("#"))


def number(text):
    """A decimal literal, 0.0 (unknown) where the field is empty; an acentric factor may be nan."""
    return "kUnknown" if text == "nan" else repr(float(text)) if text else "0.0"


def quoted(text):
    text.encode("ascii")
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def decompositions(data, ids, group_count):
    """Group counts by component id; a component without groups maps to an empty list."""
    groups = {}
    for row in rows(data / "component_groups.csv"):
        entry = groups.setdefault(row["id"], [])
        if row["covered"] == "1":
            index = int(row["group_index"])
            if not 1 <= index <= group_count:
                sys.exit(f"component_groups.csv: group {index} of {row['id']} does not exist")
            entry.append((index, int(row["count"])))
    if set(groups) != set(ids):
        sys.exit(f"component_groups.csv and components.csv differ: {sorted(set(groups) ^ set(ids))}")
    return groups


def own_heat_capacities(data):
    """Texts of the heat capacities, J/(mol K), of components without a correlation of the gas viscosity, by CAS number."""
    viscous = {row["cas"] for row in rows(data / "pure" / "gas_viscosity.csv")}
    own = {}
    for row in rows(data / "pure" / "ideal_gas_heat_capacity.csv"):
        if row["cas"] not in viscous and row["eq"] == "100":
            terms = ", ".join(repr(float(row[f"C{k}"]) / 1000.0) for k in range(1, 6))
            own[row["cas"]] = f", {{{{{{{terms}}}}}, {number(row['Tmin'])}, {number(row['Tmax'])}}}"
    return own


def component_tables(data, out):
    components = list(rows(data / "components.csv"))
    group_names = [row["name"] for row in rows(data / "ppr78_groups.csv")]
    groups = decompositions(data, [c["id"] for c in components], len(group_names))
    own = own_heat_capacities(data)
    lowest = {row["cas"]: row["Tmin"] for row in rows(data / "pure" / "vapour_pressure.csv")}
    out.append("const std::string_view kGroupNames[] = {")
    out += [f"    {quoted(name)}," for name in group_names]
    out.append("};\n")
    out.append("const Component kComponents[] = {")
    for number_in_bank, c in enumerate(components, 1):
        omega = c["acentric_factor"] or "nan"
        values = [c["molar_mass_g_mol"], c["Tc_K"], c["Pc_Pa"], omega, c["Vc_cm3_mol"], c["Zc"],
                  c["Tb_K"], c["Tmelt_K"], c["dipole_D"], lowest.get(c["cas"], ""), c["family"]]
        texts = ", ".join(quoted(c[key]) for key in ("id", "name", "formula", "cas"))
        counts = ", ".join(f"{{{k}, {n}}}" for k, n in groups[c["id"]])
        out.append(f"    {{{number_in_bank}, {texts}, {c['cas_number']},\n"
                   f"     {', '.join(number(v) for v in values)},\n"
                   f"     {len(groups[c['id']])}, {{{{{counts}}}}}{own.get(c['cas'], '')}}},")
    out.append("};\n")
    return [c["id"] for c in components]


def alias_table(path, ids, out):
    out.append("const Alias kAliases[] = {")
    for line in open(path, encoding="utf-8"):
        if line.startswith("#") or not line.strip():
            continue
        component, alias = line.strip().split(",", 1)
        if component not in ids:
            sys.exit(f"{path}: no component {component}")
        out.append(f"    {{{ids.index(component)}, {quoted(alias)}}},")
    out.append("};\n")


def interaction_table(path, name, out):
    out.append(f"const Interaction {name}[] = {{")
    for row in rows(path):
        published = row["status"] == "published"
        k, l = int(row["k"]), int(row["l"])
        if not k < l:
            sys.exit(f"{path}: pair {k}, {l} is not in ascending order")
        out.append(f"    {{{k}, {l}, {'true' if published else 'false'}, "
                   f"{number(row['A_MPa'])}, {number(row['B_MPa'])}}},")
    out.append("};\n")


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    data, aliases, target = Path(sys.argv[1]), Path(sys.argv[2]), Path(sys.argv[3])
    out = ["// Made by tools/embed_host_data.py from the tables in data/.", '#include "databank_tables.hpp"', "",
           "#include <limits>", "",
           "namespace kestrune::host::tables {", "",
           "constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();", ""]
    ids = component_tables(data, out)
    alias_table(aliases, ids, out)
    interaction_table(data / "ppr78_interactions.csv", "kInteractions2022", out)
    interaction_table(data / "ppr78_original_interactions.csv", "kInteractionsOriginal", out)
    for view, table in (("components", "kComponents"), ("aliases", "kAliases"), ("group_names", "kGroupNames"),
                        ("interactions_2022", "kInteractions2022"),
                        ("interactions_original", "kInteractionsOriginal")):
        kind = {"components": "Component", "aliases": "Alias", "group_names": "std::string_view"}
        out.append(f"std::span<const {kind.get(view, 'Interaction')}> {view}() {{ return {table}; }}")
    out += ["", "}  // namespace kestrune::host::tables", ""]
    target.write_text("\n".join(out), encoding="utf-8")


main()
