"""Slots in which the collector finds the handles that Python holds.

A Python integer is nothing that a collector recognises, so every handle that Python keeps stands in a slot as well. The
slots come in tables that stay registered, and allocated, for the rest of the process. Taking and returning a slot
therefore calls nothing, and may happen on any thread, inside the garbage collection of Python, and at its exit.
"""

import ctypes
import threading

from ._library import function

_SLOTS_IN_A_TABLE = 512

_root_add = function('vorn_root_add')
_root_add.restype, _root_add.argtypes = None, [ctypes.c_void_p]

# Taking from and adding to a list are atomic, so that no lock is needed where a garbage collection may interfere.
_free = []
_growing = threading.Lock()


def _grown():
    """A slot of a new table, whose other slots become free."""
    with _growing:
        table = (ctypes.c_void_p * _SLOTS_IN_A_TABLE)()
        # The collector reads the table until the process ends, which may be after the interpreter has ended.
        ctypes.pythonapi.Py_IncRef(ctypes.py_object(table))
        size = ctypes.sizeof(ctypes.c_void_p)
        slots = [ctypes.c_void_p.from_buffer(table, index * size) for index in range(_SLOTS_IN_A_TABLE)]
        for slot in slots:
            _root_add(ctypes.byref(slot))
        _free.extend(slots[1:])
        return slots[0]


class Root:
    """A slot of its own; what stands in it is alive while this object is. `handle` is its address, None for null."""

    __slots__ = ('slot', 'handle')

    def __init__(self, handle=None):
        try:
            self.slot = _free.pop()
        except IndexError:
            self.slot = _grown()
        self.handle = handle
        if handle is not None:
            self.slot.value = handle

    def load(self):
        """Takes over what a call has written into the slot."""
        self.handle = self.slot.value
        return self

    # Bound early, because an interpreter that ends has no globals left.
    def __del__(self, _give_back=_free.append):
        slot = self.slot
        slot.value = None
        _give_back(slot)


class _Null:
    """The language's null as an argument."""

    handle = None


NULL = _Null()
