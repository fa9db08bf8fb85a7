"""An installed tree as its users meet it: a project with find_package, a compiler with pkg-config, the command line.

    check_install.py ROOT PREFIX linux|win32|win64 SCRATCH
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys

CROSS = {"win32": "i686-w64-mingw32", "win64": "x86_64-w64-mingw32"}


def run(*command, **options):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, **options)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}: exit code {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def same_numbers(output, wanted):
    found, expected = ([line.split() for line in text.splitlines()] for text in (output, wanted))
    if [f[0] for f in found] != [e[0] for e in expected] or not all(
            abs(float(f[1]) - float(e[1])) <= 1e-12 * abs(float(e[1])) for f, e in zip(found, expected)):
        sys.exit(f"not the numbers of examples/rich_gas.txt:\n{output}")


def no_trace_of(root, prefix):
    """Installed text that names the folder it was built in would break elsewhere."""
    for file in prefix.rglob("*"):
        if file.suffix in (".cmake", ".pc") and str(root) in file.read_text(encoding="utf-8"):
            sys.exit(f"{file} names {root}")


def no_dead_links(documents):
    dead = [f"{page.relative_to(documents)} links to {to}" for page in documents.rglob("*.md")
            for to in re.findall(r"\]\(([^)#\s]+)", page.read_text(encoding="utf-8"))
            if ":" not in to and not (page.parent / to).exists()]
    if dead:
        sys.exit("\n".join([f"dead links in {documents}:", *dead]))


def main(argv):
    if len(argv) != 5 or argv[3] not in ("linux", *CROSS):
        sys.exit(__doc__)
    root, prefix, platform, scratch = pathlib.Path(argv[1]), pathlib.Path(argv[2]), argv[3], pathlib.Path(argv[4])
    shutil.rmtree(scratch, ignore_errors=True)
    scratch.mkdir(parents=True)
    documents = prefix / "share/doc/kestrune"
    example = documents / "examples/c/rich_gas.c"
    wanted = (documents / "examples/rich_gas.txt").read_text(encoding="utf-8")
    windows = platform in CROSS
    emulator = ["sh", root / "scripts/wine.sh"] + (["--64"] if platform == "win64" else []) if windows else []
    suffix = ".exe" if windows else ""
    toolchain = [f"-DCMAKE_TOOLCHAIN_FILE={root}/cmake/{platform}.cmake", "-DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH"]

    run("cmake", "-G", "Ninja", "-S", root / "tests/packages/consumer", "-B", scratch / "build",
        f"-DCMAKE_PREFIX_PATH={prefix}", f"-DKestrune_EXAMPLE={example}", *(toolchain if windows else []))
    run("cmake", "--build", scratch / "build")
    # Windows looks for DLLs beside the program or in the PATH; Linux has the folder in the program.
    environment = os.environ | ({"WINEPATH": str(prefix / "bin")} if windows else {})
    same_numbers(run(*emulator, scratch / f"build/consumer{suffix}", env=environment, cwd=scratch), wanted)

    pkg = {"PKG_CONFIG_PATH": str(prefix / "lib/pkgconfig"), "PKG_CONFIG_LIBDIR": str(prefix / "lib/pkgconfig")}
    flags = run("pkg-config", "--cflags", "--libs", "kestrune", env=os.environ | pkg).split()
    compiler = f"{CROSS[platform]}-gcc" if windows else "gcc"
    run(compiler, example, "-o", scratch / f"by_pkg_config{suffix}", *flags)
    environment |= {} if windows else {"LD_LIBRARY_PATH": str(prefix / "lib")}
    same_numbers(run(*emulator, scratch / f"by_pkg_config{suffix}", env=environment, cwd=scratch), wanted)

    program = [*emulator, prefix / f"bin/kestrune{suffix}"]
    version = run(*program, "--version", cwd=scratch).split()[1]
    if version != run("pkg-config", "--modversion", "kestrune", env=os.environ | pkg).strip():
        sys.exit(f"kestrune is {version}, pkg-config says otherwise")
    if "vapour + liquid" not in run(*program, "flash", "--z", "methane=.7,n-butane=.3", "-T", "280 K", "-P", "30 atm",
                              cwd=scratch):
        sys.exit("kestrune finds no two phases")
    for file in [*prefix.glob("bin/*.dll"), *prefix.glob("bin/*.exe")]:
        resource = "ProductVersion\0".encode("utf-16-le"), f"{version}\0".encode("utf-16-le")
        if not all(text in file.read_bytes() for text in resource):
            sys.exit(f"{file} has no version resource of {version}")
    no_trace_of(root, prefix)
    no_dead_links(documents)
    for name in ("LICENSE", "CHANGELOG.md", "docs/hosts.md", "data/NOTICE.md", "bindings/exports.toml",
                 "bindings/python/kestrune/_exports.py"):
        if platform != "linux" or name != "LICENSE" or not (documents / "copyright").exists():
            if not (documents / name).exists():
                sys.exit(f"{name} is missing in {documents}")
    print(f"{prefix}: Kestrune {version} works")


if __name__ == "__main__":
    main(sys.argv)
