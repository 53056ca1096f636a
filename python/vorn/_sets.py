"""Sets."""

from collections import abc
from itertools import chain

from . import _natives, _values
from ._errors import KeyException
from ._natives import HashSet as natives
from ._objects import Table, representation
from ._sequences import values_in


class Set(Table, abc.MutableSet, plain='HashSet', synchronized='HashSetSync'):
    """A hash set. Behaves as a set of Python's does.

    Elements are compared as the keys of a Map: equal numbers are one element, but True is not 1.
    """

    __slots__ = ()
    family = 'set'
    _is_source = True

    def __init__(self, iterable=(), *, synchronized=False):
        self.update(iterable)

    @classmethod
    def _from_iterable(cls, iterable):
        made = cls._empty()
        made.update(iterable)
        return made

    def _sought(self, value):
        return _values.key_of(value, self._declared)

    def add(self, value):
        """Adds the value, unless an equal one is there."""
        # The native would put the new one in the place of the equal one.
        element = _values.strict_element(value, self._declared, 'Set')
        if not natives.operator_in(self, element):
            natives.add(self, element)

    def discard(self, value):
        """Removes the value when it is there."""
        sought = self._sought(value)
        if sought is not None:
            natives.remove(self, sought)

    def remove(self, value):
        """Removes the value; KeyError when it is not there."""
        sought = self._sought(value)
        if sought is None or not natives.remove(self, sought):
            raise KeyException(value)

    def pop(self):
        """Removes and returns one element, the first; KeyError when there is none."""
        if not len(self):
            raise KeyException('pop from an empty set')
        first = natives.operator_index(self, 0)
        natives.remove(self, first)
        return _values.value_of(first)

    def clear(self):
        """Removes all elements."""
        natives.clear(self)

    def __contains__(self, value):
        sought = self._sought(value)
        return sought is not None and natives.operator_in(self, sought)

    def __len__(self):
        return _natives.HashSet.size(self)

    def tolist(self):
        """The elements, at one moment, as a list of Python's."""
        return values_in(natives.items(self))

    def __iter__(self):
        return self._walk(self.tolist)

    # ---- Algebra: the operators want sets, the methods take any iterables ----

    def update(self, *others):
        """Adds the elements of all others."""
        for value in [*chain.from_iterable(map(_elements, others))]:
            self.add(value)

    def union(self, *others):
        """A new set of what is in this one or in any other."""
        made = self.copy()
        made.update(*others)
        return made

    def intersection(self, *others):
        """A new set of what is in this one and in all others."""
        made = self.copy()
        made.intersection_update(*others)
        return made

    def difference(self, *others):
        """A new set of what is in this one and in no other."""
        made = self.copy()
        made.difference_update(*others)
        return made

    def symmetric_difference(self, other):
        """A new set of what is in one of the two alone."""
        made = self.copy()
        made.symmetric_difference_update(other)
        return made

    def intersection_update(self, *others):
        """Keeps what is in all others too."""
        for other in others:
            kept = self._like(other)
            for value in self.tolist():
                if value not in kept:
                    self.discard(value)

    def difference_update(self, *others):
        """Removes what is in any other."""
        for other in others:
            for value in _elements(other):
                self.discard(value)

    def symmetric_difference_update(self, other):
        """Removes what is in the other too, and adds what is there alone."""
        for value in _untyped(other):
            if value in self:
                self.discard(value)
            else:
                self.add(value)

    def issubset(self, other):
        """Whether all elements are in the other."""
        other = self._like(other)
        return all(value in other for value in self.tolist())

    def issuperset(self, other):
        """Whether this set has all elements of the other."""
        return all(value in self for value in _elements(other))

    def isdisjoint(self, other):
        """Whether the two have no element in common."""
        return not any(value in self for value in _elements(other))

    @staticmethod
    def _like(other):
        """The other as something to look elements up in, by the rules of this class where it is none of its own."""
        return other if isinstance(other, (Set, abc.Set)) else _untyped(other)

    def __or__(self, other):
        return self.union(other) if isinstance(other, abc.Set) else NotImplemented

    __ror__ = __or__

    def __and__(self, other):
        return self.intersection(other) if isinstance(other, abc.Set) else NotImplemented

    __rand__ = __and__

    def __sub__(self, other):
        return self.difference(other) if isinstance(other, abc.Set) else NotImplemented

    def __rsub__(self, other):
        return _untyped(other).difference(self) if isinstance(other, abc.Set) else NotImplemented

    def __xor__(self, other):
        return self.symmetric_difference(other) if isinstance(other, abc.Set) else NotImplemented

    __rxor__ = __xor__

    def __ior__(self, other):
        return self._in_place(self.update, other)

    def __iand__(self, other):
        return self._in_place(self.intersection_update, other)

    def __isub__(self, other):
        return self._in_place(self.difference_update, other)

    def __ixor__(self, other):
        return self._in_place(self.symmetric_difference_update, other)

    def _in_place(self, change, other):
        if not isinstance(other, abc.Set):
            return NotImplemented
        change(other)
        return self

    def __eq__(self, other):
        if isinstance(other, Set):
            return self._equals(other)
        return len(self) == len(other) and self.issuperset(other) if isinstance(other, abc.Set) else NotImplemented

    def __le__(self, other):
        return len(self) <= len(other) and self.issubset(other) if isinstance(other, abc.Set) else NotImplemented

    def __lt__(self, other):
        return len(self) < len(other) and self.issubset(other) if isinstance(other, abc.Set) else NotImplemented

    def __ge__(self, other):
        return len(self) >= len(other) and self.issuperset(other) if isinstance(other, abc.Set) else NotImplemented

    def __gt__(self, other):
        return len(self) > len(other) and self.issuperset(other) if isinstance(other, abc.Set) else NotImplemented

    @representation
    def __repr__(self):
        return self._repr_of(repr(self.tolist()) if len(self) else '')

    def __str__(self):
        return _values.value_of(natives.toString(self))

    def __reduce__(self):
        return (_restored_set, (*self._origin(), self.synchronized, self.tolist()))


def _elements(values):
    """The values, which changing a set does not change."""
    return values.tolist() if isinstance(values, Set) else list(values)


def _untyped(values):
    return Set._from_iterable(values)


def _restored_set(generic, arguments, synchronized, values):
    return generic._typed(arguments)(values, synchronized=synchronized)
