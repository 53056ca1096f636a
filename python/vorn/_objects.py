"""What all collections of the package share: the handle, the classes of element types, one object for each handle."""

import ctypes
import functools
import operator
import threading
import weakref
from reprlib import recursive_repr

from . import _natives, _values
from ._types import spelling, type_argument

# A handle that Python holds stays where it is, so that its address says whether there is an object for it already.
_objects = weakref.WeakValueDictionary()
_objects_lock = threading.RLock()

# The classes of the language by their short names: the class here, and whether it is the synchronised form.
_families = {}
_typed_classes = {}


def nesting(method):
    """A method that calls itself for nested collections, and ends in RecursionError where these are too deep."""
    @functools.wraps(method)
    def call(*arguments):
        try:
            return method(*arguments)
        except ctypes.ArgumentError as error:
            # What ctypes makes of a RecursionError in its own calls.
            if 'RecursionError' in str(error):
                raise RecursionError('collections are nested too deeply') from None
            raise
    return call


def representation(method):
    """A __repr__ that shows a collection within itself as three dots."""
    return nesting(recursive_repr('...')(method))


class Object:
    """An object of the language. Made by the runtime; the same object is the same one in Python, while that is used."""

    __slots__ = ('handle', '_root', '__weakref__')
    language_name = 'Object'
    family = 'object'

    def __new__(cls, *_, **__):
        raise TypeError(f'{cls.__name__} objects come from the runtime')

    @property
    def type_name(self):
        """The full name of its class in the language."""
        return _natives.type_name(self.handle).decode()

    def __repr__(self):
        return f'<vorn object {self.type_name} at {self.handle:#x}>'


def _adopted(cls, root):
    """A new object of the class for a handle that has none yet."""
    made = object.__new__(cls)
    made.handle, made._root = root.handle, root
    return made


def _split(name):
    """The short name of a class, and its type arguments."""
    head, _, rest = name.partition('<')
    arguments, depth, start = [], 0, 0
    rest = rest[:-1]
    for position, letter in enumerate(rest):
        if letter == ',' and depth == 0:
            arguments.append(rest[start:position].strip())
            start = position + 1
        depth += (letter == '<') - (letter == '>')
    if rest:
        arguments.append(rest[start:].strip())
    return head, tuple(arguments)


def wrapper_of(root):
    """The one object for a handle that is no value of Python."""
    with _objects_lock:
        known = _objects.get(root.handle)
        if known is not None:
            return known
        head, arguments = _split(_natives.type_name(root.handle).decode())
        module, _, short_name = head.rpartition('.')
        if module == 'vorn.collections' and short_name in _families:
            generic, synchronized = _families[short_name]
            made = generic._class_of_handle(root.handle, arguments)
            made = made._adopt(root, synchronized)
        else:
            made = _adopted(Object, root)
        _objects[root.handle] = made
        return made


_values.wrapper_of = wrapper_of


