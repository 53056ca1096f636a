"""Drives every function of the embedding API and every list native from Python."""

import ctypes
import functools
import math
import os
import pathlib
import subprocess
import sys
import threading
import unittest
from ctypes import c_bool, c_double, c_int64, c_void_p

import vorn_ctypes as vorn
from vorn_ctypes import array_list, bare_text, boolean, elements, floating, integer, new, runtime, string

INTEGER_TYPES = {
    'SByte': (-128, 127), 'Byte': (0, 255), 'Short': (-32768, 32767), 'UShort': (0, 65535),
    'Int': (-2**31, 2**31 - 1), 'UInt': (0, 2**32 - 1), 'Long': (-2**63, 2**63 - 1), 'ULong': (0, 2**63 - 1),
    'Char': (0, 0x10FFFF), 'CodeUnit': (0, 0xFFFF),
}
LIST_CLASSES = ('ArrayList', 'ArrayListSync', 'LinkedList', 'LinkedListSync')
INDEX_ERROR = ('IndexException', 'Index out of bounds')


def setUpModule():
    if not vorn.start():
        raise RuntimeError(f'cannot start the runtime with {vorn.heap_description}')


def refusal(declared, value):
    return ('TypeError', f'ArrayList<{declared}> cannot accept {value}')


class VornTest(unittest.TestCase):
    """Every test ends without a pending error and without an armed allocation failure."""

    def tearDown(self):
        runtime.heap_fail_allocation(-1)
        self.assertEqual(vorn.take_errors(), [])

    def assertRaised(self, *errors):
        self.assertEqual(vorn.take_errors(), list(errors))


def for_each_list_class(argument=''):
    """Runs a test with the name and a new instance of every list class of the element type."""
    def decorate(test):
        @functools.wraps(test)
        def run(self):
            for name in LIST_CLASSES:
                with self.subTest(list=name + argument):
                    test(self, name, new(name + argument))
        return run
    return decorate


class ValuesTest(VornTest):

    def test_integers_keep_all_their_bits(self):
        for name, values in INTEGER_TYPES.items():
            for value in values:
                with self.subTest(type=name, value=value):
                    box = integer(name, value)
                    self.assertEqual(vorn.unboxed(box), value)
                    self.assertEqual(vorn.type_name(box), f'vorn.{name}')
                    self.assertTrue(runtime.is_object(box))

    def test_full_type_names_name_the_same_types(self):
        self.assertEqual(vorn.type_name(integer('vorn.UShort', 7)), 'vorn.UShort')
        self.assertEqual(vorn.type_name(floating('vorn.Float', 7)), 'vorn.Float')

    def test_an_unsigned_value_above_the_signed_maximum_keeps_its_bits(self):
        self.assertEqual(vorn.unboxed(integer('ULong', -1)), -1)

    def test_every_boxing_gives_a_new_box(self):
        first, second = integer('Int', 5), integer('Int', 5)
        self.assertNotEqual(first.handle, second.handle)

    def test_floating_values(self):
        for value in (0.0, -1.5, 1e300, math.inf, 5e-324):
            with self.subTest(value=value):
                box = floating('Double', value)
                self.assertEqual(vorn.unboxed(box), value)
                self.assertEqual(vorn.type_name(box), 'vorn.Double')
        self.assertTrue(math.isnan(vorn.unboxed(floating('Double', math.nan))))
        self.assertEqual(vorn.unboxed(floating('Float', 0.5)), 0.5)

    def test_each_type_boxes_without_its_name(self):
        for name, (suffix, c_type) in vorn.TYPED_BOXES.items():
            for value in INTEGER_TYPES.get(name, (-0.5, 2.0**100)):
                with self.subTest(type=name, value=value):
                    box = vorn.Slot(getattr(runtime, f'box_{suffix}')(value))
                    self.assertEqual(vorn.type_name(box), f'vorn.{name}')
                    self.assertEqual(vorn.unboxed(box), value)
                    read = c_type(5)
                    self.assertTrue(getattr(runtime, f'unbox_{suffix}')(box, read))
                    self.assertEqual(read.value, value)
                    for other, (other_suffix, other_type) in vorn.TYPED_BOXES.items():
                        kept = other_type(5)
                        self.assertEqual(getattr(runtime, f'unbox_{other_suffix}')(box, kept), other == name)
                        if other != name:
                            self.assertEqual(kept.value, 5)

    def test_booleans_are_two_shared_boxes(self):
        self.assertIs(vorn.unboxed(boolean(True)), True)
        self.assertIs(vorn.unboxed(boolean(False)), False)
        self.assertEqual(boolean(True).handle, boolean(True).handle)
        self.assertNotEqual(boolean(True).handle, boolean(False).handle)

    def test_unknown_box_types_give_null(self):
        for name in (b'Double', b'String', b'int', b''):
            self.assertIsNone(runtime.box_integer(name, 1))
        for name in (b'Int', b'String', b'double'):
            self.assertIsNone(runtime.box_floating(name, 1.0))

    def test_unboxing_something_else_leaves_the_value(self):
        whole, real, truth = c_int64(77), c_double(7.5), c_bool(True)
        for handle in (string('5'), bare_text('5'), new('ArrayList<Int>'), vorn.Slot()):
            self.assertFalse(runtime.unbox_integer(handle, whole))
            self.assertFalse(runtime.unbox_floating(handle, real))
            self.assertFalse(runtime.unbox_boolean(handle, truth))
        self.assertFalse(runtime.unbox_floating(integer('Int', 3), real))
        self.assertFalse(runtime.unbox_integer(floating('Double', 3), whole))
        self.assertEqual((whole.value, real.value, truth.value), (77, 7.5, True))

    def test_strings_and_bare_texts(self):
        for text in ('', 'a', 'fifteen letters', 'grüße, κόσμε', 'x' * 5000):
            with self.subTest(text=text[:20]):
                as_object, as_text = string(text), bare_text(text)
                self.assertEqual(vorn.unboxed(as_object), text)
                self.assertEqual(vorn.unboxed(as_text), text)
                self.assertTrue(runtime.is_object(as_object))
                self.assertFalse(runtime.is_object(as_text))
                self.assertEqual(vorn.type_name(as_object), 'vorn.String')
                self.assertEqual(vorn.type_name(as_text), 'vorn.String')
                self.assertTrue(runtime.equals(as_object, as_text))

    def test_a_string_takes_the_length_it_is_given(self):
        self.assertEqual(runtime.string_text(vorn.Slot(runtime.string_new(b'abcdef', 3))), b'abc')
        self.assertEqual(runtime.string_text(vorn.Slot(runtime.string_new(b'abcdef', ctypes.c_size_t(-1).value))),
                         b'abcdef')

    def test_other_handles_have_no_text(self):
        self.assertIsNone(runtime.string_text(None))
        self.assertIsNone(runtime.string_text(integer('Int', 1)))

    def test_null_has_no_type(self):
        self.assertIsNone(runtime.type_name(None))
        self.assertFalse(runtime.is_object(None))
        self.assertFalse(runtime.is_instance(None, b'Int'))

    def test_equality(self):
        self.assertTrue(runtime.equals(integer('Int', 3), integer('Long', 3)))
        self.assertTrue(runtime.equals(integer('Int', 3), floating('Double', 3.0)))
        self.assertFalse(runtime.equals(integer('Int', 3), integer('Int', 4)))
        self.assertFalse(runtime.equals(string('3'), integer('Int', 3)))
        self.assertTrue(runtime.equals(None, None))
        left, right = new('ArrayList<Int>'), new('LinkedList<Int>')
        for number in (1, 2, 3):
            array_list.addInt(left, number)
            array_list.addInt(right, number)
        self.assertTrue(runtime.equals(left, right))
        array_list.addInt(right, 4)
        self.assertFalse(runtime.equals(left, right))


