"""The runtime as a whole."""

import ctypes
from typing import NamedTuple

from . import _natives
from ._errors import Error


class HeapStatistics(NamedTuple):
    """What the heap has given out since the start, and what of it is in use by its best estimate."""

    bytes_live: int
    allocations: int
    bytes_allocated: int
    collections: int


def start(options=''):
    """Starts the runtime with options such as 'heap=collected,room=64'. Without a call it starts by itself, with the
    defaults, when the first collection is made. There is no stop: collections are good until the process ends.

    ValueError for options that are not known; Error when the runtime runs with another heap already.
    """
    parsed = _natives.Options()
    try:
        text = options.encode('ascii')
    except UnicodeEncodeError:
        text = b'?'
    if b'\0' in text or not _natives.parse_options(text, ctypes.byref(parsed)):
        raise ValueError(f'not the options of a runtime: {options!r}')
    if not _natives.runtime_start(ctypes.byref(parsed)):
        raise Error('the runtime is running with another heap already')


def collect():
    """Runs a full collection now."""
    _natives.heap_collect()


def statistics():
    """The figures of the heap."""
    figures = _natives.Statistics()
    _natives.get_statistics(ctypes.byref(figures))
    return HeapStatistics(*(getattr(figures, field) for field, _ in figures._fields_))
