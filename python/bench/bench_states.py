"""A million flashes of the Python package against the same loop in C++.

    cmake --build build/native --target kestrune_arrays native_loop
    KESTRUNE_LIBRARIES=build/native/bin PYTHONPATH=python python3 python/bench/bench_states.py [STATES [REPEATS]]

States: 150 to 350 K and 1 to 150 bar, at random with a fixed seed, of the two gases of bench/README.md. The loop in
C++ and the package run in turn, again and again, and processor time counts. Other work on the machine slows both of a
turn, so that the rate is told as the median of the ratios of the turns, with the lowest and the highest one. Both must
find the same sum of vapour fractions.
"""

import statistics
import struct
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import kestrune
import numpy as np
from kestrune import _native
from kestrune._types import Array

GASES = {
    "lean": "methane=0.943,ethane=0.027,propane=0.0074,n-butane=0.0049,n-pentane=0.0027,n-hexane=0.001,nitrogen=0.014",
    "rich": "methane=0.70,ethane=0.09,propane=0.06,isobutane=0.015,n-butane=0.025,isopentane=0.01,n-pentane=0.01,"
    "n-hexane=0.01,nitrogen=0.03,carbon dioxide=0.05",
}


def native(text: str, phases: int, file: Path) -> tuple[float, float]:
    folder = _native.library_folder()
    command = [folder / "native_loop", folder / "libKVGasThermo.so", text, str(phases), file]
    processor, _, total = subprocess.run(command, check=True, capture_output=True, text=True).stdout.split()
    return float(processor), float(total)


def python(mixture: kestrune.Mixture, T: Array, P: Array, phases: int, threads: int) -> tuple[float, float]:
    began = time.process_time()
    state = mixture.flash(T, P, phases=phases, threads=threads)
    return time.process_time() - began, float(np.sum(state.beta))


def main() -> None:
    count, repeats = map(int, [*sys.argv[1:], *("1000000", "7")[len(sys.argv) - 1 :]])
    random = np.random.default_rng(20)
    T, P = random.uniform(150.0, 350.0, count), random.uniform(1e5, 150e5, count)
    print(f"{count} states, {_native.processors()} processors, {repeats} turns; processor time, medians")
    print("| gas | phases | C++ loop, us per state | threads=1 | threads=2, both together |")
    print("| --- | --- | --- | --- | --- |")
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder) / "states.bin"
        file.write_bytes(struct.pack("d", count) + T.tobytes() + P.tobytes())
        for name, text in GASES.items():
            mixture = kestrune.Mixture(text)
            for phases in (2, 3):
                turns = [
                    (native(text, phases, file), *(python(mixture, T, P, phases, threads) for threads in (1, 2)))
                    for _ in range(repeats)
                ]
                sums = {round(run[1], 4) for turn in turns for run in turn}
                assert len(sums) == 1, sums
                loop = statistics.median(turn[0][0] for turn in turns) * 1e6 / count
                rates = [sorted(100.0 * turn[0][0] / turn[k][0] for turn in turns) for k in (1, 2)]
                shown = " | ".join(f"{statistics.median(r):.0f} % ({r[0]:.0f} to {r[-1]:.0f})" for r in rates)
                print(f"| {name} | {phases} | {loop:.2f} | {shown} |", flush=True)


if __name__ == "__main__":
    main()
