"""What the debugger shows for every form of storage, every value and every broken record."""

import re
import unittest

import gdb_session
from gdb_session import ROOT

INTS = 'vorn.collections.ArrayList<Int> at ADDRESS, unboxed Int of Int, inline, size 3, capacity 32 = {0, 1, 2}'

# Variables of the subject, each with what `vorn` shows for the handle in it.
HANDLES = {
    'aNull': 'null',
    'anInt': 'vorn.Int -42',
    'aByte': 'vorn.Byte 200',
    'aULong': 'vorn.ULong 18446744073709551615',
    'aDouble': 'vorn.Double 2.5',
    'aTrue': 'vorn.Boolean true',
    'aChar': "vorn.Char '\U0001F600'",
    'aString': 'vorn.String "a string"',
    'anEscapedString': r'vorn.String "\"quoted\"\n\u{1}"',
    'aText': '"a bare text"',

    'unboxedInline': INTS,
    'unboxedHeap': 'vorn.collections.ArrayList<Int> at ADDRESS, unboxed Int of Int, on the heap, size 33, capacity 64 = '
                   f'{{{", ".join(map(str, range(33)))}}}',
    'boxedInline': 'vorn.collections.ArrayList at ADDRESS, boxed, inline, size 4, capacity 4 = '
                   '{vorn.String "a string", null, "a bare text", vorn.Int -42}',
    'boxedHeap': 'vorn.collections.ArrayList<Object> at ADDRESS, boxed of Object, on the heap, size 5, capacity 8 = '
                 '{vorn.String "a string", null, "a bare text", vorn.String "a string", vorn.Boolean true}',
    'linkedList': 'vorn.collections.LinkedList<String> at ADDRESS, linked of String, size 2 = '
                  '{"a bare text", vorn.String "a string"}',
    'emptyList': 'vorn.collections.ArrayList<Int> at ADDRESS, boxed of Int, inline, size 0, capacity 4',
    'untypedList': 'vorn.collections.ArrayList at ADDRESS, unboxed Short, inline, size 1, capacity 64 = {-3}',
    'syncList': 'vorn.collections.ArrayListSync<Double> at ADDRESS, unboxed Double of Double, inline, size 2, '
                'capacity 16, synchronised, unlocked = {2.5, -0.125}',
    'lockedList': 'vorn.collections.LinkedListSync at ADDRESS, linked, size 1, synchronised, locked 2 times by LWP N = '
                  '{vorn.Boolean true}',
    'floats': 'vorn.collections.ArrayList<Float> at ADDRESS, unboxed Float of Float, inline, size 1, capacity 32 = '
              '{0.100000001}',
    'booleans': 'vorn.collections.ArrayList<Boolean> at ADDRESS, unboxed Boolean of Boolean, inline, size 2, '
                'capacity 128 = {true, false}',
    'codeUnits': 'vorn.collections.ArrayList<CodeUnit> at ADDRESS, unboxed CodeUnit of CodeUnit, inline, size 2, '
                 "capacity 64 = {'A', ADDRESS}",
    'immutableList': 'vorn.collections.ImmutableList<Int> at ADDRESS, unboxed Int of Int, inline, size 3, capacity 32 '
                     '= {0, 1, 2}',
    'selfList': 'vorn.collections.ArrayList at ADDRESS, boxed, inline, size 1, capacity 4 = '
                '{vorn.collections.ArrayList at ADDRESS, shown above}',

    'intArray': 'vorn.collections.Array<Int> at ADDRESS, slots of Int, inline, size 3, capacity 32 = {0, -7, 0}',
    'objectArray': 'vorn.collections.ArraySync<String> at ADDRESS, handles of String, inline, size 2, capacity 4, '
                   'synchronised, unlocked = {vorn.String "a string", null}',
    'charArray': 'vorn.collections.Array<Char> at ADDRESS, slots of Char, inline, size 2, capacity 32 = '
                 "{'A', '\\0'}",
    'emptyArray': 'vorn.collections.Array<Int> at ADDRESS, handles, inline, size 0, capacity 4',
    'aTuple': 'vorn.collections.Tuple<String,Int,Object> at ADDRESS, size 3, capacity 3 = '
              f'{{vorn.String "a string", vorn.Int -42, {INTS}}}',
    'emptyTuple': 'vorn.collections.Tuple at ADDRESS, size 0, capacity 4',
    'aPoint': 'app.Point at ADDRESS = {x = -5, weight = 0.5, next = vorn.String "a string"}',
    'emptyType': 'vorn.Type at ADDRESS = {_fullName = null, _name = null}',

    'smallMap': 'vorn.collections.Map<String,Int> at ADDRESS, hashed from String to Object, no buckets, size 2, '
                'places 2 of 4 = {[vorn.String "a string"] = vorn.Int -42, ["a bare text"] = null}',
    'bucketMap': 'vorn.collections.Map<Int,Int> at ADDRESS, hashed from Int to Int, 5 buckets, size 17, places 17 of 25 '
                 f'= {{{", ".join(f"[vorn.Int {17 - i}] = vorn.Int {10 * i}" for i in range(17))}}}',
    'gappedMap': 'vorn.collections.Map at ADDRESS, hashed from Int to Int, no buckets, size 3, places 4 of 4 = '
                 '{[vorn.Int 4] = vorn.Int 0, [vorn.Int 2] = vorn.Int 20, [vorn.Int 1] = vorn.Int 30}',
    'sortedMap': 'vorn.collections.SortedMap<Int,Int> at ADDRESS, sorted from Int to Int, size 3, places 3 of 4, root 2 '
                 '= {[vorn.Int 1] = vorn.Int 20, [vorn.Int 2] = vorn.Int 10, [vorn.Int 3] = vorn.Int 0}',
    'sortedTexts': 'vorn.collections.SortedMapSync at ADDRESS, sorted from String to Object, size 2, places 2 of 4, '
                   'root 1, synchronised, unlocked = {[vorn.String "a"] = vorn.Boolean true, '
                   f'["a bare text"] = {INTS}}}',
    'emptyMap': 'vorn.collections.Map at ADDRESS, hashed, no buckets, size 0, places 0 of 0',
    'emptySortedMap': 'vorn.collections.SortedMap at ADDRESS, sorted, size 0, places 0 of 0, root 0',
    'syncMap': 'vorn.collections.HashMapSync at ADDRESS, hashed from Int to Int, no buckets, size 1, places 1 of 1, '
               'synchronised, unlocked = {[vorn.Int 1] = vorn.Int 0}',
    'smallSet': 'vorn.collections.HashSet at ADDRESS, hashed, no buckets, size 2, places 2 of 4 = {vorn.Int -42, null}',
    'emptySet': 'vorn.collections.HashSet at ADDRESS, hashed, no buckets, size 0, places 0 of 0',
    'syncSet': 'vorn.collections.HashSetSync at ADDRESS, hashed, no buckets, size 0, places 0 of 0, synchronised, '
               'unlocked',

    'wrongKind': 'vorn.collections.ArrayList<Int> at ADDRESS, <corrupt: there is no kind 77>',
    'wrongSize': 'vorn.collections.ArrayList at ADDRESS, boxed, inline, size 5, capacity 4 '
                 '<corrupt: more than there is room for> = {vorn.Boolean true, vorn.String "a string", null, null}',
    'wrongWidth': 'vorn.collections.ArrayList<Int> at ADDRESS, unboxed Int of Int, inline, size 1, capacity 32 '
                  '<corrupt: elements of 8 bytes> = {0}',
    'unreadableList': 'vorn.collections.ArrayList<Int> at ADDRESS, unboxed Int of Int, on the heap, size 2, capacity 32 '
                      '= {<4 bytes at ADDRESS cannot be read>}',
    'brokenLinks': 'vorn.collections.LinkedList at ADDRESS, linked, size 3 = '
                   '{vorn.Boolean true, vorn.Boolean true, <corrupt: the links end after 2 of 3>}',
    'noRecord': '<corrupt: a List at ADDRESS without a record>',
    'noClass': '<no class> Instance at ADDRESS',
    'wildClass': '<no class: ADDRESS cannot be read> Instance at ADDRESS',
    'wrongObjectKind': 'vorn.collections.ArrayList<Int> <corrupt: there is no object kind 99>',
    'movedObject': '<no handle: at ADDRESS is neither an object nor a text>',
    'wrongSlotKind': 'vorn.collections.Array<Int> at ADDRESS, <corrupt: there is no slot kind 50>',
    'brokenChain': 'vorn.collections.SortedMap at ADDRESS, sorted from Int to Int, size 2, places 2 of 4, root 1 = '
                   '{[vorn.Int 1] = vorn.Int 10, [...] = <corrupt: a link to place 900 of 2>}',
    'brokenPlaces': 'vorn.collections.Map at ADDRESS, hashed from Int to Int, no buckets, size 2, places 70000 of 4 '
                    '<corrupt: more than there is room for> = {[vorn.Int 2] = vorn.Int 0, [vorn.Int 1] = vorn.Int 10, '
                    '[null] = null, [null] = null, [...] = <corrupt: place 4 of 4>}',
    'noMutex': 'vorn.collections.ArrayListSync at ADDRESS, boxed, inline, size 0, capacity 4, '
               'synchronised <without a mutex>',
    'wildPointer': '<no handle: ADDRESS cannot be read>',
    'endlessCount': 'vorn.collections.ArrayList at ADDRESS, boxed, inline, size 18446744073709551615, capacity 4 '
                    '<corrupt: more than there is room for> = {vorn.Boolean true, vorn.String "a string", null, null}',
}

