"""A runtime beside a collections library of another version, for which a library stands that says it is one."""

import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import unittest

RUNTIME = os.environ['VORN_RUNTIME']
LOAD = f'import ctypes; runtime = ctypes.CDLL({RUNTIME!r}); runtime.vorn_runtime_version.restype = ctypes.c_char_p\n'
MESSAGE = r'\Avorn: libvorn_runtime is version (\S+) but libvorn_collections is version 9\.8\.7; ' \
          r'install both of one version\n\Z'


class MixedVersionsTest(unittest.TestCase):

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)

    def run_beside(self, version, program):
        """Runs a program of Python, to which the runtime is known, where the collections library tells this version."""
        source = self.directory / 'other.c'
        source.write_text(f'const char* vorn_collections_version(void) {{ return "{version}"; }}\n')
        library = self.directory / 'libother.so'
        subprocess.run(['cc', '-shared', '-fPIC', source, '-o', library], check=True)
        return subprocess.run([sys.executable, '-c', LOAD + program], env=os.environ | {'LD_PRELOAD': str(library)},
                              capture_output=True, text=True, check=False)

    def test_starting_prints_one_line_and_fails_every_time(self):
        done = self.run_beside('9.8.7', 'print(runtime.vorn_runtime_start(None), runtime.vorn_runtime_start(None))')
        self.assertEqual((done.returncode, done.stdout), (0, '0 0\n'))
        first, second, rest = done.stderr.split('\n')
        self.assertEqual((first, rest), (second, ''))
        self.assertRegex(first + '\n', MESSAGE)

    def test_a_runtime_that_starts_by_itself_prints_the_line_and_ends_the_process(self):
        done = self.run_beside('9.8.7', 'runtime.vorn_object_new(b"ArrayList")\nprint("went on")')
        self.assertEqual((done.returncode, done.stdout), (-signal.SIGABRT, ''))
        self.assertRegex(done.stderr, MESSAGE)

    def test_the_line_names_the_runtimes_own_version(self):
        done = self.run_beside('9.8.7', 'print(runtime.vorn_runtime_version().decode(), runtime.vorn_runtime_start(None))')
        self.assertEqual(done.stdout, re.match(MESSAGE, done.stderr)[1] + ' 0\n')

    def test_a_library_of_the_same_version_is_taken(self):
        version = self.run_beside('', 'print(runtime.vorn_runtime_version().decode())').stdout.strip()
        done = self.run_beside(version, 'print(runtime.vorn_runtime_start(None))')
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, '1\n', ''))


if __name__ == '__main__':
    unittest.main()
