"""Measures memory: what collections take, their peak while they are built, and allocations for an element."""

import concurrent.futures
import sys

from measure import LARGE, MEMORY_FOR_LARGE, available_memory
from programs import COMMANDS, Program

# What is built, and by which workload: the objects and texts in it were there before and do not count.
BUILDERS = (
    ("list of Int", "append", "Int"),
    ("list of Long", "append", "Long"),
    ("list of Double", "append", "Double"),
    ("list of Byte", "append", "Byte"),
    ("list of objects", "append", "Object"),
    ("linked list of objects", "linked-append", "Object"),
    ("map of Int", "map-put", "Int"),
    ("map of String", "map-put", "String"),
    ("set of Int", "set-add", "Int"),
    ("sorted map of Int", "sorted-put", "Int"),
)
QUICK_SIZES = (0, 1, 1_000, 100_000)
FULL_SIZES = (0, 1, 10, 100, 1_000, 10_000, 100_000, 1_000_000)
ELEMENTS = 100_000  # in all collections of one measurement, where it is of more than one

ALLOCATION_SIZE = 1_000
ALLOCATION_GROUPS = ("lists", "texts", "arrays", "maps", "small")


def bytes_of(column, workload, kind, count, size):
    """What `count` collections take, and how much more than before the process took at most."""
    with Program(column.program) as program:
        program.ask("prepared", "memory", column.form, workload, kind, count, size)
        program.forget_peak()
        before = program.status_bytes("VmRSS")
        taken = int(program.ask("built", "build")[0])
        return taken, program.status_bytes("VmHWM") - before


def measure_sizes(columns, known, quick):
    """[{"collection", "n", "bytes": of one collection, by title}]. Bytes are not time: two programs run at once."""
    rows = []
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
        for collection, workload, kind in BUILDERS:
            print(f"  memory of a {collection}", file=sys.stderr)
            own = [column for column in columns if (column.form, workload, kind) in known[column.program]]
            for size in QUICK_SIZES if quick else FULL_SIZES:
                count = max(1, ELEMENTS // max(size, 10))
                taken = pool.map(lambda column: bytes_of(column, workload, kind, count, size)[0] / count, own)
                rows.append({"collection": collection, "n": size,
                             "bytes": {column.title: max(0, each) for column, each in zip(own, taken)}})
    return rows


def measure_peaks(columns, known, quick):
    """The same for the most that a process took more than before while it built one collection of ten million."""
    if available_memory() < MEMORY_FOR_LARGE:
        return []
    rows = []
    for collection, workload, kind in BUILDERS[:1] if quick else (BUILDERS[0], BUILDERS[4], BUILDERS[6]):
        peaks = {}
        for column in columns:
            if (column.form, workload, kind) in known[column.program]:
                peaks[column.title] = bytes_of(column, workload, kind, 1, LARGE)[1]
        rows.append({"collection": collection, "n": LARGE, "bytes": peaks})
    return rows


def measure_allocations(columns, known, workloads):
    """[{"workload", "kind", "allocations"}], these (blocks or None, bytes) for an element, where a column can tell."""
    rows = []
    programs = {}
    for column in columns:
        name = "vorn counting" if column.program == "vorn" else column.program
        if name in ("vorn counting", "java", "go") and name in COMMANDS and name not in programs:
            programs[name] = Program(name)
    try:
        for workload in workloads:
            if workload.group not in ALLOCATION_GROUPS:
                continue
            for kind in workload.kinds:
                rows.append({"workload": workload.name, "kind": kind, "allocations": allocations_of(
                    columns, known, programs, workload, kind)})
    finally:
        for program in programs.values():
            program.stop()
    return rows


def allocations_of(columns, known, programs, workload, kind):
    found = {}
    for column in columns:
        program = programs.get("vorn counting" if column.program == "vorn" else column.program)
        if program is None or (column.form, workload.name, kind) not in known[column.program]:
            continue
        program.ask("ready", "open", column.form, workload.name, kind, ALLOCATION_SIZE, 0.001, 0)
        blocks, size = program.ask("allocated", "allocated")
        program.ask("closed", "close")
        found[column.title] = (None if blocks == "-" else int(blocks) / ALLOCATION_SIZE, int(size) / ALLOCATION_SIZE)
    return found


def measure_memory(columns, known, workloads, quick):
    return {
        "sizes": measure_sizes(columns, known, quick),
        "peaks": measure_peaks(columns, known, quick),
        "allocations": measure_allocations(columns, known, workloads),
    }
