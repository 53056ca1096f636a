"""The embedding API and the list natives through ctypes, for the tests beside this file.

The shared libraries are found through VORN_LIB_DIR; VORN_TEST_HEAP ("heap=stress", ...) chooses the heap. A handle that
is used again after a call that may allocate sits in a Slot: the stress heap finds no other handles.
"""

import ctypes
import keyword
import os
from ctypes import (CFUNCTYPE, POINTER, Structure, c_bool, c_char_p, c_double, c_float, c_int, c_int8, c_int16, c_int32,
                    c_int64, c_longlong, c_size_t, c_uint, c_uint8, c_uint16, c_uint32, c_uint64, c_void_p)

HEAP_COLLECTED, HEAP_PLAIN, HEAP_STRESS = 0, 1, 2
FIELD_INTEGER, FIELD_FLOATING, FIELD_HANDLE = 0, 1, 2
LIST_OBJECTS, LIST_LINKED, LIST_PRIMITIVE = 0, 1, 2


class Options(Structure):
    _fields_ = [('struct_size', c_size_t), ('heap', c_int), ('stress_scans_stacks', c_int),
                ('stress_collect_one_in', c_uint), ('seed', c_uint64), ('collected_room_megabytes', c_uint),
                ('collected_free_space_divisor', c_uint), ('recent_blocks', c_uint), ('collected_small_pages', c_int)]


class FieldDefinition(Structure):
    _fields_ = [('name', c_char_p), ('type', c_int)]


EqualsHook = CFUNCTYPE(c_bool, c_void_p, c_void_p, c_void_p)
CompareHook = CFUNCTYPE(c_int, c_void_p, c_void_p, POINTER(c_bool), c_void_p)
HashHook = CFUNCTYPE(c_uint64, c_void_p, c_void_p)
ToStringHook = CFUNCTYPE(c_void_p, c_void_p, c_void_p)


class ClassDefinition(Structure):
    _fields_ = [('struct_size', c_size_t), ('name', c_char_p), ('base_name', c_char_p),
                ('fields', POINTER(FieldDefinition)), ('field_count', c_size_t), ('context', c_void_p),
                ('equals', EqualsHook), ('compare', CompareHook), ('hash', HashHook), ('to_string', ToStringHook)]


class HeapStatistics(Structure):
    _fields_ = [('bytes_live', c_uint64), ('allocations', c_uint64), ('bytes_allocated', c_uint64),
                ('collections', c_uint64)]


class ListStorageInfo(Structure):
    _fields_ = [('storage', c_int), ('element_type', c_char_p), ('primitive_type', c_char_p), ('size', c_uint64),
                ('capacity', c_uint64), ('bytes_per_element', c_uint64)]


# The primitive types with a boxing and an unboxing function each: the functions' suffix, the type of C.
TYPED_BOXES = {
    'SByte': ('sbyte', c_int8),
    'Byte': ('byte', c_uint8),
    'Short': ('short', c_int16),
    'UShort': ('ushort', c_uint16),
    'Int': ('int', c_int32),
    'UInt': ('uint', c_uint32),
    'Long': ('long', c_int64),
    'ULong': ('ulong', c_uint64),
    'Float': ('float', c_float),
    'Double': ('double', c_double),
    'Char': ('char', c_uint32),
    'CodeUnit': ('code_unit', c_uint16),
}

