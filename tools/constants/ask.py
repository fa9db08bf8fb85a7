"""Asks one library for many states, and compares with what another one said.

    python3 ask.py --write FILE SIZE     the answers, and what was asked, into FILE.npz; SIZE 1 or so many times the states
    python3 ask.py --compare FILE        for each line "SECONDS PART|PART..." of the input a line of JSON

KESTRUNE_LIBRARIES and PYTHONPATH say which library; KESTRUNE_TUNE is the file of tune.hpp. Of each part: evaluations
of ln phi; states that are refused now and were not before; states with another answer; states with answers that before
were refused; states in all. Another answer: T or P by more than 1e-6, a part of the feed by more than 1e-5.
"""

import csv
import json
import os
import resource
import sys
import warnings
from pathlib import Path

import kestrune
import numpy as np

ROOT = Path(__file__).resolve().parents[2]
ATM = 101325.0
SIZE = int(sys.argv[3]) if len(sys.argv) > 3 else 1
GOOD = (0, 95)
warnings.simplefilter("ignore")


class Feed:
    def __init__(self, row):
        self.name, self.run = row["run"] + " " + row["name"], row["run"]
        amounts = dict(part.split("=") for part in row["amounts"].split(";"))
        made = {name.replace("_", "-"): float(amount) for name, amount in amounts.items()}
        self.gas = kestrune.Mixture(made, free_water=row["free_water"] == "1")
        self.phases = 3 if self.run == "three" or row["free_water"] == "1" else 2
        self.T = float(row["T_low"]), float(row["T_high"])
        self.P = float(row["P_low"] or 0.5), float(row["P_high"] or 200.0)
        self.random = np.random.default_rng(sum(map(ord, self.name)))

    def draw(self, count):
        """Temperatures (K) and pressures (Pa), the latter even in their logarithms."""
        T = self.random.uniform(*self.T, count)
        return T, ATM * np.exp(self.random.uniform(*np.log(self.P), count))


def feeds():
    with (ROOT / "tests" / "data" / "sweep_feeds.csv").open() as file:
        return [Feed(row) for row in csv.DictReader(file)]


def flashed(feed, **given):
    """[states, T P and parts], with NaN where there is no answer."""
    s = feed.gas.flash(**given, phases=feed.phases, threads=1)
    rows = np.array([s.T, s.P, *(np.nan_to_num(p.fraction) for p in s)], dtype=float).T
    rows[~np.isin(s.status, GOOD)] = np.nan
    return rows


# Of each part: what is asked of a feed (once, by the library before), and the answers to it.
def states_TP(feed):
    T, P = feed.draw(SIZE * (80 if feed.phases == 2 else 24))
    return {"T": T, "P": P}


def states_energy(feed, name):
    T, P = feed.draw(SIZE * (12 if feed.phases == 2 else 8))
    s = feed.gas.flash(T=T, P=P, phases=feed.phases, threads=1)
    value = getattr(s, "enthalpy" if name == "H" else "entropy")
    half = len(P) // 2  # the other half between two states: in jumps too
    value[half:] = 0.5 * (value[half:] + np.roll(value, 1)[half:])
    return {name: value[np.isfinite(value)], "P": P[np.isfinite(value)]}


def states_beta(feed, name):
    T, P = feed.draw(SIZE * (10 if feed.phases == 2 else 5))
    return {"beta": np.resize([0.0, 1.0, 0.3, 0.01, 0.99], len(T)), name: T if name == "T" else P}


def states_line(feed):
    return {"points": np.array([0, 40][:1 if SIZE == 1 else 2])}


def envelope(feed, points):
    rows = []
    for count in points:
        try:
            e = feed.gas.envelope(quality=[0.5, 0.98], points=int(count))
        except kestrune.KestruneError:
            return np.full((len(points), 12), np.nan)
        places = [e.cricondentherm, e.cricondenbar, *e.critical][:3]
        places += [None] * (3 - len(places))
        row = [v for place in places for v in (place or (-1.0, -1.0))]
        row += [e.status, *(e.quality[q].status for q in (0.5, 0.98)), *(len(c.T) > 3 for c in e.quality.values())]
        rows.append([*row, float(len(e.critical))])
    return np.array(rows, dtype=float)


