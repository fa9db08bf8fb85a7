"""The examples of docs/python.md and the cells of docs/tutorial.ipynb give what they show.

python3 test_docs.py --write runs the notebook and writes its outputs into it.
"""

import ast
import base64
import contextlib
import doctest
import io
import json
import sys
from pathlib import Path

import kestrune
import pytest

DOCS = Path(__file__).resolve().parents[2] / "docs"
NOTEBOOK = DOCS / "tutorial.ipynb"


def test_examples_of_the_page():
    pytest.importorskip("pandas")
    page = str(DOCS / "python.md")
    failed, tried = doctest.testfile(page, module_relative=False, optionflags=doctest.ELLIPSIS)
    assert tried > 20 and failed == 0
    assert doctest.testmod(kestrune).failed == 0


def lines_of(text):
    return text.splitlines(keepends=True)


def run_cell(source, names):
    """What a notebook shows of a cell: what it prints, its last expression, its figures."""
    from matplotlib import pyplot

    tree, printed, value = ast.parse(source), io.StringIO(), None
    last = tree.body.pop() if isinstance(tree.body[-1], ast.Expr) else None
    with contextlib.redirect_stdout(printed):
        exec(compile(tree, "cell", "exec"), names)
        if last is not None:
            value = eval(compile(ast.Expression(last.value), "cell", "eval"), names)
    outputs = []
    if printed.getvalue():
        outputs.append({"name": "stdout", "output_type": "stream", "text": lines_of(printed.getvalue())})
    if value is not None:
        shown = {"text/plain": lines_of(repr(value))}
        outputs.append({"data": shown, "execution_count": None, "metadata": {}, "output_type": "execute_result"})
    for number in pyplot.get_fignums():
        picture = io.BytesIO()
        pyplot.figure(number).savefig(picture, format="png", dpi=60)
        image = {"image/png": base64.b64encode(picture.getvalue()).decode()}
        outputs.append({"data": image, "metadata": {}, "output_type": "display_data"})
    pyplot.close("all")
    return outputs


def run_notebook():
    """The notebook with the outputs that its cells have now."""
    import matplotlib.pyplot

    matplotlib.use("agg")
    matplotlib.pyplot.close("all")
    notebook = json.loads(NOTEBOOK.read_text(encoding="utf-8"))
    names = {}
    for cell in notebook["cells"]:
        if cell["cell_type"] == "code":
            cell["outputs"] = run_cell("".join(cell["source"]), names)
    return notebook


def without_pictures(notebook):
    return [
        [{**o, "data": sorted(o["data"])} if o["output_type"] == "display_data" else o for o in cell.get("outputs", [])]
        for cell in notebook["cells"]
    ]


def test_cells_of_the_tutorial():
    pytest.importorskip("matplotlib")
    pytest.importorskip("pandas")
    stored = json.loads(NOTEBOOK.read_text(encoding="utf-8"))
    nbformat = pytest.importorskip("nbformat")
    nbformat.validate(stored)
    assert without_pictures(run_notebook()) == without_pictures(stored)


if __name__ == "__main__" and "--write" in sys.argv:
    NOTEBOOK.write_text(json.dumps(run_notebook(), indent=1, ensure_ascii=False) + "\n", encoding="utf-8")
