"""The runs that see a constant: states that ask.py compares, samples of the judge, the counts of the benchmarks."""

import json
import os
import re
import resource
import struct
import subprocess
import sys
from pathlib import Path

from find import FIELDS, ROOT
from table import RESULTS

ROOM = 4096  # words of tune.hpp
ASKED = ["T,P", "H,P", "S,P", "W,P", "W,T", "3 T,P", "3 H,P", "3 W,P", "3 W,T", "envelope", "critical", "water"]
JUDGED = {  # a run of kestrune_sweep: its states, and those of a large sample
    "values": (240, 1500),
    "free-water": (160, 800),
    "three-phase": (0, 60),
    "own-routines": (0, 24),
    "three-phase-caloric": (0, 24),
    "saturation": (0, 44),
}
# Test programs that load the library, without their longest cases; in the large sample.
TESTS = ["test_flash", "test_flash3", "test_envelope", "test_water", "test_exports"]
WITHOUT = "*.WorkHasALimit:*.StatusesReachTheHost*:SettingsBlock.AnyBlockEnds:Stack.*:*.HostileFeeds*"
MOST_WORK = 350000, 700000  # evaluations of ln phi for one constant and factor, from the smallest part on
BENCH = {"bench lean": "flash_lean", "bench rich": "flash_rich"}


