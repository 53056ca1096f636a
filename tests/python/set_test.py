"""Sets behave as built-in sets do."""

import copy
import operator
import pickle
import random
import unittest
from collections import abc

import vorn

from support import VornTest

OPERATORS = (operator.or_, operator.and_, operator.sub, operator.xor)
COMPARISONS = (operator.eq, operator.ne, operator.lt, operator.le, operator.gt, operator.ge)
CONTENTS = ((), (1,), (1, 2, 3), (2, 3, 4), ('a', 'b'), (1, 'a', 2.5, None, (1, 2)))


class SetTest(VornTest):

    def assertSame(self, ours, model):
        self.assertEqual(len(ours), len(model))
        self.assertEqual(set(ours), model)
        self.assertTrue(ours == model and model == ours)

    def test_operators_with_sets_of_both_sorts(self):
        for left in CONTENTS:
            for right in CONTENTS:
                ours, model = vorn.Set(left), set(left)
                for others in (vorn.Set(right), set(right), frozenset(right), dict.fromkeys(right).keys()):
                    for operate in OPERATORS:
                        self.assertSame(operate(ours, others), operate(model, set(right)))
                        self.assertIsInstance(operate(ours, others), vorn.Set)
                    for compare in COMPARISONS:
                        self.assertEqual(compare(ours, others), compare(model, set(right)), (compare, left, right))
                for operate in OPERATORS:
                    self.assertSame(operate(set(left), vorn.Set(right)), operate(model, set(right)))
                self.assertEqual(set(left) < vorn.Set(right), set(left) < set(right))

    def test_operators_in_place(self):
        for change in (operator.ior, operator.iand, operator.isub, operator.ixor):
            for right in CONTENTS:
                ours = same = vorn.Set((1, 2, 'a'))
                same = change(same, set(right))
                self.assertIs(same, ours)
                self.assertSame(ours, change({1, 2, 'a'}, set(right)))
            ours = vorn.Set((1, 2))
            change(ours, ours)
            self.assertSame(ours, change({1, 2}, {1, 2}))

    def test_operators_want_sets_and_methods_any_iterables(self):
        ours, model = vorn.Set((1, 2, 3)), {1, 2, 3}
        for operate in (*OPERATORS, operator.lt, operator.ior):
            with self.assertRaises(TypeError):
                operate(ours, [1])
        for other in ([2, 3, 3, 9], (), range(3), iter([5, 1]), {1: 2}, vorn.List([1, 9])):
            other = list(other)
            for name in ('union', 'intersection', 'difference', 'symmetric_difference', 'issubset', 'issuperset',
                         'isdisjoint'):
                result, expected = getattr(ours, name)(iter(other)), getattr(model, name)(iter(other))
                self.assertEqual(result, expected, (name, other))
            for name in ('update', 'intersection_update', 'difference_update', 'symmetric_difference_update'):
                twin, same = ours.copy(), set(model)
                getattr(twin, name)(iter(other))
                getattr(same, name)(iter(other))
                self.assertSame(twin, same)
        self.assertSame(ours.union([7], {8}), {1, 2, 3, 7, 8})
        self.assertSame(ours.intersection([1, 2], [2, 3]), {2})
        self.assertSame(ours.difference([1], [3]), {2})

    def test_elements(self):
        ours = vorn.Set()
        for value in (1, 'a', None, 1.0, (1, 2), 'a'):
            ours.add(value)
        self.assertSame(ours, {1, 'a', None, (1, 2)})
        self.assertIs(type(next(iter(ours))), int)
        ours.discard('absent')
        ours.discard('a')
        ours.remove(None)
        with self.assertRaisesBoth(KeyError, 'KeyException'):
            ours.remove('absent')
        for value in (2**70, 'a\0b', '\ud800', object()):
            self.assertNotIn(value, ours)
            ours.discard(value)
            self.assertRaises(KeyError, ours.remove, value)
        for value in ([], {}, set()):
            for act in (ours.add, ours.discard, ours.remove, ours.__contains__):
                self.assertRaises(TypeError, act, value)
        self.assertSame(ours, {1, (1, 2)})
        self.assertIn(vorn.Tuple((1, 2)), ours)

    def test_pop_empties(self):
        ours, taken = vorn.Set('abc'), set()
        while ours:
            taken.add(ours.pop())
        self.assertEqual(taken, set('abc'))
        self.assertRaises(KeyError, ours.pop)
        ours.update('xy')
        ours.clear()
        self.assertSame(ours, set())

    def test_a_size_that_changes_ends_an_iteration(self):
        for act in (lambda ours: ours.add(9), lambda ours: ours.pop(), lambda ours: ours.clear()):
            ours = vorn.Set((1, 2, 3))
            with self.assertRaisesRegex(RuntimeError, 'changed size during iteration'):
                for _ in ours:
                    act(ours)

    def test_copies_pickles_and_texts(self):
        for ours in (vorn.Set(), vorn.Set('ab'), vorn.Set[int]((1, 2)), vorn.Set([1], synchronized=True)):
            again = eval(repr(ours), {'vorn': vorn})
            for twin in (ours.copy(), copy.copy(ours), copy.deepcopy(ours), pickle.loads(pickle.dumps(ours)), again):
                self.assertIs(type(twin), type(ours))
                self.assertEqual(twin.synchronized, ours.synchronized)
                self.assertEqual(twin, ours)
                twin.add(7)
                self.assertNotEqual(twin, ours)
        self.assertEqual(repr(vorn.Set()), 'vorn.Set()')
        self.assertEqual(str(vorn.Set([1], synchronized=True)), 's:{1}')

    def test_sets_have_no_hash(self):
        self.assertRaises(TypeError, hash, vorn.Set())
        self.assertIsInstance(vorn.Set(), abc.MutableSet)

    def test_a_set_that_contains_itself(self):
        ours = vorn.Set()
        ours.add(ours)
        self.assertIn(ours, ours)
        self.assertEqual(repr(ours), 'vorn.Set([...])')
        self.assertEqual(str(ours), '{{...}}')

    def test_declared_types_hold(self):
        ours = vorn.Set[int]([1, 2])
        with self.assertRaisesBoth(TypeError, 'TypeError', 'Set<Long> cannot accept vorn.String'):
            ours.add('x')
        self.assertRaises(TypeError, ours.update, [3, True])
        self.assertSame(ours, {1, 2, 3})
        self.assertEqual(repr(ours), 'vorn.Set[int]([1, 2, 3])')

    def test_random_operations(self):
        chance = random.Random(7)
        ours, model = vorn.Set(), set()
        for _ in range(300):
            value = chance.choice([*range(12), *'abcd', None])
            if chance.random() < 0.6:
                ours.add(value)
                model.add(value)
            else:
                ours.discard(value)
                model.discard(value)
        self.assertSame(ours, model)


if __name__ == '__main__':
    unittest.main()
