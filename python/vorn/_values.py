"""Values of Python as handles of the language, and back.

What is returned by the functions that make handles has an attribute `handle` and keeps it alive: a Root, NULL, or a
collection of this package.
"""

import array
import ctypes
import operator

from . import _natives
from ._errors import TypeException
from ._roots import NULL, Root
from ._types import DOUBLE, INT, LONG, PRIMITIVES, Char, CodeUnit

_COPIED = (list, dict, set, frozenset, bytes, bytearray)


def _boolean(value):
    return Root(_natives.box_boolean(value))


def _text(value):
    data = value.encode()
    if b'\0' in data:
        raise ValueError('a String of the language holds no NUL character')
    return _natives.string_new(data, len(data))


def _whole_number(value):
    for primitive in (INT, LONG):
        if primitive.holds(value):
            return _natives.box_integer(primitive.encoded, value)
    if 0 < value < 2**64:
        return _natives.box_integer(b'ULong', value - 2**64)  # the same bits
    raise OverflowError('an integer beyond 64 bits')


def _floating(value):
    return _natives.box_floating(DOUBLE.encoded, value)


def _char(value):
    return _natives.box_integer(b'Char', ord(value))


def _code_unit(value):
    return _natives.box_integer(b'CodeUnit', int(value))


def _tuple(value):
    return tuple_of(value, b'Tuple')


def tuple_of(values, class_name):
    """A new tuple of the language; what the values become is kept alive by the list `items` until the tuple has it."""
    items = [handle_of(value) for value in values]
    handles = (ctypes.c_void_p * len(items))(*[item.handle for item in items])
    return _natives.tuple_new(class_name, ctypes.addressof(handles), len(items))


# By the exact type; derived types are found by their bases.
_MAKERS = {bool: _boolean, int: _whole_number, float: _floating, str: _text, tuple: _tuple, Char: _char,
           CodeUnit: _code_unit}


def handle_of(value):
    """The value in the language: None, a bool, int, float, str, tuple or collection of this package.

    TypeError for anything else, OverflowError for an int beyond 64 bits, ValueError for a text that the language does
    not hold.
    """
    if value is None:
        return NULL
    maker = _MAKERS.get(type(value))
    if maker is not None:
        return maker(value)
    if hasattr(value, 'handle') and hasattr(type(value), 'language_name'):
        return value
    if isinstance(value, _COPIED):
        raise TypeError(f'a {type(value).__name__} is not kept by the language: copy it into a collection of vorn')
    for base in type(value).__mro__:
        if base in _MAKERS:
            return _MAKERS[base](value)
    if hasattr(value, '__index__'):
        return _whole_number(operator.index(value))
    raise TypeError(f'the language has no values of the type {type(value).__name__}')


def element_for(value, declared, owner='ArrayList'):
    """The value as an element of a declared type: in a box of just that type where it fits, else as handle_of has it,
    which the natives then accept or refuse."""
    primitive = PRIMITIVES.get(declared)
    if primitive is None or value is None:
        return handle_of(value)
    kind = type(value)
    if primitive.is_integer:
        if kind is int and primitive.holds(value):
            return _natives.box_integer(primitive.encoded, value)
        if owner == 'ArrayList' and isinstance(value, int) and 2**63 <= value < 2**64:
            # The natives of lists would take the bits for those of a negative number.
            raise TypeException(f'{owner}<{declared}> cannot accept vorn.ULong')
    elif primitive.is_floating:
        if kind is float or kind is int:
            return _natives.box_floating(primitive.encoded, value)
    elif declared == 'Char':
        if isinstance(value, str) and len(value) == 1 and not '\ud800' <= value <= '\udfff':
            return _char(value)
    elif declared == 'CodeUnit':
        if isinstance(value, int) and not isinstance(value, bool) and 0 <= value <= 0xFFFF:
            return _code_unit(value)
    return handle_of(value)


def strict_element(value, declared, owner):
    """element_for where no native checks the type: a value that a declared primitive type or String does not take
    raises the TypeException that lists raise."""
    handle = element_for(value, declared, owner)
    if declared in PRIMITIVES or declared == 'String':
        name = type_name_of(handle)
        if name != f'vorn.{declared}' and not (declared == 'String' and handle is NULL):
            raise TypeException(f'{owner}<{declared}> cannot accept {name}')
    return handle


def needle_for(value, primitive):
    """The value as unboxed elements of the type are searched for it; None when none of them can equal it."""
    if primitive.is_integer:
        if isinstance(value, float) and value.is_integer():
            value = int(value)
        if hasattr(value, '__index__') and not isinstance(value, (bool, CodeUnit)):
            value = operator.index(value)
            if not primitive.least <= value <= primitive.greatest:
                return None
            return _natives.box_integer(primitive.encoded, value - 2**64 if value >= 2**63 else value)
        return None
    if primitive.is_floating:
        if not isinstance(value, (int, float)) or isinstance(value, (bool, CodeUnit)):
            return None
        try:
            number = ctypes.c_float(value).value if primitive.format == 'f' else float(value)
        except OverflowError:
            return None
        return _natives.box_floating(primitive.encoded, number) if number == value else None
    if primitive.name == 'Boolean':
        return _boolean(value) if isinstance(value, bool) else None
    if primitive.name == 'Char':
        return _char(value) if isinstance(value, str) and len(value) == 1 else None
    if isinstance(value, int) and not isinstance(value, bool) and 0 <= value <= 0xFFFF:
        return _code_unit(value)
    return None


