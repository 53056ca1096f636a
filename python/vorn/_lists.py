"""The lists that can change."""

import operator
from collections.abc import MutableSequence

from . import _buffers, _natives, _values
from ._errors import IndexException, MemoryException, ValueException
from ._natives import ArrayList
from ._objects import Ordered, nesting
from ._roots import NULL
from ._sequences import RecordSequence, bounds, clamped, gathered, index_of, primitive_of, values_in
from ._types import PRIMITIVES


class _MutableList(Ordered, RecordSequence, MutableSequence):
    """The common part of List and LinkedList."""

    __slots__ = ()
    __hash__ = None

    def __init__(self, iterable=(), *, synchronized=False):
        self.extend(iterable)

    def _with_elements_of(self, source):
        made = type(self)._empty(self.synchronized)
        ArrayList.addAll(made, source)
        return made

    def _accepted(self, values):
        return gathered(values, self._declared)

    def _changing(self, moves=True):
        """Before every change; `moves` when elements may come to stand elsewhere in memory."""
        if moves and self._exports:
            raise BufferError('a list with a buffer in use cannot change its size or storage')
        self._changes += 1

    # ---- One element ----

    def append(self, value):
        """Adds the value at the end."""
        self._changing()
        ArrayList.add(self, _values.element_for(value, self._declared))

    def insert(self, index, value):
        """Inserts the value before the index."""
        index, count = clamped(index), len(self)
        if index < 0:
            index = max(0, index + count)
        self._changing()
        ArrayList.addAt(self, min(index, count), _values.element_for(value, self._declared))

    def pop(self, index=-1):
        """Removes and returns the element at the index."""
        if not len(self):
            raise IndexException('pop from an empty list')
        self._changing()
        index = index_of(index)
        value = _values.value_of(ArrayList.operator_index(self, index))
        ArrayList.removeAt(self, index)
        return value

    def remove(self, value):
        """Removes the first element that equals the value; ValueError when there is none."""
        self._changing()
        needle = self._needle(value)
        if needle is None or not ArrayList.remove(self, needle):
            raise ValueException(f'{value!r} is not in {type(self).__name__}')

    def __setitem__(self, index, value):
        if isinstance(index, slice):
            self._assign(index, value)
            return
        # A list that declares a primitive type keeps its elements where they are.
        self._changing(moves=self._declared not in PRIMITIVES)
        index = index_of(index)
        if index >= len(self):
            raise IndexException('Index out of bounds')
        ArrayList.operator_index_eq(self, index, _values.element_for(value, self._declared))

    def __delitem__(self, index):
        if isinstance(index, slice):
            self._delete(index)
            return
        self._changing()
        ArrayList.removeAt(self, index_of(index))

    # ---- Ranges ----

    def _assign(self, part, values):
        given = bounds(part, self)
        source = self._accepted(values)
        size = _natives.ArrayList.size(source)
        start, stop, step = part.indices(len(self))
        if step != 1:
            covered = len(range(start, stop, step))
            if size != covered:
                raise ValueException(f'attempt to assign {size} values to an extended slice of {covered}')
        stop = max(start, stop) if step == 1 else stop
        same_size = step != 1 or size == stop - start
        self._changing(moves=not same_size or self._declared not in PRIMITIVES)
        if same_size or not self._stays_unboxed(source):
            ArrayList.sliceAssign(self, start, stop, 1, self, self, source) if step == 1 else \
                ArrayList.sliceAssign(self, *given, source)
            return
        rest = ArrayList.slice(self, stop, 0, 1, self, NULL)
        ArrayList.addAllAt(self, start, source)
        self._replace_from(start + size, rest)

    def _delete(self, part):
        bounds(part, self)
        positions = range(len(self))[part]
        if positions.step < 0:
            positions = positions[::-1]
        if not positions:
            return
        self._changing()
        if positions.step == 1 or len(positions) == 1:
            self._delete_range(positions[0], positions[-1] + 1)
            return
        if self._stays_unboxed():
            kept = self.tolist()
            del kept[positions.start:positions.stop:positions.step]
            self._replace_from(0, gathered(kept, primitive_of(self.handle).name))
            return
        whole, kept, after = gathered(self), gathered(()), 0
        for position in (*positions, len(self)):
            if position > after:
                ArrayList.addAll(kept, ArrayList.slice(whole, after, position, 1, self, self))
            after = position + 1
        ArrayList.sliceAssign(self, 0, 0, 1, NULL, NULL, kept)

    def _delete_range(self, start, stop):
        if self._stays_unboxed():
            self._replace_from(start, ArrayList.slice(self, stop, 0, 1, self, NULL))
        else:
            ArrayList.sliceAssign(self, start, stop, 1, self, self, gathered(()))

    def _stays_unboxed(self, added=None):
        """Whether a range is replaced in steps, after which the elements are still unboxed, as they are not after the
        one native that does it at once. A synchronised list has to be changed at once."""
        primitive = None if self.synchronized else primitive_of(self.handle)
        if primitive is None or added is None or self._declared:
            return primitive is not None
        # A list without a declared type goes on as it is with nothing, or with more of the same.
        return not _natives.ArrayList.size(added) or primitive_of(added.handle) is primitive

    def _replace_from(self, start, source):
        """Puts the elements of another list in the place of those from an index on. There are fewer of them, so that
        this takes no memory that the list does not have."""
        ArrayList.commitPrimitiveDataSize(self, start)
        ArrayList.addAll(self, source)

    # ---- The whole list ----

    def extend(self, iterable):
        """Adds all values at the end, or none when the list refuses one."""
        source = self._accepted(iterable)
        self._changing()
        ArrayList.addAll(self, source)

    def clear(self):
        """Removes all elements."""
        self._changing()
        ArrayList.clear(self)

    def copy(self):
        """A new list of the same class with the same elements."""
        return self._with_elements_of(self)

    def reverse(self):
        """Reverses the list in place."""
        self._changing(moves=False)
        ArrayList.reverse(self)

    def sort(self, *, key=None, reverse=False):
        """Sorts the list in place, stably, by `<` of the elements or of what `key` gives for them."""
        self._changing(moves=False)
        if key is None and (primitive_of(self.handle) is not None or self._declared == 'String'):
            ArrayList.sort(self)
            if reverse:
                ArrayList.reverse(self)
            return
        changes = self._changes
        # What stands in the list moves itself, not a copy of it.
        handles = gathered(self)
        values = values_in(handles)
        keys = values if key is None else [key(value) for value in values]
        order = sorted(range(len(values)), key=keys.__getitem__, reverse=reverse)
        ordered = gathered(())
        for index in order:
            ArrayList.add(ordered, ArrayList.operator_index(handles, index))
        if self._changes != changes or len(self) != len(values):
            raise ValueException('list modified during sort')
        ArrayList.sliceAssign(self, 0, len(values), 1, self, self, ordered)

    def __add__(self, other):
        if not isinstance(other, (_MutableList, list)):
            return NotImplemented
        made = self.copy()
        made.extend(other)
        return made

    def __radd__(self, other):
        if not isinstance(other, list):
            return NotImplemented
        made = type(self)._empty(self.synchronized)
        made.extend(other)
        made.extend(self)
        return made

    def __iadd__(self, other):
        self.extend(other)
        return self

    def _repeated(self, times):
        times = clamped(times)
        if times * len(self) > 2**62:
            raise MemoryException('the size is beyond what memory can hold')
        return ArrayList.repeat(self, times if len(self) else 0)

    def __mul__(self, times):
        if not hasattr(times, '__index__'):
            return NotImplemented
        return self._with_elements_of(self._repeated(times))

    __rmul__ = __mul__

    def __imul__(self, times):
        if not hasattr(times, '__index__'):
            return NotImplemented
        times = operator.index(times)
        if times < 1:
            self.clear()
        elif times > 1:
            repeated = self._repeated(times - 1)
            self._changing()
            ArrayList.addAll(self, repeated)
        return self

    # ---- Comparing ----

    @nesting
    def _compared(self, other, compare):
        if isinstance(other, _MutableList):
            return compare(self.tolist(), other.tolist())
        return compare(self.tolist(), other) if isinstance(other, list) else NotImplemented

    def __eq__(self, other):
        if isinstance(other, _MutableList):
            return self._equals(other)
        if isinstance(other, list) and len(other) != len(self):
            return False
        return self._compared(other, operator.eq)

    def _contents_to_restore(self):
        return (iter(self.tolist()),)


