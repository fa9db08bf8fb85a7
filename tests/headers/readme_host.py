"""Takes the C program out of README.md, so that what the README shows is compiled as it stands and run.

usage: readme_host.py README.md out.c
"""
import re
import sys

readme, out = sys.argv[1:3]
with open(readme, encoding="utf-8") as file:
    block = re.search(r"```c\n(.*?)```", file.read(), re.S).group(1)
with open(out, "w", encoding="utf-8") as file:
    file.write(block)
