"""Builds an example in another language, as its users do, and compares what it prints.

    other_languages_test.py go|rust

The libraries are in VORN_LIB_DIR. Ends with 77 where the language has no compiler here.
"""

import collections
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
LIBRARIES = os.environ['VORN_LIB_DIR']
INCLUDES = ' '.join(f'-I{ROOT / directory}/include' for directory in ('collections', 'runtime'))

TEXTS = ('', 'one', 'the cat and the dog\nand "a" q\\b', 'größe κόσμε größe 😀\n', ' \n\t ',
         ' '.join(f'word{number * number % 1009}' for number in range(30000)))


def run(*command, **options):
    return subprocess.run(command, capture_output=True, encoding='utf-8', timeout=100, check=False, **options)


class ExampleTest(unittest.TestCase):
    """Mixed with a test for each language. The program is built once."""

    compiler = None

    @classmethod
    def setUpClass(cls):
        directory = tempfile.mkdtemp()
        cls.addClassCleanup(shutil.rmtree, directory)
        cls.program = os.path.join(directory, 'example')
        cls.built = cls.build(directory)

    def assertPrints(self, text, output):
        self.assertEqual((self.built.returncode, self.built.stderr), (0, ''))
        done = run(self.program, input=text)
        self.assertEqual((done.returncode, done.stderr), (0, ''))
        self.assertEqual(done.stdout, output)


def quoted(word):
    return '"' + word.replace('\\', '\\\\').replace('"', '\\"') + '"'


class GoTest(ExampleTest):

    @classmethod
    def build(cls, directory):
        flags = {'CGO_ENABLED': '1', 'CGO_CFLAGS': INCLUDES, 'CGO_LDFLAGS': f'-L{LIBRARIES} -Wl,-rpath,{LIBRARIES}',
                 'GO111MODULE': 'off', 'GOFLAGS': '', 'GOTOOLCHAIN': 'local',
                 'GOCACHE': os.environ.get('GOCACHE') or os.path.join(directory, 'cache')}
        return run(cls.compiler, 'build', '-o', cls.program, str(ROOT / 'examples/go/word_count.go'),
                   env={**os.environ, **flags})

    def test_words_are_counted_in_order(self):
        for text in TEXTS:
            counts = collections.Counter(text.split())
            shown = ', '.join(f'{quoted(word)}: {counts[word]}' for word in sorted(counts, key=str.encode))
            with self.subTest(text=text[:40]):
                self.assertPrints(text, f't:{{{shown}}}\nKeyException: Key not found\n')


class RustTest(ExampleTest):

    @classmethod
    def build(cls, directory):
        return run(cls.compiler, '--edition', '2021', '-D', 'warnings', '-L', LIBRARIES,
                   '-C', f'link-arg=-Wl,-rpath,{LIBRARIES}', '-o', cls.program,
                   str(ROOT / 'examples/rust/sorted_words.rs'))

    def test_words_are_sorted(self):
        for text in TEXTS:
            words = sorted(text.split(), key=str.encode)
            with self.subTest(text=text[:40]):
                self.assertPrints(text, ''.join(f'{word}\n' for word in words) +
                                  f'{len(words)} words\nIndexException: Index out of bounds\n')


LANGUAGES = {'go': (GoTest, 'go'), 'rust': (RustTest, 'rustc')}


def main():
    language = sys.argv[1]
    test, compiler = LANGUAGES[language]
    # The system's own before one that a user has installed.
    test.compiler = shutil.which(compiler, path=os.pathsep.join(('/usr/bin', os.environ['PATH'])))
    if test.compiler is None:
        print(f'no {compiler} here: the example in {language} was neither built nor run')
        return 77
    suite = unittest.defaultTestLoader.loadTestsFromTestCase(test)
    return 0 if unittest.TextTestRunner(verbosity=2).run(suite).wasSuccessful() else 1


if __name__ == '__main__':
    sys.exit(main())
