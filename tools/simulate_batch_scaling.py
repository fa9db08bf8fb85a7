"""How a batch in N processes scales: simulate_batch_scaling.py [--row-us 7.46] [--spread 0.1] [--rows 10000000] ...

Simulates chunk after chunk what kestrune-mpi does: the first process cuts a chunk, sends it, and later receives the result
and writes it; every other process has two chunks at most, so that it calculates while the next one is on its way. One
message at a time passes the first process. The times are those of the machine that is asked about (the ones given here
were measured with the program, docs/batch.md):

  --row-us     microseconds of a row in a worker          --spread   standard deviation of a chunk, a part of its mean
  --in-bytes   of a row of input                          --out-bytes of a row of the result
  --bandwidth  between processes, bytes/s                 --latency-us of a message
  --first-ns   of one row in the first process: it is cut and hashed, its result is hashed and written
  --chunk      rows of a chunk

Prints, for 1 to 1024 processes, rows a second, efficiency (against that many processes alone), and how busy the first
process is with reading, messages and writing.
"""

import argparse
import heapq
import random


def simulate(workers, o):
    """Seconds for all chunks on that many workers, and how long the first process was busy."""
    rng = random.Random(1)
    chunks = -(-o.rows // o.chunk)
    first = 0.5e-9 * o.first_ns
    send = o.chunk * (first + o.in_bytes / o.bandwidth) + o.latency_us * 1e-6
    receive = o.chunk * (first + o.out_bytes / o.bandwidth) + o.latency_us * 1e-6
    mean = o.chunk * o.row_us * 1e-6
    leader, busy = 0.0, 0.0  # when the first process is free, and how long it worked
    free = [0.0] * workers  # when a worker has no more work
    waiting = [(0.0, w) for w in range(workers) for _ in range(2)]  # places for a chunk: since when, whose
    heapq.heapify(waiting)
    finished = []  # when a result is ready, whose
    sent = done = 0
    while done < chunks:
        place = waiting[0][0] if waiting and sent < chunks else float("inf")
        result = finished[0][0] if finished else float("inf")
        if place <= result:
            _, w = heapq.heappop(waiting)
            leader = max(leader, place) + send
            busy += send
            sent += 1
            free[w] = max(free[w], leader) + max(mean * rng.gauss(1.0, o.spread), 0.1 * mean)
            heapq.heappush(finished, (free[w], w))
        else:
            ready, w = heapq.heappop(finished)
            leader = max(leader, ready) + receive
            busy += receive
            done += 1
            heapq.heappush(waiting, (leader, w))
    return leader, busy


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    for name, value in {"row-us": 7.46, "spread": 0.1, "in-bytes": 13, "out-bytes": 27, "bandwidth": 1e9,
                        "latency-us": 50, "first-ns": 41}.items():
        parser.add_argument(f"--{name}", type=float, default=value)
    parser.add_argument("--rows", type=int, default=10_000_000)
    parser.add_argument("--chunk", type=int, default=4096)
    o = parser.parse_args()
    print(f"{'processes':>9} {'rows/s':>12} {'efficiency':>10} {'first busy':>10}")
    workers = 1
    while workers <= 1024:
        seconds, busy = simulate(workers, o)
        rate = o.rows / seconds
        print(f"{workers:9} {rate:12.0f} {rate * o.row_us * 1e-6 / workers:10.1%} {busy / seconds:10.1%}")
        workers *= 2


if __name__ == "__main__":
    main()
