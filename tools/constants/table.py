"""docs/constants.csv: what was measured, a line for each constant, factor and part whose result differs from the usual.

A line with the part "-" says that all were run and how many read the constant ("all"). The constant "usual" has the
results without a factor. Sample "usual", "extreme" or "large": the run
of measure.py. "work" are evaluations of ln phi (bench: hundredths for one flash); a part that did not end in
ten times the usual has the word "time" there, one that took its program down "crash". "cases": of a test program, those
that fail ("other").
"""

import csv
import re

from find import ROOT

FILE = ROOT / "docs" / "constants.csv"
RESULTS = ("work", "refused", "other", "gained", "all")
HEADS = ("constant", "value", "sample", "factor", "part", *RESULTS, "cases")


class Table:
    def __init__(self, rows):
        self.rows = rows
        self.done = {(r["constant"], r["value"], r["sample"], float(r["factor"])) for r in rows if r["part"] == "-"}

    def usual(self, results, sample):
        """The lines without a factor: where they are others the library has changed since the rest was measured."""
        lines = [line("usual", "", sample, 1.0, part, r) for part, r in results.items()]
        before = [r for r in self.rows if r["constant"] == "usual" and r["sample"] == sample]
        if not self.rows:
            write([])
        if not before:
            self.append(lines)
        elif [{k: str(v) for k, v in r.items()} for r in lines] != before:
            print("note: counts without a factor are not those of docs/constants.csv: the library has changed")

    def has(self, constant, sample, factor):
        return (constant.key, constant.value, sample, factor) in self.done

    def effect(self, constant):
        """Whether any run saw one."""
        return any(r["constant"] == constant.key and r["value"] == constant.value and r["part"] != "-" for r in self.rows)

    def reached(self, constant):
        """Whether any run reads it."""
        return any(r["constant"] == constant.key and r["part"] == "-" and r["all"] != "0" for r in self.rows)

    def add(self, constant, sample, factor, parts, differ):
        lines = [line(constant.key, constant.value, sample, factor, part, result) for part, result in differ.items()]
        lines.append(line(constant.key, constant.value, sample, factor, "-", {"all": len(parts)}))
        self.append(lines)
        self.done.add((constant.key, constant.value, sample, factor))

    def append(self, lines):
        with FILE.open("a") as file:
            csv.DictWriter(file, HEADS, lineterminator="\n").writerows(lines)
        self.rows += [{k: str(v) for k, v in r.items()} for r in lines]


def line(key, value, sample, factor, part, result):
    if isinstance(result, str):
        result = {"work": result}
    return {"constant": key, "value": value, "sample": sample, "factor": f"{factor:g}", "part": part,
            **{k: result.get(k, "") for k in (*RESULTS, "cases")}}


def names(key):
    """What a constant is known by when it has gone: its file in another folder, and its own name alone."""
    file, name = key.split(":")
    top = file.split("/")[0]
    return f"{top}/{file.split('/')[-1]}:{name}", (top, re.sub(r"\.\d+$", "", name))


def read(there):
    """The lines; those of a constant that has gone to another file below its folder have its new key."""
    if not FILE.exists():
        return Table([])
    with FILE.open() as file:
        rows = list(csv.DictReader(file))
    known = {r["constant"] for r in rows}
    new = {}
    for c in there:
        if c.key not in known:
            for name in names(c.key):
                new.setdefault((name, c.value), []).append(c.key)
    gone = known - {c.key for c in there} - {"usual"}
    for r in rows:
        if r["constant"] in gone:
            fits = [keys[0] for name in names(r["constant"]) if len(keys := new.get((name, r["value"]), [])) == 1]
            r["constant"] = fits[0] if fits else r["constant"]
    return Table(rows)


def write(rows):
    with FILE.open("w") as file:
        writer = csv.DictWriter(file, HEADS, lineterminator="\n")
        writer.writeheader()
        writer.writerows(rows)
