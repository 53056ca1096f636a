"""The records of lists and arrays, and the buffers in them."""

from .guards import children_or_reason, text_or_reason
from .handles import element
from .kinds import kind_of, kinds
from .locks import lock_state
from .memory import Unknown, enumerators, read, type_named
from .names import type_name

_CHUNK = 256


def unboxed_elements(buffer, kind, name):
    """The elements of a buffer of a kind, kept under the name of a type."""
    start, size = int(buffer['data']), min(int(buffer['size']), int(buffer['capacity']))
    for first in range(0, size, _CHUNK):
        count = min(_CHUNK, size - first)
        try:
            data = read(start + first * kind.width, count * kind.width)
        except Unknown:
            count, data = 1, read(start + first * kind.width, kind.width)
        for at in range(count):
            yield kind.decode(data[at * kind.width:(at + 1) * kind.width], name)


def handles(vector):
    """The elements of a vector of handles."""
    for index in range(min(int(vector['size']), int(vector['capacity']))):
        yield element(vector['data'][index])


def extent(buffer, inline_member):
    """Where a buffer's elements are and how many there are."""
    data, size, capacity = int(buffer['data']), int(buffer['size']), int(buffer['capacity'])
    if data == 0 and size == 0:
        return 'not constructed'
    place = 'inline' if data == int(buffer[inline_member].address) else 'on the heap'
    fault = ' <corrupt: more than there is room for>' if size > capacity else ''
    return f'{place}, size {size}, capacity {capacity}{fault}'


class ListPrinter:
    """A ListData: its live storage and, as children, its elements."""

    def __init__(self, value):
        self._value = value

    @text_or_reason
    def to_string(self):
        return f'{self.storage()}{lock_state(self._value)}'

    def storage(self):
        data = self._value
        kind = kind_of(data['primitiveKind'])
        declared = type_name(data['elementType'])
        of = f' of {declared}' if declared else ''
        if kind is not None:
            width = int(data['primitive']['elementSize'])
            fault = f' <corrupt: elements of {width} bytes>' if width != kind.width else ''
            name = type_name(data['primitiveType']) or kind.name
            return f'unboxed {name}{of}, {extent(data["primitive"], "inlineBytes")}{fault}'
        if int(data['linked']):
            return f'linked{of}, size {int(data["linkedObjects"]["count"])}'
        return f'boxed{of}, {extent(data["objects"], "inlineSlots")}'

    @children_or_reason
    def children(self):
        for index, value in enumerate(self._elements()):
            yield f'[{index}]', value

    def _elements(self):
        data = self._value
        kind = kind_of(data['primitiveKind'])
        if kind is not None:
            return unboxed_elements(data['primitive'], kind, type_name(data['primitiveType']))
        if int(data['linked']):
            return linked_elements(data['linkedObjects'])
        return handles(data['objects'])

    @staticmethod
    def display_hint():
        return 'array'


def linked_elements(linked):
    """The handles of a LinkedHandles, along its links."""
    node = type_named('LinkedHandles::Node').pointer()
    sentinel = int(linked['sentinel'].address)
    links, count = linked['sentinel']['next'], int(linked['count'])
    for index in range(count):
        if int(links) in (0, sentinel):
            raise Unknown(f'corrupt: the links end after {index} of {count}')
        yield element(links.cast(node)['handle'])
        links = links['next']


class LinkedPrinter:
    """A LinkedHandles by itself."""

    def __init__(self, value):
        self._value = value

    @text_or_reason
    def to_string(self):
        return f'linked, size {int(self._value["count"])}'

    @children_or_reason
    def children(self):
        for index, value in enumerate(linked_elements(self._value)):
            yield f'[{index}]', value

    @staticmethod
    def display_hint():
        return 'array'


class ArrayPrinter:
    """An ArrayData: its slots."""

    def __init__(self, value):
        self._value = value

    def _kind(self):
        """The kind of unboxed slots; none for handles."""
        slots = enumerators('ArraySlotKind')
        slot = int(self._value['slotKind'])
        if slot not in slots:
            raise Unknown(f'corrupt: there is no slot kind {slot}')
        if slots[slot] == 'Object':
            return None
        return kinds()[slot + 1]  # as array_slot_kind.h numbers them

    @text_or_reason
    def to_string(self):
        data = self._value
        kind = self._kind()
        declared = type_name(data['elementType'])
        of = f' of {declared}' if declared else ''
        if kind is None:
            form = f'handles{of}, {extent(data["objects"], "inlineSlots")}'
        else:
            form = f'slots{of}, {extent(data["primitive"], "inlineBytes")}'
        return f'{form}{lock_state(data)}'

    @children_or_reason
    def children(self):
        data, kind = self._value, self._kind()
        if kind is None:
            values = handles(data['objects'])
        else:
            values = unboxed_elements(data['primitive'], kind, type_name(data['elementType']).split('.')[-1])
        for index, value in enumerate(values):
            yield f'[{index}]', value

    @staticmethod
    def display_hint():
        return 'array'
