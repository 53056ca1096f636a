"""The package's tables against the headers of C, and vorn_call against every native that they declare."""

import ctypes
import pathlib
import re
import unittest

import vorn
from vorn import _natives
from vorn._library import function

from support import VornTest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
HEADERS = (*sorted((ROOT / 'collections/include').rglob('*.h')), ROOT / 'runtime/include/vorn/runtime.h')
COMMENT = re.compile(r'//[^\n]*|/\*.*?\*/', re.DOTALL)
DECLARATION = re.compile(r'VORN_(NATIVE|RUNTIME_EXPORT)\s+([\w\s*]+?)(\w+)\(([^()]*)\)\s*;')


def letter(c_type):
    if '*' in c_type:
        return 'h'
    words = c_type.split()
    if 'bool' in words:
        return 'b'
    if 'double' in words:
        return 'd'
    if words[0] == 'void':
        return 'v'
    return 'n' if words[0] == 'int' else 'i'


def declared():
    """The shape of each declared function: by name, whether it is a native and the shape, '' for variadic ones."""
    functions = {}
    for header in HEADERS:
        for mark, result, name, parameters in DECLARATION.findall(COMMENT.sub(' ', header.read_text(encoding='utf-8'))):
            listed = [] if parameters.strip() in ('void', '') else parameters.split(',')
            shape = '' if '...' in parameters else f'{letter(result)}({"".join(map(letter, listed))})'
            functions[name] = (mark == 'NATIVE', shape)
    return functions


@unittest.skipUnless(HEADERS[-1].exists(), 'the tests do not stand in the tree')
class NativesTest(VornTest):

    def test_every_native_of_at_most_seven_parameters_can_be_called(self):
        call, arguments, result = function('vorn_call'), (ctypes.c_int64 * 7)(), ctypes.c_int64()
        shapes = {shape for is_native, shape in declared().values() if is_native and shape and len(shape) <= 10}
        self.assertGreater(len(shapes), 25)
        for shape in sorted(shapes):
            # A function without parameters minds none, so that this calls it whatever the shape says.
            known = call(shape.encode(), function('vorn_thread_attach'), arguments, ctypes.byref(result))
            self.assertEqual(known, 0, shape)

    def test_an_unknown_shape_calls_nothing(self):
        call = function('vorn_call')
        result = ctypes.c_int64(77)
        for shape in (b'', b'h', b'h(', b'x(h)', b'v(hhhhhhhhhhhh)', b'h(h) '):
            self.assertEqual(call(shape, function('vorn_heap_collect'), None, ctypes.byref(result)), -1)
        self.assertEqual(result.value, 77)

    def test_the_package_calls_functions_as_they_are_declared(self):
        functions = declared()
        checked = 0
        for holder in (_natives, *(each for each in vars(_natives).values() if type(each) is _natives._Natives)):
            for call in vars(holder).values():
                if not hasattr(call, 'shape'):
                    continue
                checked += 1
                self.assertEqual(call.shape, functions[call.__name__][1], call.__name__)
        self.assertGreater(checked, 50)

    def test_structures_are_as_long_as_those_of_c(self):
        options = _natives.Options()
        self.assertTrue(_natives.parse_options(b'heap=plain', ctypes.byref(options)))
        self.assertLessEqual(options.struct_size, ctypes.sizeof(options))
        self.assertGreater(options.struct_size, 0)

    def test_what_a_native_throws_becomes_an_error(self):
        target = vorn.List()
        for name, message in (('reserve', 'MemoryException'),):
            with self.assertRaisesBoth(MemoryError, message):
                getattr(_natives.ArrayList, name)(target, 2**62)
        with self.assertRaisesBoth(MemoryError, 'MemoryException', 'the size is beyond what memory can hold'):
            _natives.Map.reserve(vorn.Map(), 2**62)


if __name__ == '__main__':
    unittest.main()
