"""The papers agree with the sources: python3 tools/check_papers.py

- the picture of docs/architecture.md is the one of the includes;
- every citation key in src/ stands once in the list of docs/method.md, and every key of the list is cited; the keys of a
  sibling library are explained in its own folder;
- every equation of docs/method.md is named by a comment in src/, and no comment names one that is not there;
- every file that the papers name is there.
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
KEY = re.compile(r"\[((?:[A-Z][a-z]{2}\d\d[a-z]?(?:, (?:ch\. [\d and]+)?)?)+)\]")
ONE_KEY = re.compile(r"[A-Z][a-z]{2}\d\d[a-z]?")
problems = []


def sources(folder):
    return {f: f.read_text() for f in sorted((ROOT / folder).rglob("*.[ch]pp"))}


def keys_in(text):
    return {key for group in KEY.findall(text) for key in ONE_KEY.findall(group)}


def check_citations(src, method):
    listed = re.findall(r"^\| (\w+) \| ", method.split("## Sources")[1], re.M)[1:]
    cited = keys_in(method) | set().union(*map(keys_in, src.values()))
    for key in sorted(set(listed) ^ cited):
        problems.append(f"docs/method.md: [{key}] " + ("is cited nowhere" if key in listed else "is not among the sources"))
    for key in sorted({k for k in listed if listed.count(k) > 1}):
        problems.append(f"docs/method.md: [{key}] is listed twice")
    for sibling in ("siblings/pure", "siblings/tools"):
        text = "\n".join(sources(sibling).values())
        for key in sorted(keys_in(text)):
            if not re.search(rf"^// \[{key}\] \w", text, re.M):
                problems.append(f"{sibling}: [{key}] is explained nowhere")


def check_equations(src, method):
    there = [int(n) for n in re.findall(r"^ {4,}.*\S +\((\d+)\)$", method, re.M)]
    if there != list(range(1, len(there) + 1)):
        problems.append(f"docs/method.md: equations are not numbered in order: {there}")
    used = set()
    for file, text in src.items():
        text = re.sub(r"\s*\n\s*(//|\*) *", " ", text)
        for sentence in re.findall(r"((?:\(\d+\)[^()]{0,60}?(?:\([^()0-9][^()]*\)[^()]{0,60}?)?)+)(?:of|in) docs/method\.md", text):
            used |= {int(n) for n in re.findall(r"\((\d+)\)", sentence)}
        for first, last in re.findall(r"\((\d+)\) to \((\d+)\) of docs/method", text):
            used |= set(range(int(first), int(last) + 1))
    for n in sorted(used ^ set(there)):
        problems.append(f"equation ({n}): " + ("no comment in src/ names it" if n in there else "named in src/, not in docs/method.md"))


def check_files():
    for page in ("docs/method.md", "docs/architecture.md", "docs/conventions.md", "CONTRIBUTING.md", "README.md"):
        text = (ROOT / page).read_text()
        for name in re.findall(r"`([\w./-]+/[\w./*-]+\.(?:cpp|hpp|h|py|sh|md|csv|toml|txt))`", text):
            if not (list(ROOT.glob(name)) or list((ROOT / "src").glob(name))):
                problems.append(f"{page}: no file {name}")
        for target in re.findall(r"\]\((?!http|#)([^)#]+)", text):
            if not ((ROOT / page).parent / target).exists():
                problems.append(f"{page}: no file {target}")


def main():
    method, src = (ROOT / "docs/method.md").read_text(), sources("src")
    drawn = subprocess.run([sys.executable, ROOT / "tools/draw_layers.py", "--check"], capture_output=True, text=True)
    if drawn.returncode != 0:
        problems.append(drawn.stderr.strip())
    check_citations(src, method)
    check_equations(src, method)
    check_files()
    if problems:
        sys.exit("\n".join(problems))


main()
