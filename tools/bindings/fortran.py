"""bindings/fortran/kestrune.F90."""
import itertools

from bindings.text import comment, fill, records_of

WIDTH = 118
OWN = "ConvertPPR78GroupData"  # written by hand in the template: its buffers belong to the module


def listing(head, words, tail):
    return fill(head, words, tail, WIDTH, "      ", " &")


def together(declared, indent):
    """Declarations with the names that follow each other under one type."""
    lines = []
    for kind, group in itertools.groupby(declared, key=lambda pair: pair[0]):
        lines.append(listing(f"{indent}{kind} :: ", [name for _, name in group], ""))
    return lines


def interface(e):
    kind = "function" if e.status else "subroutine"
    lines = [listing(f"    {kind} c_{e.name}(", [a.name for a in e.arguments], ") &"),
             f"        bind(C, name=\"{e.name}\")" + (" result(code)" if e.status else ""),
             "      import :: c_double, c_int32_t, c_ptr, MixtureRecord", "#if __SIZEOF_POINTER__ == 4", f"      !GCC$ ATTRIBUTES STDCALL :: c_{e.name}", "#endif"]
    types = {"double": "real(c_double), value", "int": "integer(c_int32_t), value", "routines": "type(c_ptr), value",
             "record": "type(MixtureRecord), intent(inout)", "buffers": "type(c_ptr), intent(in)"}
    declared = []
    for a in e.arguments:
        if a.kind in types:
            declared.append((types[a.kind], f"{a.name}{'(*)' if a.kind == 'buffers' else ''}"))
        else:
            number = "real(c_double)" if a.kind == "doubles" else "integer(c_int32_t)"
            intent = "in" if a.dir == "in" else "inout"
            declared.append((f"{number}, intent({intent}){', optional' if a.bit else ''}",
                             f"{a.name}{'(*)' if a.array else ''}"))
    lines += together(declared, "      ")
    if e.status:
        lines.append("      integer(c_int32_t) :: code")
    return "\n".join(lines + [f"    end {kind}"])


def declaration(a):
    """(type, name) of a word of a wrapper."""
    types = {"double": "real(c_double), intent(in)", "int": "integer(c_int32_t), intent(in)",
             "routines": "type(c_ptr), intent(in)", "record": "type(MixtureRecord), intent(inout)"}
    if a.kind in types:
        return types[a.kind], a.name
    parts = ["real(c_double)" if a.kind == "doubles" else "integer(c_int32_t)"]
    parts += [f"intent({'in' if a.dir == 'in' else 'inout'})"]
    parts += ["contiguous"] if a.array else []
    parts += ["optional"] if a.bit else []
    return ", ".join(parts), f"{a.name}{'(:)' if a.array else ''}"


def length(a):
    """64 bits keep the products exact."""
    first, *others = a.shape.split("*")
    return " * ".join([f"{first}_c_int64_t" if first.isdigit() else f"int({first}, c_int64_t)", *others])


def checks(e):
    if any(a.kind == "record" for a in e.arguments):
        record = next(a.name for a in e.arguments if a.kind == "record")
        yield f"count = count_of({record}, me)"
    for a in e.arguments:
        if a.bit:
            yield f'call need_derivative(present({a.name}), mask, {a.bit}, me, "{a.name}")'
        if a.array:
            guard = f"if (present({a.name})) " if a.bit else ""
            yield f'{guard}call need(size({a.name}), {length(a)}, me, "{a.name}")'


def procedure(e):
    lines = [comment(e, "  ! ", "  !   "),
             listing(f"  function {e.name}(", [a.name for a in e.arguments], ") result(code)")]
    lines += together([declaration(a) for a in e.arguments], "    ")
    lines.append("    integer(c_int32_t) :: code" + (", count" if any(a.kind == "record" for a in e.arguments) else ""))
    lines.append(f'    character(*), parameter :: me = "{e.name}"')
    lines += [f"    {check}" for check in checks(e)]
    lines.append(listing(f"    code = c_{e.name}(", [a.name for a in e.arguments], ")"))
    return "\n".join(lines + ["  end function", ""])


def parameter(name, value):
    kind = "real(c_double)" if "e" in value or "." in value else "integer(c_int32_t)"
    value = value.replace("e", "d") if "e" in value else value + ("d0" if "." in value else "_c_int32_t")
    return f"  {kind}, parameter, public :: {name} = {value}"


def make(d, template, made):
    return records_of(d, template, {
        "MADE": made, "LAST": str(d.record_size - 1), "TABLE_COLUMNS": d.constants["KV_TABLE_COLUMNS"],
        "STATUSES": "\n".join(parameter(n, str(v)) for n, v, _ in d.statuses),
        "TEXTS": "\n".join(f'    case ({n})\n      text = "{t}"' for n, _, t in d.statuses),
        "COLUMNS": "\n".join(f"  integer, parameter, public :: {n} = {v} ! {doc}" for n, v, doc in d.columns),
        "CONSTANTS": "\n".join(parameter(n, v) for n, v in d.constants.items()),
        "OFFSETS": "\n".join(f"  integer, parameter, public :: at_{f['name']} = {f['offset']} ! {f['kind']}: {f['doc']}"
                             for f in d.fields),
        "PUBLIC": "\n".join(f"  public :: {e.name}" for e in d.exports),
        "INTERFACES": "\n".join(interface(e) for e in d.exports),
        "PROCEDURES": "\n".join(procedure(e) for e in d.exports if e.name != OWN),
    })
