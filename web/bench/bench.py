"""Times of the native library for what bench.mjs times, in one thread, microseconds of processor time by the lowest of some passes."""
import time

import kestrune
import numpy as np

RICH = {"methane": 0.7, "ethane": 0.09, "propane": 0.06, "isobutane": 0.015, "n-butane": 0.025, "isopentane": 0.01,
        "n-pentane": 0.01, "n-hexane": 0.01, "nitrogen": 0.03, "carbon dioxide": 0.05}


def timed(what, passes, states, body):
    best = float("inf")
    for _ in range(passes):
        begin = time.process_time()
        body()
        best = min(best, time.process_time() - begin)
    print(f"native  {what:<34} {1e6 * best / states:9.2f} us")


gas = kestrune.Mixture(RICH)
T, P = (a.ravel() for a in np.meshgrid(150.0 + 2.0 * np.arange(101), 1e5 * np.arange(1, 151), indexing="ij"))
timed("flash of the rich gas, 2 phases", 9, T.size, lambda: gas.flash(T, P, phases=2, threads=1))
timed("flash of the rich gas, 3 phases", 3, T.size, lambda: gas.flash(T, P, threads=1))
timed("envelope of the rich gas, as traced", 50, 1, gas.envelope)
