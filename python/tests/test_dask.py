"""States over the workers of dask.distributed."""

import os
import signal
import threading
import time

import kestrune
import numpy as np
import pytest

distributed = pytest.importorskip("distributed")
pandas = pytest.importorskip("pandas")


def test_a_lost_worker_costs_no_row():
    from kestrune.dask import flash, flash_table

    gas = kestrune.Mixture({"methane": 0.8, "ethane": 0.1, "propane": 0.06, "nC6": 0.04})
    random = np.random.default_rng(5)
    table = pandas.DataFrame({"T": random.uniform(150.0, 330.0, 60000), "P": random.uniform(1e5, 120e5, 60000)})
    table.index = table.index[::-1]
    local = gas.flash(table["T"].to_numpy(), table["P"].to_numpy()).to_frame(["density"]).set_index(table.index)
    with distributed.LocalCluster(
        n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None
    ) as cluster, distributed.Client(cluster) as client:
        victims = client.run(os.getpid)
        killed = []

        def kill():
            while not any(client.processing().values()):
                time.sleep(0.005)
            os.kill(next(iter(victims.values())), signal.SIGKILL)
            killed.append(time.monotonic())

        killer = threading.Thread(target=kill)
        killer.start()
        far = flash_table(client, gas, table, ["density"], rows=500)
        ended = time.monotonic()
        killer.join()
        assert killed and killed[0] < ended
        pandas.testing.assert_frame_equal(far, local, check_exact=True)
        with pytest.raises(ValueError, match="for a single one"):
            flash(client, gas, 300.0, 1e5)
        with pytest.raises(ValueError, match="not negative"):
            flash(client, gas, [300.0], 1e5, z=[[-1.0, 1.0, 1.0, 1.0]])
        with pytest.raises(ValueError, match="a flash is given"):
            flash_table(client, gas, table[["T"]])
