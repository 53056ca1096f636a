"""What the classes with the language's list record have in common: reading, searching, comparing."""

import ctypes
import operator

from . import _natives, _values
from ._errors import IndexException, ValueException
from ._natives import ArrayList
from ._objects import Collection, representation
from ._roots import NULL
from ._types import PRIMITIVES

_LEAST, _GREATEST = -2**63, 2**63 - 1
_FIRST_CHUNK, _LARGEST_CHUNK = 16, 4096


def clamped(bound):
    """An index as the nearest one of 64 bits."""
    return max(_LEAST, min(_GREATEST, operator.index(bound)))


def index_of(bound):
    """An index that is not a slice's; IndexException where it is beyond 64 bits."""
    try:
        bound = operator.index(bound)
    except TypeError:
        raise TypeError(f'indices must be integers or slices, not {type(bound).__name__}') from None
    if not _LEAST <= bound <= _GREATEST:
        raise IndexException('Index out of bounds')
    return bound


def bounds(part, given):
    """A slice as the natives take it: start, stop, step, and a handle each for a start and a stop that are given."""
    step = 1 if part.step is None else clamped(part.step)
    if step == 0:
        raise ValueException('slice step cannot be zero')
    start = 0 if part.start is None else clamped(part.start)
    stop = 0 if part.stop is None else clamped(part.stop)
    return start, stop, step, NULL if part.start is None else given, NULL if part.stop is None else given


def storage_of(handle):
    """How a list keeps its elements."""
    info = _natives.ListStorage()
    _natives.list_storage(handle, ctypes.byref(info))
    return info


def primitive_of(handle):
    """The type of unboxed elements; None for a list that keeps boxes."""
    info = storage_of(handle)
    return PRIMITIVES.get(info.primitive_type.decode()) if info.storage == _natives.UNBOXED else None


def listed(values):
    """The values of any iterable, in a list that nobody else changes."""
    if not isinstance(values, Collection) and hasattr(values, 'tolist'):
        values = values.tolist()  # an array's numbers as those of Python
    return list(values)


def new_list(declared=''):
    """A new, empty ArrayList that nobody else knows."""
    return _natives.object_new(f'ArrayList<{declared}>'.encode() if declared else b'ArrayList')


def gathered(values, declared=''):
    """A new ArrayList of the language with the values, all of which the declared type takes."""
    if isinstance(values, Collection) and values._is_source:
        target = new_list(declared)
        ArrayList.addAll(target, values)
        return target
    values = listed(values)
    raw = _values.unboxed(values, declared)
    if raw is not None:
        primitive, elements = raw
        target = new_list(primitive.name)
        _values.fill_unboxed(target, primitive, elements)
        return target
    target = new_list(declared)
    for value in values:
        ArrayList.add(target, _values.element_for(value, declared))
    return target


def gathered_root(root):
    """A new ArrayList with the elements of a list that has no object."""
    target = new_list()
    ArrayList.addAll(target, root)
    return target


def values_in(handle):
    """The elements of a list that nobody else changes."""
    primitive = primitive_of(handle.handle)
    count = _natives.ArrayList.size(handle)
    if primitive is not None:
        return _values.from_unboxed(primitive,
                                    ctypes.string_at(_natives.list_data(handle.handle), count * primitive.width))
    return [_values.value_of(ArrayList.operator_index(handle, index)) for index in range(count)]


class RecordSequence(Collection):
    """A collection whose object has the record of a list."""

    __slots__ = ('_exports',)
    family = 'list'
    _is_source = True

    @classmethod
    def _class_of_handle(cls, handle, arguments):
        # A list made by a native declares its type in its record alone.
        if not arguments:
            declared = storage_of(handle).element_type.decode()
            arguments = (declared,) if declared else ()
        return cls._typed(arguments)

    @classmethod
    def _adopt(cls, root, synchronized):
        made = super()._adopt(root, synchronized)
        made._exports = []
        return made

    def tolist(self):
        """The elements, at one moment, as a list of Python's."""
        return self._chunk(0, _GREATEST)

    def _chunk(self, start, stop):
        """A range of the elements, read in a copy of it: whatever other threads do, a native is one step."""
        chunk = ArrayList.slice(self, start, stop, 1, self, self)
        if storage_of(chunk.handle).storage == _natives.LINKED:
            chunk = gathered_root(chunk)
        return values_in(chunk)

    def __len__(self):
        return _natives.ArrayList.size(self)

    def __getitem__(self, index):
        if isinstance(index, slice):
            return self._sliced(index)
        return _values.value_of(ArrayList.operator_index(self, index_of(index)))

    def _sliced(self, part):
        return self._with_elements_of(ArrayList.slice(self, *bounds(part, self)))

    def _with_elements_of(self, source):
        """A new collection of this class with the elements of a list, which natives make of another declared type."""
        raise NotImplementedError

    def __iter__(self):
        position, size = 0, _FIRST_CHUNK
        while True:
            changes = self._changes
            chunk = self._chunk(position, position + (1 if self._exports else size))
            if not chunk:
                return
            for value in chunk:
                position += 1
                yield value
                # What has been read ahead is what the list had then.
                if self._changes != changes or self._exports:
                    break
            size = min(2 * size, _LARGEST_CHUNK)

    def __reversed__(self):
        position, size = len(self), _FIRST_CHUNK
        while position > 0:
            changes = self._changes
            start = max(0, position - (1 if self._exports else size))
            chunk = self._chunk(start, position)
            if len(chunk) < position - start:
                return
            while chunk:
                position -= 1
                yield chunk.pop()
                if self._changes != changes or self._exports:
                    break
            size = min(2 * size, _LARGEST_CHUNK)

    def _needle(self, value):
        """The value as the list is searched for it; None when it cannot be in it."""
        primitive = primitive_of(self.handle)
        if primitive is not None:
            return _values.needle_for(value, primitive)
        try:
            return _values.element_for(value, self._declared)
        except (TypeError, ValueError, OverflowError):
            return None

    def __contains__(self, value):
        needle = self._needle(value)
        return needle is not None and ArrayList.indexOf(self, needle, 0) >= 0

    def index(self, value, start=0, stop=_GREATEST):
        """The first index of the value within the bounds; ValueError when it is not there."""
        count = len(self)
        start, stop = (max(0, bound + count) if bound < 0 else bound for bound in map(clamped, (start, stop)))
        needle = self._needle(value)
        found = -1 if needle is None or start >= count else ArrayList.indexOf(self, needle, start)
        if not 0 <= found < stop:
            raise ValueException(f'{value!r} is not in {type(self).__name__}')
        return found

    def count(self, value):
        """How many elements equal the value."""
        needle = self._needle(value)
        return 0 if needle is None else ArrayList.count(self, needle)

    @representation
    def __repr__(self):
        return self._repr_of(repr(self.tolist()))

    def __str__(self):
        return _values.value_of(ArrayList.toString(self))

    def _primitive_for_view(self):
        primitive = primitive_of(self.handle)
        if primitive is None:
            raise BufferError(f'a {type(self).__name__} whose elements are in boxes has no buffer')
        return primitive
