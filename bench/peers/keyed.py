"""The operations of bench/keyed_workloads.h on Python's dicts and sets, for PyPy.

Prints "operation,elements,nanoseconds" for each repetition: the time of the whole process per element.
"""

import time

PUT_ORDER = 1
GET_ORDER = 2
REPETITIONS = 7
MINIMAL_SECONDS = 0.02
WARM_UP_SECONDS = 0.5  # in which the compiler sees each loop often enough


def shuffled_order(elements, seed):
    """The order in which the benchmarks of all libraries visit their keys."""
    order = list(range(elements))
    for i in range(elements, 1, -1):
        seed = (seed * 6364136223846793005 + 1442695040888963407) & 0xFFFFFFFFFFFFFFFF
        other = (seed >> 33) % i
        order[i - 1], order[other] = order[other], order[i - 1]
    return order


def time_of(work, times):
    start = time.process_time()
    for _ in range(times):
        work()
    return time.process_time() - start


def measure(name, elements, work):
    times = 1
    spent = time_of(work, times)
    warm = spent
    while spent < MINIMAL_SECONDS or warm < WARM_UP_SECONDS:
        if spent < MINIMAL_SECONDS:
            times *= 2
        spent = time_of(work, times)
        warm += spent
    for _ in range(REPETITIONS):
        spent = time_of(work, times)
        print(f"{name},{elements},{spent * 1e9 / elements / times:.4f}")


# Each loop is a function of its own, so that one's compiled code knows nothing of another's.


def put_all(keys):
    grown = {}
    for key in keys:
        grown[key] = key
    return grown


def get_all(filled, keys):
    total = 0
    for key in keys:
        total += filled[key]
    return total


def get_absent(filled, keys):
    found = 0
    for key in keys:
        if filled.get(key) is not None:
            found += 1
    return found


def add_all(keys):
    grown = set()
    for key in keys:
        grown.add(key)
    return grown


def count_contained(filled, keys):
    found = 0
    for key in keys:
        if key in filled:
            found += 1
    return found


def main():
    for elements in (1000, 1000000):
        inserted = shuffled_order(elements, PUT_ORDER)
        wanted = shuffled_order(elements, GET_ORDER)
        absent = [-1 - number for number in wanted]
        filled = put_all(inserted)
        members = add_all(inserted)
        assert get_all(filled, wanted) == sum(wanted)
        assert count_contained(members, wanted) == elements
        measure("put boxed Int", elements, lambda: put_all(inserted))
        measure("get boxed Int", elements, lambda: get_all(filled, wanted))
        measure("get boxed absent Int", elements, lambda: get_absent(filled, absent))
        measure("values", elements, lambda: list(filled.values()))
        measure("set add boxed Int", elements, lambda: add_all(inserted))
        measure("set contains boxed Int", elements, lambda: count_contained(members, wanted))


main()