# Memory that is no record, or none any more, by type.
RECORDS = {
    ('ListData', 'zeroedRecord'): 'boxed, not constructed',
    ('ArrayData', 'zeroedRecord'): 'slots, not constructed',
    ('MapData', 'zeroedRecord'): 'sorted, size 0, places 0 of 0, root 0',
    ('SetData', 'zeroedRecord'): 'hashed, no buckets, size 0, places 0 of 0',
    ('ObjectRecord', 'zeroedRecord'): '<no object: its header is ADDRESS>',
    ('RuntimeTypeName', 'zeroedRecord'): '""',
    ('ListData', 'freedRecord'): '<corrupt: there is no kind 219>',
    ('ArrayData', 'freedRecord'): '<corrupt: there is no slot kind 219>',
    ('MapData', 'freedRecord'): '<corrupt: Cannot access memory at address ADDRESS>',
    ('SetData', 'freedRecord'): '<corrupt: Cannot access memory at address ADDRESS>',
    ('ObjectRecord', 'freedRecord'): '<no object: its header is ADDRESS>',
    ('RuntimeTypeName', 'freedRecord'): '<corrupt: Cannot access memory at address ADDRESS>',
    ('NativeCollectionKey', 'freedRecord'): '<corrupt: there is no key form 219>',
}