class Runs:
    def __init__(self, scratch, programs, tuned, large):
        self.large, self.size = large, 5 if large else 1  # times the states of ask.py
        self.file, self.before, self.bin = scratch / "words", scratch / f"before_{self.size}", programs
        self.server, self.loaded = None, None
        self.file.write_bytes(bytes(8 * ROOM))
        self.usual = {}  # part: result without a factor, and seconds
        self.reads = {}  # part: reads of each constant
        if not Path(f"{self.before}.npz").exists():
            self.program([sys.executable, str(Path(__file__).parent / "ask.py"), "--write", str(self.before), str(self.size)])
        self.bin = tuned
        self.all_usual()

    def environment(self):
        return dict(os.environ, KESTRUNE_TUNE=str(self.file), KESTRUNE_DATA=str(ROOT / "data"),
                    KESTRUNE_LIBRARIES=str(self.bin), PYTHONPATH=str(ROOT / "python"))

    def set(self, number, factor):
        """Counts at zero, and one factor."""
        with self.file.open("r+b") as file:
            file.write(bytes(8 * (ROOM - 2)) + struct.pack("<Qd", number + 1, factor))

    def words(self):
        return memoryview(self.file.read_bytes()).cast("Q").tolist()

    def program(self, command, limit=600.0):
        """Output, "crash" or "time"."""
        seconds = int(limit) + 1
        done = subprocess.run(command, env=self.environment(), capture_output=True, text=True, errors="replace",
                              preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds)))
        return how_it_ended(done.returncode) or done.stdout

    def stop(self):
        if self.server:
            self.server.stdin.close()
            self.server.wait()
            self.server = None

    def ask(self, parts, limit=600.0):
        """Of each part its result; one that took the program down has that word."""
        if self.server is None:
            command = [sys.executable, str(Path(__file__).parent / "ask.py"), "--compare", str(self.before), str(self.size)]
            self.server = subprocess.Popen(command, env=self.environment(), stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                           stderr=subprocess.DEVNULL, text=True)
        self.server.stdin.write(f"{limit} {'|'.join(parts)}\n")
        self.server.stdin.flush()
        line = self.server.stdout.readline()
        if line:
            return json.loads(line)
        self.server.wait()
        word = how_it_ended(self.server.returncode) or "crash"
        self.server = None
        if len(parts) == 1:
            return {parts[0]: word}
        return {k: v for part in parts for k, v in self.ask([part], 5.0 + 10.0 * self.usual[part]["seconds"]).items()}

    def judge(self, run, limit=600.0):
        states = JUDGED[run][self.large]
        out = self.program([str(self.bin / "kestrune_sweep"), f"--{run}", "--sample", "--states", str(states), "--library",
                            str(self.bin / "libKVGasThermo.so"), "--failures", str(self.file) + "_failures.csv"], limit)
        if out in ("time", "crash"):
            return out
        passed, failed = map(int, re.search(r"(\d+) passed, (\d+) failed", out).groups())
        return {"work": self.words()[0], "refused": 0, "other": failed, "gained": 0, "all": passed + failed}

    def test(self, name, limit=600.0):
        """Cases that fail count as other answers."""
        out = self.program([str(self.bin / name), f"--gtest_filter=-{WITHOUT}"], limit)
        if out in ("time", "crash"):
            return out
        failed = sorted(set(re.findall(r"^\[  FAILED  \] (\w+\.\w+)", out, re.M)))
        cases = int(re.search(r"(\d+) tests? from", out)[1])
        return {"work": 0, "refused": 0, "other": len(failed), "gained": 0, "all": cases, "cases": " ".join(failed)}

    def bench(self, limit=600.0):
        out = self.program([str(self.bin / "bench_core"), "--counts"], limit)
        if out in ("time", "crash"):
            return dict.fromkeys(BENCH, out)
        number = {part: re.search(rf"^{name}\t([\d.]+) fugacities", out, re.M)[1] for part, name in BENCH.items()}
        return {part: {"work": round(100 * float(n)), "refused": 0, "other": 0, "gained": 0, "all": 15150}
                for part, n in number.items()}

    def one(self, part, limit=600.0):
        return self.judge(part, limit) if part in JUDGED else self.test(part, limit)

    def all_usual(self):
        """Results and reads of every part without a factor; the answers are those of the usual library."""
        judged = [run for run, states in JUDGED.items() if states[self.large]]
        for part in [*ASKED, *judged, *(TESTS if self.large else ()), "bench"]:
            self.set(-1, 1.0)
            found = self.ask([part]) if part in ASKED else self.bench() if part == "bench" else {part: self.one(part)}
            work, *reads = self.words()
            seconds = work * 1.5e-6 + 0.3
            for name, one in found.items():
                self.usual[name] = dict(one, seconds=seconds)
                self.reads[name] = reads
                print(name, one, flush=True)
        wrong = {part: r for part, r in self.usual.items() if r["refused"] or r["other"] or r["gained"]}
        if wrong:
            sys.exit(f"the library with factors does not answer as the usual one: {wrong}")

    def cheapest(self, parts):
        """The smallest of them, one at least, and all tests."""
        work, chosen = 0, [part for part in parts if part in TESTS]
        for part in sorted(set(parts) - set(chosen), key=lambda part: self.usual[part]["work"]):
            work += self.usual[part]["work"]
            if work <= MOST_WORK[self.large] or not chosen:
                chosen.append(part)
        return chosen

    def measured(self, number, constant, factor):
        """The parts that read a constant, and the results of those that differ from the usual."""
        counted = number - FIELDS.index(constant.key.split(".")[-1]) if constant.type == "field" else number
        parts = [part for part in self.usual if self.reads[part][counted]]
        parts = self.cheapest(parts)
        at_load = constant.key if constant.type in ("array", "field") else None
        if at_load or self.loaded:
            self.stop()  # its values are read when the library is loaded
        self.loaded = at_load
        self.set(number, factor)
        limit = lambda names: 5.0 + 10.0 * sum(self.usual[part]["seconds"] for part in names)
        asked = [part for part in parts if part in ASKED]
        found = self.ask(asked, limit(asked)) if asked else {}
        if any(part in BENCH for part in parts):
            found.update(self.bench(limit(list(BENCH))))
        for part in parts:
            if part in JUDGED or part in TESTS:
                self.set(number, factor)
                found[part] = self.one(part, limit([part]))
        same = lambda part, r: r not in ("time", "crash") and all(r[k] == self.usual[part][k] for k in RESULTS)
        return parts, {part: r for part, r in found.items() if not same(part, r)}


def how_it_ended(code):
    """A word for a program that a signal ended; 1 and 2 are a judge that found faults, or had none to look at."""
    if code < 0 or code > 2:
        return "time" if -code in (9, 24) else "crash"
    return None
