"""A million flashes of the Python package against the same loop in C++.

    cmake --build build/native --target kestrune_arrays native_loop
    KESTRUNE_LIBRARIES=build/native/bin PYTHONPATH=python python3 python/bench/bench_states.py [STATES [GAS PHASES]]

States: 150 to 350 K and 1 to 150 bar, at random with a fixed seed, of the two gases of bench/README.md. Both run in
turn, three times, and the best of each counts: processor time, which other work on the machine disturbs little, and the
clock. The rate per thread is that of the processor time. Both must find the same sum of vapour fractions.
"""

import struct
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import kestrune
import numpy as np
from kestrune import _native

GASES = {
    "lean": "methane=0.943,ethane=0.027,propane=0.0074,n-butane=0.0049,n-pentane=0.0027,n-hexane=0.001,nitrogen=0.014",
    "rich": "methane=0.70,ethane=0.09,propane=0.06,isobutane=0.015,n-butane=0.025,isopentane=0.01,n-pentane=0.01,"
    "n-hexane=0.01,nitrogen=0.03,carbon dioxide=0.05",
}


def native(text: str, phases: int, file: Path) -> tuple[float, float, float]:
    folder = _native.library_folder()
    command = [folder / "native_loop", folder / "libKVGasThermo.so", text, str(phases), file]
    processor, clock, total = subprocess.run(command, check=True, capture_output=True, text=True).stdout.split()
    return float(processor), float(clock), float(total)


def python(
    mixture: kestrune.Mixture, T: np.ndarray, P: np.ndarray, phases: int, threads: int
) -> tuple[float, float, float]:
    clock, processor = time.perf_counter(), time.process_time()
    state = mixture.flash(T, P, phases=phases, threads=threads)
    return time.process_time() - processor, time.perf_counter() - clock, float(np.sum(state.beta))


def main() -> None:
    count = int(sys.argv[1]) if len(sys.argv) > 1 else 1_000_000
    random = np.random.default_rng(20)
    T, P = random.uniform(150.0, 350.0, count), random.uniform(1e5, 150e5, count)
    print(f"{count} states, {_native.processors()} processors; us per state, best of 3")
    print("| gas | phases | C++ loop | threads=1 | rate per thread | threads=2 | rate per thread | 2 threads, clock |")
    print("| --- | --- | --- | --- | --- | --- | --- | --- |")
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder) / "states.bin"
        file.write_bytes(struct.pack("d", count) + T.tobytes() + P.tobytes())
        for name, text in GASES.items():
            mixture = kestrune.Mixture(text)
            for phases in (2, 3):
                if sys.argv[2:] not in ([], [name, str(phases)]):
                    continue
                runs = [
                    (native(text, phases, file), *(python(mixture, T, P, phases, threads) for threads in (1, 2)))
                    for _ in range(3)
                ]
                sums = {round(run[2], 4) for trio in runs for run in trio}
                assert len(sums) == 1, sums
                loop, one, two = (min(trio[k][0] for trio in runs) * 1e6 / count for k in range(3))
                clock = [min(trio[k][1] for trio in runs) for k in (0, 2)]
                print(
                    f"| {name} | {phases} | {loop:.2f} | {one:.2f} | {100 * loop / one:.1f} % | {two:.2f} | "
                    f"{100 * loop / two:.1f} % | {clock[0] / clock[1]:.2f} times the loop |"
                )


if __name__ == "__main__":
    main()
