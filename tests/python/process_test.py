"""The package as a process meets it: starting, ending, forking, and libraries that are not there."""

import gc
import os
import shutil
import tempfile
import unittest
import unittest.mock

import vorn
from vorn import _roots

from support import HEAP, VornTest, run_program

NAME = 'libvorn_runtime.so'


class StartTest(VornTest):

    def test_a_second_start_needs_the_same_heap(self):
        vorn.start(HEAP)
        with self.assertRaisesRegex(vorn.Error, 'another heap'):
            vorn.start('heap=plain' if 'plain' not in HEAP else 'heap=collected')

    def test_options_that_are_not_known(self):
        for options in ('heap=none', 'heap', 'heap=plain\0', 'hüp=1', 'x'):
            self.assertRaises(ValueError, vorn.start, options)
        self.assertRaises((TypeError, AttributeError), vorn.start, None)

    def test_the_runtime_starts_by_itself(self):
        done = run_program('import vorn\nprint(vorn.List([1, 2]), vorn.statistics().allocations > 0)')
        self.assertEqual(done, (0, '[1, 2] True\n', ''))

    def test_what_python_drops_is_collected(self):
        if 'plain' in HEAP:
            self.skipTest('the plain heap never frees')
        vorn.collect()
        before = vorn.statistics()
        for _ in range(300):
            vorn.List[int](range(10000))
        vorn.collect()
        after = vorn.statistics()
        self.assertGreater(after.collections, before.collections)
        # The last few are kept on purpose, and a conservative collector may hold some more.
        self.assertLess(after.bytes_live - before.bytes_live, 150 * 80000)

    def test_slots_are_used_again(self):
        kept = [vorn.List() for _ in range(600)]
        del kept
        gc.collect()
        with unittest.mock.patch.object(_roots, '_grown', side_effect=AssertionError('no slot was free')):
            for _ in range(5):
                kept = [vorn.List() for _ in range(500)]
                del kept
        self.assertTrue(all(slot.value is None for slot in _roots._free))


class EndTest(VornTest):

    def test_a_process_ends_quietly_with_collections_alive_everywhere(self):
        done = run_program('''
import atexit, threading, time
import support, vorn
kept = [vorn.List([number]) for number in range(1000)]
class Cycle: pass
cycle = Cycle()
cycle.self, cycle.view = cycle, vorn.List[int]([1]).memoryview()
late = vorn.Map(a=vorn.Set([1]))
class Late:
    def __del__(self):
        assert late['a'] == {1}
kept.append(Late())
atexit.register(lambda: print(len(kept), late))
def busy():
    while True:
        vorn.List([1, 2, 3])
for _ in range(2):
    threading.Thread(target=busy, daemon=True).start()
time.sleep(0.05)
''')
        self.assertEqual(done, (0, '1001 {"a": {1}}\n', ''))

    def test_a_forked_process_goes_on_when_one_thread_had_used_the_runtime(self):
        done = run_program('''
import os, sys
import support, vorn
ours = vorn.List(['before'])
child = os.fork()
if child == 0:
    ours.append('in the child')
    vorn.collect()
    others = [vorn.List([number]) for number in range(1000)]
    sys.stdout.write(f'{ours} {others[999]}')
    sys.stdout.flush()
    os._exit(0)
_, status = os.waitpid(child, 0)
print(status, ours)
''')
        self.assertEqual(done, (0, '["before", "in the child"] [999]0 ["before"]\n', ''))


class LibraryTest(VornTest):

    def setUp(self):
        self.directory = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.directory)
        # A package without libraries of its own, whatever is tested.
        self.package = os.path.join(self.directory, 'package')
        shutil.copytree(os.path.dirname(vorn.__file__), os.path.join(self.package, 'vorn'),
                        ignore=shutil.ignore_patterns('lib', '__pycache__'))

    def imported(self, library_path):
        return run_program('import vorn\nprint(vorn.List([1]))',
                           environment={'VORN_LIBRARY_PATH': library_path, 'PYTHONPATH': self.package})

    def test_a_directory_without_the_library(self):
        for directory in (self.directory, os.path.join(self.directory, 'missing')):
            status, _, errors = self.imported(directory)
            self.assertEqual((status, errors.splitlines()[-1]),
                             (1, f"ImportError: VORN_LIBRARY_PATH is {directory!r}, where there is no {NAME}"))

    def test_no_library_anywhere(self):
        status, output, errors = self.imported(None)
        if status == 0:
            self.skipTest('the library is installed here')
        self.assertEqual(output, '')
        self.assertRegex(errors.splitlines()[-1], rf'^ImportError: cannot load {NAME}: .*VORN_LIBRARY_PATH is not set')

    def test_a_library_of_another_version(self):
        with open('/proc/self/maps', encoding='utf-8') as maps:
            other = next(line.split()[-1] for line in maps if 'libm.so' in line or 'libc.so' in line)
        shutil.copy(other, os.path.join(self.directory, NAME))
        status, _, errors = self.imported(self.directory)
        self.assertEqual(status, 1)
        self.assertRegex(errors.splitlines()[-1], r'^ImportError: .*libvorn_runtime.so has no vorn_\w+: '
                                                  r'it is of another version than this package$')

    def test_a_file_that_is_no_library(self):
        with open(os.path.join(self.directory, NAME), 'w', encoding='utf-8') as file:
            file.write('not a library')
        status, _, errors = self.imported(self.directory)
        self.assertEqual(status, 1)
        self.assertRegex(errors.splitlines()[-1], f'^ImportError: cannot load {NAME}: .*(invalid ELF|file too short)')


if __name__ == '__main__':
    unittest.main()