class List(_buffers.Exporting, _MutableList, plain='ArrayList', synchronized='ArrayListSync'):
    """A list on an array: the language's ArrayList.

    Behaves as a list of Python's does. Elements of a primitive type are kept unboxed while they all are of it.
    """

    __slots__ = ()

    def append(self, value):
        """Adds the value at the end."""
        # Numbers of the declared type go in without a box.
        primitive, kind = PRIMITIVES.get(self._declared), type(value)
        if kind is int and primitive is not None and primitive.is_integer and primitive.holds(value):
            self._changing()
            ArrayList.addPrimitiveI64(self, value, primitive.encoded)
        elif kind is float and primitive is not None and primitive.is_floating:
            self._changing()
            ArrayList.addPrimitiveDouble(self, value, primitive.encoded)
        else:
            super().append(value)

    def __getitem__(self, index):
        # Numbers of a declared type are read without a box, where no error can come of it.
        primitive = PRIMITIVES.get(self._declared)
        if type(index) is int and primitive is not None and not self.synchronized:
            count = _natives.ArrayList.size(self)
            if -count <= index < count:
                if primitive.is_floating:
                    return _natives.list_get_double(self.handle, index)
                if primitive.is_integer:
                    value = _natives.list_get_int(self.handle, index)
                    return value & (2**64 - 1) if primitive.name == 'ULong' else value
        return super().__getitem__(index)

    def memoryview(self):
        """A view of the unboxed elements, which may be written to, except those of Char. BufferError for a list that
        keeps boxes. While it is in use, the list changes neither its size nor its storage."""
        primitive = self._primitive_for_view()
        return _buffers.view(self, primitive, ArrayList.primitiveDataPtr)


class LinkedList(_MutableList, plain='LinkedList', synchronized='LinkedListSync'):
    """A list of linked nodes: cheap at both ends, slow in the middle. Behaves as a list of Python's does."""

    __slots__ = ()

    def appendleft(self, value):
        """Adds the value at the beginning."""
        self.insert(0, value)

    def popleft(self):
        """Removes and returns the first element."""
        return self.pop(0)
