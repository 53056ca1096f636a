"""The workloads on lists, as Python's own means do them."""

import threading
from collections import deque

from definitions import (
    ABSENT_NUMBER, ABSENT_TEXT, GET_ORDER, Item, char_at, digest_of, digest_of_digits, digest_of_number,
    digest_of_text, element_at, list_of, number_at, shuffled_order, sort_batch, sort_inputs)
from row import Row


def append(kind, n):
    if kind == "Object":
        items = [Item(number_at(index)) for index in range(n)]

        def run():
            result = []
            for item in items:
                result.append(item)
            return result
    elif kind == "Byte":
        def run():
            result = bytearray()
            for i in range(n):
                result.append(i & 127)
            return result
    elif kind == "Double":
        def run():
            result = []
            for i in range(n):
                result.append(float(i))
            return result
    else:
        def run():
            result = []
            for i in range(n):
                result.append(i)
            return result
    return Row(n, run, lambda result: digest_of(kind, result))


def read(kind, n):
    if kind == "Object":
        items = [Item(number_at(index)) for index in range(n)]

        def run():
            total = 0
            for i in range(n):
                total += items[i].value
            return total
    else:
        elements = list_of(kind, n)

        def run():
            total = 0
            for i in range(n):
                total += elements[i]
            return total
    return Row(n, run, digest_of_number)


def write(kind, n):
    elements = list_of(kind, n)
    if kind == "Double":
        def run():
            for i in range(n):
                elements[i] = float(i)
            return elements
    else:
        def run():
            for i in range(n):
                elements[i] = i
            return elements
    return Row(n, run, lambda result: digest_of(kind, result))


def read_random(kind, n):
    elements = list_of(kind, n)
    order = shuffled_order(n, GET_ORDER)

    def run():
        total = 0
        for at in order:
            total += elements[at]
        return total
    return Row(n, run, digest_of_number)


def append_remove_last(kind, n):
    def run():
        result = []
        for i in range(n):
            result.append(i)
        for _ in range(n):
            result.pop()
        return result
    return Row(n, run, len)


def insert_front(kind, n):
    def run():
        result = []
        for i in range(n):
            result.insert(0, i)
        return result
    return Row(n, run, lambda result: digest_of(kind, result))


def remove_front(kind, n):
    def run():
        result = []
        for i in range(n):
            result.append(i)
        for _ in range(n):
            del result[0]
        return result
    return Row(n, run, len)


def index_or_less(elements, value):
    try:
        return elements.index(value)
    except ValueError:
        return -1


def search_hit(kind, n):
    elements = list_of(kind, n)
    at = n * 3 // 4
    value = element_at(kind, at)
    return Row(at + 1, lambda: index_or_less(elements, value), digest_of_number)


def search_miss(kind, n):
    elements = list_of(kind, n)
    value = {"Int": ABSENT_NUMBER, "Double": float(ABSENT_NUMBER), "String": ABSENT_TEXT}[kind]
    return Row(n, lambda: index_or_less(elements, value), lambda found: digest_of_number(int(found)))


