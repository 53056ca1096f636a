"""Lists: the laws for each class and kind of elements, and what only some of them do."""

import unittest
from collections import abc

import vorn

from list_laws import ListLaws
from support import HEAP, VornTest

TEXTS = ('', 'a', 'ab', 'grüße', 'κόσμος', 'ア', '😀')
WHOLE = (-2**31, -7, 0, 1, 5, 1000, 2**31 - 1)
LONG = (-2**63, -2**31, 0, 1, 2**31, 2**53 + 1, 2**63 - 1)


class UntypedListTest(ListLaws, VornTest):
    make = vorn.List


class UntypedListOfTextsTest(ListLaws, VornTest):
    make, elements = vorn.List, TEXTS


class UntypedListOfAllTypesTest(ListLaws, VornTest):
    make, elements, sortable = vorn.List, (None, True, 5, 2.5, 'text', (1, 'x'), 2**63), False

    def test_comparisons(self):
        """These elements have none."""


class LongListTest(ListLaws, VornTest):
    make, elements = vorn.List[int], LONG


class IntListTest(ListLaws, VornTest):
    make, elements = vorn.List['Int'], WHOLE


class UnsignedLongListTest(ListLaws, VornTest):
    make, elements = vorn.List['ULong'], (0, 1, 5, 255, 2**31, 2**53 + 1, 2**63 - 1)


class ByteListTest(ListLaws, VornTest):
    make, elements = vorn.List['Byte'], (0, 1, 5, 127, 128, 254, 255)


class DoubleListTest(ListLaws, VornTest):
    make, elements = vorn.List[float], (float('-inf'), -1e300, -0.5, 5e-324, 1.0, 1e300, float('inf'))


class FloatListTest(ListLaws, VornTest):
    make, elements = vorn.List['Float'], (float('-inf'), -1.5, -0.25, 0.0, 1.0, 2.0**100, float('inf'))


class CharListTest(ListLaws, VornTest):
    make, elements = vorn.List[vorn.Char], tuple(map(vorn.Char, 'Aazßκア😀'))


class TextListTest(ListLaws, VornTest):
    make, elements = vorn.List[str], TEXTS


class LinkedListTest(ListLaws, VornTest):
    make = vorn.LinkedList


class LinkedLongListTest(ListLaws, VornTest):
    make, elements = vorn.LinkedList[int], LONG


class LinkedTextListTest(ListLaws, VornTest):
    make, elements = vorn.LinkedList[str], TEXTS


class SynchronizedLongListTest(ListLaws, VornTest):
    elements = LONG

    @staticmethod
    def make(values=()):
        return vorn.List[int](values, synchronized=True)


class SynchronizedLinkedListTest(ListLaws, VornTest):

    @staticmethod
    def make(values=()):
        return vorn.LinkedList(values, synchronized=True)


