"""The debugger's commands, how the printers are loaded, and what they say of a program that has no runtime."""

import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

import gdb_session
from gdb_session import ROOT, run

INTS = 'vorn.collections.ArrayList<Int> at ADDRESS, unboxed Int of Int, inline, size 3, capacity 32'

ROOTS_OF_MAIN = '''thread 1: 2 root ranges
  ADDRESS, 8 bytes
    vorn.collections.LinkedList<String> at ADDRESS, linked of String, size 2
  ADDRESS, 24 bytes
    "a bare text"
    ADDRESS
    null'''
ROOTS_OF_OTHER = '''thread 2: 1 root range
  ADDRESS, 8 bytes
    vorn.Int -42'''
GLOBAL_ROOTS = f'''global: 3 slots
  ADDRESS rooted
    {INTS}
  ADDRESS
    vorn.String "a string"
  ADDRESS
    {INTS}'''


AGAIN = f'source {gdb_session.PRINTERS}'
SESSION = gdb_session.Session()
SHOW_ROOTS = SESSION.add('vorn-roots', 'vorn-roots 2', 'vorn-roots global', 'vorn-roots 7', 'vorn-roots all')
SHOW_RECENT = SESSION.add('set print elements 3', 'vorn-roots recent', 'set print elements 200')
SHOW_HEAP = SESSION.add('vorn-heap', 'vorn-heap blocks')
SHOW_HELP = SESSION.add('help vorn', 'help vorn-roots', 'help vorn-heap', 'help vorn-types', 'help function vorn')
SHOW_MISTAKES = SESSION.add('vorn', 'vorn 1.5', 'print $vorn(24)', 'vorn-types /nowhere/vorn_types.debug',
                            'vorn nothing', 'vorn-heap nothing +')
SHOW_TWICE = SESSION.add(AGAIN, 'info pretty-printer', 'vorn *(void**)&anInt')
SHOW_OFF = SESSION.add('disable pretty-printer global vorn;RuntimeTypeName',
                       'output (*(ListData*)((ObjectRecord*)*(void**)&linkedList)->nativeRecord).elementType',
                       'enable pretty-printer')


class RootsTest(unittest.TestCase):

    def test_roots_are_listed_with_what_they_hold(self):
        self.assertEqual(SESSION.shown(SHOW_ROOTS), [f'{ROOTS_OF_MAIN}\n{ROOTS_OF_OTHER}\n{GLOBAL_ROOTS}', ROOTS_OF_OTHER, GLOBAL_ROOTS,
                                 'thread 7 is not attached to the runtime',
                                 'vorn-roots takes the number of a thread, global or recent'])


    def test_the_blocks_handed_out_last_are_listed_newest_first(self):
        shown = SESSION.shown(SHOW_RECENT)
        self.assertEqual(re.sub(r'\d{3,} handed', 'N handed', shown[1]),
                         'thread 1: N handed out\n'
                         '  vorn.Boolean true\n'
                         '  vorn.collections.ArrayList at ADDRESS, boxed, inline, size 18446744073709551615, capacity 4 '
                         '<corrupt: more than there is room for>\n'
                         '  vorn.collections.ArrayListSync at ADDRESS, boxed, inline, size 0, capacity 4, '
                         'synchronised <without a mutex>\n'
                         'thread 2: 0 handed out')


class HeapTest(unittest.TestCase):

    def test_plain_heap(self):
        usage, blocks = SESSION.shown(SHOW_HEAP)
        self.assertRegex(usage, r'^heap: plain\nin use: (\d+) blocks, (\d+) bytes, since nothing is freed\n'
                                r'allocated: \1 blocks, \2 bytes\n  thread 1: \d+ blocks, \d+ bytes\n'
                                r'  thread 2: 0 blocks, 0 bytes$')
        self.assertEqual(blocks, '<the plain heap keeps no table of its blocks>')

    def test_collected_heap(self):
        usage, roots = run(['vorn-heap', 'vorn-roots global'], heap='heap=collected')
        self.assertRegex(usage, r'^heap: collected\nin use: \d+ bytes of \d+, \d+ collections?\n'
                                r'allocated: \d+ blocks, \d+ bytes\n'
                                r'  thread 1: \d+ blocks, \d+ bytes, \d+ free small blocks at hand\n'
                                r'  thread 2: 0 blocks, 0 bytes$')
        self.assertEqual(roots, GLOBAL_ROOTS)

    def test_stress_heap_lists_its_blocks(self):
        usage, blocks, inside, outside = run(
            ['vorn-heap', 'vorn-heap blocks', 'vorn-heap (char*)*(void**)&anInt + 5', 'vorn-heap 16'],
            heap='heap=stress,one-in=1000000')
        self.assertRegex(usage, r'^heap: stress\nin use: \d+ blocks, \d+ bytes, 0 collections\n')
        self.assertRegex(blocks, r'^in use: \d+ blocks')
        self.assertIn('ADDRESS, 32 bytes, scanned, vorn.Int -42' if 'scanned, vorn.Int' in blocks else
                      'ADDRESS, 32 bytes, atomic, vorn.Int -42', blocks)
        self.assertEqual(len(blocks.splitlines()), 202, 'a line for the usage, 200 blocks, and dots')
        self.assertRegex(inside, r'^ADDRESS, 32 bytes, \w+, vorn\.Int -42$')
        self.assertEqual(outside, 'ADDRESS lies in no live block')

    def test_a_core_shows_what_is_in_memory(self):
        with tempfile.TemporaryDirectory() as directory:
            core = pathlib.Path(directory) / 'core'
            shown = run([f'generate-core-file {core}', 'kill', f'core-file {core}', 'vorn *(void**)&unboxedInline',
                         'vorn-heap', 'vorn-roots global'], heap='heap=collected')
        self.assertEqual(shown[3], INTS + ' = {0, 1, 2}')
        self.assertIn('heap: collected\nin use: known in a running process only\nallocated: ', shown[4])
        self.assertEqual(shown[5], GLOBAL_ROOTS)


