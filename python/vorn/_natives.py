"""The functions of the libraries that this package calls.

What may allocate, raise or throw goes through the runtime's `vorn_call`, which turns C++ exceptions into pending errors
and writes a returned handle into its rooted slot before anything else can happen. What only reads is called directly.

A shape has a letter for the result and for each parameter: h for a handle (an object with the attribute `handle`, which
the call keeps alive; a result is a Root), s for bytes, p for an address, i for a 64-bit integer, n for an int, d for a
double, b for a bool, v for no result. A result H is a handle that is null only when there is no memory.
"""

import ctypes
from ctypes import c_bool, c_char_p, c_double, c_int, c_int64, c_size_t, c_uint64, c_void_p

from ._errors import MemoryException, raise_pending
from ._library import function
from ._roots import Root

_LETTERS_OF_C = str.maketrans('Hsp', 'hhh')
_WORDS = {'h': c_void_p, 's': c_char_p, 'p': c_void_p, 'i': c_int64, 'd': c_double, 'b': c_int64}
_RESULTS = {'p': c_void_p, 'i': c_int64, 'n': c_int64, 'd': c_double, 'b': c_int64}

# Without declared types of arguments, which would be converted by calls that may run into the limit of recursion.
_call = function('vorn_call')


def _structure(letters):
    return type(f'Words_{letters}', (ctypes.Structure,),
                {'_fields_': [(f'word_{index}', _WORDS[letter]) for index, letter in enumerate(letters)]})


def checked(receiver, family):
    """A native ends the process when its receiver has another sort of record: that must not come from Python."""
    if getattr(receiver, 'family', family) != family:
        raise TypeError(f'{type(receiver).__name__} is no {family}')


def guarded(name, shape, family=None):
    """The function as a callable that raises what the function raises or throws. A native has a family of receivers."""
    result_letter, letters = shape[0], shape[2:-1]
    words = _structure(letters)
    takes_handle = [letter == 'h' for letter in letters]
    address = c_void_p(ctypes.cast(function(name), c_void_p).value)
    text = shape.translate(_LETTERS_OF_C).encode()

    def call_for(slot, arguments):
        if family is not None:
            checked(arguments[0], family)
        given = words(*[argument.handle if is_handle else argument
                        for argument, is_handle in zip(arguments, takes_handle)])
        raised = _call(text, address, ctypes.byref(given), slot)
        if raised:
            if raised < 0:
                raise ImportError(f'the runtime cannot call a function of the shape {text.decode()}: '
                                  f'it is of another version than this package')
            raise_pending(raised)

    if result_letter in 'hH':
        def call(*arguments):
            root = Root()
            call_for(ctypes.byref(root.slot), arguments)
            if root.load().handle is None and result_letter == 'H':
                raise MemoryException('there is not enough memory')
            return root
    elif result_letter == 'v':
        def call(*arguments):
            call_for(None, arguments)
    else:
        result_type = _RESULTS[result_letter]

        def call(*arguments):
            result = result_type()
            call_for(ctypes.byref(result), arguments)
            return result.value

    call.__name__, call.shape = name, text.decode()
    return call


def sized(name, family):
    """A native that gives the size of a collection."""
    native = direct(name, c_int64, c_void_p)

    def size(collection):
        checked(collection, family)
        return native(collection.handle)
    return size


def direct(name, result, *parameters):
    """A function that neither allocates nor raises nor throws."""
    native = function(name)
    native.restype, native.argtypes = result, parameters
    return native


class Options(ctypes.Structure):
    """vorn_runtime_options with room for what later versions may add; only the runtime looks into it."""

    _fields_ = [('struct_size', c_size_t), ('rest', c_uint64 * 31)]


class ListStorage(ctypes.Structure):
    """vorn_list_storage_info."""

    _fields_ = [('storage', c_int), ('element_type', c_char_p), ('primitive_type', c_char_p), ('size', c_uint64),
                ('capacity', c_uint64), ('bytes_per_element', c_uint64)]


