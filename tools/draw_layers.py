"""Draws docs/images/architecture.svg: the layers of the library, as the #include lines make them, and the life of one
call through its files.

    python3 tools/draw_layers.py           writes the picture
    python3 tools/draw_layers.py --check   fails where the picture is not the one of the sources

The rows of the layers, their arrows and what stands in the boxes follow from the sources. So does whether the steps of
the call still hold: each file has to be reachable from the one before by includes, a header standing for its source.
"""

import re
import sys
from html import escape
from pathlib import Path
from textwrap import wrap

ROOT = Path(__file__).resolve().parent.parent
PICTURE = ROOT / "docs/images/architecture.svg"
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.M)

KESTRUNE = "include/kestrune"  # the headers of hosts, open to all

WHAT = {
    "frame/exports": "39 entries: checks, retries, statuses",
    "flash3": "two liquids and a vapour",
    "envelope": "outline, critical points",
    "water": "water dew points, hydrates",
    "flash": "one and two phases, stability, free water",
    "eos": "PPR78: roots, ln phi, properties of a phase",
    "frame": "boundary, state, siblings, system",
    "support": "storage, wide loops, factors, trace",
    "edge": "the host's stack and floating-point words",
}

# The life of FlashLVatTP: what happens, where, and in a few words how.
STEPS = [
    ("host", "frame/exports/two_phase.cpp", "frame/exports/two_phase.cpp", "calls the entry, whose body is one expression"),
    ("guard", "frame/exports/two_phase.cpp", "frame/boundary.hpp", "floating point saved; nothing thrown leaves"),
    ("context", "frame/exports/two_phase.cpp", "frame/exports/context.hpp", "record, group data, siblings, trace"),
    ("checks", "frame/exports/two_phase.cpp", "frame/boundary.hpp", "pointers, T, P, feed: status 9002 and on"),
    ("wrapper", "frame/exports/two_phase.cpp", "frame/exports/flash_wrapper.hpp", "flags byte, water, host's routines, work"),
    ("solver", "frame/exports/two_phase.cpp", "flash/isothermal/isothermal.cpp", "the order of attempts"),
    ("start", "flash/isothermal/isothermal.cpp", "flash/isothermal/starts.cpp", "estimate, Wilson, or a trial that splits off"),
    ("stability", "flash/isothermal/isothermal.cpp", "flash/stability/stability.cpp", "which trials; each by flash/stability/trial.cpp"),
    ("split", "flash/isothermal/starts.cpp", "flash/isothermal/two_phase.cpp", "substitution, then Newton's method"),
    ("ln phi", "flash/isothermal/two_phase.cpp", "flash/fugacity.cpp", "host's routine, free water, or the equation"),
    ("equation", "flash/fugacity.cpp", "eos/phase.cpp", "root by BRACUB of siblings/tools"),
    ("sums", "eos/phase.cpp", "support/lanes.hpp", "two or four doubles at a time"),
    ("gate", "flash/isothermal/starts.cpp", "flash/accept.cpp", "balance 1e-12, ln f 1e-8"),
    ("answer test", "flash/isothermal/isothermal.cpp", "flash/isothermal/other_answers.cpp", "what cuts it starts a better one"),
    ("result", "frame/exports/two_phase.cpp", "flash/isothermal/isothermal.cpp", "phases named and written; status 95 becomes 0"),
]


def layer_of(path):
    return "frame/exports" if path.startswith("frame/exports/") else path.split("/")[0]


def read_includes():
    """Path below src (and include/kestrune) -> the paths that it includes."""
    files = {}
    for file in sorted((ROOT / "src").rglob("*.[ch]pp")):
        name = file.relative_to(ROOT / "src").as_posix()
        files[name] = [i for i in INCLUDE.findall(file.read_text()) if "/" in i]
    return files


def layers(files):
    """Layer -> the layers that it includes; include/kestrune is one of them."""
    result = {}
    for name, included in files.items():
        own = result.setdefault(layer_of(name), set())
        for target in included:
            other = KESTRUNE if target.startswith("kestrune/") else layer_of(target)
            if other in ("sys",) or other == layer_of(name):
                continue
            own.add(other)
    unknown = set(result) ^ set(WHAT)
    if unknown:
        sys.exit(f"draw_layers: layers without a word about them, or words without a layer: {sorted(unknown)}")
    return result


def ranks(graph):
    def rank(layer):
        below = [rank(other) + 1 for other in graph[layer] if other != KESTRUNE]
        return max(below, default=0)

    return {layer: rank(layer) for layer in graph}


def direct(graph):
    """The arrows that do not follow from others."""

    def reach(layer):
        found = set()
        for other in graph[layer] - {KESTRUNE}:
            found |= {other} | reach(other)
        return found

    return [(a, b) for a in graph for b in sorted(graph[a] - {KESTRUNE})
            if not any(b in reach(c) for c in graph[a] - {KESTRUNE, b})]


def check_steps(files):
    def reach(start):
        seen, left = set(), [start]
        while left:
            file = left.pop()
            if file in seen or file not in files:
                continue
            seen.add(file)
            left += files[file]
            if file.endswith(".hpp"):
                left.append(file[:-4] + ".cpp")
        # A source without a header of its name is reached where its layer's folder is.
        return seen | {f for f in files if f.endswith(".cpp") and f[:-4] + ".hpp" not in files
                       and any(h in seen for h in files[f])}

    for what, start, end, _ in STEPS:
        if start not in files or end not in files:
            sys.exit(f"draw_layers: step {what}: no file src/{start if start not in files else end}")
        if start != end and end not in reach(start):
            sys.exit(f"draw_layers: step {what}: no way by includes from src/{start} to src/{end}")


