"""What goes into the language and comes back, and what does not."""

import ctypes
import decimal
import enum
import fractions
import pickle
import unittest
from collections import namedtuple

import vorn
from vorn import _errors, _natives, _values
from vorn._library import function

from support import VornTest, run_program


class Index:
    def __index__(self):
        return 7


class ValuesTest(VornTest):

    def assertKept(self, value):
        for make in (vorn.List, vorn.LinkedList, vorn.Array, vorn.ImmutableList, vorn.Tuple):
            kept = make([value])[0]
            self.assertEqual(kept, value)
            self.assertIs(type(kept), type(value))
        self.assertEqual(list(vorn.Set([value])), [value])
        self.assertEqual(vorn.Map(a=value)['a'], value)

    def test_values_come_back_as_they_went(self):
        for value in (None, True, False, 0, -1, 2**31, -2**63, 2**63 - 1, 2**63, 2**64 - 1, 0.0, -0.5, 1e300,
                      float('inf'), '', 'text', 'grüße, κόσμε 😀', 'x' * 100000, '\u0001\ufeff\uffff',
                      vorn.Char('😀'), vorn.CodeUnit(5)):
            with self.subTest(value=str(value)[:20]):
                self.assertKept(value)
        nan = vorn.List([float('nan')])[0]
        self.assertNotEqual(nan, nan)
        self.assertEqual(str(vorn.List([-0.0])[0]), '-0.0')

    def test_derived_types_come_back_as_their_bases(self):
        class Text(str):
            pass

        class Colour(enum.IntEnum):
            RED = 3

        Point = namedtuple('Point', 'x y')
        ours = vorn.List([Text('a'), Colour.RED, Point(1, 2), Index()])
        self.assertEqual(ours, ['a', 3, (1, 2), 7])
        self.assertEqual([type(each) for each in ours], [str, int, vorn.Tuple, int])

    def test_values_that_the_language_does_not_have(self):
        for value in (object(), b'bytes', 1j, decimal.Decimal(1), fractions.Fraction(1, 2), print, type):
            for make in (vorn.List, vorn.Set, vorn.Tuple, vorn.Array):
                self.assertRaises(TypeError, make, [value])
            with self.assertRaises(TypeError):
                vorn.Map(a=value)
        for value in ([1], {1: 2}, bytearray(b'x')):
            with self.assertRaisesRegex(TypeError, 'copy it into a collection'):
                vorn.List([value])

    def test_integers_beyond_64_bits(self):
        for value in (2**64, -2**63 - 1, 10**100, -10**100):
            for make in (vorn.List, vorn.LinkedList, vorn.Set, vorn.Tuple):
                self.assertRaises(OverflowError, make, [value])
            for make in (vorn.List[int], vorn.List['Byte']):
                self.assertRaises((OverflowError, TypeError), make, [value])
                self.assertRaises((OverflowError, TypeError), make().append, value)
        self.assertRaises(OverflowError, vorn.List[float]().append, 10**400)

    def test_texts_that_are_none(self):
        for text in ('\ud800', 'a\udfffb', '\ud83d\ude00'):
            self.assertRaises(UnicodeEncodeError, vorn.List, [text])
            self.assertNotIn(text, vorn.List(['a']))
        for text in ('\0', 'a\0b'):
            self.assertRaisesRegex(ValueError, 'NUL', vorn.List, [text])
            self.assertNotIn(text, vorn.List(['a']))

    def test_characters_and_code_units(self):
        self.assertEqual(vorn.Char(0x61), 'a')
        self.assertEqual((repr(vorn.Char('a')), str(vorn.Char('a')), f'{vorn.Char("a")}'), ("vorn.Char('a')", 'a', 'a'))
        self.assertEqual((repr(vorn.CodeUnit(5)), vorn.CodeUnit(5) + 1), ('vorn.CodeUnit(5)', 6))
        for value in (vorn.Char('a'), vorn.CodeUnit(5)):
            again = pickle.loads(pickle.dumps(value))
            self.assertEqual((type(again), again), (type(value), value))
        for wrong in ('', 'ab', '\ud800', 0xD800, 0x110000, -1):
            self.assertRaises(ValueError, vorn.Char, wrong)
        for wrong in (-1, 65536):
            self.assertRaises(ValueError, vorn.CodeUnit, wrong)
        self.assertRaises(TypeError, vorn.Char, None)

    def test_a_character_that_raw_writes_have_spoiled_reads_as_the_replacement(self):
        ours = vorn.List[vorn.Char]('abc')
        for spoiled in (0xD800, 0x110000, 0xFFFFFFFF):
            ctypes.c_uint32.from_address(_natives.list_data(ours.handle)).value = spoiled
            self.assertEqual(ours.tolist(), ['\ufffd', 'b', 'c'])

    def test_a_text_that_is_no_utf_8_reads_with_replacements(self):
        ours = vorn.List()
        _natives.ArrayList.add(ours, _natives.string_new(b'a\xffb', 3))
        self.assertEqual(ours, ['a\ufffdb'])

    def test_objects_of_other_classes_are_shown_as_such(self):
        made = _values.value_of(_natives.object_new(b'Object'))
        self.assertEqual(type(made), vorn.Object)
        self.assertEqual(made.type_name, 'vorn.Object')
        ours = vorn.List([made])
        self.assertIs(ours[0], made)
        self.assertIn('vorn.Object', repr(made))
        self.assertRaises(TypeError, vorn.Object)
        self.assertRaises(TypeError, vorn.Collection)

    def test_a_method_that_is_given_an_object_of_another_class_is_a_type_error(self):
        objects = (vorn.List[int]([1]), vorn.Array[int]([1]), vorn.Tuple((1,)), vorn.Map({1: 2}), vorn.Set([1]),
                   vorn.Map[int, int]({1: 2}), _values.value_of(_natives.object_new(b'Object')))
        methods = (vorn.List.__len__, vorn.List.__getitem__, vorn.List.append, vorn.List.tolist, vorn.List.__contains__,
                   vorn.List.count, vorn.ImmutableList.__str__, vorn.Array.__len__, vorn.Array.__getitem__,
                   vorn.Array.index, vorn.Array.__str__, vorn.Tuple.__len__, vorn.Tuple.__getitem__, vorn.Map.__len__,
                   vorn.Map.__getitem__, vorn.Map.__contains__, vorn.Map.pop, vorn.Map.__str__, vorn.Set.__len__,
                   vorn.Set.add, vorn.Set.__contains__, vorn.Set.remove, vorn.Set.__str__)
        families = {'List': 'list', 'ImmutableList': 'list', 'RecordSequence': 'list', '_MutableList': 'list',
                    'Array': 'array', 'Tuple': 'tuple', '_AnyMap': 'map', 'Set': 'set'}
        for method in methods:
            for each in objects:
                if each.family != families[method.__qualname__.partition('.')[0]]:
                    arguments = (each, 0)[:method.__code__.co_argcount]
                    with self.subTest(method=method.__qualname__, object=type(each).__name__):
                        self.assertRaises((TypeError, AttributeError), method, *arguments)
        self.assertRaises(AttributeError, vorn.List.__len__, [])

    def test_errors_are_those_of_python_and_of_the_language(self):
        for error, base, name in ((vorn.IndexException, IndexError, 'IndexException'),
                                  (vorn.KeyException, KeyError, 'KeyException'),
                                  (vorn.TypeException, TypeError, 'TypeError'),
                                  (vorn.ValueException, ValueError, 'ValueException'),
                                  (vorn.NullException, TypeError, 'NullException'),
                                  (vorn.ReadOnlyException, TypeError, 'ReadOnlyException'),
                                  (vorn.MemoryException, MemoryError, 'MemoryException'),
                                  (vorn.NativeException, RuntimeError, 'NativeException')):
            self.assertTrue(issubclass(error, vorn.Error) and issubclass(error, base))
            again = pickle.loads(pickle.dumps(error('text')))
            self.assertEqual((type(again), again.args, again.language_class), (error, ('text',), name))

    def test_an_error_that_was_pending_before_a_call_stays_pending(self):
        _errors._raise(b'app.Older', b'left by another program')
        with self.assertRaises(IndexError) as caught:
            vorn.List()[0]
        self.assertIsNone(caught.exception.__context__)
        self.assertEqual([_errors._class(index) for index in range(_errors._count())], [b'app.Older'])
        _errors._clear()

    def test_exhausted_memory_is_a_memory_error_and_changes_nothing(self):
        fail, failed = function('vorn_heap_fail_allocation'), function('vorn_heap_failure_happened')
        fail.argtypes = [ctypes.c_int64]
        acts = (lambda target: target.append(5), lambda target: target.extend(range(50)), lambda target: target.sort(),
                lambda target: target[1:3], lambda target: target.insert(0, 5), lambda target: target * 50, repr, str,
                lambda target: target.__setitem__(slice(1, 2), range(50)), list, lambda target: (5, 'x') in target)
        for make in (vorn.List[int], vorn.List, vorn.LinkedList):
            for act in acts:
                failures = 0
                while True:
                    ours = make(range(5))
                    fail(failures)
                    try:
                        act(ours)
                    except vorn.MemoryException:
                        fail(-1)
                        self.assertEqual(ours.tolist(), list(range(5)))
                    else:
                        break
                    failures += 1
                self.assertFalse(failed(), 'a failed allocation was passed over')
                fail(-1)

    def test_a_native_that_throws_is_no_end_of_the_process(self):
        status, output, errors = run_program('''
import vorn, support, threading
threading.stack_size(256 * 1024)
def show():
    deep = vorn.List()
    for _ in range(20000):
        deep = vorn.List([deep])
    try:
        str(deep)
    except RuntimeError as error:
        print(type(error).__name__, error)
thread = threading.Thread(target=show)
thread.start()
thread.join()
''', heap='heap=collected')
        self.assertEqual((status, output, errors),
                         (0, 'NativeException collections are nested too deeply to display\n', ''))


if __name__ == '__main__':
    unittest.main()
