"""The sources with every constant in reach of a factor: a copy of the tree in the scratch folder, and its build."""

import re
import shutil
import subprocess
from pathlib import Path

from find import ROOT, constants, without_comments

TREES = ["CMakeLists.txt", "CMakePresets.json", "LICENSE", "README.md", "bench", "cmake", "data", "docs", "fuzz", "host", "include",
         "python", "scripts", "siblings", "src", "tests", "tools", "web"]
# Programs that know nothing of the inside of the library are those of the usual build.
PROGRAMS = ["kestrune_sweep", "bench_dll", "libkestrune_arrays.so"]
WHOLE = {"int": "int", "unsigned": "unsigned", "std::size_t": "std::size_t", "std::int64_t": "std::int64_t"}
NAME = re.compile(r"(?<![\w.>])((?:\w+::)*)(k[A-Z]\w*)\b")


class Rewriter:
    def __init__(self):
        self.all = constants()
        self.number = {c.key: n for n, c in enumerate(self.all)}
        self.own = {}
        for c in self.all:
            self.own.setdefault(c.file, []).append(c)
        self.of_headers = {c.name: c for c in reversed(self.all) if c.scope is None}

    def meant(self, file, code, name, place):
        """The constant that a name means there: the innermost of its file, else the one of a header."""
        fits = [c for c in self.own.get(file, ()) if c.name == name and (c.scope is None or c.scope[0] <= place < c.scope[1])]
        if fits:
            return min(fits, key=lambda c: c.scope[1] - c.scope[0] if c.scope else 1e9)
        if re.search(rf"\b(?:double|int|unsigned|auto)\s+{name}\b", code):
            return None
        return self.of_headers.get(name)

    def read(self, c, namespace):
        if c.type in ("array", "field"):
            return f"::tune::seen({self.number[c.key]}, {namespace}{c.name})"
        value = self.replaced(c.file, c.begin, c.end)
        if c.type == "double":
            return f"::tune::real({self.number[c.key]}, {value})"
        return f"::tune::whole<{WHOLE[c.type]}>({self.number[c.key]}, {value})"

    def replaced(self, file, begin=0, end=None):
        """A piece of a file with its names as reads."""
        text = (ROOT / "src" / file).read_text()
        code = without_comments(text)
        end = len(text) if end is None else end
        whole_file = begin == 0 and end == len(text)
        own = self.own.get(file, ())
        changes = []
        for found in NAME.finditer(code, begin, end):
            if re.match(r"(std|eos|support|tools|stage)::$", found[1]):
                continue
            if re.search(r"\busing $", code[:found.start()]):
                continue
            if any(c.begin <= found.start() < c.end for c in own) and whole_file:
                continue  # in the value of a constant: it stays as it is
            if re.search(r"\w\s+$|,\s*$", code[:found.start()]) and any(
                    c.name == found[2] and 0 < c.begin - found.end() < 12 and c.end > found.end() for c in own):
                continue  # its declaration
            c = self.meant(file, code, found[2], found.start())
            if c and not c.why_not:
                changes.append((found.start(), found.end(), self.read(c, found[1])))
        if whole_file:
            for c in own:
                if c.type in ("array", "field") and not c.why_not:
                    values = ", ".join(f"::tune::quiet({self.number[c.key]}, {v.strip()})"
                                       for v in code[c.begin:c.end].split(",") if v.strip())
                    changes.append((c.begin, c.end, values))
                    start = code.rindex("constexpr", 0, c.begin)
                    changes.append((start, start + len("constexpr"), "const"))
        piece, at = [], begin
        for start, stop, new in sorted(set(changes)):
            piece += [text[at:start], new]
            at = stop
        result = "".join([*piece, text[at:end]])
        return '#include "tune.hpp"\n' + result if whole_file and changes else result


def write(folder):
    """The tree in the folder; files that have not changed keep their time."""
    rewriter = Rewriter()
    names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", *TREES], cwd=ROOT, check=True,
                           capture_output=True, text=True).stdout.split("\n")
    for name in names:
        if not name or not (ROOT / name).is_file():
            continue
        content = (ROOT / name).read_bytes()
        if name.startswith("src/") and name.endswith("pp"):
            content = rewriter.replaced(name[len("src/"):]).encode()
        if name == "src/eos/phase.cpp":
            content = counted(content.decode()).encode()
        put(folder / name, content)
    put(folder / "src" / "tune.hpp", (Path(__file__).parent / "tune.hpp").read_bytes())
    put(folder / "numbers", keys(rewriter.all))
    return rewriter.all


def counted(text):
    """Every evaluation of ln phi counts."""
    new, times = re.subn(r"(\nvoid ln_phi\([^)]*\)[^{;]*\{)", r"\1\n  ::tune::work();", text)
    if times != 1:
        raise SystemExit(f"src/eos/phase.cpp: {times} definitions of ln_phi, one is wanted")
    return '#include "tune.hpp"\n' + new


def put(path, content):
    if not path.exists() or path.read_bytes() != content:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def keys(all_of_them):
    return "".join(f"{c.key} {c.value}\n" for c in all_of_them).encode()


def bin_of(folder):
    return folder / "build" / "native" / "bin"


def build(folder, programs, jobs):
    out = folder / "build" / "native"
    if not (out / "build.ninja").exists():
        subprocess.run(["cmake", "--preset", "native", "-DKESTRUNE_WERROR=OFF", "-DKESTRUNE_TESTS=OFF"], cwd=folder,
                       check=True, stdout=subprocess.DEVNULL)
    built = subprocess.run(["cmake", "--build", out, "-j", str(jobs), "--target", "KVGasThermo", "KVToolsLite",
                            "KVCmpdPureLite", "bench_core"], capture_output=True, text=True)
    if built.returncode != 0:
        raise SystemExit("does not build:\n" + built.stdout[-6000:])
    for name in PROGRAMS:
        shutil.copy2(programs / name, out / "bin" / name)
    return bin_of(folder)
