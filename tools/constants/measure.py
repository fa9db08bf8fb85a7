"""What the named numbers of the solvers do: each is multiplied by a half and by two, and the states are asked again.

    /usr/bin/python3 tools/constants/measure.py                what docs/constants.csv does not have, or of another value
    /usr/bin/python3 tools/constants/measure.py --only TEXT    the constants whose name or file has this text
    /usr/bin/python3 tools/constants/measure.py --extreme      by 1/1000 and 1000 those without any effect
    /usr/bin/python3 tools/constants/measure.py --large        five times the states, and more runs of the judge, of those
                                                               that are without any effect still
    python3 tools/constants/page.py                            then: the page docs/constants.md

The library is built once, from a copy of the sources in build/constants where each constant has a factor (tree.py). What
does not read a constant is not run for it. Programs and the library to compare with are those of build/native. A run that
was broken off goes on where it was. A constant and factor takes up to half a second of processor time, with --large ten.
"""

import argparse
from pathlib import Path

import table
import tree
from find import ROOT, constants
from runs import Runs

FACTORS = {"usual": (0.5, 2.0), "extreme": (0.001, 1000.0), "large": (0.001, 1000.0)}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--only", default="", help="a part of the key")
    parser.add_argument("--extreme", dest="sample", action="store_const", const="extreme", default="usual")
    parser.add_argument("--large", dest="sample", action="store_const", const="large")
    parser.add_argument("--as-built", action="store_true", help="the sources have not changed since the last run")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--scratch", type=Path, default=ROOT / "build" / "constants")
    parser.add_argument("--programs", type=Path, default=ROOT / "build" / "native" / "bin")
    options = parser.parse_args()
    folder = options.scratch / "tree"
    if options.as_built:
        all_of_them, tuned = constants(), tree.bin_of(folder)
        if tree.keys(all_of_them) != (folder / "numbers").read_bytes():
            raise SystemExit("the constants are not those of the library that is built: without --as-built")
    else:
        all_of_them = tree.write(folder)
        tuned = tree.build(folder, options.programs, options.jobs)
    known = table.read(all_of_them)
    runs = Runs(options.scratch, options.programs, tuned, options.sample == "large")
    known.usual(runs.usual, options.sample)
    # What no state has reached so far comes first.
    order = sorted(enumerate(all_of_them), key=lambda each: options.sample == "large" and known.reached(each[1]))
    for number, constant in order:
        if constant.why_not or options.only not in constant.key:
            continue
        for factor in FACTORS[options.sample]:
            if known.has(constant, options.sample, factor):
                continue
            if options.sample != "usual" and known.effect(constant):
                break
            parts, differ = runs.measured(number, constant, factor)
            known.add(constant, options.sample, factor, parts, differ)
            print(f"{constant.key} x {factor:g}: {len(parts)} parts read it; {' '.join(differ) or 'no effect'}", flush=True)


if __name__ == "__main__":
    main()
