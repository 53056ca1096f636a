"""The collections of the vorn language for Python.

    >>> import vorn
    >>> xs = vorn.List[int]([3, 1, 2])
    >>> xs.sort()
    >>> xs
    vorn.List[int]([1, 2, 3])

docs/python.md is the guide.
"""

from ._arrays import Array
from ._errors import (Error, IndexException, KeyException, MemoryException, NativeException, NullException,
                      ReadOnlyException, TypeException, ValueException)
from ._immutable import ImmutableList, Tuple
from ._lists import LinkedList, List
from ._maps import Map, SortedMap
from ._objects import Collection, Object
from ._runtime import HeapStatistics, collect, start, statistics
from ._sets import Set
from ._types import Char, CodeUnit

__all__ = ['Array', 'Char', 'CodeUnit', 'Collection', 'Error', 'HeapStatistics', 'ImmutableList', 'IndexException',
           'KeyException', 'LinkedList', 'List', 'Map', 'MemoryException', 'NativeException', 'NullException', 'Object',
           'ReadOnlyException', 'Set', 'SortedMap', 'Tuple', 'TypeException', 'ValueException', 'collect', 'start',
           'statistics']

# Where a class is found by its name is where it says that it is.
for _public in (Array, ImmutableList, Tuple, LinkedList, List, Map, SortedMap, Set, Collection, Object, Char, CodeUnit,
                Error, IndexException, KeyException, MemoryException, NativeException, NullException,
                ReadOnlyException, TypeException, ValueException, HeapStatistics):
    _public.__module__ = __name__
del _public


def __getattr__(name):
    if name == '__version__':
        from importlib.metadata import PackageNotFoundError, version
        try:
            return version('vorn')
        except PackageNotFoundError:
            return 'not installed'
    raise AttributeError(f'module {__name__!r} has no attribute {name!r}')