LIST = 'vorn.collections.ArrayList<Int> at ADDRESS, unboxed Int of Int, inline, size 3, capacity 32'
# The keys of one set that has all forms, and the table's print of them.
KEYS = ['null', '-42', '18446744073709551615', '2.5', 'true', "Char '\U0001F600'", 'CodeUnit ADDRESS', '"a bare text"',
        '"0123456789012345678901234567890123456789"', f'identity of {LIST}',
        'contents of vorn.collections.Tuple<String,Int,Object> at ADDRESS, size 3, capacity 3',
        'hooks of app.Point at ADDRESS']


def record(name, record_type):
    return f'*({record_type}*)((ObjectRecord*)*(void**)&{name})->nativeRecord'


SESSION = gdb_session.Session()
ROWS = re.findall(r'^VORN_PRIMITIVE_KIND\(\d+, (\w+), ([\w:]+), (\d+), (\w+),',
                  (ROOT / 'collections/core/kinds.def').read_text(encoding='utf-8'), re.MULTILINE)
SHOW_HANDLES = SESSION.add(*(f'vorn *(void**)&{name}' for name in HANDLES))
SHOW_KINDS = SESSION.add(*(f'vorn ((void**)&everyKind)[{i}]' for i in range(len(ROWS))))
SHOW_BROKEN = SESSION.add(*(f'output *({kind}*)*(void**)&{name}' for kind, name in RECORDS))
SHOW_RECORDS = SESSION.add(
    f'output ({record("keySet", "SetData")}).table',
    f'output ({record("sortedMap", "MapData")}).ordered',
    f'output {record("linkedList", "ListData")}',
    f'output ({record("linkedList", "ListData")}).linkedObjects',
    f'output ({record("linkedList", "ListData")}).elementType',
    'output *$vorn(*(void**)&aPoint).runtimeClass',
    'output *(RegisteredObject*)*(void**)&anInt',
    'output $vorn(*(void**)&aText)',
    'output $vorn(*(void**)&aNull)',
    'output $vorn(*(void**)&unboxedInline)')