# Every function of vorn/runtime.h: result, arguments.
RUNTIME = {
    'vorn_runtime_start': (c_int, [POINTER(Options)]),
    'vorn_runtime_parse_options': (c_int, [c_char_p, POINTER(Options)]),
    'vorn_runtime_stop': (None, []),
    'vorn_thread_attach': (None, []),
    'vorn_thread_detach': (None, []),
    'vorn_box_integer': (c_void_p, [c_char_p, c_int64]),
    'vorn_box_floating': (c_void_p, [c_char_p, c_double]),
    'vorn_box_boolean': (c_void_p, [c_bool]),
    'vorn_unbox_integer': (c_int, [c_void_p, POINTER(c_int64)]),
    'vorn_unbox_floating': (c_int, [c_void_p, POINTER(c_double)]),
    'vorn_unbox_boolean': (c_int, [c_void_p, POINTER(c_bool)]),
    'vorn_string_new': (c_void_p, [c_char_p, c_size_t]),
    'vorn_text_new': (c_void_p, [c_char_p]),
    'vorn_string_text': (c_char_p, [c_void_p]),
    'vorn_object_new': (c_void_p, [c_char_p]),
    'vorn_is_object': (c_int, [c_void_p]),
    'vorn_type_name': (c_char_p, [c_void_p]),
    'vorn_is_instance': (c_int, [c_void_p, c_char_p]),
    'vorn_field_get_integer': (c_int, [c_void_p, c_char_p, POINTER(c_int64)]),
    'vorn_field_get_floating': (c_int, [c_void_p, c_char_p, POINTER(c_double)]),
    'vorn_field_get_handle': (c_int, [c_void_p, c_char_p, POINTER(c_void_p)]),
    'vorn_field_set_integer': (c_int, [c_void_p, c_char_p, c_int64]),
    'vorn_field_set_floating': (c_int, [c_void_p, c_char_p, c_double]),
    'vorn_field_set_handle': (c_int, [c_void_p, c_char_p, c_void_p]),
    'vorn_equals': (c_int, [c_void_p, c_void_p]),
    'vorn_class_define': (c_int, [POINTER(ClassDefinition)]),
    'vorn_raise': (None, [c_char_p, c_char_p]),
    'vorn_error_count': (c_size_t, []),
    'vorn_error_class': (c_char_p, [c_size_t]),
    'vorn_error_message': (c_char_p, [c_size_t]),
    'vorn_errors_clear': (None, []),
    'vorn_root_add': (None, [c_void_p]),
    'vorn_root_remove': (None, [c_void_p]),
    'vorn_heap_collect': (None, []),
    'vorn_heap_get_statistics': (None, [POINTER(HeapStatistics)]),
    'vorn_heap_fail_allocation': (None, [c_int64]),
    'vorn_heap_failure_happened': (c_int, []),
    'vorn_list_get_storage': (c_int, [c_void_p, POINTER(ListStorageInfo)]),
}
for _suffix, _type in TYPED_BOXES.values():
    RUNTIME[f'vorn_box_{_suffix}'] = (c_void_p, [_type])
    RUNTIME[f'vorn_unbox_{_suffix}'] = (c_int, [c_void_p, POINTER(_type)])

# Operations of the runtime for which there is no native yet; the second is a C++ function with a bool reference.
OPERATIONS = {
    'Vorn_objectToString': (c_char_p, [c_void_p]),
    '_Z26Vorn_collectionObjectsLessPvS_Rb': (c_bool, [c_void_p, c_void_p, POINTER(c_bool)]),
}

# The natives, named vorn_collections_ArrayList_...: result, arguments.
LIST_NATIVES = {
    'add': (None, [c_void_p, c_void_p]),
    'addInt': (None, [c_void_p, c_longlong]),
    'addPrimitiveI64': (None, [c_void_p, c_longlong, c_char_p]),
    'addPrimitiveDouble': (None, [c_void_p, c_double, c_char_p]),
    'addPrimitiveBool': (None, [c_void_p, c_bool]),
    'addIntToData': (None, [c_void_p, c_longlong]),
    'addAt': (None, [c_void_p, c_longlong, c_void_p]),
    'operator_index': (c_void_p, [c_void_p, c_longlong]),
    'operator_index_eq': (None, [c_void_p, c_longlong, c_void_p]),
    'getInt': (c_longlong, [c_void_p, c_longlong]),
    'getIntFast': (c_longlong, [c_void_p, c_longlong]),
    'getIntFromData': (c_longlong, [c_void_p, c_longlong]),
    'getDouble': (c_double, [c_void_p, c_longlong]),
    'removeAt': (None, [c_void_p, c_longlong]),
    'remove': (c_bool, [c_void_p, c_void_p]),
    'clear': (None, [c_void_p]),
    'size': (c_longlong, [c_void_p]),
    'sizeFast': (c_longlong, [c_void_p]),
    'count': (c_longlong, [c_void_p, c_void_p]),
    'operator_in': (c_bool, [c_void_p, c_void_p]),
    'indexOf': (c_longlong, [c_void_p, c_void_p, c_longlong]),
    'lastIndexOf': (c_longlong, [c_void_p, c_void_p, c_longlong]),
}


