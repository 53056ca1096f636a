"""Compares the console's table of natives with the public headers, and the natives that the scripts call with both."""

import re
import tempfile
import unittest

from console_program import ROOT, run

HEADERS = ROOT / 'collections/include/vorn/collections'
SCRIPTS = sorted((ROOT / 'tests/scripts').glob('*.vorn'))

COMMENT = re.compile(r'//[^\n]*|/\*.*?\*/', re.DOTALL)
DECLARATION = re.compile(r'\bVORN_NATIVE\b[^;]*?\b(vorn_collections_\w+)\s*\((.*?)\)\s*;', re.DOTALL)


def declared_natives():
    """Name and parameters of every native of a class, from the headers."""
    natives = {}
    for header in sorted(HEADERS.glob('*.h')):
        text = header.read_text(encoding='utf-8')
        code = COMMENT.sub(' ', text)
        for name, parameters in DECLARATION.findall(code):
            natives[name] = [part.strip() for part in parameters.split(',')] if parameters.strip() != 'void' else []
    return natives


class NativesTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.declared = declared_natives()
        rows = [line.split('\t') for line in run('--natives').stdout.splitlines()]
        cls.table = {row[0]: row[1:] for row in rows}
        cls.rows = rows

    def test_the_headers_are_understood(self):
        self.assertIn('vorn_collections_ArrayList_addAllAt', self.declared)
        self.assertEqual(len(self.declared['vorn_collections_ArrayList_addAllAt']), 3)

    def test_the_table_has_each_native_of_the_headers_once_and_no_other(self):
        self.assertEqual(sorted(row[0] for row in self.rows), sorted(self.declared))

    def test_class_and_method_are_the_parts_of_the_name(self):
        for name, (owner, method, _, _) in self.table.items():
            self.assertEqual(name, f'vorn_collections_{owner}_{method}')

    def test_arguments_are_as_many_as_the_header_has(self):
        for name, (_, method, signature, _) in self.table.items():
            parameters = self.declared[name]
            given = [] if not signature else signature.split(', ')
            # Left out: the receiver, what is stored through, and the count of variadic natives.
            hidden = sum('**' in parameter for parameter in parameters)
            if '...' in parameters[-1:] or any('...' in parameter for parameter in parameters):
                self.assertEqual(given, ['values...'], name)
                continue
            literal = re.match(r'(literal|intLiteral|primitiveLiteral|new)', method)
            receiver = 0 if literal and not method.endswith('New') else 1
            self.assertEqual(len(given) + hidden + receiver, len(parameters), name)

    def test_every_row_has_a_description_of_one_line(self):
        for name, (_, _, _, description) in self.table.items():
            self.assertTrue(10 <= len(description) <= 90, f'{name}: {description}')

    def test_the_scripts_call_every_native(self):
        with tempfile.NamedTemporaryFile(mode='r', encoding='utf-8') as file:
            done = run(f'--natives-called={file.name}', *SCRIPTS)
            self.assertEqual((done.returncode, done.stderr), (0, ''), done.stdout)
            # The file was replaced by a new one of its name.
            with open(file.name, encoding='utf-8') as called:
                self.assertEqual(sorted(set(self.declared) - set(called.read().split())), [])
        self.assertTrue(SCRIPTS)


if __name__ == '__main__':
    unittest.main()