class ListTest(VornTest):

    def test_lists_are_mutable_sequences(self):
        for made in (vorn.List(), vorn.List[int](), vorn.LinkedList[str]()):
            self.assertIsInstance(made, abc.MutableSequence)
            self.assertIsInstance(made, vorn.Collection)

    def test_booleans_keep_unboxed(self):
        ours = vorn.List[bool]([True, False, True])
        self.assertEqual(ours.tolist(), [True, False, True])
        self.assertIs(ours[1], False)
        ours.sort()
        self.assertEqual(ours, [False, True, True])

    def test_code_units(self):
        ours = vorn.List[vorn.CodeUnit]([0x41, vorn.CodeUnit(0xD83D)])
        self.assertEqual(ours.tolist(), [0x41, 0xD83D])
        self.assertIsInstance(ours[0], vorn.CodeUnit)
        self.assertIn(0x41, ours)
        with self.assertRaises(TypeError):
            ours.append(0x10000)

    def test_elements_of_a_declared_type_stay_unboxed_through_every_change(self):
        ours = vorn.List[int](range(100))
        ours[10:20] = range(3)
        ours[5:5] = [7] * 50
        del ours[::3]
        del ours[3:40]
        ours.remove(7) if 7 in ours else None
        self.assertNotIn('text', ours)
        self.assertEqual(ours.count(2.5) + ours.count('text') + ours.count(None), 0)
        ours.sort()
        ours += ours
        self.assertEqual((ours * 2)[1:].memoryview().format, 'q')
        self.assertEqual(ours.memoryview().tolist(), ours.tolist())

    def test_values_that_the_declared_type_refuses(self):
        cases = ((vorn.List['Int'], 2**31, 'Int', 'Long'), (vorn.List[int], 2**63, 'Long', 'ULong'),
                 (vorn.List['ULong'], -1, 'ULong', 'Int'),
                 (vorn.List['ULong'], 2**63, 'ULong', 'ULong'), (vorn.List['Byte'], 256, 'Byte', 'Int'),
                 (vorn.List[int], 1.0, 'Long', 'Double'), (vorn.List[int], 'x', 'Long', 'String'),
                 (vorn.List[int], True, 'Long', 'Boolean'), (vorn.List[bool], 1, 'Boolean', 'Int'),
                 (vorn.List[float], 'x', 'Double', 'String'), (vorn.List[str], 1, 'String', 'Int'),
                 (vorn.LinkedList[str], 1, 'String', 'Int'), (vorn.List[vorn.Char], 'ab', 'Char', 'String'),
                 (vorn.List[vorn.List[int]], vorn.List[str](), 'ArrayList<Long>', 'collections.ArrayList<String>'))
        for make, value, declared, kind in cases:
            message = f'ArrayList<{declared}> cannot accept vorn.{kind}'
            with self.subTest(declared=declared, value=value):
                ours = make()
                for act in (lambda: ours.append(value), lambda: ours.insert(0, value), lambda: ours.extend([value]),
                            lambda: ours.__setitem__(slice(None), [value]), lambda: make([value])):
                    with self.assertRaisesBoth(TypeError, 'TypeError', message):
                        act()
                self.assertEqual(len(ours), 0)

    def test_a_refused_value_changes_nothing(self):
        ours = vorn.List['Byte']([1, 2, 3])
        for act in (lambda: ours.extend([4, 5, 256]), lambda: ours.__setitem__(slice(0, 2), [4, 256]),
                    lambda: ours.__setitem__(slice(0, 1), [4, 5, 256]), lambda: ours.__setitem__(0, 256),
                    lambda: ours.__setitem__(slice(None, None, 2), [4, 256]), lambda: ours + [256]):
            self.assertRaises(TypeError, act)
            self.assertEqual(ours, [1, 2, 3])

    def test_texts_take_none_and_numbers_do_not(self):
        self.assertEqual(vorn.List[str]([None, 'x']), [None, 'x'])
        with self.assertRaisesBoth(TypeError, 'TypeError', 'ArrayList<Long> cannot accept null'):
            vorn.List[int]([None])

    def test_a_float_list_rounds_and_finds_what_it_holds(self):
        ours = vorn.List['Float']([0.1, 0.5])
        self.assertEqual(ours[0], 0.10000000149011612)
        self.assertNotIn(0.1, ours)
        self.assertIn(ours[0], ours)
        ours.append(1e300)
        ours.extend([-1e300, 1e300])
        self.assertEqual(ours.tolist()[2:], [float('inf'), float('-inf'), float('inf')])

    def test_numbers_are_found_by_value_whatever_their_types(self):
        ours, doubles = vorn.List[int]([1, 2, 3]), vorn.List[float]([1.0, 2.5])
        self.assertEqual((ours.index(2.0), ours.count(3.0), doubles.index(1)), (1, 1, 0))
        self.assertNotIn(2.5, ours)
        self.assertNotIn(float('nan'), ours)
        self.assertNotIn(float('inf'), ours)
        self.assertNotIn(10**400, doubles)
        self.assertNotIn(2**53 + 1, vorn.List[float]([2.0**53]))

    def test_true_is_no_number(self):
        self.assertNotIn(True, vorn.List[int]([1]))
        self.assertNotIn(True, vorn.List([1]))
        self.assertNotIn(1, vorn.List[bool]([True]))
        self.assertNotEqual(vorn.List([1]), vorn.List([True]))

    def test_a_nan_equals_nothing(self):
        nan = float('nan')
        self.assertNotIn(nan, vorn.List[float]([nan]))
        ours = vorn.List[float]([nan, 1.0, float('-inf')])
        ours.sort()
        self.assertEqual(ours.tolist()[:2], [float('-inf'), 1.0])

    def test_lists_of_different_classes_are_equal_by_content(self):
        self.assertEqual(vorn.List[int]([1, 2]), vorn.LinkedList([1, 2]))
        self.assertEqual(vorn.List[int]([1, 2]), vorn.List[float]([1.0, 2.0]))
        self.assertNotEqual(vorn.List([1, 2]), vorn.ImmutableList([1, 2]))

    def test_nested_lists_are_the_same_objects(self):
        inner = vorn.List([1])
        outer = vorn.List([inner, inner])
        self.assertIs(outer[0], inner)
        outer[1].append(2)
        self.assertEqual(inner, [1, 2])
        self.assertEqual(outer, [[1, 2], [1, 2]])
        self.assertEqual(outer.index(inner), 0)
        del inner
        vorn.collect()
        self.assertIs(outer[0], outer[1])
        self.assertEqual(outer.pop(), [1, 2])

    def test_a_list_that_contains_itself(self):
        import copy
        import pickle
        ours = vorn.List([1])
        ours.append(ours)
        self.assertEqual(repr(ours), 'vorn.List([1, ...])')
        self.assertEqual(str(ours), '[1, [...]]')
        for again in (copy.deepcopy(ours), pickle.loads(pickle.dumps(ours))):
            self.assertIs(again[1], again)
            self.assertEqual(again, ours)
        self.assertIs(ours[1][1], ours)
        self.assertEqual(ours.count(ours), 1)
        built_in = [1]
        built_in.append(built_in)
        with self.assertRaises(RecursionError):
            ours == built_in

    def test_deep_nesting(self):
        deep = vorn.List()
        # Deeper than Python calls itself. The stress heap goes through all levels at each of them.
        for _ in range(1500 if 'stress' in HEAP else 3000):
            deep = vorn.List([deep])
        self.assertTrue(str(deep).startswith('[[['))
        with self.assertRaises(RecursionError):
            repr(deep)
        self.assertEqual(deep, deep[0:1])

    def test_texts_show_as_the_language_shows_them(self):
        self.assertEqual(str(vorn.List(['a', None, True, 1.0])), '["a", null, true, 1.0]')
        self.assertEqual(str(vorn.LinkedList([1], synchronized=True)), 'ls:[1]')
        self.assertEqual(repr(vorn.List['Int']([1], synchronized=True)), "vorn.List['Int']([1], synchronized=True)")
        self.assertEqual(repr(vorn.List[vorn.List[int]]([vorn.List[int]([1])])),
                         "vorn.List['ArrayList<Long>']([vorn.List[int]([1])])")

    def test_linked_lists_have_two_ends(self):
        ours = vorn.LinkedList([1, 2])
        ours.appendleft(0)
        self.assertEqual((ours.popleft(), ours.popleft(), ours.tolist()), (0, 1, [2]))
        ours.popleft()
        self.assertRaises(IndexError, ours.popleft)

    def test_sorting_boxed_values_follows_python(self):
        mixed = vorn.List([2, 1.5, True, 'x'])
        self.assertRaises(TypeError, mixed.sort)
        self.assertEqual(mixed, [2, 1.5, True, 'x'])
        numbers = vorn.List([2, 1.0, 1, 0.5])
        numbers.sort()
        self.assertEqual([repr(number) for number in numbers], ['0.5', '1.0', '1', '2'])

    def test_sorting_keeps_the_order_of_equals(self):
        pairs = [(number * 7 % 5, number) for number in range(200)]
        ours = vorn.List(pairs)
        ours.sort(key=lambda pair: pair[0])
        self.assertEqual(ours.tolist(), sorted(pairs, key=lambda pair: pair[0]))
        ours = vorn.List(pairs)
        ours.sort(key=lambda pair: pair[0], reverse=True)
        self.assertEqual(ours.tolist(), sorted(pairs, key=lambda pair: pair[0], reverse=True))

    def test_sorting_moves_the_objects_themselves(self):
        first, second = vorn.List([2]), vorn.List([1])
        ours = vorn.List([first, second])
        ours.sort()
        self.assertIs(ours[0], second)

    def test_a_class_of_ones_own(self):
        class Stack(vorn.List):
            def top(self):
                return self[-1]

        stack = Stack([1, 2])
        self.assertEqual(stack.top(), 2)
        self.assertIs(type(stack[:1]), Stack)
        self.assertIs(type(stack + [3]), Stack)
        self.assertEqual(repr(stack).partition('(')[0].rpartition('.')[2], 'Stack')
        self.assertEqual(vorn.List([stack])[0].top(), 2)

    def test_element_types(self):
        self.assertIs(vorn.List[int], vorn.List['Long'])
        self.assertIs(vorn.List['vorn.Long'], vorn.List[int])
        self.assertEqual(vorn.List[int]().type_name, 'vorn.collections.ArrayList<Long>')
        self.assertEqual(vorn.List[vorn.List[str]]().type_name, 'vorn.collections.ArrayList<ArrayList<String>>')
        self.assertTrue(issubclass(vorn.List[int], vorn.List))
        for wrong in (None, 5, [], dict, complex):
            with self.assertRaises(TypeError):
                vorn.List[wrong]
        for wrong in ('', 'a\0b', 'List<', '  '):
            with self.assertRaises(ValueError):
                vorn.List[wrong]
        with self.assertRaises(TypeError):
            vorn.List[int, str]
        with self.assertRaises(TypeError):
            vorn.List[int][str]

    def test_the_class_of_a_list_survives_its_object(self):
        outer = vorn.List([vorn.List[str](['x']), vorn.List(synchronized=True), vorn.LinkedList['Int']([1])])
        self.assertEqual([type(each) for each in outer], [vorn.List[str], vorn.List, vorn.LinkedList['Int']])
        self.assertEqual([each.synchronized for each in outer], [False, True, False])


if __name__ == '__main__':
    unittest.main()
