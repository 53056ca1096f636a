"""Where the printers have their types from: that a kind which is added to the table is known without a change of theirs,
and what they say without types."""

import pathlib
import subprocess
import tempfile
import unittest

import gdb_session
from gdb_session import ROOT, run


class TypesTest(unittest.TestCase):

    def test_without_types_a_message_says_so(self):
        with tempfile.TemporaryDirectory() as directory:
            # The printers and the program elsewhere, without the types beside them.
            program = pathlib.Path(directory) / 'subject'
            program.write_bytes(pathlib.Path(gdb_session.SUBJECT).read_bytes())
            program.chmod(0o755)
            shown = run(['vorn *(void**)&unboxedInline', 'vorn-roots', 'vorn-types'], subject=str(program),
                        start=['python import sys; sys.path.insert(0, "' + str(ROOT / 'tools/gdb') + '")',
                               'python import vorn_gdb.memory as memory; memory._places = lambda: iter(())',
                               'python import vorn_gdb; vorn_gdb.register()'])
        # A program with types of its own has some of them.
        missing = r'<vorn_types.debug of this build is not loaded: no type \S+, see help vorn-types>'
        self.assertRegex(shown[0], missing)
        self.assertRegex(shown[1], missing)
        self.assertEqual(shown[2], 'no vorn_types.debug beside the printers, the program or its libraries')

    def test_a_kind_that_is_added_to_the_table_is_known(self):
        row = 'VORN_PRIMITIVE_KIND(12, Third, std::int16_t, 2, Integer, Third)\n'
        table = (ROOT / 'collections/core/kinds.def').read_text(encoding='utf-8')
        with tempfile.TemporaryDirectory() as directory:
            changed = pathlib.Path(directory) / 'collections/core/kinds.def'
            changed.parent.mkdir(parents=True)
            changed.write_text(table.replace('\n// The character types', f'\n{row}\n// The character types', 1),
                               encoding='utf-8')
            types = pathlib.Path(directory) / 'vorn_types.debug'
            subprocess.run(['c++', '-std=c++20', '-g', '-shared', '-fPIC', f'-I{directory}', f'-I{ROOT}',
                            f'-I{ROOT}/collections/include', f'-I{ROOT}/runtime/include', '-o', types,
                            ROOT / 'tools/gdb/types.cpp'], check=True)
            shown = run([
                'python from vorn_gdb import kinds',
                "python print(kinds.kind_of(12).name, kinds.kind_of(12).decode(b'\\xfd\\xff', 'Third'))",
            ], start=['python import sys; sys.path.insert(0, "' + str(ROOT / 'tools/gdb') + '")',
                      'python import vorn_gdb.memory as memory; memory._places = lambda: iter(())',
                      'python import vorn_gdb; vorn_gdb.register()', f'vorn-types {types}'])
        self.assertEqual(shown[1], 'Third -3')


if __name__ == '__main__':
    gdb_session.skip_without_gdb()
    unittest.main()
