"""The workloads on maps and sets. Python has no sorted map of its own."""

from definitions import (
    GET_ORDER, PUT_ORDER, digest_of_map, digest_of_number, digest_of_set, keys_in_order, shuffled_order)
from row import Row


def put_all(keys, values):
    result = {}
    for key, value in zip(keys, values):
        result[key] = value
    return result


def map_of(kind, n):
    return put_all(keys_in_order(kind, n, PUT_ORDER), shuffled_order(n, PUT_ORDER))


def map_put(kind, n):
    keys = keys_in_order(kind, n, PUT_ORDER)
    values = shuffled_order(n, PUT_ORDER)
    return Row(n, lambda: put_all(keys, values), digest_of_map)


def map_get(kind, n):
    entries = map_of(kind, n)
    keys = keys_in_order(kind, n, GET_ORDER)

    def run():
        total = 0
        for key in keys:
            total += entries[key]
        return total
    return Row(n, run, digest_of_number)


def map_miss(kind, n):
    entries = map_of(kind, n)
    keys = keys_in_order(kind, n, GET_ORDER, present=False)

    def run():
        total = 0
        for key in keys:
            value = entries.get(key)
            if value is not None:
                total += value
        return total
    return Row(n, run, digest_of_number)


def map_iterate(kind, n):
    entries = map_of(kind, n)

    def run():
        total = 0
        for value in entries.values():
            total += value
        return total
    return Row(n, run, digest_of_number)


def map_remove(kind, n):
    keys = keys_in_order(kind, n, PUT_ORDER)
    values = shuffled_order(n, PUT_ORDER)
    removed = keys_in_order(kind, n, GET_ORDER)

    def run():
        entries = put_all(keys, values)
        for key in removed:
            del entries[key]
        return entries
    return Row(n, run, digest_of_map)


def map_churn(kind, n):
    """Of twice as many keys, half are in the map at any time."""
    keys = keys_in_order(kind, 2 * n, PUT_ORDER)
    values = shuffled_order(2 * n, PUT_ORDER)
    entries = put_all(keys[:n], values[:n])
    oldest = 0

    def run():
        nonlocal oldest
        at = oldest
        for _ in range(n):
            newest = at + n if at < n else at - n
            del entries[keys[at]]
            entries[keys[newest]] = values[newest]
            at = at + 1 if at + 1 < 2 * n else 0
        oldest = at
        return entries
    return Row(n, run, digest_of_map)


def add_all(keys):
    result = set()
    for key in keys:
        result.add(key)
    return result


def set_add(kind, n):
    keys = keys_in_order(kind, n, PUT_ORDER)
    return Row(n, lambda: add_all(keys), digest_of_set)


def asking(kind, n, present):
    members = add_all(keys_in_order(kind, n, PUT_ORDER))
    keys = keys_in_order(kind, n, GET_ORDER, present)

    def run():
        found = 0
        for key in keys:
            if key in members:
                found += 1
        return found
    return Row(n, run, digest_of_number)


def set_contains(kind, n):
    return asking(kind, n, present=True)


def set_miss(kind, n):
    return asking(kind, n, present=False)


def set_iterate(kind, n):
    members = add_all(keys_in_order(kind, n, PUT_ORDER))

    def add_up():
        total = 0
        for member in members:
            total += member
        return total

    def add_up_lengths():
        total = 0
        for member in members:
            total += len(member)
        return total
    return Row(n, add_up_lengths if kind == "String" else add_up, digest_of_number)


def set_remove(kind, n):
    keys = keys_in_order(kind, n, PUT_ORDER)
    removed = keys_in_order(kind, n, GET_ORDER)

    def run():
        members = add_all(keys)
        for key in removed:
            members.remove(key)
        return members
    return Row(n, run, digest_of_set)


def set_churn(kind, n):
    keys = keys_in_order(kind, 2 * n, PUT_ORDER)
    members = add_all(keys[:n])
    oldest = 0

    def run():
        nonlocal oldest
        at = oldest
        for _ in range(n):
            members.remove(keys[at])
            members.add(keys[at + n if at < n else at - n])
            at = at + 1 if at + 1 < 2 * n else 0
        oldest = at
        return members
    return Row(n, run, digest_of_set)


def small_maps(kind, n):
    def run():
        total = 0
        for i in range(n):
            entries = {}
            for j in range(8):
                entries[i + j] = i + j
            total += entries[i + 7]
        return total
    return Row(n, run, digest_of_number)


BOTH = ("Int", "String")
ROWS = {
    "map-put": (BOTH, map_put),
    "map-get": (BOTH, map_get),
    "map-miss": (BOTH, map_miss),
    "map-iterate": (BOTH, map_iterate),
    "map-remove": (BOTH, map_remove),
    "map-churn": (BOTH, map_churn),
    "set-add": (BOTH, set_add),
    "set-contains": (BOTH, set_contains),
    "set-miss": (BOTH, set_miss),
    "set-iterate": (BOTH, set_iterate),
    "set-remove": (BOTH, set_remove),
    "set-churn": (BOTH, set_churn),
    "small-maps": (("Int",), small_maps),
}
