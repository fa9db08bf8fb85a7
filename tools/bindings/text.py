"""What the generators of the compiled languages share."""


def fill(head, words, tail, width, indent, goes_on=""):
    """head + words joined by commas + tail, in lines of at most width; goes_on marks a line that is not the last."""
    line, lines = head, []
    for k, word in enumerate(words):
        end = tail if k + 1 == len(words) else ", "
        if len(line + word + end + goes_on) > width and line not in (head, indent):
            lines.append(line.rstrip() + goes_on)
            line = indent
        line += word + end
    return "\n".join(lines + [line.rstrip()])


def comment(export, first, rest, last=""):
    """Docstring lines: what it does, then a line a word."""
    lines = [f"{first}{export.doc}." + (" Returns the status." if export.status else "")]
    lines += [f"{rest}{a.name}: {a.sentence()}" for a in export.arguments if a.kind not in ("buffers",)]
    return "\n".join(lines) + last


def shape(a, product=" * "):
    """Number of elements as an expression of the call; negative numbers count as none."""
    return product.join(a.shape.split("*"))


def records_of(d, template, values):
    """template with @KEY@ replaced."""
    for key, text in ({"VERSION": d.version, "LIBRARY": d.library, "SIZE": str(d.record_size)} | values).items():
        template = template.replace(f"@{key}@", text)
    return template
