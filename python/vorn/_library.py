"""Finds and loads the shared libraries.

The runtime's library names its neighbour, the collections, as a dependency and looks for it beside itself, so one of
them is loaded here and gives the functions of both.
"""

import ctypes
import os

_NAMES = ('libvorn_runtime.so', 'libvorn_runtime.so.0')
_BUNDLED = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'lib')
_VARIABLE = 'VORN_LIBRARY_PATH'


def _candidates():
    """What is tried, in this order; the first place that has a library decides."""
    for directory in (_BUNDLED, os.environ.get(_VARIABLE)):
        if not directory:
            continue
        present = [path for path in (os.path.join(directory, name) for name in _NAMES) if os.path.exists(path)]
        if present:
            return present[:1]
        if directory != _BUNDLED:
            raise ImportError(f'{_VARIABLE} is {directory!r}, where there is no {_NAMES[0]}')
    return _NAMES


def _load():
    reasons = []
    for candidate in _candidates():
        try:
            # The interpreter's lock stays held during calls: a collection that is not synchronised is then as safe
            # among Python's threads as a built-in one.
            return ctypes.PyDLL(candidate)
        except OSError as error:
            reasons.append(str(error))
    message = f'cannot load {_NAMES[0]}: ' + '; '.join(reasons)
    if any('libgc.so' in reason for reason in reasons):
        message += ' (the garbage collector is a package of the system, libgc1 on Debian)'
    else:
        message += f' (it is looked for in {_BUNDLED}, in the directory that {_VARIABLE} names, and among the libraries of the system)'
    raise ImportError(message)


_library = _load()


def function(name):
    """An exported function by its name."""
    try:
        return _library[name]
    except AttributeError:
        raise ImportError(f'{_library._name} has no {name}: it is of another version than this package') from None
