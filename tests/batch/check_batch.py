"""kestrune batch as a process: check_batch.py PROGRAM PYTHON_PACKAGE [MPIRUN KESTRUNE_MPI].

Runs that are killed, run out of disk or find their files damaged end with the bytes of an undisturbed run, in any number
of threads and processes; rows have the numbers of kestrune flash; the binary form has those of CSV.
"""

import csv
import importlib.util
import random
import resource
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

PROGRAM, PACKAGE, MPI = sys.argv[1], Path(sys.argv[2]), sys.argv[3:]
GAS = "methane=0.85,ethane=0.08,propane=0.04,nC4=0.02,CO2=0.01"
COLUMNS = "T,P,phases,beta,density,status,text"
random.seed(7)


def run(*arguments, code=0, words=(), program=(PROGRAM,), **how):
    done = subprocess.run([*program, "batch", *map(str, arguments)], capture_output=True, text=True, **how)
    assert code is None or done.returncode == code, f"{arguments}: exit code {done.returncode}\n{done.stderr}"
    for word in words:
        assert word in done.stderr, f"{arguments}: no {word!r} in {done.stderr}"
    return done


def job(states, output, *more):
    return ["--z", GAS, "--phases", "2", "--states", states, "--chunk", 64, "--columns", COLUMNS, "-o", output, *more]


def check_kills(states, output, reference):
    """kill -9 at random times until a run gets through."""
    kills = 0
    for attempt in range(1000):
        process = subprocess.Popen([PROGRAM, "batch", *map(str, job(states, output, "--resume", "--threads", 1 + attempt % 3))],
                                   stderr=subprocess.PIPE)
        try:
            process.communicate(timeout=random.uniform(0.02, 0.1) if kills < 6 else 600)
            break
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
            kills += 1
    assert process.returncode == 1 and kills >= 3, (process.returncode, kills)  # one row is no state
    assert output.read_bytes() == reference
    run(*job(states, output, "--resume"), code=1)
    assert output.read_bytes() == reference


