"""What a type checker says of a user's program."""

import subprocess
import sys
from pathlib import Path

import kestrune
import pytest

PROGRAM = """
import kestrune
import numpy as np

gas = kestrune.Mixture({"methane": 0.9, "ethane": 0.1}, units="C,bar")
names: tuple[str, ...] = gas.names
one = gas.flash(T=-60, P=40)
many = gas.flash(np.linspace(-60.0, 20.0, 5)[:, None], [10, 40.0], z=[[0.9, 0.1], [0.8, 0.2]], phases=2)
beta: float = one.beta
masses = gas.molar_masses * many.liquid.density
for phase in many:
    phase.ln_phi().sum(axis=-1)
T, P, status = gas.hydrate(P=np.array([70.0]), inhibitor="MEG", percent=20)
envelope = gas.envelope(quality=[0.9], highest_P=200)
if envelope.cricondenbar is not None:
    print(envelope.cricondenbar[1], gas.critical().Z, gas.water.content(20, 70).fraction)
gas.flash("300", 40)  # wrong
gas.flash(T=20, pressure=40)  # wrong
gas.names.sort()  # wrong
print(gas.molarmass)  # wrong
envelope.cricondenbar[0]  # wrong: there may be none
"""


#: What the package uses where it is there has sources of its own, which nobody waits for here.
CONFIGURATION = """
[mypy]
strict = true
[mypy-pandas.*,matplotlib.*,pint.*,distributed.*]
ignore_missing_imports = true
follow_imports = skip
"""


def test_package_and_a_users_program_are_checked(tmp_path):
    pytest.importorskip("mypy")
    (tmp_path / "program.py").write_text(PROGRAM, encoding="utf-8")
    (tmp_path / "mypy.ini").write_text(CONFIGURATION, encoding="utf-8")
    package = str(Path(kestrune.__file__).parent)
    check = [sys.executable, "-m", "mypy", "--cache-dir", str(tmp_path), package, "program.py"]
    said = subprocess.run(check, capture_output=True, text=True, cwd=tmp_path).stdout
    errors = [line.split(":")[:2] for line in said.splitlines() if ": error:" in line]
    wanted = [["program.py", str(n)] for n, line in enumerate(PROGRAM.splitlines(), 1) if "# wrong" in line]
    assert sorted(set(map(tuple, errors))) == sorted(map(tuple, wanted)), said
