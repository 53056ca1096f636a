"""Finds and loads the shared libraries.

The runtime's library names its neighbour, the collections, as a dependency and looks for it beside itself, so one of
them is loaded here and gives the functions of both.
"""

import ctypes
import os

_NAME = 'libvorn_runtime.so'
# As a system installs it for programs, and for those who build programs.
_INSTALLED = ('libvorn_runtime.so.0', _NAME)
_BUNDLED = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'lib')
_VARIABLE = 'VORN_LIBRARY_PATH'


def _in(directory):
    """The library in a directory, None when there is none."""
    try:
        names = [name for name in sorted(os.listdir(directory)) if name.startswith(_NAME)]
    except OSError:
        return None
    return os.path.join(directory, names[0]) if names else None


def _candidates():
    """What is tried. A library of the package's own, or of the directory that is named, is the only one."""
    bundled, named = _in(_BUNDLED), os.environ.get(_VARIABLE)
    if bundled:
        return (bundled,)
    if not named:
        return _INSTALLED
    found = _in(named)
    if not found:
        raise ImportError(f'{_VARIABLE} is {named!r}, where there is no {_NAME}')
    return (found,)


def _load():
    reasons = []
    for candidate in _candidates():
        try:
            # The interpreter's lock stays held during calls: a collection that is not synchronised is then as safe
            # among Python's threads as a built-in one.
            return ctypes.PyDLL(candidate)
        except OSError as error:
            reasons.append(str(error))
    message = f'cannot load {_NAME}: ' + '; '.join(reasons)
    if any('libgc.so' in reason for reason in reasons):
        message += ' (the garbage collector is a package of the system, libgc1 on Debian)'
    else:
        message += '' if os.environ.get(_VARIABLE) else f' ({_VARIABLE} is not set)'
    raise ImportError(message)


_library = _load()


def function(name):
    """An exported function by its name."""
    try:
        return _library[name]
    except AttributeError:
        raise ImportError(f'{_library._name} has no {name}: it is of another version than this package') from None
