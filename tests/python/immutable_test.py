"""Immutable lists and tuples."""

import copy
import pickle
import unittest
from collections import abc

import vorn

from support import VornTest

CONTENTS = ((), (1,), (1, 2, 3), ('a', None, 2.5, (1, 'x')))


class ImmutableSequencesTest(VornTest):

    def test_they_are_sequences(self):
        for make in (vorn.ImmutableList, vorn.Tuple):
            for model in CONTENTS:
                ours = make(model)
                self.assertIsInstance(ours, abc.Sequence)
                self.assertNotIsInstance(ours, abc.MutableSequence)
                self.assertEqual((len(ours), tuple(ours), tuple(reversed(ours))), (len(model), model, model[::-1]))
                for index in range(-len(model), len(model)):
                    self.assertEqual(ours[index], model[index])
                for index in (len(model), -len(model) - 1, 2**70):
                    with self.assertRaisesBoth(IndexError, 'IndexException'):
                        ours[index]
                for part in (slice(None), slice(1, 3), slice(None, None, -1), slice(5, 9)):
                    self.assertEqual(tuple(ours[part]), model[part])
                    self.assertIs(type(ours[part]), make)
                for value in model:
                    self.assertIn(value, ours)
                    self.assertEqual((ours.index(value), ours.count(value)), (model.index(value), model.count(value)))
                self.assertNotIn('absent', ours)
                self.assertRaises(ValueError, ours.index, 'absent')
                self.assertRaises(TypeError, lambda: ours['0'])

    def test_they_refuse_changes(self):
        for ours, name in ((vorn.ImmutableList([1]), 'ImmutableList'), (vorn.Tuple([1]), 'Tuple')):
            with self.assertRaisesBoth(TypeError, 'ReadOnlyException', f'{name} is read-only'):
                ours[0] = 1
            with self.assertRaisesBoth(TypeError, 'ReadOnlyException'):
                del ours[0]
            self.assertFalse(hasattr(ours, 'append'))

    def test_tuples_equal_tuples(self):
        for model in CONTENTS:
            ours = vorn.Tuple(model)
            self.assertTrue(ours == model and model == ours and ours == vorn.Tuple(model))
            self.assertEqual(hash(ours), hash(model))
            self.assertNotEqual(ours, list(model))
            self.assertNotEqual(ours, vorn.ImmutableList(model))
            self.assertEqual({model: 1}[ours], 1)
        self.assertTrue(vorn.Tuple((1, 2)) < (1, 3) and (0,) < vorn.Tuple((1,)))
        self.assertTrue(vorn.Tuple((1, 2)) >= vorn.Tuple((1,)))
        self.assertEqual(vorn.Tuple((1,)) + (2,), (1, 2))
        self.assertEqual((1,) + vorn.Tuple((2,)), (1, 2))
        self.assertEqual(vorn.Tuple((1,)) * 2, (1, 1))
        self.assertRaises(TypeError, lambda: vorn.Tuple((1,)) < 5)
        self.assertRaises(TypeError, hash, vorn.Tuple((vorn.List(),)))

    def test_immutable_lists_equal_each_other(self):
        ours = vorn.ImmutableList([1, 2])
        self.assertEqual(ours, vorn.ImmutableList((1.0, 2)))
        self.assertEqual(hash(ours), hash(vorn.ImmutableList((1.0, 2))))
        for other in ((1, 2), [1, 2], vorn.List([1, 2]), vorn.ImmutableList([2, 1])):
            self.assertNotEqual(ours, other)
        self.assertEqual(ours + ours, vorn.ImmutableList([1, 2, 1, 2]))
        self.assertEqual(ours * 2, 2 * ours)
        self.assertEqual(ours * -1, vorn.ImmutableList())
        self.assertRaises(TypeError, hash, vorn.ImmutableList([vorn.List()]))
        self.assertEqual(vorn.Set([ours, vorn.ImmutableList([1, 2])]).tolist(), [ours])

    def test_copies_pickles_and_texts(self):
        for model in CONTENTS:
            for make in (vorn.ImmutableList, vorn.Tuple):
                ours = make(model)
                self.assertIs(copy.copy(ours), ours)
                for twin in (copy.deepcopy(ours), pickle.loads(pickle.dumps(ours)), eval(repr(ours), {'vorn': vorn})):
                    self.assertIs(type(twin), make)
                    self.assertEqual(twin, ours)
        typed = vorn.ImmutableList[int]([1, 2])
        self.assertEqual(repr(typed), 'vorn.ImmutableList[int]([1, 2])')
        self.assertIs(type(pickle.loads(pickle.dumps(typed))), vorn.ImmutableList[int])
        self.assertEqual((str(typed), str(vorn.Tuple(('a',)))), ('i:[1, 2]', '("a",)'))

    def test_declared_types_hold(self):
        with self.assertRaisesBoth(TypeError, 'TypeError', 'ArrayList<Long> cannot accept vorn.String'):
            vorn.ImmutableList[int](['x'])
        pair = vorn.Tuple[str, int](('a', 1))
        self.assertEqual(pair.type_name, 'vorn.collections.Tuple<String,Long>')
        self.assertIs(type(pickle.loads(pickle.dumps(pair))), vorn.Tuple[str, int])
        with self.assertRaisesBoth(TypeError, 'TypeError'):
            vorn.Tuple[str, int]((1, 'a'))
        with self.assertRaisesBoth(ValueError, 'ValueException'):
            vorn.Tuple[str, int](('a',))

    def test_tuples_become_tuples_of_the_language(self):
        ours = vorn.List([(1, ('a', None)), ()])
        self.assertIs(type(ours[0]), vorn.Tuple)
        self.assertEqual(ours, [(1, ('a', None)), ()])
        self.assertEqual(ours.index((1, ('a', None))), 0)
        many = tuple(range(1000))
        self.assertEqual(vorn.List([many])[0], many)


if __name__ == '__main__':
    unittest.main()
