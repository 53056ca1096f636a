"""Maps behave as dicts do."""

import copy
import pickle
import random
import unittest
from collections import abc

import vorn

from support import VornTest

PAIRS = {'b': 2, 'a': 1, 'c': 3}


class MapLaws:
    """What both classes do; the model is a built-in dict with its keys in the order of the class."""

    make = None

    @staticmethod
    def in_order(model):
        return model

    def assertSame(self, ours, model):
        model = self.in_order(model)
        self.assertEqual(list(ours), list(model))
        self.assertEqual(list(reversed(ours)), list(model)[::-1])
        self.assertEqual(list(ours.items()), list(model.items()))
        self.assertEqual(list(ours.values()), list(model.values()))
        self.assertEqual(len(ours), len(model))
        self.assertTrue(ours == model and model == ours)
        self.assertFalse(ours != model)

    def test_made_from_mappings_pairs_and_keywords(self):
        self.assertSame(self.make(PAIRS), PAIRS)
        self.assertSame(self.make(PAIRS.items()), PAIRS)
        self.assertSame(self.make(iter(PAIRS.items()), d=4), {**PAIRS, 'd': 4})
        self.assertSame(self.make(self.make(PAIRS)), PAIRS)
        self.assertSame(self.make(**PAIRS), PAIRS)
        self.assertSame(self.make(), {})
        for wrong in (5, [1], ['abc'], [(1, 2, 3)]):
            with self.assertRaises((TypeError, ValueError)):
                self.make(wrong)

    def test_reading_and_writing(self):
        ours, model = self.make(), {}
        for key, value in (('x', 1), ('y', None), ('x', 'again'), (5, 'five'), (2.5, 'half'), ((1, 'a'), 'pair')):
            ours[key] = model[key] = value
        self.assertSame(ours, model)
        for key in model:
            self.assertEqual(ours[key], model[key])
            self.assertIn(key, ours)
        self.assertIn('y', ours)
        self.assertIsNone(ours['y'])
        for key in ('z', 6, 7.5, (1,), 2**70, 'a\0b', '\ud800', None, True, b'bytes', object()):
            with self.subTest(key=key):
                self.assertNotIn(key, ours)
                self.assertIsNone(ours.get(key))
                self.assertEqual(ours.get(key, 'else'), 'else')
                with self.assertRaisesBoth(KeyError, 'KeyException', 'Key not found') as caught:
                    ours[key]
                self.assertEqual(caught.raises.exception.args, (key,))
                with self.assertRaises(KeyError):
                    del ours[key]
                with self.assertRaises(KeyError):
                    ours.pop(key)
        self.assertSame(ours, model)

    def test_keys_that_python_cannot_hash(self):
        ours = self.make(PAIRS)
        for key in ([], {}, set()):
            for act in (lambda: ours[key], lambda: ours.__setitem__(key, 1), lambda: key in ours, lambda: ours.get(key),
                        lambda: ours.pop(key, None)):
                self.assertRaises(TypeError, act)
        self.assertSame(ours, PAIRS)

    def test_deleting(self):
        ours, model = self.make(PAIRS), dict(PAIRS)
        del ours['a'], model['a']
        self.assertEqual(ours.pop('b'), model.pop('b'))
        self.assertEqual(ours.pop('b', 'else'), 'else')
        self.assertSame(ours, model)
        ours.clear()
        self.assertSame(ours, {})

    def test_popitem_takes_the_last(self):
        ours, model = self.make(PAIRS), self.in_order(dict(PAIRS))
        while model:
            self.assertEqual(ours.popitem(), model.popitem())
        with self.assertRaises(KeyError):
            ours.popitem()

    def test_setdefault(self):
        ours = self.make(PAIRS, n=None)
        self.assertEqual((ours.setdefault('a', 5), ours.setdefault('z', 5), ours.setdefault('n', 5),
                          ours.setdefault('none')), (1, 5, None, None))
        self.assertEqual((ours['z'], ours['none']), (5, None))

    def test_update_forms(self):
        ours, model = self.make(), {}
        for arguments, keywords in (((PAIRS,), {}), (([('x', 1)],), {}), ((), {'y': 2}),
                                    ((self.make(PAIRS),), {'a': 7}), (({},), {})):
            ours.update(*arguments, **keywords)
            model.update(*(dict(each) for each in arguments), **keywords)
            self.assertSame(ours, model)
        self.assertRaises(TypeError, ours.update, 5)
        self.assertSame(self.make.fromkeys('bac', 1), dict.fromkeys('bac', 1))

    def test_merging(self):
        ours, other = self.make(PAIRS), {'a': 7, 'd': 4}
        self.assertSame(ours | other, PAIRS | other)
        self.assertSame(ours | self.make(other), PAIRS | other)
        self.assertSame(other | ours, other | PAIRS)
        self.assertIs(type(other | ours), type(ours))
        ours |= other
        self.assertSame(ours, PAIRS | other)
        for wrong in (5, [('a', 1)]):
            with self.assertRaises(TypeError):
                ours | wrong

    def test_views(self):
        ours = self.make(PAIRS)
        keys, values, items = ours.keys(), ours.values(), ours.items()
        ours['z'] = 9
        self.assertEqual((len(keys), len(values), len(items)), (4, 4, 4))
        self.assertEqual((set(keys), set(items)), (set('abcz'), {('a', 1), ('b', 2), ('c', 3), ('z', 9)}))
        self.assertTrue('z' in keys and 9 in values and ('z', 9) in items)
        self.assertFalse('y' in keys or 8 in values or ('z', 8) in items or 'z' in items or [] in values)
        self.assertEqual((keys & {'a', 'q'}, keys | {'q'}, keys - {'a'}, keys ^ {'a', 'q'}),
                         ({'a'}, set('abczq'), set('bcz'), set('bczq')))
        self.assertEqual(items & {('a', 1), ('a', 2)}, {('a', 1)})
        self.assertTrue(keys == set('abcz') and keys >= {'a'} and keys.isdisjoint({'q'}))
        self.assertIsInstance(keys, abc.KeysView)
        self.assertIsInstance(values, abc.ValuesView)
        self.assertIsInstance(items, abc.ItemsView)
        self.assertEqual(list(reversed(values)), list(values)[::-1])
        self.assertEqual(list(reversed(items)), list(items)[::-1])
        self.assertIn(repr(list(keys)), repr(keys))

    def test_a_size_that_changes_ends_an_iteration(self):
        for view in (lambda ours: ours, lambda ours: ours.keys(), lambda ours: ours.values(), lambda ours: ours.items(),
                     reversed):
            for act in (lambda ours: ours.__setitem__('z', 1), lambda ours: ours.pop('a'), lambda ours: ours.clear()):
                ours = self.make(PAIRS)
                with self.assertRaisesRegex(RuntimeError, 'changed size during iteration'):
                    for _ in view(ours):
                        act(ours)
        for key in ours:
            ours[key] = 0

    def test_copies(self):
        ours = self.make({'list': vorn.List([1])})
        for twin in (ours.copy(), copy.copy(ours)):
            self.assertIs(type(twin), type(ours))
            self.assertIs(twin['list'], ours['list'])
            twin['more'] = 1
        deep = copy.deepcopy(ours)
        self.assertIsNot(deep['list'], ours['list'])
        self.assertEqual(deep, ours)
        self.assertEqual(len(ours), 1)

    def test_pickles(self):
        ours = self.make(PAIRS)
        for protocol in range(2, pickle.HIGHEST_PROTOCOL + 1):
            again = pickle.loads(pickle.dumps(ours, protocol))
            self.assertIs(type(again), type(ours))
            self.assertEqual(again.synchronized, ours.synchronized)
            self.assertSame(again, PAIRS)

    def test_repr_reads_back(self):
        for model in ({}, PAIRS, {1: 'x', 'y': (1, 2.5)}):
            ours = self.make(model)
            again = eval(repr(ours), {'vorn': vorn})
            self.assertIs(type(again), type(ours))
            self.assertSame(again, model)

    def test_a_map_that_contains_itself(self):
        ours = self.make()
        ours['me'] = ours
        self.assertIn("'me': ...", repr(ours))
        self.assertIs(copy.deepcopy(ours)['me']['me'].__class__, type(ours))
        self.assertIs(pickle.loads(pickle.dumps(ours))['me'].__class__, type(ours))
        self.assertIs(ours['me'], ours)

    def test_maps_have_no_hash(self):
        self.assertRaises(TypeError, hash, self.make())
        self.assertIsInstance(self.make(), abc.MutableMapping)

    def test_equality(self):
        ours = self.make(PAIRS)
        self.assertEqual(ours, vorn.SortedMap(PAIRS))
        self.assertEqual(ours, vorn.Map(reversed(PAIRS.items())))
        for other in ({}, {**PAIRS, 'a': 2}, {'a': 1, 'b': 2, 'd': 3}, {'a': 1, 'b': 2}, 5, None, list(PAIRS.items())):
            self.assertNotEqual(ours, other)
        self.assertNotEqual(self.make(), [])
        self.assertNotEqual(self.make({'a': None}), {'b': None})

    def test_random_operations(self):
        chance = random.Random(3)
        keys = [*'abcdef', *range(6), 0.5, (1, 2)]
        ours, model = self.make(), {}
        for _ in range(200):
            key, value = chance.choice(keys), chance.choice([1, 'x', None, 2.5])
            if chance.random() < 0.6:
                ours[key] = model[key] = value
            else:
                self.assertEqual(ours.pop(key, 'absent'), model.pop(key, 'absent'))
            self.assertEqual(len(ours), len(model))
        self.assertSame(ours, model)