def key_of(value, declared=''):
    """The value as a key to look for; None for one that no collection can hold, such as an int beyond 64 bits.

    Raises TypeError for what Python cannot hash either.
    """
    try:
        return element_for(value, declared)
    except (TypeError, ValueError, OverflowError):
        hash(value)
        return None


# ---- From the language -----------------------------------------------------------------------------------------------

def _read_integer(root):
    number = ctypes.c_int64()
    _natives.unbox_integer(root.handle, ctypes.byref(number))
    return number.value


def _read_unsigned(root):
    return _read_integer(root) & (2**64 - 1)


def _read_floating(root):
    number = ctypes.c_double()
    _natives.unbox_floating(root.handle, ctypes.byref(number))
    return number.value


def _read_boolean(root):
    truth = ctypes.c_bool()
    _natives.unbox_boolean(root.handle, ctypes.byref(truth))
    return truth.value


def _read_text(root):
    # What is no UTF-8 can only come from another language.
    return _natives.string_text(root.handle).decode(errors='replace')


def character(code_point):
    """A Char; what is no scalar value, which only raw writes can make, reads as the replacement character."""
    is_scalar = 0 <= code_point <= 0x10FFFF and not 0xD800 <= code_point <= 0xDFFF
    return Char(chr(code_point if is_scalar else 0xFFFD))


_READERS = {f'vorn.{name}'.encode(): _read_integer for name, each in PRIMITIVES.items() if each.is_integer}
_READERS.update({
    b'vorn.ULong': _read_unsigned, b'vorn.Float': _read_floating, b'vorn.Double': _read_floating,
    b'vorn.Boolean': _read_boolean, b'vorn.String': _read_text,
    b'vorn.Char': lambda root: character(_read_integer(root)),
    b'vorn.CodeUnit': lambda root: CodeUnit(_read_integer(root) & 0xFFFF)})

# Makes the object of Python for any other handle; set by the module that knows the collections.
wrapper_of = None


def value_of(root):
    """The value of Python for a handle; for null None."""
    if root.handle is None:
        return None
    reader = _READERS.get(_natives.type_name(root.handle))
    return reader(root) if reader is not None else wrapper_of(root)


def type_name_of(handle):
    """The language's name of the type of a handle; "null" for null."""
    name = _natives.type_name(handle.handle)
    return 'null' if name is None else name.decode()


# ---- Many at once ----------------------------------------------------------------------------------------------------

def unboxed(values, declared):
    """A list or tuple of values as the raw elements of a primitive type: the type and the elements as an array, or
    None where that cannot be, or where the language would not take every value as it is."""
    kinds = set(map(type, values))
    if not declared:
        # What a list of no declared type adopts, when its values come one by one.
        primitive = {int: INT, float: DOUBLE}.get(kinds.pop()) if len(kinds) == 1 else None
    else:
        primitive = PRIMITIVES.get(declared)
        if primitive is None or not kinds <= _accepted_kinds(primitive):
            return None
    if primitive is None:
        return None
    try:
        if primitive.name == 'Char':
            elements = array.array('I', map(ord, values))
            return None if any(0xD800 <= code <= 0xDFFF for code in elements) else (primitive, elements)
        elements = array.array(primitive.format.replace('?', 'B'), values)
    except (OverflowError, TypeError):
        return None
    if primitive.format == 'Q' and not all(map(primitive.holds, values)):
        return None
    return primitive, elements


def _accepted_kinds(primitive):
    if primitive.is_integer:
        return {int}
    if primitive.is_floating:
        return {float, int}
    return {'Boolean': {bool}, 'Char': {Char, str}, 'CodeUnit': {CodeUnit, int}}[primitive.name]


def from_unboxed(primitive, data):
    """The values of raw elements."""
    elements = array.array(primitive.format.replace('?', 'B'))
    elements.frombytes(data)
    if primitive.name == 'Boolean':
        return [element != 0 for element in elements]
    if primitive.name == 'Char':
        return [character(element) for element in elements]
    if primitive.name == 'CodeUnit':
        return [CodeUnit(element) for element in elements]
    return elements.tolist()


def fill_unboxed(target, primitive, elements):
    """Gives an empty list declared with the type, which nobody else knows, the raw elements."""
    if not elements:
        return  # an empty list need not keep them unboxed yet
    _natives.ArrayList.reserve(target, len(elements))
    ctypes.memmove(_natives.list_data(target.handle), elements.buffer_info()[0], len(elements) * primitive.width)
    _natives.ArrayList.commitPrimitiveDataSize(target, len(elements))
