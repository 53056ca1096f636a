"""Views of unboxed elements, without a copy.

A view of a list counts as an export of it: while there is one, the list refuses whatever may move its elements, as a
bytearray does. Changes behind Python's back, by a program in another language, cannot be refused; the view keeps the
memory alive that it shows, which then is no longer the list's.
"""

import array
import ctypes

_ITEMS = {'b': ctypes.c_int8, 'B': ctypes.c_uint8, 'h': ctypes.c_int16, 'H': ctypes.c_uint16, 'i': ctypes.c_int32,
          'I': ctypes.c_uint32, 'q': ctypes.c_int64, 'Q': ctypes.c_uint64, 'f': ctypes.c_float, 'd': ctypes.c_double,
          '?': ctypes.c_bool}


class _Export:
    """Keeps a collection, and the block that its elements are in, alive and counted while this object lives."""

    __slots__ = ('collection', 'block', 'count')

    def __init__(self, collection, locate):
        self.collection = collection
        # Counted first: from now on no change begins that moves the elements. Lists grow and shrink atomically, which
        # adding to a number does not.
        collection._exports.append(None)
        while True:
            self.block, self.count = locate(collection), len(collection)
            # A change that another thread had begun may come between; a block that is kept alive is nobody else's.
            if locate(collection).handle == self.block.handle:
                return

    def __del__(self):
        self.collection._exports.pop()


class _NoElements(array.array):
    """Something with a buffer of no elements."""

    export = None


def view(collection, primitive, locate, readonly=False):
    """A memoryview of the elements, which are of the primitive type; `locate` is the native that finds them."""
    export = _Export(collection, locate)
    count = export.count
    if count:
        elements = (_ITEMS[primitive.format] * count).from_address(export.block.handle)
    else:
        elements = _NoElements(primitive.format.replace('?', 'B'))
    elements.export = export
    # In the format that the module struct uses by itself, which not every memoryview of ctypes is in.
    result = memoryview(elements)
    if count:
        result = result.cast('B').cast(primitive.format)
    # A Char must not become what is no scalar value.
    return result.toreadonly() if readonly or primitive.name == 'Char' else result


class Exporting:
    """What a collection with a method `memoryview` has in common. `_exports` has an item for each view."""

    __slots__ = ()

    def __buffer__(self, _flags):
        return self.memoryview()

    @property
    def __array_interface__(self):
        try:
            shown = self.memoryview()
        except BufferError as error:
            raise AttributeError(str(error)) from None
        kind = {'?': 'b', 'f': 'f', 'd': 'f'}.get(shown.format) or ('i' if shown.format.islower() else 'u')
        # An array of numpy keeps the view, and with it the export, for as long as it lives.
        order = '<' if shown.itemsize > 1 else '|'
        return {'version': 3, 'shape': shown.shape, 'typestr': f'{order}{kind}{shown.itemsize}', 'data': shown}
