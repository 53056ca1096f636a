"""Maps: Map, which keeps the order of insertion, and SortedMap, which keeps that of its keys."""

import ctypes
from collections.abc import ItemsView, KeysView, Mapping, MutableMapping, ValuesView

from . import _natives, _values
from ._errors import KeyException, NullException
from ._immutable import Tuple
from ._natives import Map as natives
from ._objects import Table, representation
from ._roots import Root
from ._sequences import values_in

_ABSENT = object()


class _Keys(KeysView):
    __slots__ = ()

    def __reversed__(self):
        return reversed(self._mapping)

    def __repr__(self):
        return f'vorn.{type(self._mapping).__name__}.keys({list(self)!r})'

    @classmethod
    def _from_iterable(cls, values):
        return set(values)


class _Values(ValuesView):
    __slots__ = ()

    def __iter__(self):
        return self._mapping._walk(lambda: values_in(natives.values(self._mapping)))

    def __contains__(self, value):
        try:
            return natives.containsValue(self._mapping, _values.handle_of(value))
        except (TypeError, ValueError, OverflowError):
            return False

    def __reversed__(self):
        return reversed(list(self))

    def __repr__(self):
        return f'vorn.{type(self._mapping).__name__}.values({list(self)!r})'


class _Items(ItemsView):
    __slots__ = ()

    def __iter__(self):
        return self._mapping._walk(self._mapping._pairs)

    def __contains__(self, pair):
        if not isinstance(pair, (tuple, Tuple)) or len(pair) != 2:
            return False
        key, value = pair
        return key in self._mapping and self._mapping[key] == value

    def __reversed__(self):
        return reversed(list(self))

    def __repr__(self):
        return f'vorn.{type(self._mapping).__name__}.items({list(self)!r})'

    @classmethod
    def _from_iterable(cls, values):
        return set(values)


class _AnyMap(Table, MutableMapping):
    """The common part of Map and SortedMap."""

    __slots__ = ()
    family = 'map'
    _argument_count = 2

    def __init__(self, other=(), /, *, synchronized=False, **items):
        self.update(other, **items)

    # ---- Keys and values ----

    def _key(self, key):
        """The key as one to store."""
        if key is None:
            raise NullException('Map key cannot be null')
        if not self.element_types:
            return _values.handle_of(key)
        return _values.strict_element(key, self.element_types[0], type(self)._generic.__name__)

    def _value(self, value):
        if not self.element_types:
            return _values.handle_of(value)
        return _values.strict_element(value, self.element_types[1], type(self)._generic.__name__)

    def _sought(self, key):
        """The key as one to look for; None for one that no map has."""
        return None if key is None else _values.key_of(key, self.element_types[0] if self.element_types else '')

    def _found(self, key, default=_ABSENT):
        sought = self._sought(key)
        if sought is not None:
            root = Root()
            if natives.tryGet(self, sought, ctypes.addressof(root.slot)):
                return _values.value_of(root.load())
        if default is _ABSENT:
            raise KeyException(key)
        return default

    def __getitem__(self, key):
        return self._found(key)

    def get(self, key, default=None):
        """The value of the key, else the default."""
        return self._found(key, default)

    def __contains__(self, key):
        sought = self._sought(key)
        return sought is not None and natives.operator_in(self, sought)

    def __setitem__(self, key, value):
        natives.put(self, self._key(key), self._value(value))

    def __delitem__(self, key):
        sought = self._sought(key)
        if sought is None or not natives.remove(self, sought):
            raise KeyException(key)

    def pop(self, key, default=_ABSENT):
        """Removes the key and returns its value, or the default when it is not there."""
        value = self._found(key, default)
        sought = self._sought(key)
        if sought is not None:
            natives.remove(self, sought)
        return value

    def popitem(self):
        """Removes and returns the last pair. Takes time in proportion to the size of the map."""
        keys = values_in(natives.keys(self))
        if not keys:
            error = KeyException('popitem(): the map is empty')
            error.message = 'popitem(): the map is empty'
            raise error
        return keys[-1], self.pop(keys[-1])

    def setdefault(self, key, default=None):
        """The value of the key, which is stored first when it is not there."""
        if key in self:
            return self[key]
        self[key] = default
        return default

    def clear(self):
        """Removes all pairs."""
        natives.clear(self)

    @classmethod
    def fromkeys(cls, iterable, value=None):
        """A new map with these keys, all of the same value."""
        made = cls._empty()
        for key in iterable:
            made[key] = value
        return made

    # ---- All of them ----

    def __len__(self):
        return _natives.Map.size(self)

    def _pairs(self):
        # As tuples of the language both halves are of one moment, which matters when threads share the map.
        if self.synchronized:
            listing = natives.items(self)
            count = _natives.ArrayList.size(listing)
            pairs = [_natives.ArrayList.operator_index(listing, index) for index in range(count)]
            return [tuple(_values.value_of(_natives.Tuple.operator_index(pair, half)) for half in (0, 1))
                    for pair in pairs]
        return list(zip(values_in(natives.keys(self)), values_in(natives.values(self))))

    def __iter__(self):
        return self._walk(lambda: values_in(natives.keys(self)))

    def __reversed__(self):
        return self._walk(lambda: reversed(values_in(natives.keys(self))))

    def keys(self):
        """A view of the keys."""
        return _Keys(self)

    def values(self):
        """A view of the values."""
        return _Values(self)

    def items(self):
        """A view of the pairs."""
        return _Items(self)

    def __eq__(self, other):
        if isinstance(other, _AnyMap):
            return self._equals(other)
        if not isinstance(other, Mapping):
            return NotImplemented
        return len(self) == len(other) and all(pair in self.items() for pair in other.items())

    def __or__(self, other):
        if not isinstance(other, Mapping):
            return NotImplemented
        made = self.copy()
        made.update(other)
        return made

    def __ror__(self, other):
        if not isinstance(other, Mapping):
            return NotImplemented
        made = type(self)._empty(self.synchronized)
        made.update(other)
        made.update(self)
        return made

    def __ior__(self, other):
        self.update(other)
        return self

    @representation
    def __repr__(self):
        pairs = ', '.join(f'{key!r}: {value!r}' for key, value in self._pairs())
        return self._repr_of(f'{{{pairs}}}')

    def __str__(self):
        return _values.value_of(natives.toString(self))

    def _contents_to_restore(self):
        return None, iter(self._pairs())


class Map(_AnyMap, plain='Map', synchronized='HashMapSync'):
    """A hash map in the order of insertion. Behaves as a dict does.

    The keys are those of the language: equal numbers are one key, but True is not the key 1. None is no key.
    """

    __slots__ = ()


class SortedMap(_AnyMap, plain='SortedMap', synchronized='SortedMapSync'):
    """A map in the order of its keys, of whatever types these are. Otherwise as Map."""

    __slots__ = ()
