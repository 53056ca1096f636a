"""Measures rows: all columns of a row are made ready, then take turns for some rounds."""

import concurrent.futures
import sys
import time
from typing import NamedTuple

from columns import AGAIN, COLUMNS, OWN
from programs import Program


class Effort(NamedTuple):
    rounds: int
    seconds: float  # of one measurement of one column
    warm_up: float  # of processor time, before the first
    large_warm_up: float  # the same, from SPACIOUS elements on
    patience: float  # seconds after which a row begins no further round, once it has FEWEST_ROUNDS

    def warm_up_for(self, size):
        return self.large_warm_up if size >= SPACIOUS else self.warm_up


QUICK = Effort(rounds=5, seconds=0.004, warm_up=0.08, large_warm_up=0.08, patience=20)
FULL = Effort(rounds=9, seconds=0.01, warm_up=0.12, large_warm_up=1.2, patience=6)

# What is so large makes a collected heap grow for ten to thirty runs. Until it has its size, a run mostly waits for
# memory that the system, and the host of a virtual machine, has to give first.
SPACIOUS = 1_000_000

# What quartiles can be taken of.
FEWEST_ROUNDS = 3

# Making a row of ten million ready in all programs takes so much memory at once.
LARGE = 10_000_000
MEMORY_FOR_LARGE = 16 << 30


def available_memory():
    with open("/proc/meminfo", encoding="ascii") as lines:
        for line in lines:
            if line.startswith("MemAvailable:"):
                return int(line.split()[1]) * 1024
    return 0


def columns_of(peers):
    return [column for column in COLUMNS if column.program == "vorn" or column.program in peers]


def known_rows(columns):
    """By program, the rows that it knows."""
    known = {}
    for name in {column.program for column in columns}:
        with Program(name) as program:
            known[name] = program.rows()
    return known


def undescribed_rows(known, table):
    """Rows that programs know and the table does not, which would be measured by nobody."""
    described = {(workload.name, kind) for workload in table for kind in workload.kinds}
    return sorted(" ".join((name, *row)) for name, rows in known.items() for row in rows if row[1:] not in described)


def measure_row(running, workload, kind, size, effort):
    """The row of one size: {"samples": ns by title, "checksums": by title}. `running` has a program for each title."""
    warm_up = effort.warm_up_for(size)

    def make_ready(title):
        form, program = running[title]
        return title, program.ask("ready", "open", form, workload.name, kind, size, effort.seconds, warm_up)[0]

    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
        checksums = dict(pool.map(make_ready, running))
    titles = list(running)
    samples = {title: [] for title in titles}
    end = time.monotonic() + effort.patience
    for turn in range(effort.rounds):
        if turn >= FEWEST_ROUNDS and time.monotonic() >= end:
            break
        # Each round begins with another column, so that none always follows the same one.
        first = turn * 5 % len(titles)
        for title in titles[first:] + titles[:first]:
            samples[title].append(float(running[title][1].ask("time", "run")[0]))
    for _, program in running.values():
        program.ask("closed", "close")
    return {"workload": workload.name, "kind": kind, "n": size, "samples": samples, "checksums": checksums}


def start_columns(columns, known, workload, kind):
    """A program of its own for each column that has the row, so that none sees the loops and the garbage of another;
    and one more of our first form."""
    running = {}
    for column in columns:
        if (column.form, workload.name, kind) in known[column.program]:
            running[column.title] = (column.form, Program(column.program))
    own = next((column for column in columns if column.family == OWN and column.title in running), None)
    if own is not None:
        running[AGAIN] = (own.form, Program(own.program))
    return running


def sizes_of(workload, kind, quick):
    sizes = workload.quick_sizes if quick else workload.sizes
    # Some programs take minutes to make ten million texts.
    if kind == "String" or available_memory() < MEMORY_FOR_LARGE:
        return [size for size in sizes if size < LARGE]
    return sizes


def measure_all(columns, known, workloads, effort, quick):
    rows = []
    for workload in workloads:
        for kind in workload.kinds:
            start = time.monotonic()
            running = start_columns(columns, known, workload, kind)
            try:
                for size in sizes_of(workload, kind, quick):
                    rows.append(measure_row(running, workload, kind, size, effort))
            finally:
                for _, program in running.values():
                    program.stop()
            taken = time.monotonic() - start
            print(f"  {workload.name} {kind}: {len(running)} columns, {taken:.1f} s", file=sys.stderr)
    return rows


def mismatches(rows):
    """Rows whose programs did not do the same work."""
    found = []
    for row in rows:
        if len(set(row["checksums"].values())) > 1:
            found.append(f"{row['workload']} {row['kind']} {row['n']}: {row['checksums']}")
    return found
