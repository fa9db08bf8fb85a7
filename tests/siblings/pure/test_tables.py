"""make_pure_data.py refuses a table with a fault and names the place.

usage: test_tables.py MAKE_PURE_DATA TABLE_FOLDER
"""

import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

SCRIPT, TABLES = sys.argv[1], Path(sys.argv[2])

# Table, text to replace (first occurrence), replacement, text that the message must hold.
FAULTS = [
    ("vapour_pressure", "7727-37-9,", "7727-37-8,", "vapour_pressure.csv:2: CAS number 7727-37-8: check digit"),
    ("vapour_pressure", "7727-37-9,", "water,", "vapour_pressure.csv:2: 'water' is not a CAS number"),
    ("vapour_pressure", "58.282", "58,282", "vapour_pressure.csv:2: 16 fields, expected 15"),
    ("vapour_pressure", "58.282", "58.2x", "vapour_pressure.csv:2: column C1: '58.2x' is not a number"),
    ("vapour_pressure", "58.282", "inf", "vapour_pressure.csv:2: column C1: 'inf' is not finite"),
    ("vapour_pressure", "nitrogen,101", "nitrogen,105", "vapour_pressure.csv:2: equation 105"),
    ("vapour_pressure", "Pa,K,63.15", "bar,K,63.15", "vapour_pressure.csv:2: column unit: 'bar', expected 'Pa'"),
    ("vapour_pressure", "Pa,K,63.15,126.2", "Pa,K,163.15,126.2", "vapour_pressure.csv:2: range"),
    ("vapour_pressure", "124-38-9,carbon dioxide", "7727-37-9,x", "vapour_pressure.csv:3: second row"),
    ("vapour_pressure", "126.2,PERRY8", "126.2,", "vapour_pressure.csv:2: source ''"),
    ("vapour_pressure", "cas,name,eq", "cas,title,eq", "vapour_pressure.csv:1: the header"),
    ("liquid_heat_capacity", "304.1282,0,J/kmol/K,K,216.592,288.922", "304.1282,0,J/kmol/K,K,216.592,304.2",
     "liquid_heat_capacity.csv:3: equation 114 has no value"),
    ("ideal_gas_heat_capacity", "8614.9,1701.6", "8614.9,-1701.6", "ideal_gas_heat_capacity.csv:2: equation 107"),
    ("melting_pressure", "nitrogen,1,R", "nitrogen,1,Q", "melting_pressure.csv:2: form 'Q'"),
    ("chemical_exergy", "nitrogen,g", "nitrogen,x", "chemical_exergy.csv:2: phase 'x'"),
]


def run(tables, output):
    return subprocess.run([sys.executable, SCRIPT, str(tables), str(output)], capture_output=True, text=True)


def main():
    failures = 0
    with tempfile.TemporaryDirectory() as work:
        output = Path(work) / "out.cpp"
        good = run(TABLES, output)
        if good.returncode != 0 or not output.exists():
            print("the tables themselves are refused:", good.stderr)
            return 1
        before = int(output.read_text().split("n_components = ")[1].split(";")[0])
        # A new component is a new row: here methane's row under the number of krypton.
        more = Path(work) / "more"
        shutil.copytree(TABLES, more)
        path = more / "vapour_pressure.csv"
        row = next(line for line in path.read_text().splitlines() if line.startswith("74-82-8"))
        path.write_text(path.read_text() + row.replace("74-82-8,methane", "7439-90-9,krypton") + "\n")
        run(more, output)
        if f"n_components = {before + 1};" not in output.read_text() or "7439909" not in output.read_text():
            print("an added row did not become a component")
            failures += 1
        for table, old, new, message in FAULTS:
            broken = Path(work) / "broken"
            shutil.rmtree(broken, ignore_errors=True)
            shutil.copytree(TABLES, broken)
            path = broken / f"{table}.csv"
            text = path.read_text(encoding="utf-8")
            assert old in text, old
            path.write_text(text.replace(old, new, 1), encoding="utf-8")
            output.unlink(missing_ok=True)
            result = run(broken, output)
            if result.returncode != 1 or message not in result.stderr or output.exists():
                print(f"{table}: '{old}' -> '{new}': {result.returncode} {result.stderr}")
                failures += 1
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
