"""The errors of the language as exceptions of Python."""

import ctypes

from ._library import function


class Error(Exception):
    """Any error that the runtime raises. `language_class` and `message` are what the language says of it.

    Each kind of error is an exception of Python's own as well: an IndexException is an IndexError.
    """

    language_class = 'Exception'

    def __init__(self, message='', language_class=None):
        super().__init__(message)
        self.message = message
        if language_class is not None:
            self.language_class = language_class

    def __reduce__(self):
        return (type(self), self.args, {'message': self.message, 'language_class': self.language_class})


class IndexException(Error, IndexError):
    """An index out of range."""

    language_class = 'IndexException'


class KeyException(Error, KeyError):
    """A key that is not in a map. Its argument is the key, as that of every KeyError."""

    language_class = 'KeyException'

    def __init__(self, key=None, language_class=None):
        super().__init__(key, language_class)
        self.message = 'Key not found'


class NullException(Error, TypeError):
    """None where the language wants an object."""

    language_class = 'NullException'


class TypeException(Error, TypeError):
    """A value of a type that a collection does not take; the language calls it TypeError."""

    language_class = 'TypeError'


class ValueException(Error, ValueError):
    """A value that cannot be."""

    language_class = 'ValueException'


class ReadOnlyException(Error, TypeError):
    """A change of something that does not change."""

    language_class = 'ReadOnlyException'


class MemoryException(Error, MemoryError):
    """No memory, or a size beyond all memory. The collection is as it was."""

    language_class = 'MemoryException'


class NativeException(Error, RuntimeError):
    """What else a native may throw: collections nested too deeply to display, a mutex that fails."""

    language_class = 'NativeException'


_CLASSES = {each.language_class: each for each in (
    IndexException, KeyException, NullException, TypeException, ValueException, ReadOnlyException, MemoryException,
    NativeException)}

_count = function('vorn_error_count')
_count.restype, _count.argtypes = ctypes.c_size_t, []
_class = function('vorn_error_class')
_class.restype, _class.argtypes = ctypes.c_char_p, [ctypes.c_size_t]
_message = function('vorn_error_message')
_message.restype, _message.argtypes = ctypes.c_char_p, [ctypes.c_size_t]
_clear = function('vorn_errors_clear')
_clear.restype, _clear.argtypes = None, []
_raise = function('vorn_raise')
_raise.restype, _raise.argtypes = None, [ctypes.c_char_p, ctypes.c_char_p]

pending_count = _count


def raise_pending(raised):
    """Raises the newest of so many pending errors, with the others as its context. Older ones stay pending."""
    pending = [(_class(index), _message(index)) for index in range(_count())]
    _clear()
    for older in pending[:-raised]:
        _raise(*older)
    error = None
    for language_class, message in pending[-raised:]:
        name, text = language_class.decode(), message.decode(errors='replace')
        newer = _CLASSES.get(name, Error)(text, name)
        newer.__context__, error = error, newer
    raise error