class Statistics(ctypes.Structure):
    """vorn_heap_statistics."""

    _fields_ = [('bytes_live', c_uint64), ('allocations', c_uint64), ('bytes_allocated', c_uint64),
                ('collections', c_uint64)]


LINKED, UNBOXED = 1, 2  # ListStorage.storage

# ---- The runtime ----

runtime_start = direct('vorn_runtime_start', c_int, c_void_p)
parse_options = direct('vorn_runtime_parse_options', c_int, c_char_p, c_void_p)
heap_collect = direct('vorn_heap_collect', None)
get_statistics = direct('vorn_heap_get_statistics', None, c_void_p)
type_name = direct('vorn_type_name', c_char_p, c_void_p)
string_text = direct('vorn_string_text', c_char_p, c_void_p)
unbox_integer = direct('vorn_unbox_integer', c_int, c_void_p, c_void_p)
unbox_floating = direct('vorn_unbox_floating', c_int, c_void_p, c_void_p)
unbox_boolean = direct('vorn_unbox_boolean', c_int, c_void_p, c_void_p)
box_boolean = direct('vorn_box_boolean', c_void_p, c_bool)
list_storage = direct('vorn_list_get_storage', c_int, c_void_p, c_void_p)

box_integer = guarded('vorn_box_integer', 'H(si)')
box_floating = guarded('vorn_box_floating', 'H(sd)')
string_new = guarded('vorn_string_new', 'H(si)')
object_new = guarded('vorn_object_new', 'H(s)')
tuple_new = guarded('vorn_tuple_new', 'H(spi)')
equals = guarded('vorn_equals', 'n(hh)')


class _Natives:
    """The natives of one class of the language; `family` is that of the receivers."""

    def __init__(self, prefix, family, **shapes):
        for name, shape in shapes.items():
            setattr(self, name, guarded(f'vorn_collections_{prefix}_{name}', shape, family))
        self.size = sized(f'vorn_collections_{prefix}_size', family)


ArrayList = _Natives(
    'ArrayList', 'list', add='v(hh)', addPrimitiveI64='v(his)', addPrimitiveDouble='v(hds)', addAt='v(hih)',
    addAll='v(hh)', addAllAt='v(hih)', operator_index='h(hi)', operator_index_eq='v(hih)', removeAt='v(hi)',
    remove='b(hh)', clear='v(h)', count='i(hh)', indexOf='i(hhi)', reserve='v(hi)', commitPrimitiveDataSize='v(hi)',
    slice='H(hiiihh)', sliceAssign='v(hiiihhh)', repeat='H(hi)', reverse='v(h)', sort='v(h)', primitiveDataPtr='h(h)',
    toString='H(h)')
ImmutableList = _Natives('ImmutableList', 'list', ctor='v(hh)', toString='H(h)')
Tuple = _Natives('Tuple', 'tuple', operator_index='h(hi)', toString='H(h)')
Array = _Natives(
    'Array', 'array', ctor='v(hi)', operator_index='h(hi)', operator_index_eq='v(hih)', count='i(hh)', indexOf='i(hhi)',
    sort='v(h)', reverse='v(h)', slice='H(hiiihh)', sliceAssign='v(hiiihhh)', rawDataPtr='h(h)', toString='H(h)')
Map = _Natives(
    'Map', 'map', put='v(hhh)', remove='b(hh)', clear='v(h)', reserve='v(hi)', tryGet='b(hhp)', operator_in='b(hh)',
    containsValue='b(hh)', keys='H(h)', values='H(h)', items='H(h)', toString='H(h)')
HashSet = _Natives(
    'HashSet', 'set', add='v(hh)', remove='b(hh)', operator_in='b(hh)', operator_index='h(hi)', items='H(h)',
    clear='v(h)', reserve='v(hi)', toString='H(h)')

list_get_int = direct('vorn_collections_ArrayList_getInt', c_int64, c_void_p, c_int64)
list_get_double = direct('vorn_collections_ArrayList_getDouble', c_double, c_void_p, c_int64)
list_data = direct('vorn_collections_ArrayList_primitiveDataPtr', c_void_p, c_void_p)