SHOW_CUT = SESSION.add('set print elements 4', 'set print max-depth 1', 'vorn *(void**)&manyInts',
                       'vorn *(void**)&aLongString', 'vorn *(void**)&aText', 'vorn *(void**)&nestedList',
                       'set print elements 200', 'set print max-depth 20')


class PrintersTest(unittest.TestCase):

    def check(self, place, names, expected):
        for name, shown, wanted in zip(names, SESSION.shown(place), expected, strict=True):
            with self.subTest(name=name):
                self.assertEqual(re.sub(r'LWP \d+', 'LWP N', shown), wanted)

    def test_each_handle_shows_what_it_stands_for(self):
        self.check(SHOW_HANDLES, HANDLES, HANDLES.values())

    def test_each_kind_of_the_table_shows_its_element(self):
        self.check(SHOW_KINDS, ROWS,
                   [f'vorn.collections.ArrayList<{name}> at ADDRESS, unboxed {name} of {name}, inline, size 1, '
                    f'capacity {128 // int(width)} = {{{"false" if family == "Boolean" else "0"}}}'
                    for name, _, width, family in ROWS])

    def test_broken_records_show_why(self):
        self.check(SHOW_BROKEN, RECORDS, RECORDS.values())

    def test_records_show_by_their_types(self):
        table, *shown = SESSION.shown(SHOW_RECORDS)
        self.assertTrue(table.startswith('hashed, no buckets, size 12, places 12 of 12 = {[null] = null, '), table)
        for key in KEYS:
            self.assertIn(f'[{key}] = ', table)
        self.assertEqual(shown, [
            'sorted, size 3, places 3 of 4, root 2 = {[1] = vorn.Int 20, [2] = vorn.Int 10, [3] = vorn.Int 0}',
            'linked of String, size 2 = {"a bare text", vorn.String "a string"}',
            'linked, size 2 = {"a bare text", vorn.String "a string"}',
            '"String"',
            'class app.Point',
            'vorn.Int -42',
            '"a bare text"',
            '(void *) ADDRESS',
            INTS,
        ])

    def test_long_and_deep_ones_are_cut_where_gdb_is_told_to(self):
        ints = 'vorn.collections.ArrayList<Int> at ADDRESS, unboxed Int of Int, on the heap, size 1000, capacity 1024'
        boxed = 'vorn.collections.ArrayList at ADDRESS, boxed, inline, size'
        self.assertEqual(SESSION.shown(SHOW_CUT)[2:6], [
            f'{ints} = {{0, 1, 2, 3...}}', 'vorn.String "0123"...', '"a ba"...',
            f'{boxed} 1, capacity 4 = {{{boxed} 2, capacity 4 = {{...}}}}'])


if __name__ == '__main__':
    gdb_session.skip_without_gdb()
    unittest.main()
