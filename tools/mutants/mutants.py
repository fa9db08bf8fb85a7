#!/usr/bin/env python3
"""Plants one-line faults in the sources, one at a time, and reports which test finds each.

    python3 tools/mutants/mutants.py [--only TEXT] [--all] [--seconds S] [--again] [--scratch FOLDER] [--jobs N]

The faults stand in faults.tsv: kind (physics, solver), file, the text as it is, the text with the fault. The text has
to be in its file exactly once: one that is not is an error before anything is built.

A copy of the tree is built in the scratch folder (build/mutants); a fault must not make the compiler warn. The tests
of its folder run first, then all from the fastest to the slowest, and end at the first that fails; --all goes on, and
lists every test and case that finds the fault. --seconds leaves out tests that take longer than that without a fault. A
run that was broken off goes on where it was; --again begins anew, and tries first what found a fault the last time.
"""
import argparse
import json
import os
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
LIBRARIES = ["KVGasThermo", "KVToolsLite", "KVCmpdPureLite"]  # programs load them without a dependency in the build


def read_faults():
    faults, wrong = [], []
    for number, line in enumerate((Path(__file__).parent / "faults.tsv").read_text().splitlines(), 1):
        if not line or line.startswith("#"):
            continue
        parts = line.split("\t")
        if len(parts) != 4 or parts[0] not in ("physics", "solver") or parts[2] == parts[3]:
            wrong.append(f"line {number}: four fields with tabs between them are wanted")
            continue
        path = ROOT / parts[1]
        count = path.read_text().count(parts[2]) if path.exists() else 0
        if count != 1:
            wrong.append(f"line {number}: {parts[1]} has {count} times: {parts[2]}")
        faults.append(tuple(parts))
    if len(set(faults)) != len(faults):
        wrong.append("a fault stands there twice")
    if wrong:
        sys.exit("faults.tsv:\n" + "\n".join(wrong))
    return faults


class Scratch:
    def __init__(self, folder, jobs):
        self.tree, self.build_folder = folder, folder / "build" / "native"
        self.jobs = jobs
        files = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                               capture_output=True, text=True).stdout.split("\n")
        wanted = {name for name in files if name and (ROOT / name).is_file()}
        for path in [p for p in self.tree.rglob("*") if p.is_file()]:
            name = path.relative_to(self.tree)
            if name.parts[0] != "build" and str(name) not in wanted:
                path.unlink()
        for name in wanted:
            self.put(name, (ROOT / name).read_bytes())
        options = ["-DKESTRUNE_BENCH=OFF"]
        if shutil.which("ccache"):
            options += [f"-DCMAKE_{language}_COMPILER_LAUNCHER=ccache" for language in ("C", "CXX")]
        self.environment = dict(os.environ, CCACHE_BASEDIR=str(folder))
        subprocess.run(["cmake", "--preset", "native", *options], cwd=self.tree, check=True,
                       stdout=subprocess.DEVNULL, env=self.environment)

    def put(self, name, content):
        path = self.tree / name
        if not path.exists() or path.read_bytes() != content:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)
            shutil.copymode(ROOT / name, path)

    def build(self, *targets):
        built = subprocess.run(["cmake", "--build", self.build_folder, "-j", str(self.jobs), "--target",
                                *(targets or ["all"])], capture_output=True, text=True, env=self.environment)
        if built.returncode != 0:
            sys.exit("does not build:\n" + built.stdout[-3000:])

    def tests(self):
        """The programs of the tests by name, None for a script."""
        listed = subprocess.run(["ctest", "--test-dir", self.build_folder, "--show-only=json-v1"], check=True,
                                capture_output=True, text=True).stdout
        programs = {test["name"]: Path(test["command"][0]).name for test in json.loads(listed)["tests"]}
        return {name: None if program.startswith("python") else program for name, program in programs.items()}

    def run(self, test, limit):
        """Seconds, None or what failed: the cases of GoogleTest, else the name."""
        begin = time.time()
        done = subprocess.run(["ctest", "--test-dir", self.build_folder, "-R", f"^{test}$", "--timeout", str(limit),
                               "--output-on-failure"], capture_output=True, text=True, errors="replace")
        seconds = time.time() - begin
        if done.returncode == 0:
            return seconds, None
        cases = sorted(set(re.findall(r"^\[  FAILED  \] ([\w/]+\.[\w/]+)", done.stdout, re.M)))
        how = " (time)" if "***Timeout" in done.stdout else " (crash)" if "***Exception" in done.stdout else ""
        return seconds, [f"{test}:{case}" for case in cases] or [test + how]


