"""Runs an example, or builds and runs that of a language, and holds its numbers against examples/rich_gas.txt to 1e-12;
then what the binding says to wrong input.

    run_example.py program ROOT COMMAND...
    run_example.py fortran|pascal|csharp|python ROOT FOLDER_OF_THE_LIBRARY SCRATCH
"""
import os
import pathlib
import subprocess
import sys


def run(*command, good=True, **options):
    """Both outputs of a command; ends the test where it fails (or, with good False, where it does not)."""
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, **options)
    if (done.returncode == 0) != good:
        sys.exit(f"{' '.join(map(str, command))}: exit code {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout + (done.stderr if not good else "")


def compare(root, output):
    wanted, found = ([line.split() for line in text.splitlines() if line.strip()]
                     for text in ((root / "examples/rich_gas.txt").read_text(encoding="utf-8"), output))
    if [w[0] for w in wanted] != [f[0] for f in found]:
        sys.exit(f"other lines than examples/rich_gas.txt:\n{output}")
    worst = max(abs(float(f[1]) / float(w[1]) - 1) for w, f in zip(wanted, found))
    print(f"{len(found)} numbers, worst relative difference {worst:.1e}")
    if not worst <= 1e-12:
        sys.exit(f"not the numbers of examples/rich_gas.txt:\n{output}")


def expect(output, *texts):
    for text in texts:
        if text not in output:
            sys.exit(f"'{text}' is not in what wrong input was answered with:\n{output}")


def fortran(root, library, scratch):
    link = ["-L" + library, "-lKVGasThermo", "-Wl,-rpath," + library, "-J", scratch]
    sources = [root / "bindings/fortran/kestrune.F90"]
    strict = ["-Wall", "-Werror"]
    run("gfortran", *strict, *sources, root / "examples/fortran/rich_gas.f90", "-o", scratch / "rich_gas", *link)
    run("gfortran", *strict, *sources, root / "tests/bindings/wrong.f90", "-o", scratch / "wrong", *link)
    compare(root, run(scratch / "rich_gas"))
    expect(run(scratch / "wrong", "length", good=False), "FlashLVatTP: K: 1 elements, 2 are needed")
    expect(run(scratch / "wrong", "record", good=False), "mixture: the record has no components")
    expect(run(scratch / "wrong", "absent", good=False), "d_dT: absent, but mask asks for it")


def pascal(root, library, scratch):
    options = ["-v0ew", f"-FU{scratch}", f"-FE{scratch}", f"-Fu{root}/bindings/pascal", f"-Fl{library}", f"-k-rpath={library}"]
    for program in ("examples/pascal/rich_gas.pas", "tests/bindings/wrong.pas"):
        run("fpc", *options, root / program)
    compare(root, run(scratch / "rich_gas"))
    expect(run(scratch / "wrong"), "EArgumentException FlashLVatTP: K: 1 elements, 2 are needed",
           "EArgumentException FlashLVatTP: mixture: the record has no components",
           "EArgumentException NewMixture: table: 3 elements, 86 are needed",
           "EArgumentException LiquidPhi_Derivatives_PPR78: d_dT: 0 elements, 2 are needed")


def csharp(root, library, scratch):
    binding = root / "bindings/csharp/Kestrune.cs"
    for program in ("examples/csharp/RichGas.cs", "tests/bindings/Wrong.cs"):
        run("mcs", "-warnaserror", f"-out:{scratch / pathlib.Path(program).stem}.exe", binding, root / program)
    environment = {"env": os.environ | {"LD_LIBRARY_PATH": library}}
    compare(root, run("mono", scratch / "RichGas.exe", **environment))
    expect(run("mono", scratch / "Wrong.exe", **environment), "ArgumentNullException z", "ArgumentException K",
           "ArgumentException componentTable", "ObjectDisposedException mixture", "ArgumentNullException d_dT")


def python_of_the_package():
    """The package imports numpy, which Debian's interpreter has and another one on the PATH may lack."""
    for program in (sys.executable, "/usr/bin/python3"):
        if subprocess.run([program, "-c", "import numpy"], capture_output=True).returncode == 0:
            return program
    sys.exit("no Python here has numpy")


def python(root, library, scratch):
    del scratch
    file = pathlib.Path(library) / "libKVGasThermo.so"
    environment = {"env": os.environ | {"PYTHONPATH": str(root / "python"), "PYTHONDONTWRITEBYTECODE": "1"}}
    compare(root, run(python_of_the_package(), root / "examples/python/rich_gas.py", file, **environment))
    print(run(python_of_the_package(), root / "tests/bindings/wrong.py", file, **environment))


def main(argv):
    if len(argv) < 4:
        sys.exit(__doc__)
    root = pathlib.Path(argv[2])
    if argv[1] == "program":
        compare(root, run(*argv[3:]))
        return
    scratch = pathlib.Path(argv[4])
    scratch.mkdir(parents=True, exist_ok=True)
    {"fortran": fortran, "pascal": pascal, "csharp": csharp, "python": python}[argv[1]](root, argv[3], scratch)


if __name__ == "__main__":
    main(sys.argv)
