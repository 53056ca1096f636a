"""What the tests of the Python package share. VORN_TEST_HEAP ("heap=stress", ...) chooses the heap."""

import os
import subprocess
import sys
import unittest

import vorn

HEAP = os.environ.get('VORN_TEST_HEAP', 'heap=collected')
vorn.start(HEAP)


class VornTest(unittest.TestCase):
    """A test that leaves no error of the language behind."""

    def tearDown(self):
        from vorn._errors import pending_count
        self.assertEqual(pending_count(), 0)

    def assertRaisesBoth(self, python_class, language_class, message=None):
        """The exception is one of Python's own class and one of the package that says what the language says."""
        return _RaisesBoth(self, python_class, language_class, message)


class _RaisesBoth:

    def __init__(self, test, python_class, language_class, message):
        self.test, self.expected = test, (language_class, message)
        self.raises = test.assertRaises(python_class)

    def __enter__(self):
        self.raises.__enter__()
        return self

    def __exit__(self, *details):
        caught = self.raises.__exit__(*details)
        if caught:
            error = self.raises.exception
            self.test.assertIsInstance(error, vorn.Error)
            self.test.assertEqual(error.language_class, self.expected[0])
            if self.expected[1] is not None:
                self.test.assertEqual(error.message, self.expected[1])
        return caught


def run_program(text, *arguments, environment=None, heap=HEAP):
    """Runs a program in a process of its own, on the same heap: (status, standard output, standard error)."""
    everything = {**os.environ, 'VORN_TEST_HEAP': heap, 'PYTHONPATH': os.pathsep.join(sys.path), **(environment or {})}
    done = subprocess.run([sys.executable, '-B', '-c', text, *arguments], capture_output=True, text=True, timeout=120,
                          env={name: value for name, value in everything.items() if value is not None}, check=False)
    return done.returncode, done.stdout, done.stderr
