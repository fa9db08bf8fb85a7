"""Turns the C block of README.md into a program, so that what the README shows is compiled and run.

usage: readme_host.py README.md out.c
"""
import re
import sys

readme, out = sys.argv[1:3]
with open(readme, encoding="utf-8") as file:
    block = re.search(r"```c\n(.*?)```", file.read(), re.S).group(1)
include, body = block.split("\n", 1)
with open(out, "w", encoding="utf-8") as file:
    file.write(
        "#include <stdio.h>\n" + include + "\n"
        "int main(void) {\n" + body +
        "  printf(\"beta %.6f\\n\", beta);\n"
        "  return !(status == KV_OK && beta > 0.0 && beta < 1.0 && y[0] > z[0] && x[1] > z[1]);\n}\n")
