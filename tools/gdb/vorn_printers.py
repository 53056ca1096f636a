"""Shows the runtime's records in gdb as what they hold.

    (gdb) source tools/gdb/vorn_printers.py
    (gdb) print *data              a ListData: storage, size, capacity and elements
    (gdb) print data->elementType  a RuntimeTypeName
    (gdb) print $vorn(handle)      whatever a handle stands for: a box's value, a text, a list with its elements

The kinds of unboxed elements come from the library's own table, which is read when this file is loaded.
"""

import os
import re
import struct

import gdb
import gdb.printing

_HERE = os.path.dirname(os.path.abspath(__file__))
# Where this file is installed, the table lies beside it.
_TABLE = next(table for table in (os.path.join(_HERE, 'kinds.def'),
                                  os.path.join(_HERE, '../../collections/core/kinds.def')) if os.path.exists(table))


def _read_kinds():
    """The rows of the kinds table: value -> (enumerator, element type, width)."""
    with open(_TABLE, encoding='utf-8') as table:
        rows = re.findall(r'^VORN_PRIMITIVE_KIND\((\d+), (\w+), ([\w:]+), (\d+),', table.read(), re.MULTILINE)
    return {int(value): (name, element_type, int(width)) for value, name, element_type, width in rows}


KINDS = _read_kinds()


def _decode(element_type, data):
    if element_type == 'float':
        return struct.unpack('<f', data)[0]
    if element_type == 'double':
        return struct.unpack('<d', data)[0]
    return int.from_bytes(data, 'little', signed=not element_type.startswith('std::uint'))


def _memory(address, length):
    return gdb.selected_inferior().read_memory(address, length).tobytes()


def _word(address):
    return int.from_bytes(_memory(address, 8), 'little')


def _type_name(name):
    """The text of a RuntimeTypeName, which points at an interned name."""
    if not int(name['name']):
        return ''
    view = name['name'].dereference()['text']
    return _memory(int(view['_M_str']), int(view['_M_len'])).decode()


def _class_name(record):
    """The name in an object's class descriptor; nothing when the program has no debugging information for it."""
    descriptor = record['runtimeClass']
    try:
        view = descriptor.dereference()['fullName']
        return _memory(int(view['_M_str']), int(view['_M_len'])).decode()
    except gdb.error:
        return None


def _is_object(address):
    """Alignment and the constant magic bits of an object's header."""
    return address % 16 == 0 and _word(address) & 0x00F8F8F8F8F8F8FF == 0x00F8F8F8F8F8F8FF


def _resolve(handle):
    """A handle as a value that prints as what it stands for: an object, a text, or the null handle itself."""
    address = int(handle)
    if address == 0:
        return handle
    if _is_object(address):
        return gdb.Value(address).cast(gdb.lookup_type('ObjectRecord').pointer()).dereference()
    return gdb.Value(address).cast(gdb.lookup_type('char').pointer()).string(errors='replace')


def _element(handle):
    """A handle among the elements of a list, where gdb adds no quotation marks to texts."""
    if int(handle) == 0:
        return 'null'
    value = _resolve(handle)
    return f'"{value}"' if isinstance(value, str) else value


class RuntimeTypeNamePrinter:
    """An interned type name."""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        return f'"{_type_name(self._value)}"'


class ListDataPrinter:
    """The record of a list: its storage and, as children, its elements."""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        data = self._value
        kind = int(data['primitiveKind'])
        if kind in KINDS:
            buffer = data['primitive']
            storage = f'unboxed {_type_name(data["primitiveType"]) or KINDS[kind][0]}'
            extent = f'size {int(buffer["size"])}, capacity {int(buffer["capacity"])}'
        elif bool(data['linked']):
            storage, extent = 'linked', f'size {int(data["linkedObjects"]["count"])}'
        else:
            storage = 'boxed'
            extent = f'size {int(data["objects"]["size"])}, capacity {int(data["objects"]["capacity"])}'
        declared = _type_name(data['elementType'])
        synchronised = ', synchronised' if bool(data['synchronized']) else ''
        return f'{storage}{f" of {declared}" if declared else ""}, {extent}{synchronised}'

    def children(self):
        for index, element in enumerate(self._elements()):
            yield f'[{index}]', element

    def _elements(self):
        data = self._value
        kind = int(data['primitiveKind'])
        if kind in KINDS:
            _, element_type, width = KINDS[kind]
            start = int(data['primitive']['data'])
            for index in range(int(data['primitive']['size'])):
                yield _decode(element_type, _memory(start + index * width, width))
        elif bool(data['linked']):
            node_type = gdb.lookup_type('LinkedHandles::Node').pointer()
            links = data['linkedObjects']['sentinel']['next']
            for _ in range(int(data['linkedObjects']['count'])):
                yield _element(links.cast(node_type)['handle'])
                links = links['next']
        else:
            for index in range(int(data['objects']['size'])):
                yield _element(data['objects']['data'][index])

    @staticmethod
    def display_hint():
        return 'array'


class ObjectRecordPrinter:
    """An object: its class, and its value as far as the record tells it."""

    _BOXES = {'IntegerBox', 'FloatingBox', 'BooleanBox', 'CharacterBox'}

    def __init__(self, value):
        self._value = value
        kinds = {field.enumval: field.name.split('::')[-1] for field in gdb.lookup_type('ObjectKind').fields()}
        self._kind = kinds.get(int(value['header']) >> 56, 'unknown kind')

    def to_string(self):
        name = _class_name(self._value) or self._kind
        address = int(self._value.address)
        if self._kind in self._BOXES:
            box = self._value.address.cast(gdb.lookup_type('RegisteredObject').pointer()).dereference()
            payload = int(box['integer'])
            if self._kind == 'FloatingBox':
                payload = struct.unpack('<d', struct.pack('<q', payload))[0]
            return f'{name} {payload}'
        if self._kind == 'String':
            # The text's address follows the record.
            text = gdb.Value(_word(address + self._value.type.sizeof)).cast(gdb.lookup_type('char').pointer())
            return f'{name} "{text.string(errors="replace")}"'
        return f'{name} at {address:#x}'

    def children(self):
        if self._kind == 'List':
            yield 'data', self._value['nativeRecord'].cast(gdb.lookup_type('ListData').pointer()).dereference()


class _Resolve(gdb.Function):
    """$vorn(handle): the object, text or null that a handle stands for."""

    def __init__(self):
        super().__init__('vorn')

    def invoke(self, handle):
        return _resolve(handle)


def _build():
    printers = gdb.printing.RegexpCollectionPrettyPrinter('vorn')
    printers.add_printer('RuntimeTypeName', '^RuntimeTypeName$', RuntimeTypeNamePrinter)
    printers.add_printer('ListData', '^ListData$', ListDataPrinter)
    printers.add_printer('ObjectRecord', '^(ObjectRecord|RegisteredObject)$', ObjectRecordPrinter)
    return printers


gdb.printing.register_pretty_printer(gdb.current_objfile(), _build(), replace=True)
_Resolve()