def baseline(scratch, path):
    """Seconds of each test without a fault."""
    scratch.build()
    known = json.loads(path.read_text()) if path.exists() else {}
    tests = scratch.tests()
    for test in tests:
        if test not in known:
            known[test], failed = scratch.run(test, 600)
            if failed:
                sys.exit(f"{test} fails without a fault")
    path.write_text(json.dumps(known))
    return {test: known[test] for test in tests}


def try_fault(scratch, fault, seconds, before, options):
    kind, name, old, new = fault
    text = (ROOT / name).read_text()
    scratch.put(name, text.replace(old, new).encode())
    programs = scratch.tests()
    folder = Path(name).parent.name
    order = sorted(seconds, key=lambda test: (test not in before, folder not in test, seconds[test]))
    try:
        found = []
        for test in order:
            if options.seconds and seconds[test] > options.seconds:
                continue
            if programs[test]:
                scratch.build(programs[test], *LIBRARIES)
            found += scratch.run(test, max(20, round(8 * seconds[test])))[1] or []
            if found and not options.all:
                break
        return found
    finally:
        scratch.put(name, text.encode())


def report(faults, results):
    print("| folder | physics found | solver found |\n|---|---|---|")
    folders = sorted({str(Path(name).parent) for _, name, _, _ in faults})
    tried = [f for f in faults if f in results]
    for folder in folders + ["all"]:
        cells = []
        for kind in ("physics", "solver"):
            of = [f for f in tried if f[0] == kind and folder in ("all", str(Path(f[1]).parent))]
            cells.append(f"{sum(bool(results[f]) for f in of)} of {len(of)}" if of else "-")
        print(f"| {folder} | {cells[0]} | {cells[1]} |")
    missed = [f for f in tried if not results[f]]
    if missed:
        print("\nNo test finds:")
    for kind, name, old, new in missed:
        print(f"  {kind}  {name}  {old}  ->  {new}")
    return missed


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--only", default="", help="faults whose line contains this text")
    parser.add_argument("--all", action="store_true")
    parser.add_argument("--again", action="store_true")
    parser.add_argument("--report", action="store_true", help="print what is known and run nothing")
    parser.add_argument("--seconds", type=float, default=0.0)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--scratch", type=Path, default=ROOT / "build" / "mutants")
    options = parser.parse_args()
    faults = [f for f in read_faults() if options.only in "\t".join(f)]
    options.scratch = options.scratch.resolve()
    options.scratch.mkdir(parents=True, exist_ok=True)
    path = options.scratch / "results.jsonl"
    last = options.scratch / "last.jsonl"
    if options.again and path.exists():
        path.replace(last)
    known = {}
    for file in (last, path):
        lines = file.read_text().splitlines() if file.exists() else []
        known[file] = {tuple(fault): found for fault, found in map(json.loads, lines)}
    results = known[path]
    if not options.report:
        scratch = Scratch(options.scratch, options.jobs)
        seconds = baseline(scratch, options.scratch / "seconds.json")
        for number, fault in enumerate(faults, 1):
            if fault not in results:
                begin = time.time()
                before = [found.split(":")[0].split(" ")[0] for found in known[last].get(fault, [])]
                results[fault] = try_fault(scratch, fault, seconds, before, options)
                with path.open("a") as file:
                    file.write(json.dumps([fault, results[fault]]) + "\n")
                verdict = " ".join(results[fault]) or "MISSED"
                print(f"{number}/{len(faults)} {fault[1]}: {fault[2]} -> {fault[3]}: {verdict} "
                      f"({time.time() - begin:.0f} s)", flush=True)
    missed = report(faults, results)
    return 1 if any(f[0] == "physics" for f in missed) else 0


if __name__ == "__main__":
    sys.exit(main())
