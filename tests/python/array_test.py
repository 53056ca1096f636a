"""Fixed arrays."""

import copy
import pickle
import unittest
from collections import abc

import vorn

from support import VornTest


class ArrayTest(VornTest):

    def test_made_by_size_and_by_elements(self):
        self.assertEqual(vorn.Array[int](3).tolist(), [0, 0, 0])
        self.assertEqual(vorn.Array[float](2).tolist(), [0.0, 0.0])
        self.assertEqual(vorn.Array[bool](1).tolist(), [False])
        self.assertEqual(vorn.Array[str](2).tolist(), [None, None])
        self.assertEqual(vorn.Array(2).tolist(), [None, None])
        self.assertEqual(vorn.Array[int](range(4)).tolist(), [0, 1, 2, 3])
        self.assertEqual(vorn.Array[int](vorn.List([1, 2])).tolist(), [1, 2])
        self.assertEqual(vorn.Array([1, 'a', None, 2.5]).tolist(), [1, 'a', None, 2.5])
        self.assertEqual(len(vorn.Array[int]()), 0)
        with self.assertRaisesBoth(ValueError, 'ValueException', 'Array size cannot be negative'):
            vorn.Array[int](-1)
        for size in (2**60, 2**63, 2**100):
            with self.assertRaisesBoth(MemoryError, 'MemoryException'):
                vorn.Array[int](size)
        self.assertRaises(TypeError, vorn.Array[int], 2.5)

    def test_every_type_keeps_its_extremes(self):
        extremes = {'SByte': (-128, 127), 'Byte': (0, 255), 'Short': (-2**15, 2**15 - 1), 'UShort': (0, 2**16 - 1),
                    'Int': (-2**31, 2**31 - 1), 'UInt': (0, 2**32 - 1), 'Long': (-2**63, 2**63 - 1),
                    'ULong': (0, 2**63, 2**64 - 1), 'Float': (-0.5, 2.0**100), 'Double': (-1e300, 5e-324),
                    'Boolean': (True, False), 'Char': ('a', '😀'), 'CodeUnit': (0, 65535)}
        for name, values in extremes.items():
            with self.subTest(type=name):
                ours = vorn.Array[name](values)
                self.assertEqual(ours.tolist(), list(values))
                self.assertEqual(list(ours), list(values))
                self.assertEqual(ours.memoryview().itemsize * len(values), ours.memoryview().nbytes)
                for index, value in enumerate(values):
                    ours[index] = value
                    self.assertEqual(ours[index], value)
                    self.assertEqual(ours.index(value), index)

    def test_what_does_not_fit_is_refused(self):
        for name, value in (('Byte', 256), ('Byte', -1), ('Int', 2**31), ('Long', 2**63), ('Int', 1.5), ('Int', True),
                            ('Int', None), ('Double', 'x'), ('Boolean', 1), ('Char', 'ab'), ('CodeUnit', 65536),
                            ('String', 5)):
            ours = vorn.Array[name](2)
            before = ours.tolist()
            with self.subTest(type=name, value=value):
                for act in (lambda: ours.__setitem__(0, value), lambda: ours.__setitem__(slice(None), [value, value]),
                            lambda: vorn.Array[name]([value])):
                    with self.assertRaisesBoth(TypeError, 'TypeError'):
                        act()
                self.assertEqual(ours.tolist(), before)
        with self.assertRaises(OverflowError):
            vorn.Array[int](1)[0] = 2**64

    def test_indexes_and_slices(self):
        model = list(range(10, 20))
        ours = vorn.Array[int](model)
        for index in range(-10, 10):
            self.assertEqual(ours[index], model[index])
        for index in (10, -11, 2**80):
            with self.assertRaisesBoth(IndexError, 'IndexException'):
                ours[index]
            with self.assertRaisesBoth(IndexError, 'IndexException'):
                ours[index] = 1
        for part in (slice(None), slice(2, 5), slice(None, None, -1), slice(-3, None), slice(8, 2, -2), slice(5, 5)):
            self.assertEqual(ours[part].tolist(), model[part])
            self.assertIs(type(ours[part]), type(ours))
            values = list(range(len(model[part])))
            ours[part] = model[part] = values
            self.assertEqual(ours.tolist(), model)
        for part in (slice(2, 5), slice(None, None, 2)):
            with self.assertRaisesBoth(ValueError, 'ValueException'):
                ours[part] = [1]
        for act in (lambda: ours[::0], lambda: ours.__setitem__(slice(None, None, 0), ())):
            self.assertRaises(ValueError, act)
        for act in (lambda: ours['0'], lambda: ours.__delitem__(0), lambda: ours.__setitem__(None, 1)):
            self.assertRaises(TypeError, act)
        self.assertEqual(ours.tolist(), model)

    def test_searching(self):
        ours = vorn.Array[int]([1, 2, 1, 3])
        self.assertEqual((ours.index(1), ours.index(1, 1), ours.index(1.0, -2), ours.count(1), ours.count(9)),
                         (0, 2, 2, 2, 0))
        for value in (9, 'x', None, True, [], 2**70, object()):
            self.assertNotIn(value, ours)
            self.assertRaises(ValueError, ours.index, value)
        self.assertRaises(ValueError, ours.index, 1, 1, 2)
        self.assertIn('a', vorn.Array(['a', None]))
        self.assertIn(None, vorn.Array(['a', None]))

    def test_order(self):
        ours = vorn.Array[int]([3, 1, 2])
        ours.sort()
        self.assertEqual(ours.tolist(), [1, 2, 3])
        ours.sort(reverse=True)
        self.assertEqual(ours.tolist(), [3, 2, 1])
        ours.sort(key=lambda number: number % 2)
        self.assertEqual(ours.tolist(), [2, 3, 1])
        ours.reverse()
        self.assertEqual(ours.tolist(), [1, 3, 2])
        self.assertEqual(list(reversed(ours)), [2, 3, 1])
        mixed = vorn.Array([2, 'x'])
        self.assertRaises(TypeError, mixed.sort)
        self.assertLess(vorn.Array[int]([1, 2]), vorn.Array[int]([1, 3]))

    def test_equality_is_among_arrays(self):
        ours = vorn.Array[int]([1, 2])
        self.assertEqual(ours, vorn.Array[int]([1, 2]))
        for other in (vorn.Array[int]([1, 3]), vorn.Array[int](1), [1, 2], vorn.List([1, 2]), None):
            self.assertNotEqual(ours, other)
        self.assertRaises(TypeError, hash, ours)
        self.assertIsInstance(ours, abc.Sequence)

    def test_copies_pickles_and_texts(self):
        for ours in (vorn.Array[int]([1, 2]), vorn.Array(['a', None, (1, 2)]), vorn.Array[str](['x']),
                     vorn.Array[int](), vorn.Array[int]([5], synchronized=True)):
            again = eval(repr(ours), {'vorn': vorn})
            for twin in (ours.copy(), copy.copy(ours), copy.deepcopy(ours), pickle.loads(pickle.dumps(ours)), again):
                self.assertIsNot(twin, ours)
                self.assertIs(type(twin), type(ours))
                self.assertEqual(twin.synchronized, ours.synchronized)
                self.assertEqual(twin, ours)
        self.assertEqual(repr(vorn.Array[int](2)), 'vorn.Array[int]([0, 0])')
        self.assertEqual(str(vorn.Array[int](2)), 'f:[0, 0]')
        self.assertEqual((vorn.Array[int]([1]) + [2]).tolist(), [1, 2])
        self.assertRaises(TypeError, lambda: vorn.Array[int]([1]) + 5)

    def test_an_array_that_contains_itself(self):
        ours = vorn.Array(1)
        ours[0] = ours
        self.assertEqual(repr(ours), 'vorn.Array([...])')
        again = copy.deepcopy(ours)
        self.assertIs(again[0], again)


if __name__ == '__main__':
    unittest.main()
