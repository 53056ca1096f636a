"""Runs gdb on a small program and checks what the printers show."""

import os
import re
import subprocess
import unittest

GDB = os.environ['VORN_GDB']
SUBJECT = os.environ['VORN_PRINTERS_SUBJECT']
HERE = os.path.dirname(os.path.abspath(__file__))

# Expressions in the program's main function, each with what gdb shows for it.
EXPECTED = {
    '$vorn(number)': 'vorn.Int -42',
    '$vorn(real)': 'vorn.Double 2.5',
    '$vorn(string)': 'vorn.String "a string"',
    '$vorn(text)': '"a bare text"',
    '$vorn((void*)0)': '(void *) 0x0',
    '*(ObjectRecord*)number': 'vorn.Int -42',
    'records[0]->elementType': '"Short"',
    'records[4]->elementType': '""',
    '*records[0]': 'unboxed Short of Short, size 2, capacity 64 = {-3, 300}',
    '*records[1]': 'unboxed Byte of Byte, size 2, capacity 128 = {200, 7}',
    '*records[2]': 'unboxed Double of Double, size 2, capacity 16, synchronised = {2.5, -0.125}',
    '*records[3]': 'unboxed Char of Char, size 2, capacity 32 = {128512, 65}',
    '*records[4]': 'boxed, size 2, capacity 4 = {vorn.String "a string", null}',
    '*records[5]': 'linked of String, size 2 = {"a bare text", vorn.String "a string"}',
    '$vorn(lists[1])': 'vorn.collections.ArrayList<Byte> at ADDRESS = '
                       '{data = unboxed Byte of Byte, size 2, capacity 128 = {200, 7}}',
}


class PrintersTest(unittest.TestCase):

    def test_values_are_shown_as_what_they_hold(self):
        command = [GDB, '-batch', '-nx', '-iex', 'set debuginfod enabled off', '-iex', 'set auto-load off',
                   '-ex', f'source {HERE}/vorn_printers.py', '-ex', 'break stopHere', '-ex', 'run', '-ex', 'up']
        for expression in EXPECTED:
            command += ['-ex', f'print {expression}']
        done = subprocess.run(command + [SUBJECT], capture_output=True, text=True, timeout=120, check=False)
        shown = re.findall(r'^\$\d+ = (.*)$', done.stdout, re.MULTILINE)
        self.assertEqual(len(shown), len(EXPECTED), done.stdout + done.stderr)
        for (expression, expected), found in zip(EXPECTED.items(), shown):
            with self.subTest(expression=expression):
                self.assertEqual(re.sub(r'at 0x[0-9a-f]+', 'at ADDRESS', found), expected)


if __name__ == '__main__':
    unittest.main()
