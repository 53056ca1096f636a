"""numpy sees unboxed elements without a copy. Ends with 77 where numpy is not installed."""

import sys
import unittest

import vorn

from support import VornTest

try:
    import numpy
except ImportError:
    numpy = None


@unittest.skipUnless(numpy, 'numpy is not installed')
class NumpyTest(VornTest):

    def test_arrays_share_the_elements(self):
        kinds = {'SByte': 'i1', 'Byte': 'u1', 'Short': 'i2', 'UShort': 'u2', 'Int': 'i4', 'UInt': 'u4', 'Long': 'i8',
                 'ULong': 'u8', 'Float': 'f4', 'Double': 'f8', 'CodeUnit': 'u2'}
        for name, kind in kinds.items():
            for make in (vorn.List, vorn.Array):
                ours = make[name]([1, 2, 3])
                shared = numpy.asarray(ours)
                self.assertEqual(shared.dtype, numpy.dtype(kind))
                shared[1] = 7
                self.assertEqual(ours[1], 7)
                self.assertEqual(int(shared.sum()), 11)
        self.assertEqual(numpy.asarray(vorn.List[bool]([True, False])).tolist(), [True, False])
        self.assertFalse(numpy.asarray(vorn.ImmutableList([1, 2])).flags.writeable)

    def test_an_array_of_numpy_keeps_the_list_as_it_is(self):
        ours = vorn.List[int]([1, 2, 3])
        part = numpy.asarray(ours)[1:]
        self.assertRaises(BufferError, ours.append, 4)
        self.assertEqual(part.tolist(), [2, 3])
        del part
        ours.append(4)
        orphan = numpy.asarray(vorn.List[int](range(1000)))
        for _ in range(3):
            vorn.collect()
            vorn.List[int]([77] * 1000)
        self.assertEqual(int(orphan.sum()), 499500)

    def test_from_buffer(self):
        ours = vorn.List['Int']([1, 2])
        numpy.frombuffer(ours.memoryview(), dtype='i4')[0] = 5
        self.assertEqual(ours, [5, 2])

    def test_lists_of_boxes_are_sequences_to_numpy(self):
        self.assertEqual(numpy.asarray(vorn.List(['a', 'b'])).tolist(), ['a', 'b'])

    def test_collections_are_made_from_arrays_of_numpy(self):
        self.assertEqual(vorn.List[int](numpy.arange(4)), [0, 1, 2, 3])
        self.assertEqual(vorn.List[float](numpy.array([0.5, 2], dtype='f4')), [0.5, 2.0])
        self.assertEqual(vorn.List(numpy.array(['a', 'b'])), ['a', 'b'])
        self.assertEqual(vorn.Array['Byte'](numpy.array([1, 255], dtype='u1')).tolist(), [1, 255])
        ours = vorn.List()
        ours.append(numpy.int16(3))
        ours.append(numpy.float64(0.5))
        self.assertEqual(ours, [3, 0.5])
        for wrong in (numpy.zeros((2, 2)), numpy.array(5)):
            self.assertRaises(TypeError, vorn.List, wrong)


if __name__ == '__main__':
    if numpy is None:
        print('numpy is not installed')
        sys.exit(77)
    unittest.main()