def critical(feed, points):
    try:
        return np.array([feed.gas.critical()], dtype=float)
    except kestrune.KestruneError:
        return np.full((1, 4), np.nan)


def states_water(feed):
    count = SIZE * 15 if "water" in feed.gas.names else 0
    P = ATM * np.exp(feed.random.uniform(0.0, np.log(150.0), count))
    return {"T": feed.random.uniform(220.0, 330.0, count), "P": P, "water": 10.0 ** feed.random.uniform(-6, -2, count)}


def water(feed, T, P, water):
    if not len(T):
        return np.zeros((0, 1))
    w = feed.gas.water
    found = [w.content(T, P, threads=1), w.dew(P=P, water=water, threads=1), w.dew(T=T, water=water, threads=1)]
    values = [found[0].fraction, found[1].T, found[2].P]
    return np.concatenate([np.where(np.isin(f.status, GOOD), v, np.nan) for f, v in zip(found, values)])[:, None]


two = [feed for feed in feeds() if feed.phases == 2]
three = [feed for feed in feeds() if feed.phases == 3]
PARTS = {
    "T,P": (two, states_TP, flashed),
    "H,P": (two, lambda f: states_energy(f, "H"), flashed),
    "S,P": (two, lambda f: states_energy(f, "S"), flashed),
    "W,P": (two, lambda f: states_beta(f, "P"), flashed),
    "W,T": (two, lambda f: states_beta(f, "T"), flashed),
    "3 T,P": (three, states_TP, flashed),
    "3 H,P": (three, lambda f: states_energy(f, "H"), flashed),
    "3 W,P": (three, lambda f: states_beta(f, "P"), flashed),
    "3 W,T": (three, lambda f: states_beta(f, "T"), flashed),
    "envelope": (two, states_line, envelope),
    "critical": (two + three, states_line, critical),
    "water": (two + three, states_water, water),
}


def counts():
    return np.memmap(os.environ["KESTRUNE_TUNE"], dtype=np.uint64, mode="r+")


def compared(before, now):
    """Refused, other, gained, all: of states with values [states, values]."""
    lost, there = np.isnan(now).any(1), ~np.isnan(before).any(1)
    near = np.isclose(now, before, rtol=1e-6, atol=1e-5).all(1)
    return np.array([(lost & there).sum(), (there & ~lost & ~near).sum(), (~there & ~lost).sum(), len(now)])


def run(part, kept, new):
    work = counts()
    before, total = int(work[0]), np.zeros(4, dtype=int)
    for feed in PARTS[part][0]:
        label = f"{part}|{feed.name}"
        given = kept[label] if kept else PARTS[part][1](feed)
        found = PARTS[part][2](feed, **{k: v for k, v in given.items() if k != "answer"})
        if kept:
            total += compared(given["answer"], found)
        else:
            new.update({f"{label}|{k}": v for k, v in given.items()}, **{f"{label}|answer": found})
    return dict(zip(("work", "refused", "other", "gained", "all"), [int(work[0]) - before, *map(int, total)]))


def limit_seconds(seconds):
    """What hangs is ended by the system."""
    used = resource.getrusage(resource.RUSAGE_SELF)
    _, hard = resource.getrlimit(resource.RLIMIT_CPU)
    resource.setrlimit(resource.RLIMIT_CPU, (int(used.ru_utime + used.ru_stime + seconds) + 1, hard))


def main():
    how, file = sys.argv[1:3]
    if how == "--write":
        new = {}
        for part in PARTS:
            run(part, None, new)
        np.savez(file, **new)
        return
    kept = {}
    for name, values in np.load(file + ".npz").items():
        part, feed, what = name.split("|")
        kept.setdefault(f"{part}|{feed}", {})[what] = values
    for line in sys.stdin:
        seconds, parts = line.rstrip("\n").split(" ", 1)
        limit_seconds(float(seconds))
        print(json.dumps({part: run(part, kept, None) for part in parts.split("|")}), flush=True)


main()