class Collection(Object):
    """The base of the collections.

    `Class[type]` is the class for elements of a declared type: int, float, bool and str stand for the language's Long,
    Double, Boolean and String, other types go by their names, as in List['Byte'].
    """

    __slots__ = ('synchronized', '_changes')
    _plain = _synchronized = None  # the short names of the class in the language
    _argument_count = 1
    element_types = ()
    _is_source = False  # whether the natives take its elements as those of a list

    def __init_subclass__(cls, plain=None, synchronized=None, **keywords):
        super().__init_subclass__(**keywords)
        if plain is not None:
            cls._plain, cls._synchronized, cls._generic, cls.language_name = plain, synchronized, cls, plain
            _families[plain] = (cls, False)
            if synchronized is not None:
                _families[synchronized] = (cls, True)

    def __class_getitem__(cls, arguments):
        arguments = arguments if isinstance(arguments, tuple) else (arguments,)
        if cls.element_types:
            raise TypeError(f'{cls.__name__} has its types of elements already')
        if cls._argument_count not in (None, len(arguments)):
            raise TypeError(f'{cls.__name__} takes {cls._argument_count} types of elements, not {len(arguments)}')
        return cls._typed(tuple(type_argument(argument) for argument in arguments))

    @classmethod
    def _typed(cls, arguments):
        if not arguments:
            return cls
        typed = _typed_classes.get((cls, arguments))
        if typed is None:
            name = f'{cls.__name__}[{", ".join(map(spelling, arguments))}]'
            made = type(cls)(name, (cls,), {
                '__slots__': (), '__doc__': cls.__doc__, '__module__': cls.__module__, 'element_types': arguments,
                'language_name': f'{cls._plain}<{",".join(arguments)}>'})
            typed = _typed_classes.setdefault((cls, arguments), made)
        return typed

    @classmethod
    def _class_of_handle(cls, _, arguments):
        return cls._typed(arguments)

    def __new__(cls, *_, synchronized=False, **__):
        if cls._plain is None:
            raise TypeError(f'{cls.__name__} has no objects of its own')
        return cls._empty(synchronized)

    @classmethod
    def _empty(cls, synchronized=False):
        """A new object of the language's class, empty."""
        short_name = cls._plain
        if synchronized:
            short_name = cls._synchronized
            if short_name is None:
                raise TypeError(f'there is no synchronized {cls.__name__}')
        arguments = f'<{",".join(cls.element_types)}>' if cls.element_types else ''
        root = _natives.object_new(f'{short_name}{arguments}'.encode())
        return cls._registered(root, bool(synchronized))

    @classmethod
    def _registered(cls, root, synchronized=False):
        """The object for a new handle."""
        made = cls._adopt(root, synchronized)
        with _objects_lock:
            _objects[root.handle] = made
        return made

    @classmethod
    def _adopt(cls, root, synchronized):
        made = _adopted(cls, root)
        made.synchronized = synchronized
        made._changes = 0
        return made

    @property
    def _declared(self):
        """The declared type of elements, '' when there is none."""
        return self.element_types[-1] if self.element_types else ''

    def _class_text(self):
        """How the class is written in Python."""
        return f'{type(self).__module__.partition(".")[0]}.{type(self).__name__}'

    def _repr_of(self, contents):
        return f'{self._class_text()}({contents}{", synchronized=True" if self.synchronized else ""})'

    def _equals(self, other):
        """Equality as the language has it, which ends for collections that contain themselves too."""
        return _natives.equals(self, other) != 0

    def __copy__(self):
        return self.copy()

    def _origin(self):
        """What its class is made of, for pickles, which know classes by their names: the class without declared types,
        and these types."""
        cls = type(self)
        return (cls.__mro__[1], cls.element_types) if cls.__dict__.get('element_types') else (cls, ())

    def __reduce__(self):
        # Contents follow one by one, so that a collection may contain itself.
        return (_restored, (*self._origin(), self.synchronized), None, *self._contents_to_restore())

    def _contents_to_restore(self):
        """The iterators of elements and of pairs that a pickle stores."""
        raise NotImplementedError


class Ordered:
    """The order of a sequence among others, for which the class has `_compared(other, compare)`."""

    __slots__ = ()

    def __lt__(self, other):
        return self._compared(other, operator.lt)

    def __le__(self, other):
        return self._compared(other, operator.le)

    def __gt__(self, other):
        return self._compared(other, operator.gt)

    def __ge__(self, other):
        return self._compared(other, operator.ge)


class Table(Collection):
    """The common part of maps and sets."""

    __slots__ = ()
    __hash__ = None

    def copy(self):
        """A new collection of the same class with the same contents."""
        made = type(self)._empty(self.synchronized)
        made.update(self)
        return made

    def _walk(self, listed):
        """What `listed` gives for one moment, as long as the size stays what it was."""
        size = len(self)
        for each in listed():
            yield each
            if len(self) != size:
                raise RuntimeError(f'{type(self).__name__} changed size during iteration')


def _restored(generic, arguments, synchronized):
    return generic._typed(arguments)._empty(synchronized)