class MapTest(MapLaws, VornTest):
    make = vorn.Map


class SynchronizedMapTest(MapLaws, VornTest):

    class make(vorn.Map):

        def __new__(cls, *arguments, **keywords):
            return vorn.Map(*arguments, synchronized=True, **keywords)

        @staticmethod
        def fromkeys(iterable, value):
            return vorn.Map(dict.fromkeys(iterable, value), synchronized=True)


class SortedMapTest(MapLaws, VornTest):
    make = vorn.SortedMap

    @staticmethod
    def in_order(model):
        ranks = {int: 0, float: 0, str: 1, tuple: 2}
        return {key: model[key] for key in sorted(model, key=lambda key: (ranks[type(key)], key))}


class KeysTest(VornTest):

    def test_equal_numbers_are_one_key(self):
        for make in (vorn.Map, vorn.SortedMap):
            ours = make({1: 'int'})
            ours[1.0] = 'float'
            self.assertEqual(len(ours), 1)
            self.assertEqual(ours[1], 'float')

    def test_true_is_another_key_than_one(self):
        ours = vorn.Map({1: 'one'})
        ours[True] = 'true'
        self.assertEqual((ours[1], ours[True], len(ours)), ('one', 'true', 2))

    def test_all_nans_are_one_key(self):
        ours = vorn.Map({float('nan'): 1})
        ours[-float('nan')] = 2
        self.assertEqual((len(ours), ours[float('nan')]), (1, 2))

    def test_characters_are_other_keys_than_texts(self):
        ours = vorn.Map([('a', 'text'), (vorn.Char('a'), 'character'), (97, 'number'), (vorn.CodeUnit(97), 'unit')])
        self.assertEqual(len(ours), 4)
        self.assertEqual((ours['a'], ours[vorn.Char('a')], ours[97], ours[vorn.CodeUnit(97)]),
                         ('text', 'character', 'number', 'unit'))

    def test_tuples_are_keys_by_content(self):
        ours = vorn.Map({(1, 'a'): 'x'})
        self.assertEqual((ours[(1.0, 'a')], ours[vorn.Tuple((1, 'a'))]), ('x', 'x'))
        self.assertEqual(list(ours), [(1, 'a')])
        self.assertEqual(ours, {(1, 'a'): 'x'})

    def test_collections_that_can_change_are_keys_by_identity(self):
        key = vorn.List([1])
        ours = vorn.Map([(key, 'x')])
        self.assertEqual(ours[key], 'x')
        self.assertNotIn(vorn.List([1]), ours)

    def test_none_is_no_key(self):
        for make in (vorn.Map, vorn.SortedMap):
            with self.assertRaisesBoth(TypeError, 'NullException', 'Map key cannot be null'):
                make({None: 1})

    def test_declared_types_hold(self):
        ours = vorn.Map[str, int]({'a': 1})
        self.assertEqual(ours.type_name, 'vorn.collections.Map<String,Long>')
        with self.assertRaisesBoth(TypeError, 'TypeError', 'Map<String> cannot accept vorn.Int'):
            ours[1] = 1
        for value in (1.5, 'x', None, True, 2**63):
            with self.assertRaisesBoth(TypeError, 'TypeError'):
                ours['b'] = value
        self.assertEqual(ours, {'a': 1})
        self.assertNotIn(1, ours)
        self.assertEqual(repr(ours), "vorn.Map[str, int]({'a': 1})")
        with self.assertRaises(TypeError):
            vorn.Map[str]
        characters = vorn.Map[vorn.Char, int]({'a': 1})
        self.assertEqual((characters['a'], list(characters)), (1, [vorn.Char('a')]))

    def test_the_language_shows_its_maps(self):
        self.assertEqual(str(vorn.Map({'a': None})), '{"a": null}')
        self.assertEqual(str(vorn.SortedMap({2: 1, 1: 2}, synchronized=True)), 'ts:{1: 2, 2: 1}')


if __name__ == '__main__':
    unittest.main()
