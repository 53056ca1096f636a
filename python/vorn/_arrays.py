"""Fixed arrays."""

import operator
from collections.abc import Sequence

from . import _buffers, _natives, _values
from ._errors import MemoryException, ValueException
from ._natives import Array as natives
from ._objects import Collection, representation
from ._sequences import _GREATEST, bounds, clamped, gathered, index_of, listed, new_list, values_in
from ._types import PRIMITIVES


class Array(_buffers.Exporting, Collection, Sequence, plain='Array', synchronized='ArraySync'):
    """A fixed number of elements of one type: Array[int](5) has five zeros, Array[int]([1, 2]) these two.

    Elements can be replaced, but not added or removed. Those of a primitive type are always kept unboxed.
    """

    __slots__ = ('_exports',)
    family = 'array'
    __hash__ = None
    _is_source = True

    def __new__(cls, elements=(), *, synchronized=False):
        if isinstance(elements, int) and not isinstance(elements, bool):
            if elements > _GREATEST:
                raise MemoryException('the size is beyond what memory can hold')
            return cls._sized(max(elements, -1), synchronized)
        values = listed(elements)
        made = cls._sized(len(values), synchronized)
        natives.sliceAssign(made, 0, 0, 1, _values.NULL, _values.NULL, made._accepted(values))
        return made

    @classmethod
    def _sized(cls, size, synchronized=False):
        made = cls._empty(synchronized)
        natives.ctor(made, size)
        return made

    @classmethod
    def _adopt(cls, root, synchronized):
        made = super()._adopt(root, synchronized)
        made._exports = []
        return made

    @property
    def _declared(self):
        return self.element_types[0] if self.element_types else 'Object'

    def _accepted(self, values):
        """A list of the language with the values, each of which is of the array's type."""
        raw = _values.unboxed(values, self._declared) if self._declared in PRIMITIVES else None
        if raw is not None:
            return gathered(values, self._declared)
        target = new_list()
        for value in values:
            _natives.ArrayList.add(target, _values.strict_element(value, self._declared, 'Array'))
        return target

    def __len__(self):
        return _natives.Array.size(self)

    def __getitem__(self, index):
        if not isinstance(index, slice):
            return _values.value_of(natives.operator_index(self, index_of(index)))
        taken = natives.slice(self, *bounds(index, self))
        return type(self)._registered(taken, self.synchronized)

    def __setitem__(self, index, value):
        if not isinstance(index, slice):
            natives.operator_index_eq(self, index_of(index), _values.strict_element(value, self._declared, 'Array'))
            return
        given, values = bounds(index, self), listed(value)
        covered = len(range(len(self))[index])
        if len(values) != covered:
            raise ValueException(f'attempt to assign {len(values)} values to {covered} elements of an array')
        natives.sliceAssign(self, *given, self._accepted(values))

    def __delitem__(self, index):
        raise TypeError('an Array does not change its size')

    def tolist(self):
        """The elements as a list of Python's."""
        return values_in(gathered(self))

    def __iter__(self):
        for index in range(len(self)):
            yield self[index]

    def _needle(self, value):
        primitive = PRIMITIVES.get(self._declared)
        if primitive is not None:
            return _values.needle_for(value, primitive)
        try:
            return _values.handle_of(value)
        except (TypeError, ValueError, OverflowError):
            return None

    def __contains__(self, value):
        needle = self._needle(value)
        return needle is not None and natives.indexOf(self, needle, 0) >= 0

    def index(self, value, start=0, stop=_GREATEST):
        """The first index of the value within the bounds; ValueError when it is not there."""
        count = len(self)
        start, stop = (max(0, bound + count) if bound < 0 else bound for bound in map(clamped, (start, stop)))
        needle = self._needle(value)
        found = -1 if needle is None or start >= count else natives.indexOf(self, needle, start)
        if not 0 <= found < stop:
            raise ValueException(f'{value!r} is not in {type(self).__name__}')
        return found

    def count(self, value):
        """How many elements equal the value."""
        needle = self._needle(value)
        return 0 if needle is None else natives.count(self, needle)

    def sort(self, *, key=None, reverse=False):
        """Sorts the array in place, stably, by `<` of the elements or of what `key` gives for them."""
        if key is None and (self._declared in PRIMITIVES or self._declared == 'String'):
            natives.sort(self)
            if reverse:
                natives.reverse(self)
        else:
            self[:] = sorted(self.tolist(), key=key, reverse=reverse)

    def reverse(self):
        """Reverses the array in place."""
        natives.reverse(self)

    def copy(self):
        """A new array of the same class with the same elements."""
        return self[:]

    def __add__(self, other):
        if not isinstance(other, (Array, list, tuple)):
            return NotImplemented
        return type(self)([*self.tolist(), *other], synchronized=self.synchronized)

    def __eq__(self, other):
        return self._equals(other) if isinstance(other, Array) else NotImplemented

    def __lt__(self, other):
        return operator.lt(self.tolist(), other.tolist()) if isinstance(other, Array) else NotImplemented

    @representation
    def __repr__(self):
        return self._repr_of(repr(self.tolist()))

    def __str__(self):
        return _values.value_of(natives.toString(self))

    def __reduce__(self):
        return (_restored_array, (*self._origin(), self.synchronized, len(self)), None, None, enumerate(self.tolist()))

    def memoryview(self):
        """A view of the unboxed elements, which may be written to, except those of Char. BufferError for an array of
        objects, and for a synchronised one, which lends its elements to nobody."""
        primitive = PRIMITIVES.get(self._declared)
        if primitive is None or self.synchronized:
            raise BufferError(f'{"a synchronised array" if self.synchronized else "an Array of objects"} has no buffer')
        return _buffers.view(self, primitive, natives.rawDataPtr)


def _restored_array(generic, arguments, synchronized, size):
    return generic._typed(arguments)._sized(size, synchronized)
