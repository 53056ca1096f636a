"""Objects: their class and what they hold."""

import struct

from .guards import children_or_reason, is_shown, text_or_reason, while_shown
from .handles import element, is_object, object_at
from .lists import ArrayPrinter, ListPrinter
from .memory import Unknown, enumerators, read, type_named, typed, word_at
from .names import class_name
from .tables import MapPrinter, SetPrinter
from .texts import character, text_of_length

_RECORDS = {'List': ('ListData', ListPrinter), 'Array': ('ArrayData', ArrayPrinter),
            'Map': ('MapData', MapPrinter), 'Set': ('SetData', SetPrinter)}


class _Tuple:
    """The items of a tuple, as the printer of a record."""

    def __init__(self, address):
        self._tuple = typed(address, 'vorn::runtime::TupleObject')

    def to_string(self):
        return f'size {int(self._tuple["size"])}, capacity {int(self._tuple["capacity"])}'

    def children(self):
        count = max(0, min(int(self._tuple['size']), int(self._tuple['capacity'])))
        for index in range(count):
            yield f'[{index}]', element(self._tuple['items'][index])

    @staticmethod
    def display_hint():
        return 'array'


class _Instance:
    """The fields of an instance, a Type or any other object without a record."""

    def __init__(self, address):
        self._address = address
        self._class = typed(int(object_at(address)['runtimeClass']), 'RuntimeClass')

    @staticmethod
    def to_string():
        return ''

    def children(self):
        kinds = enumerators('ObjectField::Kind')
        for index in range(int(self._class['fieldCount'])):
            field = self._class['fields'][index]
            yield _field_name(field), self._value(kinds.get(int(field['kind'])), self._address + int(field['offset']))

    @staticmethod
    def _value(kind, at):
        word = word_at(at)
        if kind == 'Integer':
            return word - (1 << 64) if word >> 63 else word
        if kind == 'Floating':
            return f'{struct.unpack("<d", word.to_bytes(8, "little"))[0]!r}'
        if kind == 'Boolean':
            return 'true' if word else 'false'
        return element(word)

    @staticmethod
    def display_hint():
        return None


def _field_name(field):
    view = field['name']
    return read(int(view['_M_str']), min(int(view['_M_len']), 256)).decode(errors='replace')


_class_or_reason = text_or_reason(class_name)


def _box_text(kind, address, name):
    payload = read(address + type_named('ObjectRecord').sizeof, 8)
    number = int.from_bytes(payload, 'little', signed=True)
    if kind == 'FloatingBox':
        return f'{struct.unpack("<d", payload)[0]!r}'
    if kind == 'BooleanBox':
        return 'true' if number else 'false'
    if kind == 'CharacterBox':
        return character(number)
    return f'{number % (1 << 64) if name.endswith(".ULong") else number}'


class ObjectPrinter:
    """An object: its class, and its value or its contents. One within itself is only named."""

    def __init__(self, value):
        self._value = value
        self._address = int(value.address)
        self._contents = None
        self._hint = None
        self._text = self._describe()

    @text_or_reason
    def _describe(self):
        if not is_object(self._address):
            return f'<no object: its header is {int(self._value["header"]):#x}>'
        number = int(self._value['header']) >> 56
        kind = enumerators('ObjectKind').get(number)
        name = _class_or_reason(int(self._value['runtimeClass']))
        if kind is None:
            return f'{name} <corrupt: there is no object kind {number}>'
        if kind.endswith('Box'):
            return f'{name} {_box_text(kind, self._address, name)}'
        if kind == 'String':
            string = typed(self._address, 'StringObject')
            return f'{name} {text_of_length(int(string["text"]), int(string["length"]))}'
        named = f'{name} at {self._address:#x}'
        if name.startswith('<'):
            return f'{name} {kind} at {self._address:#x}'
        if is_shown(self._address):
            return f'{named}, shown above'
        record = self._record(kind)
        self._hint = record.display_hint()
        self._contents = record
        return f'{named}, {record.to_string()}' if record.to_string() else named

    def _record(self, kind):
        if kind in _RECORDS:
            type_name, printer = _RECORDS[kind]
            address = int(self._value['nativeRecord'])
            if address == 0:
                raise Unknown(f'corrupt: a {kind} at {self._address:#x} without a record')
            return printer(typed(address, type_name))
        return _Tuple(self._address) if kind == 'Tuple' else _Instance(self._address)

    def to_string(self):
        return self._text

    @children_or_reason
    def children(self):
        if self._contents is not None:
            yield from while_shown(self._address, self._contents.children())

    def display_hint(self):
        return self._hint


def summary(address):
    """What stands at a handle, in one line and without its contents."""
    value = element(address)
    return value if isinstance(value, str) else ObjectPrinter(value).to_string()