class Namespace:
    """Functions of the libraries by their names without the prefix; remembers which of them were called."""

    def __init__(self, libraries, prefix, functions):
        self.called = set()
        self.names = set()
        for name, (result, arguments) in functions.items():
            short_name = name.removeprefix(prefix)
            function = next(getattr(library, prefix + short_name) for library in libraries
                            if hasattr(library, prefix + short_name))
            function.restype, function.argtypes = result, arguments
            if keyword.iskeyword(short_name):
                short_name += '_'
            self.names.add(short_name)
            setattr(self, short_name, self._remembering(short_name, function))

    def _remembering(self, name, function):
        def call(*arguments):
            self.called.add(name)
            return function(*[argument.handle if isinstance(argument, Slot) else argument for argument in arguments])
        return call


def load(directory):
    """The two shared libraries, which resolve each other's symbols: both global, bound lazily."""
    mode = os.RTLD_GLOBAL | os.RTLD_LAZY
    return [ctypes.CDLL(os.path.join(directory, f'lib{name}.so'), mode=mode)
            for name in ('vorn_runtime', 'vorn_collections')]


_libraries = load(os.environ['VORN_LIB_DIR'])
runtime = Namespace(_libraries, 'vorn_', RUNTIME)
array_list = Namespace(_libraries, 'vorn_collections_ArrayList_', LIST_NATIVES)
_operations = Namespace(_libraries, '', OPERATIONS)
heap_description = os.environ.get('VORN_TEST_HEAP', 'heap=collected')


class Slot:
    """A registered root slot. Stays registered while the Python object lives."""

    def __init__(self, handle=None):
        self._cell = c_void_p()
        self._address = ctypes.addressof(self._cell)
        runtime.root_add(self._address)
        self._cell.value = handle

    def __del__(self):
        runtime.root_remove(self._address)

    @property
    def handle(self):
        return self._cell.value

    @handle.setter
    def handle(self, value):
        self._cell.value = value


def integer(type_name, value):
    return Slot(runtime.box_integer(type_name.encode(), value))


def floating(type_name, value):
    return Slot(runtime.box_floating(type_name.encode(), value))


def boolean(value):
    return Slot(runtime.box_boolean(value))


def string(text):
    data = text.encode()
    return Slot(runtime.string_new(data, len(data)))


def bare_text(text):
    return Slot(runtime.text_new(text.encode()))


def new(type_name):
    return Slot(runtime.object_new(type_name.encode()))


def type_name(handle):
    name = runtime.type_name(handle)
    return None if name is None else name.decode()


def unboxed(handle):
    """The Python value of a boxed value or text; None for null."""
    if not (handle.handle if isinstance(handle, Slot) else handle):
        return None
    whole, real, truth = c_int64(), c_double(), c_bool()
    if type_name(handle) == 'vorn.Boolean' and runtime.unbox_boolean(handle, truth):
        return truth.value
    if runtime.unbox_floating(handle, real):
        return real.value
    if runtime.unbox_integer(handle, whole):
        return whole.value
    text = runtime.string_text(handle)
    return None if text is None else text.decode()


def elements(a_list):
    return [unboxed(array_list.operator_index(a_list, i)) for i in range(array_list.size(a_list))]


def display(handle):
    """The language's toString."""
    return _operations.Vorn_objectToString(handle).decode()


def less(left, right):
    """Whether left comes before right; None when the two have no order."""
    result = c_bool()
    comparable = _operations._Z26Vorn_collectionObjectsLessPvS_Rb(left, right, result)
    return result.value if comparable else None


def storage(a_list):
    info = ListStorageInfo()
    if not runtime.list_get_storage(a_list, info):
        raise TypeError('not a list')
    return info


def take_errors():
    """The pending errors, oldest first, as (class, message); clears them."""
    errors = [(runtime.error_class(i).decode(), runtime.error_message(i).decode())
              for i in range(runtime.error_count())]
    runtime.errors_clear()
    return errors


def statistics():
    result = HeapStatistics()
    runtime.heap_get_statistics(result)
    return result


def start(description=heap_description):
    """Starts the runtime; the status of vorn_runtime_start."""
    options = Options()
    if not runtime.runtime_parse_options(description.encode(), options):
        raise ValueError(description)
    return runtime.runtime_start(options)