def box(x, y, w, h, title, lines, colour):
    text = [f'<rect x="{x:g}" y="{y:g}" width="{w:g}" height="{h:g}" rx="5" fill="{colour}" stroke="#445"/>',
            f'<text x="{x + 9:g}" y="{y + 19:g}" class="b">{escape(title)}</text>']
    wrapped = [part for one in lines for part in wrap(one, int(w / 5.9))]
    for k, part in enumerate(wrapped):
        text.append(f'<text x="{x + 9:g}" y="{y + 35 + 14 * k:g}" class="s">{escape(part)}</text>')
    return text


def line(x1, y1, x2, y2, extra=""):
    return f'<line x1="{x1:g}" y1="{y1:g}" x2="{x2:g}" y2="{y2:g}" stroke="#445" marker-end="url(#a)"{extra}/>'


def draw_layers_panel(graph):
    out, place = [], {}
    width, gap = 520, 28
    by_rank = {}
    for layer, rank in ranks(graph).items():
        by_rank.setdefault(rank, []).append(layer)
    bottom = 156 - gap
    for rank, row in sorted(by_rank.items(), reverse=True):
        y, height = bottom + gap, 80 if len(row) > 2 else 60
        bottom = y + height
        row.sort(key=list(WHAT).index)
        w = (width - 14 * (len(row) - 1)) / len(row)
        for k, layer in enumerate(row):
            x = 20 + k * (w + 14)
            place[layer] = (x, y, w, height)
            names = [o for o in [*WHAT, KESTRUNE] if o in graph[layer]]
            words = [WHAT[layer], "includes " + ", ".join(names or ["standard headers only"])]
            out += box(x, y, w, height, layer, words, "#eef3fb")
    for a, b in direct(graph):
        (xa, ya, wa, height), (xb, yb, wb, _) = place[a], place[b]
        left, right = max(xa, xb), min(xa + wa, xb + wb)
        x = (left + right) / 2
        out.append(line(x, ya + height, x, yb - 2))
    x, _, w, _ = place["frame"]
    out += box(20, 60, 520, 64, "hosts: host/ python/ bindings/ examples/",
               ["see include/kestrune only, load the libraries by name", "the command line, Python, C, C++, Fortran, Pascal, C#, VBA"],
               "#fdf3e3")
    out.append(line(280, 124, 280, 154, ' stroke-dasharray="5 4"'))
    out.append('<text x="290" y="143" class="s">at run time</text>')
    out += box(20, bottom + gap, 520, 50, "siblings/pure, siblings/tools",
               ["pure-component data; roots, linear systems: each knows itself, edge and include/ only"], "#eef7ee")
    out.append(line(x + w / 2, bottom, x + w / 2, bottom + gap - 2, ' stroke-dasharray="5 4"'))
    out.append(f'<text x="{x + w / 2 + 10:g}" y="{bottom + 21}" class="s">at run time</text>')
    return out, bottom + gap + 50


def draw_call_panel():
    out, y = [], 60
    for what, _, file, how in STEPS:
        out += [f'<rect x="590" y="{y}" width="96" height="34" rx="5" fill="#f4eefb" stroke="#445"/>',
                f'<text x="638" y="{y + 21}" class="b" text-anchor="middle">{what}</text>',
                f'<text x="700" y="{y + 14}" class="f">src/{file}</text>',
                f'<text x="700" y="{y + 29}" class="s">{escape(how)}</text>']
        y += 46
        if what != STEPS[-1][0]:
            out.append(line(638, y - 12, 638, y - 2))
    return out, y - 12


def picture():
    files = read_includes()
    check_steps(files)
    left, low_left = draw_layers_panel(layers(files))
    right, low_right = draw_call_panel()
    height = max(low_left, low_right) + 24
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" width="1040" height="{height}" viewBox="0 0 1040 {height}">',
        "<style>text{font-family:'DejaVu Sans',Arial,sans-serif;fill:#112}.t{font-size:16px;font-weight:bold}"
        ".b{font-size:13px;font-weight:bold}.s{font-size:11px}.f{font-size:11px;font-family:'DejaVu Sans Mono',monospace}</style>",
        '<defs><marker id="a" viewBox="0 0 8 8" refX="7" refY="4" markerWidth="7" markerHeight="7" orient="auto">'
        '<path d="M0 0L8 4L0 8z" fill="#445"/></marker></defs>',
        '<rect width="100%" height="100%" fill="white"/>',
        '<text x="20" y="36" class="t">Layers: an arrow is an #include</text>',
        '<text x="590" y="36" class="t">The life of a call: FlashLVatTP</text>',
        *left, *right, "</svg>", ""])


def main(argv):
    if argv not in ([], ["--check"]):
        sys.exit("draw_layers: no argument, or --check")
    drawn = picture()
    if argv:
        if not PICTURE.exists() or PICTURE.read_text() != drawn:
            sys.exit("docs/images/architecture.svg is not that of the sources: run python3 tools/draw_layers.py")
        return
    PICTURE.write_text(drawn)


main(sys.argv[1:])
