"""What the libraries and programs that are shipped ask of the loader, and what was compiled into them."""

import pathlib
import re
import subprocess
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = ROOT / 'build/package'
LIBRARIES = sorted(BUILD.glob('lib/libvorn_*.so.*.*.*'))
PROGRAMS = [path for path in sorted(BUILD.glob('bin/*')) if path.is_file()]


def readelf(*arguments):
    return subprocess.run(['readelf', '-W', *map(str, arguments)], check=True, capture_output=True, text=True).stdout


class HardeningTest(unittest.TestCase):

    def test_both_libraries_and_the_console_are_looked_at(self):
        self.assertEqual(len(LIBRARIES), 2)
        self.assertIn('vorn-console', [path.name for path in PROGRAMS])

    def test_no_stack_can_be_executed(self):
        for path in [*LIBRARIES, *PROGRAMS]:
            flags = re.search(r'GNU_STACK(?:\s+0x\w+){5}\s+(\S+)', readelf('-l', path))
            self.assertEqual(flags and flags[1], 'RW', path)

    def test_nothing_is_writable_and_executable(self):
        for path in [*LIBRARIES, *PROGRAMS]:
            self.assertNotRegex(readelf('-l', path), r'LOAD(?:\s+0x\w+){5}\s+RWE', path)
            self.assertNotIn('TEXTREL', readelf('-d', path), path)

    def test_addresses_that_the_loader_fills_in_are_read_only_before_anything_runs(self):
        for path in [*LIBRARIES, *PROGRAMS]:
            self.assertIn('GNU_RELRO', readelf('-l', path), path)
            self.assertRegex(readelf('-d', path), r'BIND_NOW|FLAGS_1.* NOW', path)

    def test_programs_are_loaded_anywhere(self):
        for path in PROGRAMS:
            self.assertRegex(readelf('-h', path), r'Type:\s+DYN', path)

    def test_frames_with_arrays_have_a_canary(self):
        for path in LIBRARIES:
            self.assertIn('__stack_chk_fail', readelf('--dyn-syms', path), path)

    def test_functions_of_the_c_library_are_checked(self):
        for path in LIBRARIES:
            self.assertRegex(readelf('--dyn-syms', path), r'__\w+_chk@', path)


if __name__ == '__main__':
    unittest.main()
