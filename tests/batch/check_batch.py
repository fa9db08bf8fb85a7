"""kestrune batch as a process: check_batch.py PROGRAM PYTHON_PACKAGE [MPIRUN KESTRUNE_MPI].

Runs that are killed, run out of disk or find their files damaged end with the bytes of an undisturbed run, in any number
of threads and processes; rows have the numbers and phases of kestrune flash; the binary form has those of CSV. With
--wine PROGRAM... a short run of a Windows program.
"""

import array
import csv
import importlib.util
import json
import os
import random
import resource
import signal
import struct
import subprocess
import sys
import tempfile
import time
from pathlib import Path

WINE = sys.argv[1] == "--wine"
PROGRAM = sys.argv[2:] if WINE else sys.argv[1:2]
PACKAGE, MPI = Path(sys.argv[2]), sys.argv[3:]
GAS = "methane=0.85,ethane=0.08,propane=0.04,nC4=0.02,CO2=0.01"
COLUMNS = "T,P,phases,beta,density,status,text"
random.seed(7)


def run(*arguments, code=0, words=(), program=PROGRAM, **how):
    done = subprocess.run([*program, "batch", *map(str, arguments)], capture_output=True, text=True, **how)
    assert code is None or done.returncode == code, f"{arguments}: exit code {done.returncode}\n{done.stderr}"
    for word in words:
        assert word in done.stderr, f"{arguments}: no {word!r} in {done.stderr}"
    return done


def job(states, output, *more):
    return ["--z", GAS, "--phases", "2", "--states", states, "--chunk", 64, "--columns", COLUMNS, "-o", output, *more]


def start(arguments, program=None):
    return subprocess.Popen([*(program or PROGRAM), "batch", *map(str, arguments)], stderr=subprocess.PIPE, text=True)


def wait_for_lines(journal, count):
    for _ in range(20000):
        if journal.exists() and journal.read_bytes().count(b"\n") >= count:
            return
        time.sleep(0.001)
    raise AssertionError(f"{journal} does not grow")


def check_kills(states, output, reference):
    """kill -9 at random times until a run gets through."""
    kills = 0
    for attempt in range(1000):
        process = start(job(states, output, "--resume", "--threads", 1 + attempt % 3))
        try:
            process.communicate(timeout=random.uniform(0.02, 0.1) if kills < 6 else 600)
            break
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
            kills += 1
    assert process.returncode == 1 and kills >= 3, (process.returncode, kills)  # one row is no state
    assert output.read_bytes() == reference
    os.utime(output, (1, 1))
    run(*job(states, output, "--resume"), code=1)
    assert output.read_bytes() == reference and output.stat().st_mtime == 1  # nothing to do


def check_two_at_once(states, output, reference):
    """The second of two runs on one file goes away."""
    Path(f"{output}.journal").unlink()
    output.unlink()
    first = start(job(states, output, "--threads", 1))
    wait_for_lines(Path(f"{output}.journal"), 14)
    first.send_signal(signal.SIGSTOP)
    assert output.stat().st_size < len(reference), "it was ready before it was stopped"
    for how in ("--resume", "--overwrite"):
        run(*job(states, output, how), code=2, words=[f"{output}", "in use"])
    first.send_signal(signal.SIGCONT)
    first.communicate()
    assert first.returncode == 1 and output.read_bytes() == reference


