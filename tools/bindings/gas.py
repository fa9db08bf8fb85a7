"""The gas of the examples: constants and groups out of data/, as a block of source text for each language."""
import csv
import re

RICH_GAS = {"methane": 0.76, "ethane": 0.09, "propane": 0.06, "n_butane": 0.04, "n_pentane": 0.03,
            "carbon_dioxide": 0.02}
README_GAS = {"methane": 0.7, "n_butane": 0.3}
# Columns of the component table (records.h) and where data/components.csv has them.
COLUMNS = {2: "molar_mass_g_mol", 3: "Tmelt_K", 4: "Tb_K", 5: "Tc_K", 6: "Pc_atm", 7: "Vc_cm3_mol", 8: "Zc",
           9: "acentric_factor", 10: "dipole_D", 11: "Tmin", 41: "family", 43: "cas_number"}
WORDS = {2: "molar mass, g/mol", 3: "triple point, K", 4: "normal boiling point, K", 5: "critical temperature, K",
         6: "critical pressure, atm", 7: "critical volume, cm3/mol", 8: "critical compressibility factor",
         9: "acentric factor", 10: "dipole moment, debye", 11: "lowest temperature of the vapour pressure, K",
         41: "family code", 43: "CAS number"}


def rows(root, name):
    with open(root / "data" / name, encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file))


class Gas:
    """Names, mole fractions, table columns, group counts and interactions of some components."""

    def __init__(self, root, fractions):
        components = {row["id"]: row for row in rows(root, "components.csv")}
        lowest = {row["cas"]: row["Tmin"] for row in rows(root, "pure/vapour_pressure.csv")}
        chosen = [components[name] | {"Tmin": lowest[components[name]["cas"]]} for name in fractions]
        self.names = [row["name"] for row in chosen]
        self.z = [repr(value) for value in fractions.values()]
        self.columns = {k: [row[key] for row in chosen] for k, key in COLUMNS.items()}
        parts = [row for row in rows(root, "component_groups.csv") if row["id"] in fractions]
        index = sorted({int(row["group_index"]) for row in parts})
        self.groups = [next(row["group"] for row in parts if int(row["group_index"]) == k) for k in index]
        count = {(row["id"], int(row["group_index"])): row["count"] for row in parts}
        self.counts = [[count.get((name, k), "0") for k in index] for name in fractions]  # a row a component
        published = {(int(r["k"]), int(r["l"])): r for r in rows(root, "ppr78_interactions.csv")}

        def column(key, l):
            return [published[(k, l)][key] if k < l else "0" for k in index]

        self.A, self.B = ([column(key, l) for l in index] for key in ("A_MPa", "B_MPa"))


def real(text):
    return text if "." in text else text + ".0"


def lists(values, separator=", "):
    return separator.join(values)


def matrix(head, rows, tail, joint=",", mark=lambda text: text):
    """A group matrix, a row a line."""
    rows = [lists(map(mark, row)) for row in rows]
    return [head] + [f"    {row}{joint}" for row in rows[:-1]] + [f"    {rows[-1]}{tail}"]


def lines_of(gas):
    """(comment, values) of the table."""
    return [(f"{k}: {WORDS[k]}", [real(v) for v in values]) for k, values in gas.columns.items()]


def c(gas, indent=""):
    n, g = len(gas.names), len(gas.groups)
    out = [f"enum {{ N = {n}, GROUPS = {g}, COLUMNS = {len(gas.columns)} }}; /* {lists(gas.names)} */",
           f"static const double z[N] = {{{lists(gas.z)}}};",
           f"static const int column_numbers[COLUMNS] = {{{lists(map(str, gas.columns))}}};",
           "static const double columns[COLUMNS][N] = {"]
    out += [f"    {{{lists(values)}}}, /* {comment} */" for comment, values in lines_of(gas)]
    out += ["};", f"/* Groups {lists(gas.groups)}: how often in each component, and their interactions in MPa. */",
            *matrix("static const int32_t counts[GROUPS * N] = {", gas.counts, "};")]
    for name in "AB":
        out += matrix(f"static const double {name}[GROUPS * GROUPS] = {{", getattr(gas, name), "};")
    return [indent + line for line in out]


def python(gas):
    out = [f"z = [{lists(gas.z)}]  # {lists(gas.names)}", "columns = {"]
    out += [f"    {comment.split(':')[0]}: [{lists(values)}],  # {comment.split(': ')[1]}" for comment, values in lines_of(gas)]
    out += ["}", f"# Groups {lists(gas.groups)}: how often in each component, and their interactions in MPa.",
            *matrix("counts = [", gas.counts, "]")]
    for name in "AB":
        out += matrix(f"{name} = [", getattr(gas, name), "]", mark=real)
    return out


