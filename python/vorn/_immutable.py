"""The sequences that do not change: ImmutableList and Tuple."""

import operator
from collections.abc import Sequence

from . import _buffers, _natives, _values
from ._errors import ReadOnlyException, ValueException
from ._objects import Collection, Ordered, nesting, representation
from ._sequences import RecordSequence, clamped, gathered, index_of


class ImmutableList(_buffers.Exporting, RecordSequence, Sequence, plain='ImmutableList'):
    """A list whose elements are fixed when it is made. It can be hashed when its elements can, and equals immutable
    lists only."""

    __slots__ = ()

    def __new__(cls, iterable=()):
        return cls._empty()._filled(gathered(iterable, cls.element_types[0] if cls.element_types else ''))

    def _filled(self, source):
        _natives.ImmutableList.ctor(self, source)
        return self

    def _with_elements_of(self, source):
        return type(self)._empty()._filled(source)

    def __setitem__(self, index, value):
        raise ReadOnlyException('ImmutableList is read-only')

    def __delitem__(self, index):
        raise ReadOnlyException('ImmutableList is read-only')

    def __add__(self, other):
        if not isinstance(other, ImmutableList):
            return NotImplemented
        return type(self)([*self.tolist(), *other.tolist()])

    def __mul__(self, times):
        if not hasattr(times, '__index__'):
            return NotImplemented
        return self._with_elements_of(_natives.ArrayList.repeat(self, clamped(times) if len(self) else 0))

    __rmul__ = __mul__

    def __eq__(self, other):
        return self._equals(other) if isinstance(other, ImmutableList) else NotImplemented

    def __hash__(self):
        return hash((ImmutableList, *self.tolist()))

    def copy(self):
        """The list itself, since it does not change."""
        return self

    def __str__(self):
        return _values.value_of(_natives.ImmutableList.toString(self))

    def __reduce__(self):
        return (_restored, (*self._origin(), self.tolist()))

    def memoryview(self):
        """A read-only view of the unboxed elements; BufferError for a list that keeps boxes."""
        primitive = self._primitive_for_view()
        return _buffers.view(self, primitive, _natives.ArrayList.primitiveDataPtr, readonly=True)


def _restored(generic, arguments, values):
    return generic._typed(arguments)(values)


class Tuple(Ordered, Collection, Sequence, plain='Tuple'):
    """A tuple of the language: what a tuple of Python's becomes in a collection. Equals tuples with the same items, and
    has their hash."""

    __slots__ = ()
    family = 'tuple'
    _argument_count = None
    _is_source = True

    def __new__(cls, iterable=()):
        values = list(iterable)
        types = cls.element_types
        if types and len(types) != len(values):
            raise ValueException(f'{cls.__name__} has {len(types)} items, not {len(values)}')
        if types:
            values = [_Made(_values.strict_element(value, declared, 'Tuple')) for value, declared in zip(values, types)]
        return cls._registered(_values.tuple_of(values, cls.language_name.encode()))

    def __len__(self):
        return _natives.Tuple.size(self)

    def __getitem__(self, index):
        if isinstance(index, slice):
            return self._generic(tuple(self)[index])
        return _values.value_of(_natives.Tuple.operator_index(self, index_of(index)))

    def __iter__(self):
        return iter([self[index] for index in range(len(self))])

    def __setitem__(self, index, value):
        raise ReadOnlyException('Tuple is read-only')

    def __delitem__(self, index):
        raise ReadOnlyException('Tuple is read-only')

    def __add__(self, other):
        return self._generic((*self, *other)) if isinstance(other, (Tuple, tuple)) else NotImplemented

    def __radd__(self, other):
        return self._generic((*other, *self)) if isinstance(other, tuple) else NotImplemented

    def __mul__(self, times):
        return self._generic(tuple(self) * times) if hasattr(times, '__index__') else NotImplemented

    __rmul__ = __mul__

    @nesting
    def _compared(self, other, compare):
        return compare(tuple(self), tuple(other)) if isinstance(other, (Tuple, tuple)) else NotImplemented

    def __eq__(self, other):
        return self._equals(other) if isinstance(other, Tuple) else self._compared(other, operator.eq)

    def __hash__(self):
        return hash(tuple(self))

    def copy(self):
        """The tuple itself, since it does not change."""
        return self

    @representation
    def __repr__(self):
        return self._repr_of(repr(tuple(self)))

    def __str__(self):
        return _values.value_of(_natives.Tuple.toString(self))

    def __reduce__(self):
        return (_restored, (*self._origin(), tuple(self)))


class _Made:
    """A value that is a handle already."""

    language_name = 'Object'

    def __init__(self, root):
        self.root, self.handle = root, root.handle