def count(kind, n):
    elements = list_of(kind, n)
    value = element_at(kind, n // 2)
    return Row(n, lambda: elements.count(value), digest_of_number)


def total(kind, n):
    elements = list_of(kind, n)
    return Row(n, lambda: sum(elements), digest_of_number)


def reverse(kind, n):
    elements = list_of(kind, n)

    def run():
        elements.reverse()
        return elements
    return Row(n, run, lambda result: digest_of(kind, result))


def slice_half(kind, n):
    elements = list_of(kind, n)
    start, stop = n // 4, n // 4 + n // 2
    return Row(n // 2, lambda: elements[start:stop], lambda result: digest_of(kind, result))


def slice_strided(kind, n):
    elements = list_of(kind, n)
    return Row((n + 1) // 2, lambda: elements[::2], lambda result: digest_of(kind, result))


def concat(kind, n):
    elements, others = list_of(kind, n), list_of(kind, n)
    return Row(2 * n, lambda: elements + others, lambda result: digest_of(kind, result))


def display(kind, n):
    elements = list_of(kind, n)
    return Row(n, lambda: str(elements), digest_of_digits)


def join(kind, n):
    elements = list_of(kind, n)
    if kind == "String":
        return Row(n, lambda: ", ".join(elements), digest_of_text)
    return Row(n, lambda: ", ".join(map(str, elements)), digest_of_text)


def text_of_chars(kind, n):
    characters = [char_at(index) for index in range(n)]
    return Row(n, lambda: "".join(characters), digest_of_text)


def sort(pattern):
    def make(kind, n):
        inputs = sort_inputs(kind, pattern, n)
        work = []

        def prepare():
            work[:] = [list(elements) for elements in inputs]

        def run():
            for elements in work:
                elements.sort()
            return work[-1]
        return Row(n * sort_batch(n), run, lambda result: digest_of(kind, result), prepare)
    return make


def array_prefix_sums(kind, n):
    elements = list_of(kind, n)

    def run():  # wraps to 32 bits as the others do
        before = elements[0]
        for i in range(1, n):
            before = (elements[i] + before + 0x80000000 & 0xFFFFFFFF) - 0x80000000
            elements[i] = before
        return elements
    return Row(n, run, lambda result: digest_of(kind, result))


def linked_append(kind, n):
    items = [Item(number_at(index)) for index in range(n)]

    def run():
        result = deque()
        for item in items:
            result.append(item)
        return result
    return Row(n, run, lambda result: digest_of(kind, result))


def linked_iterate(kind, n):
    items = deque(Item(number_at(index)) for index in range(n))

    def run():
        result = 0
        for item in items:
            result += item.value
        return result
    return Row(n, run, digest_of_number)


def small_lists(kind, n):
    def run():
        result = 0
        for i in range(n):
            elements = []
            for j in range(8):
                elements.append(i + j)
            result += elements[7]
        return result
    return Row(n, run, digest_of_number)


def synchronised_add(threads):
    def make(kind, n):
        def run():
            lock = threading.Lock()
            result = []

            def add(times):
                for _ in range(times):
                    with lock:
                        result.append(1)
            if threads == 1:
                add(n)
            else:
                other = threading.Thread(target=add, args=(n // 2,))
                other.start()
                add(n - n // 2)
                other.join()
            return result
        return Row(n, run, len, on_the_wall=threads > 1)
    return make


INT = ("Int",)
NUMBERS = ("Int", "Long", "Double", "Byte")
ROWS = {
    "append": ((*NUMBERS, "Object"), append),
    "read": ((*NUMBERS, "Object"), read),
    "write": (("Int", "Double"), write),
    "read-random": (INT, read_random),
    "append-remove-last": (INT, append_remove_last),
    "insert-front": (INT, insert_front),
    "remove-front": (INT, remove_front),
    "search-hit": (("Int", "String"), search_hit),
    "search-miss": (("Int", "Double", "String"), search_miss),
    "count": (INT, count),
    "sum": (NUMBERS, total),
    "reverse": (("Int", "Long"), reverse),
    "slice": (INT, slice_half),
    "slice-strided": (INT, slice_strided),
    "concat": (INT, concat),
    "display": (INT, display),
    "join": (("Int", "String"), join),
    "text-of-chars": (("Char",), text_of_chars),
    "sort": ((*NUMBERS, "String"), sort("random")),
    "sort-sorted": (INT, sort("sorted")),
    "sort-reversed": (INT, sort("reversed")),
    "sort-nearly": (INT, sort("nearly")),
    "sort-equal": (INT, sort("equal")),
    "sort-adversarial": (INT, sort("adversarial")),
    "array-write": (INT, write),
    "array-read": (INT, read),
    "array-prefix-sums": (INT, array_prefix_sums),
    "linked-append": (("Object",), linked_append),
    "linked-iterate": (("Object",), linked_iterate),
    "small-lists": (INT, small_lists),
    "synchronised-add": (INT, synchronised_add(1)),
    "synchronised-add-2": (INT, synchronised_add(2)),
}
