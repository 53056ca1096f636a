"""Views of unboxed elements."""

import array
import gc
import sys
import unittest

import vorn

from support import VornTest

FORMATS = {'SByte': 'b', 'Byte': 'B', 'Short': 'h', 'UShort': 'H', 'Int': 'i', 'UInt': 'I', 'Long': 'q', 'ULong': 'Q',
           'Float': 'f', 'Double': 'd', 'CodeUnit': 'H'}


class ViewTest(VornTest):

    def test_formats(self):
        for name, item_format in FORMATS.items():
            for make in (vorn.List, vorn.Array, vorn.ImmutableList):
                with self.subTest(type=name, make=make):
                    shown = make[name]([1, 2, 3]).memoryview()
                    self.assertEqual((shown.format, shown.ndim, shown.shape, shown.readonly),
                                     (item_format, 1, (3,), make is vorn.ImmutableList))
                    self.assertEqual(shown.tolist(), [1, 2, 3])
                    self.assertEqual(shown, array.array(item_format, [1, 2, 3]))
        self.assertEqual(vorn.List[bool]([True, False]).memoryview().tolist(), [True, False])
        characters = vorn.List[vorn.Char]('ab').memoryview()
        self.assertEqual((characters.format, characters.tolist(), characters.readonly), ('I', [97, 98], True))

    def test_a_view_writes_to_the_list(self):
        for ours in (vorn.List[int](range(5)), vorn.List[int](range(500)), vorn.Array[int](range(5))):
            with ours.memoryview() as shown:
                shown[2] = -7
                shown[3:5] = array.array('q', [8, 9])
            self.assertEqual(ours[:6].tolist()[:5], [0, 1, -7, 8, 9])

    def test_a_list_with_a_view_refuses_to_move_its_elements(self):
        changes = (lambda ours: ours.append(1), lambda ours: ours.extend([1]), lambda ours: ours.insert(0, 1),
                   lambda ours: ours.pop(), lambda ours: ours.remove(1), lambda ours: ours.clear(),
                   lambda ours: ours.__delitem__(0), lambda ours: ours.__delitem__(slice(0, 2)),
                   lambda ours: ours.__setitem__(slice(0, 1), [1, 2]), lambda ours: ours.__iadd__([1]),
                   lambda ours: ours.__imul__(2), lambda ours: ours.__imul__(0))
        for ours in (vorn.List[int]([1, 2, 3]), vorn.List([1, 2, 3])):
            shown = ours.memoryview()
            for change in changes:
                self.assertRaises(BufferError, change, ours)
                self.assertEqual(ours.tolist(), [1, 2, 3])
            part = shown[1:]
            shown.release()
            self.assertRaises(BufferError, ours.append, 4)
            del part
            ours.append(4)
            self.assertEqual(ours, [1, 2, 3, 4])

    def test_changes_in_place_go_on_under_a_view(self):
        ours = vorn.List[int]([3, 1, 2])
        shown = ours.memoryview()
        ours.sort()
        ours[0] = 7
        ours[1:3] = [8, 9]
        ours[::2] = [5, 6]
        self.assertEqual(shown.tolist(), [5, 8, 6])
        ours.reverse()
        self.assertEqual(shown.tolist(), [6, 8, 5])
        ours.sort(key=lambda number: -number)
        self.assertEqual(shown.tolist(), [8, 6, 5])
        self.assertTrue('x' not in ours and 1.5 not in ours and ours.count('x') == 0)
        self.assertEqual(shown.tolist(), ours.tolist())
        untyped = vorn.List([1, 2])
        other = untyped.memoryview()
        with self.assertRaises(BufferError):
            untyped[0] = 'x'
        self.assertEqual(other.tolist(), [1, 2])

    def test_iteration_sees_what_a_view_writes(self):
        ours = vorn.List[int](range(10))
        shown, seen = ours.memoryview(), []
        for value in ours:
            seen.append(value)
            if value < 8:
                shown[value + 1] = value + 2
        self.assertEqual(seen, [0, 2, 2, 4, 4, 6, 6, 8, 8, 9])

    def test_a_view_keeps_its_list_alive(self):
        shown = vorn.List[int](range(1000)).memoryview()
        small = vorn.List[int]([1, 2, 3]).memoryview()
        fixed = vorn.Array['Int']([4, 5]).memoryview()
        gc.collect()
        for _ in range(3):
            vorn.collect()
            vorn.List[int]([77] * 1000)
        self.assertEqual(shown.tolist(), list(range(1000)))
        self.assertEqual((small.tolist(), fixed.tolist()), ([1, 2, 3], [4, 5]))

    def test_a_list_that_moves_behind_a_view_leaves_it_its_memory(self):
        """A program in another language sees no views, and does what it likes."""
        from vorn._natives import ArrayList
        ours = vorn.List[int](range(100))
        shown = ours.memoryview()
        ArrayList.reserve(ours, 100000)
        ArrayList.clear(ours)
        ArrayList.addAll(ours, vorn.List(['boxes', 'now'])) if ours.element_types == () else None
        for _ in range(3):
            vorn.collect()
            vorn.List[int]([77] * 100)
        self.assertEqual(shown.tolist(), list(range(100)))

    def test_empty_lists(self):
        for ours in (vorn.List[int]([1])[:0], vorn.Array[int](0)):
            if isinstance(ours, vorn.List):
                ours.append(1)
                ours.pop()
            shown = ours.memoryview()
            self.assertEqual((len(shown), shown.format, shown.tolist()), (0, 'q', []))
            if isinstance(ours, vorn.List):
                self.assertRaises(BufferError, ours.append, 1)
                del shown
                ours.append(1)

    def test_boxes_have_no_buffer(self):
        for ours in (vorn.List(['a']), vorn.List[str](), vorn.List(), vorn.LinkedList[int]([1]), vorn.Array(['a']),
                     vorn.Array[int]([1], synchronized=True), vorn.ImmutableList(['a'])):
            with self.subTest(ours=ours):
                if isinstance(ours, vorn.LinkedList):
                    self.assertFalse(hasattr(ours, 'memoryview'))
                else:
                    self.assertRaises(BufferError, ours.memoryview)
                    self.assertFalse(hasattr(ours, '__array_interface__'))

    @unittest.skipIf(sys.version_info < (3, 12), 'classes of Python have buffers from 3.12 on')
    def test_the_buffer_protocol(self):
        ours = vorn.List['Int']([1, 2])
        shown = memoryview(ours)
        shown[0] = 5
        self.assertRaises(BufferError, ours.append, 1)
        shown.release()
        ours.append(3)
        self.assertEqual(ours, [5, 2, 3])
        self.assertEqual(bytes(vorn.Array['Byte']([1, 2])), b'\1\2')
        self.assertTrue(memoryview(vorn.ImmutableList([1])).readonly)
        self.assertRaises(BufferError, memoryview, vorn.List(['a']))
        self.assertEqual(array.array('i', [1]) + array.array('i', bytes(ours)), array.array('i', [1, 5, 2, 3]))

    def test_lists_are_made_from_other_buffers(self):
        for item_format in 'bBhHiIlLqQfd':
            source = array.array(item_format, [1, 2, 3])
            self.assertEqual(vorn.List(source), [1, 2, 3])
            self.assertEqual(vorn.List[int if item_format not in 'fd' else float](memoryview(source)), [1, 2, 3])
        self.assertEqual(vorn.List['Byte'](b'\1\xff'), [1, 255])
        self.assertEqual(vorn.List[int](vorn.List['Byte']([1, 2]).memoryview()), [1, 2])


if __name__ == '__main__':
    unittest.main()