def check_damage(states, output, reference):
    """Parts that were not on the disk when the machine went down."""
    journal = Path(f"{output}.journal")
    whole = journal.read_bytes()
    head = whole.index(b"\n\n") + 2
    for bytes_of_output, bytes_of_journal in ((0.6, 1.0), (1.0, 0.5), (0.0, 1.0), (0.3, 0.7)):
        output.write_bytes(reference[: int(bytes_of_output * len(reference))] + b"\0" * 100)
        journal.write_bytes(whole[: head + int(bytes_of_journal * (len(whole) - head))])
        run(*job(states, output, "--resume"), code=1)
        assert output.read_bytes() == reference
    broken = bytearray(reference)
    broken[len(broken) // 2] ^= 1
    output.write_bytes(broken)
    run(*job(states, output, "--resume"), code=1)
    assert output.read_bytes() == reference


def check_refusals(states, output, reference):
    text = states.read_text()
    states.write_text(text.replace("\n1", "\n2", 1))
    run(*job(states, output, "--resume"), code=2, words=["begun with other rows", "--overwrite"])
    states.write_text(text)
    run(*job(states, output, "--resume", "--units", "si"), code=2, words=["columns"])
    run(*job(states, output), code=2, words=["exists", "--resume"])
    other = output.with_name("other.csv")
    other.write_text("precious")
    run(*job(states, other, "--resume"), code=2, words=["without a journal"])
    assert other.read_text() == "precious" and output.read_bytes() == reference


def check_full_disk(states, output, reference):
    def limited():
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (len(reference) // 2, len(reference) // 2))

    run(*job(states, output, "--overwrite"), code=2, words=["could not be written", "rows are complete", "--resume"],
        preexec_fn=limited)
    run(*job(states, output, "--resume"), code=1)
    assert output.read_bytes() == reference


def check_numbers(folder):
    """Rows against kestrune flash, in which an amount of zero is left out; the binary form against CSV."""
    gases = [{"methane": 90, "ethane": 10, "water": 0, "nC5": 0}, {"methane": 70, "ethane": 0, "water": 10, "nC5": 20}]
    (folder / "gases.csv").write_text(
        "no;methane mol%;ethane;water;nC5\n" + "".join(f"{k};{';'.join(map(str, g.values()))}\n" for k, g in enumerate(gases)))
    (folder / "pairs.csv").write_text("H[kJ/kg],P[bar]\n-100,20\n-20,5\n")
    tables = ["--compositions", folder / "gases.csv", "--states", folder / "pairs.csv", "--units", "si", "--energy", "kJ/kg",
              "--columns", "T,beta,S,density,phases,vapour.Cp,liquid.x"]
    rows = list(csv.DictReader(run(*tables, "--keep", "no").stdout.splitlines()))
    assert [r["no"] for r in rows] == ["0", "0", "1", "1"]
    for row, (gas, (H, P)) in zip(rows, [(g, s) for g in gases for s in ((-100, 20), (-20, 5))]):
        z = ",".join(f"{name}={amount}" for name, amount in gas.items() if amount)
        shown = subprocess.run([PROGRAM, "flash", "--z", z, "-H", f"{H} kJ/kg", "-P", f"{P} bar", "--phases", "3",
                                "--print", "T,beta,S,density,M"], capture_output=True, text=True, check=True).stdout.split()
        T, beta, S, density, M = map(float, shown)
        wanted = {"temperature_K": T, "vapour_fraction": beta, "entropy_kJ_kg_K": S / M, "density_kg_m3": density}
        for name, value in wanted.items():
            assert abs(float(row[name]) - value) <= 1e-8 * abs(value), (name, row, value)
    run(*tables, code=2, words=["nitric oxide"])
    run(*tables, "--ignore", "no", "--format", "binary", "-o", folder / "out.kst")
    spec = importlib.util.spec_from_file_location("batch", PACKAGE / "batch.py")
    reader = importlib.util.module_from_spec(spec)
    try:
        spec.loader.exec_module(reader)
    except ModuleNotFoundError:
        print("no numpy: the binary form was not read")
        return
    table = reader.read(folder / "out.kst")
    for k, row in enumerate(rows):
        for name, value in row.items():
            if name == "phases":
                assert table[name][k].decode() == value
            elif name != "no":
                assert (table[name][k] == float(value)) if value else table[name][k] != table[name][k], (name, k)


def check_mpi(states, output, reference, folder):
    mpirun = [MPI[0], "--oversubscribe", "--allow-run-as-root"]
    for count, chunk in ((1, 64), (2, 64), (3, 2000), (2, 7000)):  # short messages, and such that a send waits for its receiver
        command = [chunk if a == 64 else a for a in job(states, output, "--overwrite")]
        run(*command, code=1, program=[*mpirun, "-n", str(count), MPI[1]], timeout=300)
        assert output.read_bytes() == reference, count
    run(*job(states, output, "--overwrite", "--keep", "X"), code=2, words=["--keep X"], program=[*mpirun, "-n", "2", MPI[1]])
    # A process that dies ends the job, and the next one goes on.
    journal = Path(f"{output}.journal")
    journal.unlink()
    process = subprocess.Popen([*mpirun, "-n", "3", MPI[1], "batch", *map(str, job(states, output, "--overwrite"))],
                               stderr=subprocess.PIPE, text=True)
    while process.poll() is None and (not journal.exists() or journal.read_bytes().count(b"\n") < 20):
        time.sleep(0.005)
    ranks = subprocess.run(["pgrep", "-P", str(process.pid)], capture_output=True, text=True).stdout.split()
    subprocess.run(["kill", "-9", ranks[-1]], check=True)
    message = process.communicate(timeout=60)[1]
    assert process.returncode != 0 and "Killed" in message, message
    run(*job(states, output, "--resume"), code=1)
    assert output.read_bytes() == reference


def check_reading(folder):
    """Tables as people have them: heading, rows, more options, what comes out below the heading."""
    table, gases = folder / "table.csv", folder / "gases.csv"
    gases.write_text("methane,nC5\n9,1\n1,0\n")
    mixture = ["--z", "methane=0.9,nC5=0.1"]
    for heading, rows, options, expected in (
            ("beta,P[bar]", "1.5,40\n-0.1,40", [*mixture, "--columns", "phases,status"], ",9009\n,9009"),
            ("T[C],P[bar]", "20,40\n#N/A,40\n# a comment", [*mixture, "--columns", "phases,status"], "VL,0\n,9101"),
            ("tag,T[C],P[bar],note", '6" line,20,40,8" x', [*mixture, "--keep", "tag", "--ignore", "note", "--columns", "T,P"],
             '"6"" line",20,40'),
            ("T[C],P[bar],methane,nC5", "20,40,90,10", ["--keep", "nC5", "--columns", "phases"], "10,VL"),
            ("T[C],P[bar]", "20,40\n100,40", ["--compositions", gases, "--chunk", 1, "--columns", "phases"], "VL\nV\nV\nV"),
            ("\tT[C]\tP[bar]\tmethane", "1\t20\t40\t100", ["--ignore", ",", "--columns", "T"], "20"),
            ("H[J/mol],P[bar],methane,nC5", "-5000,40,90,10\n-5000,40,0,0", ["--columns", "given,status"],
             "-230.9,0\n,9006")):
        table.write_text(f"{heading}\n{rows}\n")
        whole = "methane" in heading
        done = run("--table" if whole else "--states", table, *options, code=None)
        lines = done.stdout.split("\n", 1)[1].strip("\n").split("\n")
        if heading.startswith("H"):
            lines[0] = f"{float(lines[0].split(',')[0]):.1f},{lines[0].split(',')[1]}"
        assert lines == expected.split("\n"), (heading, lines)


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        states, output = folder / "states.csv", folder / "out.csv"
        rows = [f"{random.uniform(-100, 50):.3f},{random.uniform(1, 120):.3f}" for _ in range(40000)]
        rows[20000] = "cold,10"
        states.write_text("T[C],P[bar]\n" + "\n".join(rows))
        run(*job(states, output, "--threads", 1), code=1, words=["40000 rows, 1 of them"])
        reference = output.read_bytes()
        assert reference.count(b"\n") == 40001 and b"line 20002" in reference
        output.unlink()
        Path(f"{output}.journal").unlink()
        check_kills(states, output, reference)
        check_damage(states, output, reference)
        check_refusals(states, output, reference)
        check_full_disk(states, output, reference)
        check_numbers(folder)
        check_reading(folder)
        if MPI:
            check_mpi(states, output, reference, folder)


if __name__ == "__main__":
    main()
