"""The workloads of the report, as bench/report/workloads.tsv describes them for all programs."""

import pathlib
from typing import NamedTuple

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
TABLE = ROOT / "bench/report/workloads.tsv"


class Workload(NamedTuple):
    name: str
    group: str
    kinds: tuple
    sizes: tuple  # of the full run
    quick_sizes: tuple
    limit: str  # against libraries of C++ and C: "x1.3" for 1.3 times, "5ns" for five nanoseconds more
    what: str


def decades(first, last):
    size = first
    while size <= last:
        yield size
        size *= 10


def parse(text):
    workloads = []
    for line in text.splitlines():
        if not line or line.startswith("#"):
            continue
        name, group, kinds, first, last, quick, limit, what = line.split("\t")
        workloads.append(Workload(
            name, group, tuple(kinds.split(",")), tuple(decades(int(first), int(last))),
            tuple(int(size) for size in quick.split(",")), limit, what))
    return workloads


def load():
    return parse(TABLE.read_text(encoding="utf-8"))
