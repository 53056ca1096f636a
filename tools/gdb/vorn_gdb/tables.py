"""The tables of maps and sets, and the records around them."""

import gdb

from .guards import children_or_reason, text_or_reason
from .handles import element
from .locks import lock_state
from .memory import Unknown, constant
from .names import type_name


def _node_at(chunks, place):
    capacity = int(chunks['capacity_'])
    if place >= capacity:
        raise Unknown(f'corrupt: place {place} of {capacity}')
    chunk = constant('placesInChunk')
    return chunks['directory_'][place // chunk][place % chunk]


def hash_nodes(table):
    """The nodes of a hash table in their order."""
    vacant = constant('vacantTag')
    for place in range(int(table['first_']), int(table['places_'])):
        node = _node_at(table['chunks_'], place)
        if int(node['key']['tag']) != vacant:
            yield node


def hash_extent(table):
    buckets = int(table['lines_']['bucketCount_'])
    count, places = int(table['count_']), int(table['places_'])
    capacity = int(table['chunks_']['capacity_'])
    fault = ' <corrupt: more than there is room for>' if not count <= places <= capacity else ''
    form = f'{buckets} buckets' if buckets else 'no buckets'
    return f'hashed, {form}, size {count}, places {places} of {capacity}{fault}'


def ordered_nodes(table):
    """The nodes of an ordered table, along the links from one to the next."""
    tree, count = table['tree_'], int(table['count_'])
    links = tree['links_']
    if int(links) == 0:
        if count:
            raise Unknown('corrupt: no links')
        return
    place = int(links[0]['next'])
    for index in range(count):
        if place == 0:
            raise Unknown(f'corrupt: the links end after {index} of {count}')
        if place > int(tree['used_']):
            raise Unknown(f'corrupt: a link to place {place} of {int(tree["used_"])}')
        yield _node_at(table['chunks_'], place - 1)
        place = int(links[place]['next'])


def ordered_extent(table):
    tree = table['tree_']
    capacity = int(table['chunks_']['capacity_'])
    return f'sorted, size {int(table["count_"])}, places {int(tree["used_"])} of {capacity}, root {int(tree["root_"])}'


class HashTablePrinter:
    """A hash table: its keys, each with its entry."""

    _extent = staticmethod(hash_extent)
    _nodes = staticmethod(hash_nodes)

    def __init__(self, value):
        self._value = value

    @text_or_reason
    def to_string(self):
        return self._extent(self._value)

    @children_or_reason
    def children(self):
        for index, node in enumerate(self._nodes(self._value)):
            yield f'[{index}].key', node['key']
            entry = node['entry']
            is_handle = entry.type.strip_typedefs().code == gdb.TYPE_CODE_PTR
            yield f'[{index}]', element(entry if is_handle else entry['value'])

    @staticmethod
    def display_hint():
        return 'map'


class OrderedTablePrinter(HashTablePrinter):
    """An ordered table likewise, in ascending order."""

    _extent = staticmethod(ordered_extent)
    _nodes = staticmethod(ordered_nodes)


class MapPrinter:
    """A MapData: its entries as they were put."""

    def __init__(self, value):
        self._value = value

    @text_or_reason
    def to_string(self):
        data = self._value
        key, value = type_name(data['keyType']), type_name(data['valueType'])
        of = f' from {key} to {value}' if key or value else ''
        form, _, rest = self._extent().partition(',')
        return f'{form}{of},{rest}{lock_state(data)}'

    def _extent(self):
        data = self._value
        return hash_extent(data['hash']) if int(data['hashed']) else ordered_extent(data['ordered'])

    @children_or_reason
    def children(self):
        data = self._value
        nodes = hash_nodes(data['hash']) if int(data['hashed']) else ordered_nodes(data['ordered'])
        for index, node in enumerate(nodes):
            yield f'[{index}].key', element(node['entry']['key'])
            yield f'[{index}]', element(node['entry']['value'])

    @staticmethod
    def display_hint():
        return 'map'


class SetPrinter:
    """A SetData: its elements as they were added."""

    def __init__(self, value):
        self._value = value

    @text_or_reason
    def to_string(self):
        return f'{hash_extent(self._value["table"])}{lock_state(self._value)}'

    @children_or_reason
    def children(self):
        for index, node in enumerate(hash_nodes(self._value['table'])):
            yield f'[{index}]', element(node['entry'])

    @staticmethod
    def display_hint():
        return 'array'
