"""The page for whoever brings a runtime says what there is, and leads to a runtime that passes.

Needs VORN_COLLECTIONS (the shared library), VORN_CONFORMANCE (the program with any runtime), VORN_BUILD (the build
directory, with the static libraries).
"""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PAGE = (ROOT / 'docs/porting.md').read_text(encoding='utf-8')
MINIMAL = ROOT / 'examples/minimal_runtime'
BUILD = pathlib.Path(os.environ['VORN_BUILD'])

ROW = re.compile(r'^\| `(\w+)` \| (.*?) \| (.*?) \| (.*?) \|$', re.MULTILINE)
RECORDS = {'ObjectRecord', 'RuntimeClassHead', 'RegisteredObject', 'StringObject', 'SizedObject', 'ListData', 'ArrayData',
           'MapData', 'SetData'}
START_UP = {'__gmon_start__', '_ITM_deregisterTMCloneTable', '_ITM_registerTMCloneTable'}
MOST_LINES = 800


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def simple_name(demangled):
    return demangled.split('(')[0].removesuffix('[abi:cxx11]').split('::')[-1]


def needed_operations():
    listing = output_of('nm', '-D', '-u', '--demangle', '--with-symbol-versions', os.environ['VORN_COLLECTIONS'])
    symbols = [line.split(None, 1)[1] for line in listing.splitlines()]
    return {simple_name(symbol) for symbol in symbols if '@' not in symbol} - START_UP


def checks():
    """The promises of each subject, in order, of operations and records and of laws."""
    promises = {}
    for line in output_of(os.environ['VORN_CONFORMANCE'], '--list').splitlines():
        subject, promise = line.split(': ', 1)
        promises.setdefault(subject, []).append(promise)
    return promises


def blocks(language):
    return re.findall(rf'^```{language}\n(.*?)^```$', PAGE, re.DOTALL | re.MULTILINE)


class ChecklistTest(unittest.TestCase):

    def setUp(self):
        self.rows = ROW.findall(PAGE)
        self.names = [row[0] for row in self.rows]

    def test_it_names_each_operation_that_the_library_needs_and_no_other_once(self):
        self.assertGreater(len(self.names), 70)
        self.assertEqual(sorted(self.names), sorted(set(self.names)))
        self.assertEqual(set(self.names) - RECORDS, needed_operations())

    def test_it_names_each_record(self):
        self.assertLessEqual(RECORDS, set(self.names))

    def test_its_words_are_those_of_the_checks(self):
        promises = checks()
        for name, must, caller, otherwise in self.rows:
            self.assertEqual(must, '; '.join(promises.get(name, [])), name)
            self.assertTrue(caller and otherwise, name)

    def test_what_is_checked_beyond_it_are_laws_of_collections(self):
        laws = set(checks()) - set(self.names)
        self.assertTrue(all(re.fullmatch(r'[a-z ]+', law) for law in laws), laws)


class PageTest(unittest.TestCase):
    """Follows the page, but for building the libraries, which are built."""

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)
        for name in ('collections', 'conformance'):
            (self.directory / name).symlink_to(ROOT / name)
        (self.directory / 'build').mkdir()
        (self.directory / 'build/release').symlink_to(BUILD)
        self.prepare, self.compile, self.run_it = blocks('sh')
        self.adapter, = blocks('cpp sketch')

    def call(self, command):
        return subprocess.run(['bash', '-c', command], cwd=self.directory, capture_output=True, text=True, check=False)

    def test_its_commands_lead_from_an_empty_folder_over_linker_errors_to_a_runtime_that_passes(self):
        *builds, make_folder = self.prepare.strip().splitlines()
        self.assertTrue(all(line.startswith('cmake ') for line in builds))
        self.assertEqual(self.call(make_folder).returncode, 0)
        (self.directory / 'my_runtime/adapter.cpp').write_text(self.adapter, encoding='utf-8')

        done = self.call(self.compile)
        self.assertNotEqual(done.returncode, 0)
        missing = {simple_name(symbol) for symbol in re.findall(r"undefined reference to `(.*)'", done.stderr)}
        self.assertEqual(missing, needed_operations())
        self.assertIn("undefined reference to `Vorn_gcAlloc'", blocks('text')[0])

        for source in [*MINIMAL.glob('*.h'), *MINIMAL.glob('*.cpp')]:
            shutil.copy(source, self.directory / 'my_runtime')
        for name in ('demo.cpp', 'adapter.cpp'):
            (self.directory / 'my_runtime' / name).unlink()
        done = self.call(self.compile)
        self.assertEqual((done.returncode, done.stderr), (0, ''))
        done = self.call(self.run_it)
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertRegex(done.stdout, r'\d+ checks passed, 0 failed, \d+ skipped\n\Z')


class MinimalRuntimeTest(unittest.TestCase):

    def test_it_has_no_more_lines_than_promised(self):
        sources = [*MINIMAL.glob('*.h'), *MINIMAL.glob('*.cpp')]
        lines = sum(len(source.read_text(encoding='utf-8').splitlines()) for source in sources)
        self.assertLessEqual(lines, MOST_LINES)

    def test_it_includes_nothing_of_the_host(self):
        for source in MINIMAL.iterdir():
            for included in re.findall(r'#include [<"](.*)[>"]', source.read_text(encoding='utf-8')):
                self.assertFalse(included.startswith('runtime/') or included in ('vorn/runtime.h', 'vorn/runtime.hpp'), source)


if __name__ == '__main__':
    unittest.main()
