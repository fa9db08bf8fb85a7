"""The documentation of the command line says what the program does: check_docs.py REPOSITORY PROGRAM [--write].

In the code blocks of docs/*.md a line "$ COMMAND" is run and its output compared with the lines below it, and it has to
print something unless it writes into a file; a line that
begins with "kestrune" is run and has to succeed, as have the examples of every --help. Options that a command has and
its section does not name, and options that it names and the command does not have, are errors. --write puts the
outputs into the pages.
"""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT, PROGRAM = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
WRITE = "--write" in sys.argv[3:]
GAS = "methane=0.93,ethane=0.04,propane=0.01,nitrogen=0.01,CO2=0.01"
problems = []


def run(command, folder):
    shell = f'kestrune() {{ "{PROGRAM}" "$@"; }}\ngas={GAS}\n{command}\n'
    if command.startswith("sh docs/"):
        shell = f'cd "{ROOT}" && {command} "{PROGRAM}"\n'
    return subprocess.run(["sh", "-c", shell], capture_output=True, text=True, cwd=folder)


def same(shown, printed):
    """Whether two lines are the same but for the last digits of numbers that show all of theirs."""
    number = r"-?\d+\.\d{9,}"
    def close(a, b):
        return abs(float(a) - float(b)) <= 1e-11 * abs(float(a))

    return re.split(number, shown) == re.split(number, printed) and all(
        map(close, re.findall(number, shown), re.findall(number, printed)))


def check_page(page, folder):
    """Runs the examples of a page; returns its text with the outputs as they are."""
    lines, result, fence, i = page.read_text().splitlines(), [], False, 0
    while i < len(lines):
        line = lines[i]
        result.append(line)
        i += 1
        if line.startswith("```"):
            fence = not fence
        if not fence or not line.startswith(("$ ", "kestrune ")):
            continue
        command = line.removeprefix("$ ")
        while command.endswith("\\"):
            result.append(lines[i])
            command += "\n" + lines[i]
            i += 1
        done = run(command, folder)
        if not done.stdout + done.stderr and not re.search(r"(?<!2)>|--(svg|png) (?!-)", command):
            problems.append(f"{page.name}: {command}\nprints nothing")
        if line.startswith("kestrune "):
            if done.returncode != 0:
                problems.append(f"{page.name}: {command}\nexit code {done.returncode}: {done.stderr}{done.stdout[:400]}")
            continue
        shown = []
        while i < len(lines) and not lines[i].startswith(("$ ", "```")):
            shown.append(lines[i])
            i += 1
        while shown and not shown[-1]:
            shown.pop()
        printed = (done.stdout + done.stderr).splitlines()
        if len(shown) != len(printed) or not all(map(same, shown, printed)):
            problems.append("\n".join([f"{page.name}: {command}", "printed:", *printed, "documented:", *shown]))
        result += printed + ([""] if lines[i].startswith("$ ") else [])
    return "\n".join(result) + "\n"


def check_options(text, folder):
    """Every option of every command in the text about it."""
    commands = re.findall(r"^  (\w+) +\S", run("kestrune --help", folder).stdout.split("Subcommands:")[1].split("Examples:")[0], re.M)
    common = text.split("\n## kestrune ")[0]
    known = {"--help", "--version", "--library"}
    for command in commands:
        usage = run(f"kestrune {command} --help", folder).stdout
        options = set(re.findall(r"(?<![\w-])--[A-Za-z][\w-]*", usage.split("Examples:")[0]))
        known |= options
        sections = re.findall(rf"^## kestrune {command}\b.*?(?=^## |\Z)", text, re.M | re.S)
        if not sections:
            problems.append(f"no section about kestrune {command}")
        for option in options - {"--help"}:
            if not re.search(rf"{option}(?![\w-])", common + "".join(sections)):
                problems.append(f"{option} of kestrune {command} is not documented")
        for example in re.findall(r"^  (kestrune .*)$", usage, re.M):
            done = run(example, folder) if "man -l" not in example else None
            if done and done.returncode != 0:
                problems.append(f"--help of {command}: {example}\n{done.stderr}{done.stdout[:300]}")
    for option in set(re.findall(r"`(--[A-Za-z][\w-]*)", text)) - known:
        problems.append(f"{option} is documented and no command has it")


def main():
    pages = sorted((ROOT / "docs").glob("*.md"))
    with tempfile.TemporaryDirectory() as folder:
        for example in (ROOT / "docs/examples").iterdir():
            (Path(folder) / example.name).write_bytes(example.read_bytes())
        for page in pages:
            text = check_page(page, folder)
            if WRITE:
                page.write_text(text)
        host = "".join((ROOT / "docs" / name).read_text() for name in ("host.md", "water.md", "envelope.md", "batch.md"))
        check_options(host, folder)
    if problems and not WRITE:
        sys.exit("\n\n".join(problems))


if __name__ == "__main__":
    main()
