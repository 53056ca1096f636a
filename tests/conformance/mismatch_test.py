"""Runtimes that were compiled with other headers than the library: each is told so in one line, before it starts.

Needs VORN_RUNTIME (the host's shared library), VORN_BUILD (the build directory, with the static libraries).
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = pathlib.Path(os.environ['VORN_BUILD'])
FACTS = '#include "collections/port_facts/port_facts.h"\n' \
        'constinit const PortFact* const Vorn_portFacts = vorn::collections::kPortFacts;\n'
LIST_RECORD = 'collections/core/storage/list_data.h'
PORT_FACTS = 'collections/port_facts/port_facts.h'


class MismatchTest(unittest.TestCase):

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)

    def compile_facts(self, header, old, new):
        """The facts as a runtime has them whose copy of one header differs; as an object."""
        text = (ROOT / header).read_text(encoding='utf-8')
        self.assertEqual(text.count(old), 1)
        other = self.directory / 'include' / header
        other.parent.mkdir(parents=True)
        other.write_text(text.replace(old, new), encoding='utf-8')
        source = self.directory / 'facts.cpp'
        source.write_text(FACTS, encoding='utf-8')
        facts = self.directory / 'facts.o'
        subprocess.run(['c++', '-std=c++20', '-fPIC', '-c', source, '-o', facts, f'-I{self.directory}/include', f'-I{ROOT}',
                        f'-I{ROOT}/collections/include', f'-I{BUILD}/generated/include'], check=True)
        return facts

    def assert_told(self, done, line):
        self.assertEqual((done.returncode, done.stdout), (1, ''))
        self.assertRegex(done.stderr, rf'\A{line}\n\Z')

    def test_another_layout_is_told_to_a_program_of_static_libraries(self):
        facts = self.compile_facts(LIST_RECORD, '  bool linked = false;\n', '  bool linked = false;\n  long long more = 0;\n')
        program = self.directory / 'program'
        subprocess.run(['c++', facts, ROOT / 'examples/minimal_runtime/conformance_adapter.cpp', '-std=c++20', f'-I{ROOT}',
                        '-o', program, '-Wl,--allow-multiple-definition', '-Wl,--start-group',
                        *(BUILD / f'lib/lib{name}.a' for name in ('vorn_conformance', 'vorn_collections', 'minimal_runtime')),
                        '-Wl,--end-group', '-pthread'], check=True)
        done = subprocess.run([program, '--list'], capture_output=True, text=True, check=False)
        self.assert_told(done, r'vorn: size of ListData: (\d+) in the runtime, (?!\1 )\d+ in libvorn_collections; '
                               'compile the runtime with the headers of this library')

    def test_another_version_is_told_to_a_program_of_shared_libraries(self):
        facts = self.compile_facts(PORT_FACTS, 'kPortVersion = 1;', 'kPortVersion = 1234;')
        other = self.directory / 'libother.so'
        subprocess.run(['c++', '-shared', facts, '-o', other], check=True)
        program = f'import ctypes; ctypes.CDLL({os.environ["VORN_RUNTIME"]!r}); print("went on")'
        done = subprocess.run([sys.executable, '-c', program], env=os.environ | {'LD_PRELOAD': str(other)},
                              capture_output=True, text=True, check=False)
        self.assert_told(done, 'vorn: version of the port: 1234 in the runtime, 1 in libvorn_collections; '
                               'compile the runtime with the headers of this library')


if __name__ == '__main__':
    unittest.main()
