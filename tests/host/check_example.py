"""An example script prints what the documentation shows: check_example.py REPOSITORY SCRIPT PROGRAM."""

import subprocess
import sys
from pathlib import Path


def shown(document, script):
    """What stands below the line "$ sh SCRIPT" in its code block."""
    lines = iter(document.splitlines())
    for line in lines:
        if line == f"$ sh {script}":
            break
    else:
        sys.exit(f"the documentation does not show {script}")
    block = []
    for line in lines:
        if not line or line.startswith(("$ ", "```")):
            break
        block.append(line)
    return block


def main():
    root, script, program = Path(sys.argv[1]), sys.argv[2], sys.argv[3]
    run = subprocess.run(["sh", str(root / script), program], capture_output=True, text=True)
    if run.returncode != 0:
        sys.exit(f"exit code {run.returncode}: {run.stderr}")
    printed = run.stdout.splitlines()
    text = "\n".join(path.read_text() for path in sorted((root / "docs").glob("*.md")))
    documented = shown(text, script)
    if printed != documented:
        sys.exit("\n".join(["printed:", *printed, "documented:", *documented]))


if __name__ == "__main__":
    main()
