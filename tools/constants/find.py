"""The named numbers of the solvers: where they stand, their values, what their comments say. Used by the others here.

A constant is a `constexpr` number of src/flash, src/flash3, src/envelope or src/water, at namespace scope, in a class or
in a function. Its key is "folder/file:name"; a name that a file has twice is "name.2" the second time.
"""

import re
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FOLDERS = ("flash", "flash3", "envelope", "water")
NUMBER = r"double|int|unsigned|std::size_t|std::int64_t"
DECLARED = re.compile(r"(?P<how>(?:static |inline )*constexpr) (?P<type>" + NUMBER + r"|(?:flash::)?StepBounds) (?=k\w)")
NAME = re.compile(r"\s*(k\w+)\s*(\[\w*\])?\s*=?\s*")
FIELDS = ("log_K", "log_T", "log_P")  # of StepBounds

# What is no heuristic, and why: by key, or by folder/file for all that a file has.
SIZE, UNITS, DATA, NAMED, MATHS, ROOM = (
    "size of an array", "units or physics", "data of a correlation", "a name for a value", "mathematics",
    "range that is promised or that numbers have")
LEFT_OUT = {
    "flash/isothermal/two_phase.cpp:kLog10e": MATHS,
    "flash/energy/energy_state.hpp:kLimitReached": NAMED,
    "flash/fugacity.hpp:kSteps": SIZE,
    "flash/fugacity.hpp:kTemperatureWork": SIZE,
    "flash/stability/stability.cpp:kFound": SIZE,
    "flash/stability/stability.cpp:kVectors": SIZE,
    "flash/stability/stability.hpp:kMost": SIZE,
    "flash/stability/trial.hpp:kMostInPlane": SIZE,
    "flash/fugacity.cpp:kUnwritten": NAMED,
    "flash/settings.cpp:first": NAMED,
    "flash/wilson.cpp:kWilson": DATA,
    "flash3/phases.hpp:kMostPhases": SIZE,
    "flash3/phases.hpp:kRoom": SIZE,
    "flash3/quality_search.hpp:kDeepest": SIZE,
    "envelope/outline.hpp:kDew": NAMED,
    "envelope/outline.hpp:kBubble": NAMED,
    "envelope/outline.hpp:kCritical": NAMED,
    "envelope/outline.hpp:kLiquids": NAMED,
    "envelope/outline.hpp:kNotStable": NAMED,
    "envelope/outline.hpp:kMostNodes": SIZE,
    "envelope/outline.hpp:kMostCorners": SIZE,
    "envelope/even_points.cpp:kMostFixed": SIZE,
    "envelope/even_points.cpp:kAt": MATHS,
    "envelope/even_points.cpp:kWeight": MATHS,
    "water/interactions.cpp": DATA,
    "water/hydrate.cpp": DATA,
    "water/chart.cpp": DATA,
    "water/condensed.cpp": DATA,
    "water/condensed.hpp": DATA,
    "water/wet_gas.cpp": UNITS,
    "water/content.hpp:kParts": SIZE,
    "water/dew.cpp:kGolden": MATHS,
}


@dataclass
class Constant:
    key: str
    file: str  # below src/
    name: str
    type: str  # double, int, ..., array, or field N of StepBounds
    value: str  # as it is written
    comment: str
    begin: int  # of its value in the file
    end: int
    scope: tuple  # where the name means this constant: (begin, end) in the file; None: in every file that includes it
    why_not: str  # reason why it is not tried, "" for one that is


def without_comments(text):
    """The text with comments and strings as blanks, of the same length."""
    blank = lambda found: re.sub(r"[^\n]", " ", found.group())
    return re.sub(r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"", blank, text, flags=re.S)


def parts(code, begin, closing):
    """Ends of the pieces between commas from begin up to one of `closing` outside all brackets; its place is the last."""
    depth, place, ends = 0, begin, []
    while True:
        c = code[place]
        if depth == 0 and (c == "," or c in closing):
            ends.append(place)
            if c in closing:
                return ends
        depth += (c in "([{") - (c in ")]}")
        place += 1


def comment_of(text, begin, end):
    """What stands behind a declaration, else what stands above it."""
    line_end = text.index("\n", end)
    words = [behind.group(1)] if (behind := re.search(r"//\s*(.*)", text[end:line_end])) else []
    lines = text[:begin].split("\n")[:-1]
    while not words and lines and re.match(r"\s*constexpr ", lines[-1]) and "//" not in lines[-1]:
        lines.pop()  # its comment is the one of a group
    if words:
        return words[0]
    if lines and lines[-1].strip().endswith("*/"):
        start = text[:begin].rindex("/*")
        words = [line.strip(" */") for line in text[start:begin].split("\n")]
    else:
        while lines and lines[-1].strip().startswith("//"):
            words.insert(0, lines.pop().strip().lstrip("/ "))
    words = " ".join(w for w in words if w)
    if not words and text[begin - 1] == " " and not text.startswith("static", begin):  # of a function
        names = re.findall(r"^\w[\w:<>*& ]*?(\w+)\([^;]*?\{$", text[:begin], re.M)
        return f"in {names[-1]}" if names else ""
    return words


def scope_of(code, how, begin, header):
    """A local constant is known up to the end of its block, one of a .cpp in its file."""
    local = begin > 0 and code[begin - 1] == " "
    if "static" in how or (header and not local):
        return None
    if not local:
        return (0, len(code))
    depth, place = 0, begin
    while depth >= 0:
        depth += (code[place] == "{") - (code[place] == "}")
        place += 1
    return (begin, place)


def in_file(path):
    name = str(path.relative_to(ROOT / "src"))
    text = path.read_text()
    code = without_comments(text)
    found, times = [], {}

    def add(label, kind, value_begin, value_end, comment, scope):
        times[label] = times.get(label, 0) + 1
        key = f"{name}:{label}" + (f".{times[label]}" if times[label] > 1 else "")
        why = LEFT_OUT.get(f"{name}:{label}") or LEFT_OUT.get(name) or ""
        found.append(Constant(key, name, label.split(".")[0], kind, " ".join(code[value_begin:value_end].split()), comment,
                              value_begin, value_end, scope, why))

    for declared in DECLARED.finditer(code):
        if re.match(r"k\w+\(", code[declared.end():]):
            continue
        begin = declared.end()
        scope = scope_of(code, declared["how"], declared.start(), path.suffix == ".hpp")
        ends = parts(code, begin, ";")
        comment = comment_of(text, declared.start(), ends[-1])
        for end in ends:
            head = NAME.match(code, begin)
            if declared["type"].endswith("StepBounds"):
                field = code.index("{", head.end() - 1) + 1
                for label, field_end in zip(FIELDS, parts(code, field, "}")):
                    add(f"{head[1]}.{label}", "field", field, field_end, comment, scope)
                    field = field_end + 1
            elif head[2]:
                add(head[1], "array", code.index("{", head.end() - 1) + 1, code.rindex("}", begin, end), comment, scope)
            else:
                add(head[1], declared["type"], head.end(), end, comment, scope)
            begin = end + 1
    return found


def constants():
    paths = [p for folder in FOLDERS for p in sorted((ROOT / "src" / folder).rglob("*.[ch]pp"))]
    return [constant for path in paths for constant in in_file(path)]
