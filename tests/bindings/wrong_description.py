"""Wrong descriptions of the exports: each is refused with the name of what is wrong.  wrong_description.py ROOT"""
import pathlib
import shutil
import sys
import tempfile

root = pathlib.Path(sys.argv[1])
sys.path.insert(0, str(root / "tools"))
from bindings import model  # noqa: E402

# What stands in bindings/exports.toml, what takes its place (first time only), what is said.
WRONG = [
    ('returns = "nothing"', 'returns = "double"', "ConvertPPR78GroupData: returns is 'double'"),
    ('returns = "nothing"', 'return = "nothing"', "export ConvertPPR78GroupData: 'return' is none of"),
    ('name = "A", kind', 'name = "A", size = 3, kind', "ConvertPPR78GroupData: A: 'size' is none of"),
    ('shape = "count*count"', 'shape = "count*"', "shape count* is not known"),
    ('shape = "nc"', 'shape = "count"', "MolecularWeight: x: shape count is not known"),
    ('bit = 4', 'bit = 8', "bit 8 is for an address, and one of the bits"),
    ('optional = true, ', '', "routines: optional stands at routines"),
    ('name = "CLIM"', 'name = "crit"', "record: crit stands twice"),
    ('name = "CLIM"', 'name = 5', "name is 5, but a text"),
    ('name = "CLIM"', 'name = "C-LIM"', "'C-LIM' is no name in every language"),
    ('"T", "P", "z"', '"T", "Q", "z"', "FlashLVatTP: 'Q' is no entry of words"),
    ('kind = "int", doc = "number of groups"', 'kind = "int"', "ConvertPPR78GroupData: nG: doc is missing"),
]
text = (root / "bindings/exports.toml").read_text(encoding="utf-8")
with tempfile.TemporaryDirectory() as folder:
    copy = pathlib.Path(folder)
    shutil.copytree(root / "include", copy / "include")
    (copy / "bindings").mkdir()
    for right, wrong, said in WRONG:
        # The head of the file explains the entries: what is wrong has to stand behind it.
        head, body = text.split("library =", 1)
        assert right in body, right
        (copy / "bindings/exports.toml").write_text(f"{head}library ={body.replace(right, wrong, 1)}", encoding="utf-8")
        try:
            model.read(copy)
        except ValueError as error:
            if said not in str(error):
                sys.exit(f"'{said}' expected, '{error}' said")
        else:
            sys.exit(f"not refused: {wrong}")
print(f"{len(WRONG)} wrong descriptions refused")