def javascript(gas):
    out = [f"const z = [{lists(gas.z)}]; // {lists(gas.names)}", "const columns = {"]
    out += [f"  {comment.split(':')[0]}: [{lists(values)}], // {comment.split(': ')[1]}" for comment, values in lines_of(gas)]
    out += ["};", f"// Groups {lists(gas.groups)}: how often in each component, and their interactions in MPa.",
            *matrix("const counts = [", gas.counts, "];")]
    for name in "AB":
        out += matrix(f"const {name} = [", getattr(gas, name), "];")
    return out


def fortran(gas):
    n, g = len(gas.names), len(gas.groups)
    out = [f"integer(c_int32_t), parameter :: n = {n}, groups = {g}",
           f"real(c_double), parameter :: z(n) = [{lists(v + 'd0' for v in gas.z)}] ! {lists(gas.names)}",
           f"integer, parameter :: column_numbers({len(gas.columns)}) = [{lists(map(str, gas.columns))}]",
           f"real(c_double), parameter :: columns(n, {len(gas.columns)}) = reshape([ &"]
    last = len(gas.columns) - 1
    out += [f"    {lists(v + 'd0' for v in values)}{'' if k == last else ','} & ! {comment}"
            for k, (comment, values) in enumerate(lines_of(gas))]
    out += [f"    ], [n, {len(gas.columns)}])",
            f"! Groups {lists(gas.groups)}: how often in each component, and their interactions in MPa.",
            *matrix("integer(c_int32_t), parameter :: counts(groups * n) = [ &", gas.counts, "]", ", &")]
    for name in "AB":
        out += matrix(f"real(c_double), parameter :: {name}(groups * groups) = [ &", getattr(gas, name), "]", ", &",
                      lambda v: real(v) + "d0")
    return ["  " + line for line in out]


def pascal(gas):
    n, g = len(gas.names), len(gas.groups)
    out = ["const", f"  N = {n};", f"  Groups = {g};", f"  z: array[0..N - 1] of Double = ({lists(gas.z)}); {{ {lists(gas.names)} }}",
           f"  ColumnNumbers: array[0..{len(gas.columns) - 1}] of Integer = ({lists(map(str, gas.columns))});",
           f"  Columns: array[0..{len(gas.columns) - 1}, 0..N - 1] of Double = ("]
    last = len(gas.columns) - 1
    out += [f"    ({lists(values)}){'' if k == last else ','} {{ {comment} }}"
            for k, (comment, values) in enumerate(lines_of(gas))]
    out += ["  );", f"  {{ Groups {lists(gas.groups)}: how often in each component, and their interactions in MPa. }}",
            *matrix("  Counts: array[0..Groups * N - 1] of LongInt = (", gas.counts, ");")]
    for name in "AB":
        out += matrix(f"  {name}: array[0..Groups * Groups - 1] of Double = (", getattr(gas, name), ");")
    return out


def csharp(gas):
    out = [f"static readonly double[] z = {{ {lists(gas.z)} }}; // {lists(gas.names)}",
           f"static readonly int[] columnNumbers = {{ {lists(map(str, gas.columns))} }};",
           "static readonly double[][] columns = {"]
    out += [f"    new double[] {{ {lists(values)} }}, // {comment}" for comment, values in lines_of(gas)]
    out += ["};", f"// Groups {lists(gas.groups)}: how often in each component, and their interactions in MPa.",
            *matrix("static readonly int[] counts = {", gas.counts, " };")]
    for name in "AB":
        out += matrix(f"static readonly double[] {name} = {{", getattr(gas, name), " };")
    return ["    " + line for line in out]


def vba(gas):
    """Statements that fill arrays: VBA knows no constants of arrays."""
    out = [f"' {lists(gas.names)}", f"FillDoubles z, {lists(gas.z)}"]
    out += [f"FillColumn table, {len(gas.names)}, {comment.split(':')[0]}, {lists(values)} ' {comment.split(': ')[1]}"
            for comment, values in lines_of(gas)]
    out += [f"' Groups {lists(gas.groups)}: how often in each component, and their interactions in MPa.",
            *matrix("FillLongs counts, _", gas.counts, "", ", _")]
    for name in "AB":
        out += matrix(f"FillDoubles {name}, _", getattr(gas, name), "", ", _")
    return ["    " + line for line in out]


def put(text, lines, begin="gas of data/"):
    """text with the lines between its markers replaced; a marker is a line that holds the words."""
    pattern = rf"(?m)(^[^\n]*{re.escape(begin)}[^\n]*\n).*?(^[^\n]*end of the gas[^\n]*$)"
    if not re.search(pattern, text, re.S):
        raise ValueError(f"no lines '{begin}' and 'end of the gas' in an example")
    return re.sub(pattern, lambda m: m[1] + "\n".join(lines) + "\n" + m[2], text, flags=re.S)