class ListsTest(VornTest):

    def filled(self, name, *values):
        result = new(name)
        for value in values:
            array_list.add(result, value)
        return result

    def test_classes_by_short_and_full_name(self):
        for name in LIST_CLASSES:
            for spelling in (name, f'vorn.collections.{name}'):
                for argument in ('', '<Int>', '<String>'):
                    with self.subTest(list=spelling + argument):
                        made = new(spelling + argument)
                        self.assertEqual(vorn.type_name(made), f'vorn.collections.{name}{argument}')
                        self.assertTrue(runtime.is_instance(made, name.encode()))
                        self.assertEqual(vorn.storage(made).element_type.decode(), argument.strip('<>'))
                        self.assertEqual(array_list.size(made), 0)
        self.assertIsNone(runtime.object_new(b'NoSuchList'))

    @for_each_list_class()
    def test_add_and_read_back(self, name, a_list):
        for value in (integer('Int', 1), string('two'), bare_text('three'), floating('Double', 4.5), boolean(True),
                      vorn.Slot()):
            array_list.add(a_list, value)
        self.assertEqual(elements(a_list), [1, 'two', 'three', 4.5, True, None])
        self.assertEqual(array_list.sizeFast(a_list), 6)

    @for_each_list_class('<Int>')
    def test_integers_stay_unboxed_in_array_backed_lists(self, name, a_list):
        for number in range(100):
            array_list.addInt(a_list, number * number)
        info = vorn.storage(a_list)
        if name.startswith('Linked'):
            self.assertEqual((info.storage, info.primitive_type), (vorn.LIST_LINKED, b''))
            self.assertEqual((info.size, info.capacity), (100, 100))
        else:
            self.assertEqual((info.storage, info.primitive_type), (vorn.LIST_PRIMITIVE, b'Int'))
            self.assertEqual((info.size, info.capacity, info.bytes_per_element), (100, 128, 4))
        numbers = [n * n for n in range(100)]
        self.assertEqual([array_list.getInt(a_list, i) for i in range(100)], numbers)
        self.assertEqual([array_list.getIntFast(a_list, i) for i in range(-100, 0)], numbers)
        self.assertEqual([array_list.getDouble(a_list, i) for i in range(100)], numbers)
        self.assertEqual(elements(a_list), numbers)

    def test_raw_appends_by_type(self):
        for name, values in INTEGER_TYPES.items():
            with self.subTest(type=name):
                a_list = new(f'ArrayList<{name}>')
                for value in values:
                    array_list.addPrimitiveI64(a_list, value, name.encode())
                self.assertEqual(elements(a_list), list(values))
                self.assertEqual(vorn.type_name(array_list.operator_index(a_list, 0)), f'vorn.{name}')
                self.assertEqual(vorn.storage(a_list).primitive_type.decode(), name)
        doubles = new('ArrayList<Double>')
        array_list.addPrimitiveDouble(doubles, 2.5, None)
        array_list.addPrimitiveDouble(doubles, -0.25, b'Double')
        self.assertEqual([array_list.getDouble(doubles, i) for i in (0, 1)], [2.5, -0.25])
        self.assertEqual(array_list.getInt(doubles, 0), 2)
        truths = new('ArrayList<Boolean>')
        array_list.addPrimitiveBool(truths, True)
        array_list.addPrimitiveBool(truths, False)
        self.assertEqual(elements(truths), [True, False])
        self.assertEqual(vorn.storage(truths).bytes_per_element, 1)
        plain = new('ArrayList')
        array_list.addPrimitiveI64(plain, 9, None)
        self.assertEqual(vorn.storage(plain).primitive_type, b'Int')

    def test_a_refused_character_raises(self):
        chars = new('ArrayList<Char>')
        for value in (0x61, 0x110000):
            array_list.addPrimitiveI64(chars, value, b'Char')
        self.assertRaised(('ValueException', 'Char value must be a Unicode scalar (0..0x10FFFF, excluding surrogates)'))
        self.assertEqual(elements(chars), [0x61])
        units = new('ArrayList<CodeUnit>')
        for value in (0x61, 0x10000):
            array_list.addPrimitiveI64(units, value, b'CodeUnit')
        self.assertRaised(('TypeError', 'CodeUnit code unit out of range (0..0xFFFF)'))
        self.assertEqual(elements(units), [0x61])

    def test_natives_on_the_record(self):
        a_list = new('ArrayList<Int>')
        # The third word of an object is its native record, which compiled code holds on to.
        record = c_void_p.from_address(a_list.handle + 16).value
        for number in (10, 20, 30):
            array_list.addIntToData(record, number)
        self.assertEqual(elements(a_list), [10, 20, 30])
        self.assertEqual([array_list.getIntFromData(record, i) for i in (0, 1, -1)], [10, 20, 30])
        self.assertEqual(array_list.getIntFromData(None, 0), 0)
        array_list.addIntToData(None, 1)

    @for_each_list_class()
    def test_add_at(self, name, a_list):
        for index, text in ((0, 'c'), (0, 'a'), (1, 'b'), (3, 'd')):
            array_list.addAt(a_list, index, string(text))
        self.assertEqual(elements(a_list), ['a', 'b', 'c', 'd'])
        array_list.addAt(a_list, 5, string('e'))
        array_list.addAt(a_list, -1, string('e'))
        self.assertRaised(INDEX_ERROR, INDEX_ERROR)
        self.assertEqual(array_list.size(a_list), 4)

    @for_each_list_class('<Int>')
    def test_replace(self, name, a_list):
        for number in (1, 2, 3):
            array_list.addInt(a_list, number)
        array_list.operator_index_eq(a_list, 0, integer('Int', 10))
        array_list.operator_index_eq(a_list, -1, integer('Byte', 30))
        array_list.operator_index_eq(a_list, 3, integer('Int', 40))
        self.assertEqual(elements(a_list), [10, 2, 30, 40])
        array_list.operator_index_eq(a_list, 5, integer('Int', 0))
        array_list.operator_index_eq(a_list, -5, integer('Int', 0))
        array_list.operator_index_eq(a_list, 0, string('x'))
        self.assertRaised(INDEX_ERROR, INDEX_ERROR, refusal('Int', 'vorn.String'))
        self.assertEqual(elements(a_list), [10, 2, 30, 40])

    @for_each_list_class('<Int>')
    def test_remove(self, name, a_list):
        for number in (5, 6, 7, 6, 8):
            array_list.addInt(a_list, number)
        array_list.removeAt(a_list, 0)
        array_list.removeAt(a_list, -1)
        self.assertEqual(elements(a_list), [6, 7, 6])
        self.assertIs(array_list.remove(a_list, integer('Int', 6)), True)
        self.assertIs(array_list.remove(a_list, integer('Int', 99)), False)
        self.assertEqual(elements(a_list), [7, 6])
        array_list.removeAt(a_list, 2)
        self.assertRaised(INDEX_ERROR)
        array_list.clear(a_list)
        self.assertEqual(array_list.size(a_list), 0)
        self.assertEqual(vorn.storage(a_list).element_type, b'Int')

    @for_each_list_class('<String>')
    def test_search(self, name, a_list):
        for text in ('the', 'cat', 'and', 'the', 'dog'):
            array_list.add(a_list, string(text))
        for the in (string('the'), bare_text('the')):
            self.assertEqual(array_list.count(a_list, the), 2)
            self.assertIs(array_list.operator_in(a_list, the), True)
            self.assertEqual(array_list.indexOf(a_list, the, 0), 0)
            self.assertEqual(array_list.indexOf(a_list, the, 1), 3)
            self.assertEqual(array_list.indexOf(a_list, the, 4), -1)
            self.assertEqual(array_list.lastIndexOf(a_list, the, -1), 3)
            self.assertEqual(array_list.lastIndexOf(a_list, the, 2), 0)
        absent = string('zebra')
        self.assertEqual(array_list.count(a_list, absent), 0)
        self.assertIs(array_list.operator_in(a_list, absent), False)
        self.assertEqual(array_list.indexOf(a_list, absent, 0), -1)
        self.assertEqual(array_list.lastIndexOf(a_list, absent, -1), -1)

    def test_a_search_by_position_keeps_unboxed_storage_and_one_by_count_does_not(self):
        a_list = new('ArrayList<Int>')
        array_list.addInt(a_list, 5)
        array_list.addInt(a_list, 6)
        self.assertEqual(array_list.indexOf(a_list, string('5'), 0), -1)
        self.assertEqual(array_list.lastIndexOf(a_list, string('5'), -1), -1)
        self.assertEqual(vorn.storage(a_list).storage, vorn.LIST_PRIMITIVE)
        self.assertEqual(array_list.count(a_list, string('5')), 0)
        self.assertEqual(vorn.storage(a_list).storage, vorn.LIST_OBJECTS)
        self.assertEqual(elements(a_list), [5, 6])

    @for_each_list_class('<Int>')
    def test_wrong_indexes_raise(self, name, a_list):
        array_list.addInt(a_list, 1)
        for index in (1, -2, 2**62, -2**63):
            self.assertIsNone(array_list.operator_index(a_list, index))
            self.assertEqual(array_list.getInt(a_list, index), 0)
            self.assertEqual(array_list.getIntFast(a_list, index), 0)
            self.assertEqual(array_list.getDouble(a_list, index), 0.0)
            self.assertRaised(*[INDEX_ERROR] * 4)

    def test_wrong_types_raise(self):
        numbers, texts = new('ArrayList<Int>'), new('LinkedList<String>')
        array_list.add(numbers, string('x'))
        array_list.add(numbers, bare_text('x'))
        array_list.add(numbers, floating('Double', 1))
        array_list.add(numbers, vorn.Slot())
        array_list.addAt(texts, 0, integer('Int', 1))
        self.assertRaised(refusal('Int', 'vorn.String'), refusal('Int', 'vorn.String'), refusal('Int', 'vorn.Double'),
                          refusal('Int', 'null'), refusal('String', 'vorn.Int'))
        self.assertEqual((array_list.size(numbers), array_list.size(texts)), (0, 0))

    def test_null_elements_are_no_numbers(self):
        a_list = self.filled('ArrayList', vorn.Slot())
        self.assertEqual(array_list.getInt(a_list, 0), 0)
        self.assertEqual(array_list.getIntFast(a_list, 0), 0)
        self.assertEqual(array_list.getDouble(a_list, 0), 0.0)
        self.assertRaised(('TypeError', 'Expected Int item'), ('TypeError', 'Expected Int item'),
                          ('TypeError', 'Expected floating list item'))

    def test_null_receivers(self):
        value = string('x')
        array_list.add(None, value)
        self.assertRaised(('NullException', 'Cannot call ArrayList.add() on null'))
        array_list.addInt(None, 1)
        array_list.addPrimitiveI64(None, 1, b'Long')
        array_list.addPrimitiveDouble(None, 1.0, None)
        array_list.addPrimitiveBool(None, True)
        array_list.addAt(None, 0, value)
        array_list.operator_index_eq(None, 0, value)
        array_list.removeAt(None, 0)
        array_list.clear(None)
        self.assertIsNone(array_list.operator_index(None, 0))
        self.assertEqual([array_list.getInt(None, 0), array_list.getIntFast(None, 0), array_list.getDouble(None, 0),
                          array_list.size(None), array_list.sizeFast(None), array_list.count(None, value)], [0] * 6)
        self.assertEqual([array_list.remove(None, value), array_list.operator_in(None, value)], [False, False])
        self.assertEqual([array_list.indexOf(None, value, 0), array_list.lastIndexOf(None, value, -1)], [-1, -1])

    def test_other_handles_have_no_storage(self):
        for handle in (string('x'), bare_text('x'), integer('Int', 1), vorn.Slot()):
            self.assertFalse(runtime.list_get_storage(handle, vorn.ListStorageInfo()))

    def test_threads_share_a_synchronised_list(self):
        a_list = new('ArrayListSync<Int>')
        # Made before there are other threads: until a new handle stands in its slot, only a Python integer holds it,
        # where no collector looks, and another thread's allocation may collect just then.
        boxes = [integer('Int', number) for number in range(200)]

        def append():
            runtime.thread_attach()
            for box in boxes:
                array_list.add(a_list, box)
            runtime.thread_detach()

        threads = [threading.Thread(target=append) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(array_list.size(a_list), 800)
        self.assertEqual(sorted(elements(a_list)), sorted(list(range(200)) * 4))


class ErrorsTest(VornTest):

    def test_pending_errors_stand_in_order(self):
        self.assertEqual(runtime.error_count(), 0)
        runtime.raise_(b'ValueException', b'first')
        array_list.add(None, None)
        runtime.raise_(b'app.Problem', 'größer'.encode())
        self.assertEqual(runtime.error_count(), 3)
        self.assertIsNone(runtime.error_class(3))
        self.assertIsNone(runtime.error_message(3))
        self.assertRaised(('ValueException', 'first'), ('NullException', 'Cannot call ArrayList.add() on null'),
                          ('app.Problem', 'größer'))
        self.assertEqual(runtime.error_count(), 0)
        self.assertIsNone(runtime.error_class(0))

    def test_what_a_native_throws_is_an_error_of_a_guarded_call(self):
        a_list = new('ArrayList<Int>')
        reserve = vorn.address_of('vorn_collections_ArrayList_reserve')
        arguments = (c_int64 * 2)(a_list.handle, 2**62)
        self.assertEqual(runtime.call(b'v(hi)', reserve, ctypes.addressof(arguments), None), 1)
        self.assertRaised(('MemoryException', 'there is not enough memory'))
        self.assertEqual(runtime.call(b'v(h', reserve, None, None), -1)

    def test_errors_belong_to_their_thread(self):
        runtime.raise_(b'Exception', b'mine')
        seen = []
        thread = threading.Thread(target=lambda: seen.append(runtime.error_count()))
        thread.start()
        thread.join()
        self.assertEqual(seen, [0])
        self.assertRaised(('Exception', 'mine'))


class HeapTest(VornTest):

    def test_rooted_objects_survive_collections(self):
        a_list = new('ArrayList<String>')
        for number in range(200):
            array_list.add(a_list, string(f'text {number}'))
            if number % 50 == 0:
                runtime.heap_collect()
        runtime.heap_collect()
        self.assertEqual(elements(a_list), [f'text {number}' for number in range(200)])

    def test_statistics_count(self):
        before = vorn.statistics()
        kept = [string('x' * 100) for _ in range(50)]
        runtime.heap_collect()
        after = vorn.statistics()
        self.assertGreaterEqual(after.allocations - before.allocations, len(kept))
        self.assertGreaterEqual(after.bytes_allocated - before.bytes_allocated, 50 * 100)
        self.assertGreater(after.bytes_live, 0)
        if 'plain' in vorn.heap_description:
            self.assertEqual(after.collections, before.collections)
        else:
            self.assertGreater(after.collections, before.collections)

    def test_unrooted_objects_are_reclaimed(self):
        if 'plain' in vorn.heap_description:
            self.skipTest('the plain heap never frees')
        big = b'x' * 1000000
        runtime.heap_collect()
        before = vorn.statistics().bytes_live
        slot = vorn.Slot()
        for _ in range(100):
            slot.handle = runtime.string_new(big, len(big))
        slot.handle = None
        runtime.heap_collect()
        # A conservative collector may still hold a few of the hundred.
        self.assertLess(vorn.statistics().bytes_live - before, 20 * len(big))

    def test_a_failed_allocation_is_a_null_result(self):
        makers = {
            'box_integer': lambda: runtime.box_integer(b'Int', 5),
            'box_floating': lambda: runtime.box_floating(b'Double', 5),
            'box_long': lambda: runtime.box_long(5),
            'string_new': lambda: runtime.string_new(b'some text', 9),
            'text_new': lambda: runtime.text_new(b'some text'),
            'object_new (list)': lambda: runtime.object_new(b'ArrayList<Int>'),
            'object_new (linked)': lambda: runtime.object_new(b'LinkedListSync<String>'),
        }
        for name, make in makers.items():
            with self.subTest(function=name):
                failures = 0
                for after in range(20):
                    runtime.heap_fail_allocation(after)
                    slot = vorn.Slot(make())
                    if not runtime.heap_failure_happened():
                        self.assertIsNotNone(slot.handle)
                        break
                    self.assertIsNone(slot.handle)
                    failures += 1
                self.assertGreater(failures, 0)
                self.assertLess(failures, 20)
                runtime.heap_fail_allocation(-1)
                self.assertIsNotNone(make())


class OptionsTest(VornTest):

    def test_options_are_read_from_text(self):
        options = vorn.Options()
        self.assertTrue(runtime.runtime_parse_options(b'heap=stress,stacks=1,one-in=3,seed=7', options))
        self.assertEqual((options.struct_size, options.heap, options.stress_scans_stacks,
                          options.stress_collect_one_in, options.seed),
                         (ctypes.sizeof(vorn.Options), vorn.HEAP_STRESS, 1, 3, 7))
        self.assertTrue(runtime.runtime_parse_options(b'heap=plain', options))
        self.assertEqual((options.heap, options.seed), (vorn.HEAP_PLAIN, 0))
        for text in (b'heap=none', b'colour=red', b'heap', b'one-in=x'):
            self.assertFalse(runtime.runtime_parse_options(text, options), text)
        self.assertEqual(options.heap, vorn.HEAP_PLAIN)

    def test_room_and_divisor_are_read_from_text(self):
        options = vorn.Options()
        self.assertTrue(runtime.runtime_parse_options(b'heap=collected,room=64,divisor=3', options))
        self.assertEqual((options.collected_room_megabytes, options.collected_free_space_divisor), (64, 3))
        for text in (b'room=', b'room=1M', b'room=262145', b'divisor=x', b'divisor=-1'):
            self.assertFalse(runtime.runtime_parse_options(text, options), text)
        self.assertEqual((options.collected_room_megabytes, options.collected_free_space_divisor), (64, 3))

    @staticmethod
    def number_told_by(program, program_options, megabytes):
        """What a program prints that a process of its own runs beside so many living strings of a megabyte."""
        beginning = '''
import re, sys
import vorn_ctypes as vorn
options = vorn.Options()
assert vorn.runtime.runtime_parse_options(sys.argv[1].encode(), options) and vorn.runtime.runtime_start(options)
megabyte = b'x' * 2**20
living = [vorn.Slot(vorn.runtime.string_new(megabyte, len(megabyte))) for _ in range(int(sys.argv[2]))]
'''
        done = subprocess.run([sys.executable, '-c', beginning + program, program_options, str(megabytes)],
                              capture_output=True, text=True, cwd=os.path.dirname(os.path.abspath(__file__)), timeout=60,
                              check=True)
        return int(done.stdout)

    def pages(self, program_options, megabytes):
        """Kilobytes that the process has in pages of 2 MB."""
        return self.number_told_by('''
with open('/proc/self/smaps_rollup') as rollup:
    print(re.search(r'AnonHugePages: *(\\d+) kB', rollup.read())[1])
''', program_options, megabytes)

    def test_a_large_heap_lies_on_huge_pages_unless_told_otherwise(self):
        setting = pathlib.Path('/sys/kernel/mm/transparent_hugepage/enabled')
        if not setting.exists() or '[madvise]' not in setting.read_text(encoding='ascii'):
            self.skipTest('the system gives huge pages to nobody, or to all')
        self.assertEqual(self.pages('heap=collected', 8), 0)
        self.assertGreater(self.pages('heap=collected', 72), 8 * 1024)
        self.assertEqual(self.pages('heap=collected,huge=0', 72), 0)

    def collections_beside(self, live_megabytes, program_options):
        """How often the process collects while it drops 100 blocks of a megabyte."""
        return self.number_told_by('''
vorn.runtime.heap_collect()
before = vorn.statistics().collections
for _ in range(100):
    vorn.runtime.string_new(megabyte, len(megabyte))
print(vorn.statistics().collections - before)
''', program_options, live_megabytes)

    def test_room_is_what_is_allocated_between_collections(self):
        self.assertEqual(self.collections_beside(0, 'heap=collected,recent=0,room=256'), 0)
        some, many = (self.collections_beside(0, f'heap=collected,recent=0,room={room}') for room in (16, 2))
        self.assertGreater(some, 0)
        self.assertLessEqual(some, 100 // 16)
        self.assertGreater(many, 2 * some)

    def test_divisor_is_the_room_beside_what_is_alive(self):
        few, many = (self.collections_beside(64, f'heap=collected,recent=0,room=1,divisor={divisor}') for divisor in (1, 16))
        self.assertLessEqual(few, 4)
        self.assertGreater(many, 4 * few)

    def test_zeros_in_the_options_are_the_defaults(self):
        # The count moves by one or two from run to run; with one megabyte, what zero would be at least, it is far higher.
        by_default = self.collections_beside(0, 'heap=collected,recent=0')
        self.assertLessEqual(abs(self.collections_beside(0, 'heap=collected,recent=0,room=0,divisor=0') - by_default), 2)
        self.assertGreater(self.collections_beside(0, 'heap=collected,recent=0,room=1,divisor=16'), by_default + 4)

    def test_a_second_start_needs_the_same_heap(self):
        self.assertTrue(vorn.start())
        other = 'heap=plain' if 'plain' not in vorn.heap_description else 'heap=collected'
        self.assertFalse(vorn.start(other))

    def test_each_heap_can_be_chosen_and_restarted(self):
        # A process has one heap, so each of them needs its own.
        program = '''
import ctypes, sys
import vorn_ctypes as vorn
options = vorn.Options(struct_size=ctypes.sizeof(vorn.Options), heap=int(sys.argv[1]), seed=5)
assert vorn.runtime.runtime_start(options)
text = vorn.string('kept')
vorn.runtime.heap_collect()
assert vorn.unboxed(text) == 'kept'
vorn.runtime.raise_(b'Exception', b'left over')
del text
vorn.runtime.runtime_stop()
assert vorn.runtime.runtime_start(options)
assert vorn.runtime.error_count() == 0
print(vorn.unboxed(vorn.string('after a restart')))
'''
        for heap in (vorn.HEAP_COLLECTED, vorn.HEAP_PLAIN, vorn.HEAP_STRESS):
            with self.subTest(heap=heap):
                done = subprocess.run([sys.executable, '-c', program, str(heap)], capture_output=True, text=True,
                                      cwd=os.path.dirname(os.path.abspath(__file__)), timeout=60, check=False)
                self.assertEqual((done.returncode, done.stdout, done.stderr), (0, 'after a restart\n', ''))


class UserClassTest(VornTest):
    """A class defined from Python, with hooks that run Python."""

    @classmethod
    def setUpClass(cls):
        cls.calls = []
        cls.failing = False

        def number(handle):
            value = c_int64()
            return value.value if runtime.field_get_integer(handle, b'number', value) else None

        def equals(this, other, context):
            cls.calls.append(('equals', context))
            if cls.failing:
                runtime.raise_(b'app.HookException', b'equality failed')
                return False
            return number(this) is not None and number(this) == number(other)

        def compare(this, other, comparable, context):
            cls.calls.append(('compare', context))
            comparable[0] = number(other) is not None
            return (number(this) > number(other)) - (number(this) < number(other)) if comparable[0] else 0

        def hash_of(this, context):
            cls.calls.append(('hash', context))
            return number(this)

        def to_string(this, context):
            cls.calls.append(('to_string', context))
            return runtime.text_new(f'Item {number(this)}'.encode())

        cls.hooks = (vorn.EqualsHook(equals), vorn.CompareHook(compare), vorn.HashHook(hash_of),
                     vorn.ToStringHook(to_string))
        fields = (vorn.FieldDefinition * 3)((b'number', vorn.FIELD_INTEGER), (b'weight', vorn.FIELD_FLOATING),
                                            (b'label', vorn.FIELD_HANDLE))
        cls.definition = vorn.ClassDefinition(ctypes.sizeof(vorn.ClassDefinition), b'app.Item', None, fields, 3, 4711,
                                              *cls.hooks)
        if not runtime.class_define(cls.definition):
            raise RuntimeError('cannot define app.Item')

    def setUp(self):
        UserClassTest.failing = False
        self.calls.clear()

    def item(self, number, class_name='app.Item'):
        made = new(class_name)
        self.assertTrue(runtime.field_set_integer(made, b'number', number))
        return made

    def define(self, name, base=None, field_names=()):
        array = (vorn.FieldDefinition * len(field_names))(*[(field, vorn.FIELD_INTEGER) for field in field_names])
        return runtime.class_define(vorn.ClassDefinition(struct_size=ctypes.sizeof(vorn.ClassDefinition), name=name,
                                                         base_name=base, fields=array, field_count=len(field_names)))

    def test_fields_by_name_and_type(self):
        item = self.item(-5)
        label = string('label')
        self.assertTrue(runtime.field_set_floating(item, b'weight', 2.5))
        self.assertTrue(runtime.field_set_handle(item, b'label', label))
        whole, real, handle = c_int64(), c_double(), c_void_p()
        self.assertTrue(runtime.field_get_integer(item, b'number', whole))
        self.assertTrue(runtime.field_get_floating(item, b'weight', real))
        self.assertTrue(runtime.field_get_handle(item, b'label', handle))
        self.assertEqual((whole.value, real.value, handle.value), (-5, 2.5, label.handle))
        label.handle = None
        runtime.heap_collect()
        self.assertTrue(runtime.field_get_handle(item, b'label', handle))
        self.assertEqual(vorn.unboxed(handle.value), 'label')

    def test_absent_fields_and_other_types_are_refused(self):
        item = self.item(1)
        whole, real, handle = c_int64(9), c_double(9), c_void_p(9)
        for field in (b'missing', b'weight', b'label'):
            self.assertFalse(runtime.field_get_integer(item, field, whole))
            self.assertFalse(runtime.field_set_integer(item, field, 3))
        for field in (b'missing', b'number', b'label'):
            self.assertFalse(runtime.field_get_floating(item, field, real))
            self.assertFalse(runtime.field_set_floating(item, field, 3))
        for field in (b'missing', b'number', b'weight'):
            self.assertFalse(runtime.field_get_handle(item, field, handle))
            self.assertFalse(runtime.field_set_handle(item, field, None))
        self.assertEqual((whole.value, real.value, handle.value), (9, 9, 9))

    def test_types(self):
        item = self.item(1)
        self.assertEqual(vorn.type_name(item), 'app.Item')
        self.assertTrue(runtime.is_instance(item, b'app.Item'))
        self.assertTrue(runtime.is_instance(item, b'Item'))
        self.assertFalse(runtime.is_instance(item, b'String'))

    def test_definitions_that_are_refused(self):
        self.assertFalse(self.define(b'app.Item'))
        self.assertFalse(self.define(b''))
        self.assertFalse(self.define(b'app.Orphan', base=b'app.NoSuchBase'))
        self.assertFalse(self.define(b'app.Twice', field_names=[b'a', b'a']))
        self.assertFalse(self.define(b'app.Shadow', base=b'app.Item', field_names=[b'number']))

    def test_derived_classes_inherit_fields_and_hooks(self):
        self.assertTrue(self.define(b'app.Special', base=b'app.Item', field_names=[b'extra']))
        special = self.item(7, 'app.Special')
        self.assertTrue(runtime.field_set_integer(special, b'extra', 8))
        self.assertTrue(runtime.is_instance(special, b'app.Item'))
        items = new('ArrayList<app.Item>')
        array_list.add(items, special)
        self.assertEqual(array_list.indexOf(items, self.item(7), 0), 0)
        self.assertIn(('equals', 4711), self.calls)

    def test_searches_run_the_equality_hook(self):
        for class_name in ('ArrayList<app.Item>', 'LinkedListSync<app.Item>', 'ArrayList'):
            with self.subTest(list=class_name):
                items = new(class_name)
                for number in (3, 4, 3):
                    array_list.add(items, self.item(number))
                self.calls.clear()
                self.assertEqual(array_list.count(items, self.item(3)), 2)
                self.assertEqual(self.calls, [('equals', 4711)] * 3)
                self.assertEqual(array_list.lastIndexOf(items, self.item(3), -1), 2)
                self.assertIs(array_list.operator_in(items, self.item(5)), False)
                self.assertIs(array_list.remove(items, self.item(3)), True)
                self.assertEqual(array_list.size(items), 2)

    def test_an_error_in_the_hook_ends_the_search(self):
        items = new('ArrayList<app.Item>')
        for number in (3, 4, 3):
            array_list.add(items, self.item(number))
        UserClassTest.failing = True
        self.assertIs(array_list.remove(items, self.item(3)), False)
        self.assertEqual(array_list.size(items), 3)
        self.assertRaised(('app.HookException', 'equality failed'))

    def test_a_list_of_the_class_refuses_others(self):
        items = new('ArrayList<app.Item>')
        array_list.add(items, string('x'))
        array_list.add(items, None)
        errors = vorn.take_errors()
        self.assertEqual(len(errors), 1)
        self.assertEqual(errors[0][0], 'TypeError')
        self.assertRegex(errors[0][1], r'^ArrayList<(app\.)?Item> cannot accept vorn\.String$')
        self.assertEqual(elements(items), [None])

    def test_equals_runs_the_hook(self):
        self.assertTrue(runtime.equals(self.item(3), self.item(3)))
        self.assertFalse(runtime.equals(self.item(3), self.item(4)))
        self.assertEqual(self.calls, [('equals', 4711)] * 2)


    def test_display_runs_the_hook(self):
        self.assertEqual(vorn.display(self.item(12)), 'Item 12')
        self.assertEqual(self.calls, [('to_string', 4711)])

    def test_ordering_runs_the_hook(self):
        self.assertIs(vorn.less(self.item(3), self.item(4)), True)
        self.assertIs(vorn.less(self.item(4), self.item(3)), False)
        self.assertIs(vorn.less(self.item(3), self.item(3)), False)
        self.assertEqual(self.calls, [('compare', 4711)] * 3)
        self.assertTrue(self.define(b'app.Other'))
        self.assertIsNone(vorn.less(self.item(3), new('app.Other')))


class CoverageTest(VornTest):
    """Runs last."""

    def test_every_function_was_driven(self):
        # Stopping is driven in processes of its own.
        self.assertEqual(runtime.names - runtime.called, {'runtime_stop'})
        self.assertEqual(array_list.names - array_list.called, set())


def load_tests(loader, _tests, _pattern):
    suite = unittest.TestSuite()
    for case in (ValuesTest, ListsTest, ErrorsTest, HeapTest, OptionsTest, UserClassTest, CoverageTest):
        suite.addTests(loader.loadTestsFromTestCase(case))
    return suite


if __name__ == '__main__':
    unittest.main()