def library_of_subject(name):
    """The file of a library that the subject is linked to."""
    listing = subprocess.run(['ldd', gdb_session.SUBJECT], check=True, capture_output=True, text=True).stdout
    return pathlib.Path(re.search(rf'({name}\S*) => (\S+)', listing)[2])


class StrippedTest(unittest.TestCase):

    def test_libraries_without_symbols_show_the_same(self):
        with tempfile.TemporaryDirectory() as directory:
            for name in ('libvorn_collections', 'libvorn_runtime'):
                library = library_of_subject(name)
                subprocess.run(['strip', '-o', f'{directory}/{library.name}', library], check=True)
            shown = run(['vorn *(void**)&unboxedInline', 'vorn-roots', 'vorn-heap', 'info sharedlibrary vorn_runtime'],
                        start=[f'source {gdb_session.PRINTERS}', f'set environment LD_LIBRARY_PATH {directory}'])
        self.assertEqual(shown[:2], [INTS + ' = {0, 1, 2}', f'{ROOTS_OF_MAIN}\n{ROOTS_OF_OTHER}\n{GLOBAL_ROOTS}'])
        self.assertTrue(shown[2].startswith('heap: plain\nin use: '), shown[2])
        self.assertIn(f' {directory}/libvorn_runtime', shown[3])


class LoadingTest(unittest.TestCase):

    def test_an_installed_copy_is_loaded_with_the_library(self):
        library = library_of_subject('libvorn_collections').resolve()
        with tempfile.TemporaryDirectory() as directory:
            # As it is installed: the package and its types in one place, what loads them in gdb's.
            installed = pathlib.Path(directory) / 'share/vorn/gdb'
            shutil.copytree(ROOT / 'tools/gdb/vorn_gdb', installed / 'vorn_gdb',
                            ignore=shutil.ignore_patterns('__pycache__'))
            shutil.copy(library.parent / 'vorn_types.debug', installed)
            loads = pathlib.Path(directory) / 'auto-load' / library.relative_to('/').parent / f'{library.name}-gdb.py'
            loads.parent.mkdir(parents=True)
            loads.write_text(f'import sys\nsys.path.insert(0, "{installed}")\nimport gdb\nimport vorn_gdb\n'
                             'vorn_gdb.register(gdb.current_objfile())\n', encoding='utf-8')
            shown = run(['vorn *(void**)&anInt', 'info pretty-printer', 'python print(vorn_gdb.__file__)'],
                        start=['set auto-load python-scripts on', f'set auto-load safe-path {directory}',
                               f'set auto-load scripts-directory {directory}/auto-load'])
        self.assertEqual(shown[0], 'vorn.Int -42')
        # By the name that the program asked for, the file's own or a link to it.
        named = re.escape(str(library.parent / 'libvorn_collections.so'))
        self.assertRegex(shown[1], rf'objfile {named}[.\d]* pretty-printers:\n  vorn\n    ArrayData\n')
        self.assertTrue(shown[2].startswith(str(installed)), shown[2])

    def test_loading_twice_leaves_one_of_each(self):
        shown = SESSION.shown(SHOW_TWICE)
        self.assertEqual(shown[1].count('\n  vorn\n'), 1)
        self.assertEqual(shown[2], 'vorn.Int -42')

    def test_a_printer_can_be_switched_off(self):
        shown = SESSION.shown(SHOW_OFF)
        self.assertRegex(shown[1], r'^\{name = ADDRESS')

    def test_commands_have_help_and_refuse_what_they_do_not_know(self):
        beginnings = ['vorn HANDLE: shows', 'vorn-roots [THREAD | global | recent]: the roots',
                      'vorn-heap [blocks | ADDRESS]: the heap', 'vorn-types [FILE]: reads', '$vorn(HANDLE): what']
        for text, beginning in zip(SESSION.shown(SHOW_HELP), beginnings, strict=True):
            self.assertTrue(text.startswith(beginning), text)
        nothing, number, wild, file, unknown, incomplete = SESSION.shown(SHOW_MISTAKES)
        self.assertEqual(nothing, 'vorn needs a handle; see help vorn')
        self.assertEqual(number, '<a value of type double is no handle>')
        self.assertIn('<no handle: ADDRESS cannot be read>', wild)
        self.assertEqual(file, '/nowhere/vorn_types.debug: No such file or directory.')
        self.assertEqual(unknown, 'No symbol "nothing" in current context.')
        self.assertEqual(incomplete, '<the plain heap keeps no table of its blocks>')

    def test_before_the_program_runs_the_commands_say_what_is_missing(self):
        call = ['-batch', '-nx', '-iex', 'set debuginfod enabled off', '-iex', f'source {gdb_session.PRINTERS}']
        done = subprocess.run([gdb_session.GDB, *call, '-ex', 'vorn-roots', '-ex', 'vorn-heap', '/bin/true'],
                              capture_output=True, text=True, timeout=60, check=False)
        missing = '<there is no vorn runtime in the program>'
        self.assertEqual(done.stderr.count(missing), 2, done.stderr)
        self.assertNotIn('Traceback', done.stderr)


if __name__ == '__main__':
    gdb_session.skip_without_gdb()
    unittest.main()
