"""The tables of docs/constants.md, from docs/constants.csv and the comments at the constants.

    python3 tools/constants/page.py             writes them, and takes the lines of constants that are gone from the CSV
    python3 tools/constants/page.py --check     fails where a constant of the sources has not been measured
"""

import re
import sys

import table
from find import ROOT, constants

PAGE = ROOT / "docs" / "constants.md"
HALF, TWICE = 0.5, 2.0
COUNTS, EXTREME, LARGE, NOTHING, UNREACHED = (
    "counts", "only by 1/1000 or 1000", "the large sample", "nothing", "not reached")


class Results:
    def __init__(self, there):
        self.of, self.usual = {}, {}
        self.rows = table.read(there).rows
        for r in self.rows:
            if r["constant"] == "usual":
                self.usual[r["sample"], r["part"]] = r
            else:
                self.of.setdefault((r["constant"], r["value"]), []).append(r)

    def known(self, c, *samples):
        return [r for r in self.of.get((c.key, c.value), ()) if not samples or r["sample"] in samples]

    def differing(self, c, *factors):
        """What a half or two changes, in the usual sample."""
        return [r for r in self.known(c, "usual") if r["part"] != "-" and float(r["factor"]) in factors]

    def reached(self, c):
        return any(r["part"] == "-" and int(r["all"]) for r in self.known(c))

    def work(self, r):
        """Relative change of the work of a part; a part that broke down counts as tenfold."""
        if r["work"] in ("time", "crash"):
            return 9.0
        usual = int(self.usual[r["sample"], r["part"]]["work"])
        return int(r["work"]) / usual - 1.0 if usual else 0.0

    def wrong(self, c, *factors):
        rows = [r for r in self.differing(c, *factors) if r["work"] not in ("time", "crash")]
        return sum(int(r["refused"]) for r in rows), sum(int(r["other"]) for r in rows)

    def strength(self, c):
        """Wrong and refused states first, then work."""
        rows = self.differing(c, HALF, TWICE)
        return (sum(self.wrong(c, HALF, TWICE)), max((abs(self.work(r)) for r in rows), default=0.0))

    def cell(self, rows):
        """What some rows of one factor say, in words."""
        if not rows:
            return "="
        words = [f"{r['part']}: {'does not end' if r['work'] == 'time' else 'breaks down'}" for r in rows
                 if r["work"] in ("time", "crash")]
        most = max(rows, key=lambda r: abs(self.work(r)))
        if abs(self.work(most)) >= 5e-5 and most["work"] not in ("time", "crash"):
            change = 100 * self.work(most)
            words.append(f"{most['part']} {change:+.{0 if abs(change) >= 10 else 1 if abs(change) >= 0.1 else 2}f} %")
        answers = [r for r in rows if r["work"] not in ("time", "crash") and not r["part"].startswith("test_")]
        words += [f"{n} {what}" for what in ("refused", "other") if (n := sum(int(r[what]) for r in answers))]
        words += [f"{r['part']}: {r['cases']}" for r in rows if r["cases"]]
        return "; ".join(words) or "work by less than 0.005 %"

    def further(self, c):
        """Of what a half and two do not change: the first factor and sample that do."""
        for sample in ("extreme", "large"):
            for factor, name in ((0.001, "1/1000"), (1000.0, "1000")):
                rows = [r for r in self.known(c, sample) if r["part"] != "-" and float(r["factor"]) == factor]
                if rows:
                    return f"by {name}{', large sample' if sample == 'large' else ''}: {self.cell(rows)}"
        return ""

    def seen_by(self, c):
        rows = self.differing(c, HALF, TWICE)
        parts = [part for sample, part in self.usual if sample == "usual" and any(
            r["part"] == part and (r["work"] in ("time", "crash") or int(r["refused"]) + int(r["other"])) for r in rows)]
        if parts:
            return ", ".join(parts[:3]) + (f" and {len(parts) - 3} more" if len(parts) > 3 else "")
        if rows:
            return COUNTS
        if any(r["part"] != "-" for r in self.known(c, "extreme")):
            return EXTREME
        if any(r["part"] != "-" for r in self.known(c, "large")):
            return LARGE
        return NOTHING if self.reached(c) else UNREACHED