def check_added_rows(states, output, reference):
    """Rows behind a last chunk that was not full; an output that nothing happens to."""
    text, old = states.read_text(), output.with_name("old.csv")
    part = output.with_name("part.csv")
    part.write_text(text[: text.index("\n", len(text) // 2) + 1])
    run(*job(part, old), code=None)
    part.write_text(text)
    run(*job(part, old, "--resume"), code=1)
    assert old.read_bytes() == reference
    journal = Path(f"{old}.journal")
    before = journal.read_bytes()
    part.write_text(text.replace("P[bar]", "P[bear]"))
    run(*job(part, old, "--overwrite"), code=2, words=["bear"])
    assert old.read_bytes() == reference and journal.read_bytes() == before
    (folder := output.with_name("folder")).mkdir()
    run(*job(states, folder), code=2, words=["is a folder"])
    run(*job(folder / "nothing", folder / "new.csv"), code=2, words=["cannot read"])
    assert not list(folder.iterdir()) and not Path(f"{folder}.journal").exists()


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
        shown = subprocess.run([*PROGRAM, "flash", "--z", z, "-H", f"{H} kJ/kg", "-P", f"{P} bar", "--phases", "3",
                                "--print", "T,beta,S,density,M"], capture_output=True, text=True, check=True).stdout.split()
        T, beta, S, density, M = map(float, shown)
        wanted = {"temperature_K": T, "vapour_fraction": beta, "entropy_kJ_kg_K": S / M, "density_kg_m3": density}
        for name, value in wanted.items():
            assert abs(float(row[name]) - value) <= 1e-8 * abs(value), (name, row, value)
    run(*tables, code=2, words=["nitric oxide"])
    run(*tables, "--ignore", "no", "--format", "binary", "-o", folder / "out.kst")
    check_table(read_binary(folder / "out.kst"), rows)
    spec = importlib.util.spec_from_file_location("batch", PACKAGE / "batch.py")
    reader = importlib.util.module_from_spec(spec)
    try:
        spec.loader.exec_module(reader)
    except ModuleNotFoundError:
        return print("no numpy: kestrune.batch was not tried")
    check_table(reader.read(folder / "out.kst"), rows)


def read_binary(path):
    """The binary form as docs/batch.md has it, by the standard library."""
    with open(path, "rb") as file:
        magic, length = struct.unpack("<8sQ", file.read(16))
        assert magic == b"KSTRBAT1" and length % 8 == 0
        columns = json.loads(file.read(length))["columns"]
        table = {c["name"]: [] for c in columns}
        while head := file.read(8):
            (rows,) = struct.unpack("<Q", head)
            for c in columns:
                part = file.read(8 * rows)
                letters = (part[k : k + 8].rstrip(b"\0") for k in range(0, len(part), 8))
                table[c["name"]] += letters if c["type"] == "S8" else array.array("d" if c["type"] == "f8" else "q", part)
    return table


def check_table(table, rows):
    for k, row in enumerate(rows):
        for name, value in row.items():
            if name == "phases":
                assert table[name][k].decode() == value
            elif name != "no":
                assert (table[name][k] == float(value)) if value else table[name][k] != table[name][k], (name, k)


def check_phases():
    """Letters and columns are those of the phases that kestrune flash finds, in the same digits."""
    places = {"vapour": "V vapour", "dense": "D dense", "liquid": "L liquid", "hydrocarbon liquid": "L liquid",
              "aqueous liquid": "W aqueous", "free water": "W aqueous"}
    wet = "methane=0.6,nC8=0.2,water=0.2"
    for more in (["--z", GAS, "--phases", 2], ["--z", wet, "--phases", 3], ["--z", wet, "--phases", 3, "--free-water"]):
        more = [*map(str, more), "-T", "-60,20,250", "-P", "5,60,800"]
        shown = subprocess.run([*PROGRAM, "flash", *more, "--format", "csv"], capture_output=True, text=True).stdout
        states = {}
        for phase in csv.DictReader(shown.splitlines()):
            states.setdefault(phase["state"], []).append(phase)
        columns = "phases,status,text," + ",".join(f"{p}.fraction,{p}.H,{p}.density" for p in ("vapour", "dense", "liquid", "aqueous"))
        rows = csv.DictReader(run(*more, "--columns", columns, code=None).stdout.splitlines())
        for row, phases in zip(rows, states.values(), strict=True):
            found = [(*places[p["phase"]].split(), p) for p in phases]
            assert row["phases"] == "".join(letter for letter, _, _ in found), (row, phases)
            for _, place, p in found:
                for name, key in (("fraction", "mole_fraction"), ("enthalpy_kJ_kg", "enthalpy_kJ_kg"), ("density_kg_m3", "density_kg_m3")):
                    value, wanted = row[f"{place}.{name}"], p[key]
                    assert value == wanted or abs(float(value) - float(wanted)) <= 1e-12 * abs(float(wanted)), (row, p, name)
                    assert value or (row["status"] == "9104" and "free water" in row["status_text"])


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
    process = start(job(states, output, "--overwrite"), [*mpirun, "-n", "3", MPI[1]])
    wait_for_lines(journal, 20)
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
            ('tag,"a,b",T[C],P[bar]', '"6"" line",7,20,40', [*mixture, "--keep", 'tag,"a,b"', "--columns", "T"], '"6"" line",7,20'),
            ("sep=;\nT[C];P[bar]", "20,5;40\r", [*mixture, "--columns", "T,P"], "20.5,40"),
            ("T[C],P[bar]", "20,40\n" + "7" * 3000000 + ",1\n60,40", [*mixture, "--columns", "T,status"], "20,0\n,9102\n60,0"),
            ("tag,T[C],P[bar]", "a,20,40", ["--compositions", gases, "--keep", "tag,states.tag", "--columns", "T"], None),
            ("T[C],P[mPa]", "20,40", mixture, None),
            ("\tT[C]\tP[bar]\tmethane", "1\t20\t40\t100", ["--ignore", ",", "--columns", "T"], "20"),
            ("H[J/mol],P[bar],methane,nC5", "-5000,40,90,10\n-5000,40,0,0", ["--columns", "given,status"],
             "-230.9,0\n,9006")):
        table.write_text(f"{heading}\n{rows}\n")
        whole = "methane" in heading
        done = run("--table" if whole else "--states", table, *options, code=2 if expected is None else None)
        if expected is None:
            continue
        lines = done.stdout.split("\n", 1)[1].strip("\n").split("\n")
        if heading.startswith("H"):
            lines[0] = f"{float(lines[0].split(',')[0]):.1f},{lines[0].split(',')[1]}"
        assert lines == expected.split("\n"), (heading, lines)


def check_wine(folder):
    """The Windows program: its bytes, the lock, a resume after a kill."""
    states, output, binary = folder / "states.csv", folder / "out.csv", folder / "out.kst"
    rows = [f"{random.uniform(-100, 50):.3f},{random.uniform(1, 120):.3f}" for _ in range(60000)]
    states.write_bytes(("T[C],P[bar]\r\n" + "\r\n".join(rows)).encode())
    first = start(job(states, output, "--threads", 1))
    wait_for_lines(Path(f"{output}.journal"), 40)
    first.send_signal(signal.SIGSTOP)
    run(*job(states, output, "--resume"), code=2, words=["in use"])
    first.kill()
    first.communicate()
    run(*job(states, output, "--resume"), words=["going on"])
    plain = subprocess.run([*PROGRAM, "batch", *map(str, job(states, output)[:-2])], capture_output=True, check=True).stdout
    assert output.read_bytes() == plain and plain.count(b"\n") == 60001 and b"\r" not in plain
    run(*[c for c in job(states, binary, "--format", "binary") if c not in ("--columns", COLUMNS)])
    assert [round(P, 3) for P in read_binary(binary)["pressure_bar"]] == [float(row.split(",")[1]) for row in rows]


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        if WINE:
            return check_wine(folder)
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
        check_two_at_once(states, output, reference)
        check_added_rows(states, output, reference)
        check_damage(states, output, reference)
        check_refusals(states, output, reference)
        check_full_disk(states, output, reference)
        check_numbers(folder)
        check_phases()
        check_reading(folder)
        if MPI:
            check_mpi(states, output, reference, folder)


if __name__ == "__main__":
    main()
