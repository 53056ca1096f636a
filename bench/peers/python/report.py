"""The report's program for CPython and PyPy. The requests that it answers stand in bench/report/server.cpp."""

import gc
import sys
import time

try:
    import tracemalloc
except ImportError:  # PyPy has its collector to ask
    tracemalloc = None

import lists
import maps

FORM = "lists"
ROWS = {**lists.ROWS, **maps.ROWS}


def seconds_of_runs(row, repetitions):
    clock = time.perf_counter if row.on_the_wall else time.process_time
    run, prepare = row.run, row.prepare
    if prepare is None:
        start = clock()
        for _ in range(repetitions):
            run()
        return clock() - start
    total = 0.0
    for _ in range(repetitions):
        prepare()
        start = clock()
        run()
        total += clock() - start
    return total


def bytes_in_use():
    gc.collect()
    if tracemalloc is not None:
        return tracemalloc.get_traced_memory()[0]
    return gc.get_stats()._s.total_gc_memory  # the public fields are rounded texts


def run_once(row):
    if row.prepare is not None:
        row.prepare()
    return row.run()


class Server:
    def __init__(self):
        self.row = None
        self.repetitions = 1
        self.to_build = self.kept = []

    def open(self, form, workload, kind, n, seconds, warm_up):
        self.row = ROWS[workload][1](kind, int(n))
        checksum = self.row.checksum(run_once(self.row))
        repetitions, warm = 1, 0.0
        while True:
            taken = seconds_of_runs(self.row, repetitions)
            warm += taken
            if taken >= float(seconds):
                if warm >= float(warm_up):
                    break
                if taken < 2 * float(seconds):
                    continue
            times = float(seconds) * 1.1 / taken if taken > 0 else 10
            repetitions = int(repetitions * min(10, times)) + 1
        self.repetitions = repetitions
        return f"ready\t{checksum}"

    def run(self):
        seconds = seconds_of_runs(self.row, self.repetitions)
        return f"time\t{seconds * 1e9 / self.repetitions / self.row.operations:.6g}"

    def memory(self, form, workload, kind, count, n):
        self.to_build = [ROWS[workload][1](kind, int(n)) for _ in range(int(count))]
        if tracemalloc is not None:
            tracemalloc.start()
        return "prepared"

    def build(self):
        """What is built stays."""
        before = bytes_in_use()
        self.kept = [row.run() for row in self.to_build]
        return f"built\t{bytes_in_use() - before}"

    def close(self):
        self.row = None
        gc.collect()
        return "closed"


def main():
    server = Server()
    for line in sys.stdin:
        words = line.rstrip("\n").split("\t")
        if words[0] == "rows":
            for workload, (kinds, _) in ROWS.items():
                for kind in kinds:
                    print(f"row\t{FORM}\t{workload}\t{kind}")
            answer = "end"
        elif words[0] == "allocated":
            answer = "allocated\t-\t-"
        else:
            answer = getattr(server, words[0])(*words[1:])
        print(answer, flush=True)


main()