def escaped(text):
    return re.sub(r"([|<>*_])", r"\\\1", text)


def short(text, most=150):
    return text if len(text) <= most else text[:most].rsplit(" ", 1)[0] + " ..."


def rows_of(results, chosen, with_file):
    yield "| constant | value | what it is for | halved | doubled | seen by |"
    yield "| --- | --- | --- | --- | --- | --- |"
    for c in chosen:
        name = c.key if with_file else c.key.split(":")[1]
        yield (f"| `{name}` | {short(escaped(c.value), 40)} | {escaped(short(c.comment))} | {results.cell(results.differing(c, HALF))} | "
               f"{results.cell(results.differing(c, TWICE))} | {results.further(c) or results.seen_by(c)} |")


def tables(there, results):
    tried = [c for c in there if not c.why_not]
    left_out = [c for c in there if c.why_not]
    kinds = {}
    for c in tried:
        kinds.setdefault(results.seen_by(c), []).append(c)
    silent = {COUNTS: "change counts alone", EXTREME: "change something by 1/1000 or 1000 only",
              LARGE: "change something in the large sample only", NOTHING: "change nothing",
              UNREACHED: "are not reached by any state here"}
    answers = len(tried) - sum(len(kinds.get(kind, ())) for kind in silent)
    yield (f"{len(tried)} constants: {answers} change an answer when halved or doubled, " +
           ", ".join(f"{len(kinds.get(kind, ()))} {words}" for kind, words in silent.items()) +
           f". {len(left_out)} more are no heuristics.")
    yield "\n### The strongest\n"
    yield from rows_of(results, sorted(tried, key=results.strength, reverse=True)[:20], True)
    for kind, title in ((NOTHING, "Read, and without any effect"), (UNREACHED, "Not reached")):
        yield f"\n### {title}\n"
        by_file = {}
        for c in kinds.get(kind, ()):
            by_file.setdefault(c.file, []).append(f"`{c.key.split(':')[1]}`")
        yield "\n".join(f"- `{file}`: " + ", ".join(names) for file, names in by_file.items())
    yield "\n### All\n"
    for file in dict.fromkeys(c.file for c in tried):
        yield f"\n#### `src/{file}`\n"
        yield from rows_of(results, [c for c in tried if c.file == file], False)
    yield "\n### Left out\n"
    reasons = {}
    for c in left_out:
        reasons.setdefault(c.why_not, []).append(f"`{c.key}`")
    yield "\n".join(f"- {why}: " + ", ".join(names) for why, names in reasons.items())


def problems(there, results):
    measured = dict(results.of.keys())  # key: the value that was measured last
    for c in there:
        if c.why_not or {HALF, TWICE} <= {float(r["factor"]) for r in results.known(c, "usual")}:
            continue
        if c.key in measured:
            yield f"src/{c.file}: {c.key.split(':')[1]} is {c.value}, measured was {measured[c.key]}"
        else:
            yield f"src/{c.file}: {c.key.split(':')[1]} has not been measured"


def main():
    there = constants()
    results = Results(there)
    if sys.argv[1:] == ["--check"]:
        found = list(problems(there, results))
        if found:
            print("\n".join(found), file=sys.stderr)
            sys.exit("measure them: /usr/bin/python3 tools/constants/measure.py && python3 tools/constants/page.py; what is no "
                     "heuristic stands with its reason in tools/constants/find.py")
        return
    present = {(c.key, c.value) for c in there} | {("usual", "")}
    table.write([r for r in results.rows if (r["constant"], r["value"]) in present])
    text = PAGE.read_text()
    begin, end = "<!-- tables: tools/constants/page.py -->\n", "<!-- end of tables -->\n"
    before, rest = text.split(begin)
    PAGE.write_text(before + begin + "\n".join(tables(there, results)) + "\n" + end + rest.split(end)[1])


main()
