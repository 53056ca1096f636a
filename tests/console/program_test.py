"""The console's program as scripts and pipes meet it: exit statuses, messages, files, and input that nobody meant."""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import unittest

from console_program import CONSOLE, HEAP, ROOT, SANITIZED, run


class ProgramTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)

    def script(self, text, name='script.vorn'):
        path = self.directory / name
        if isinstance(text, bytes):
            path.write_bytes(text)
        else:
            path.write_text(text, encoding='utf-8')
        return path

    def refused(self, text, *expected, heap_arguments=()):
        """The lines are refused with all the given parts in the messages, and the session goes on."""
        given = text if isinstance(text, bytes) else text.encode()
        done = run(*heap_arguments, text=given + b'\n"alive"\n')
        self.assertEqual(done.returncode, 1, done.stderr)
        for part in expected:
            self.assertIn(part, done.stdout)
        self.assertTrue(done.stdout.endswith('"alive"\n'), done.stdout[-200:])
        return done

    # ---- Scripts as tests ----

    def test_a_script_that_meets_its_expectations(self):
        path = self.script('xs = [1]\nxs  # expect: [1]\nxs[5]  # expect error: IndexException: Index out of bounds\n')
        done = run(path)
        self.assertEqual((done.returncode, done.stderr), (0, ''))
        self.assertEqual(done.stdout, f'{path}: 3 statements, 2 expectations, 0 differences\n')

    def test_a_difference_shows_both_texts_and_is_status_1(self):
        path = self.script('\n[1, 2]  # expect: [1, 3]\n')
        done = run(path)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stdout.splitlines()[:-1], [f'{path}:2: differs from what is expected', '    [1, 2]',
                                                         '  expected: [1, 3]', '  shown:    [1, 2]'])

    def test_each_way_to_miss_an_expectation(self):
        for text in ('[1]  # expect:', '[1]  # expect error: [1]', 'x  # expect: x', '[9][3]', ':type 3  # expect: Int',
                     '[1].add(2)  # expect: 1', '[1][4]  # expect error: IndexException', '1\n# expect: 1\n# expect: 1',
                     '[1][4]  # expect: IndexException: Index out of bounds'):
            with self.subTest(text=text):
                self.assertEqual(run(self.script(text + '\n')).returncode, 1)

    def test_scripts_know_nothing_of_each_other(self):
        first = self.script('x = 1\nclass C(a)\nC(1)  # expect: C(a=1)\n', 'first')
        second = self.script('x  # expect error: Refused: there is no variable x\nclass C(a, b)\n'
                             'C(1, 2)  # expect: C(a=1, b=2)\nlist = ArrayList<C>()\nlist.add(C(1, 2))\n', 'second')
        done = run(first, second)
        self.assertEqual(done.returncode, 0, done.stdout)

    def test_a_script_that_does_not_exist(self):
        done = run(self.directory / 'missing', self.script('1  # expect: 1\n'))
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr, f'vorn-console: cannot read {self.directory}/missing: No such file or directory\n')
        self.assertIn('0 differences', done.stdout)

    def test_the_tour_runs_by_itself_where_no_one_reads_along(self):
        # By a copy of the program in another place: it carries the tour.
        copy = self.directory / 'elsewhere'
        shutil.copy(CONSOLE, copy)
        done = subprocess.run([copy, f'--heap={HEAP}', '--tour'], capture_output=True, text=True, check=False, timeout=300,
                              cwd='/', input='')
        self.assertEqual((done.returncode, done.stderr), (0, ''), done.stdout)
        self.assertIn('IndexException: Index out of bounds', done.stdout)

    def test_an_unknown_option_and_an_unknown_heap(self):
        for option in ('--frob', '--heap=heap=none', '--memory=lots'):
            done = subprocess.run([CONSOLE, option], capture_output=True, text=True, check=False, timeout=60, input='')
            self.assertEqual((done.returncode, done.stdout), (2, ''))
            self.assertRegex(done.stderr, r'\Avorn-console: [^\n]+\n\Z')

    def test_every_heap(self):
        # Sanitizers have heaps of their own, on which the scripts run as well.
        heaps = ('heap=collected', 'heap=plain', 'heap=stress', 'heap=stress,one-in=3,seed=5')
        for heap in (HEAP,) if SANITIZED else heaps:
            done = subprocess.run([CONSOLE, f'--heap={heap}', *sorted((ROOT / 'tests/scripts').glob('*.vorn'))],
                                  capture_output=True, text=True, check=False, timeout=300)
            self.assertEqual(done.returncode, 0, done.stdout)

    # ---- Saving and loading ----

    def test_a_saved_session_is_a_script_that_meets_its_expectations(self):
        saved = self.directory / 'saved.vorn'
        done = run(text='xs = [1, 2]\nxs  # what I have\nxs * 2\n{"a *": 1}\nxs[9]\nclass P(x) text "{x}\\n*"\nP(3)\n'
                        f'[\n  5\n]\nnonsense\n:type xs\n:watch xs\nxs.count("a")\n:save {saved}\n')
        self.assertIn('saved 11 statements', done.stdout)
        text = saved.read_text(encoding='utf-8')
        self.assertIn('# expect error: IndexException: Index out of bounds', text)
        self.assertNotIn('nonsense', text)
        again = run(saved)
        self.assertEqual(again.returncode, 0, again.stdout + text)
        self.assertIn('11 statements, 7 expectations', again.stdout)

    def test_a_full_disk_is_told_and_nothing_lost(self):
        if not os.path.exists('/dev/full'):
            self.skipTest('no full device')
        self.refused('1\n:save /dev/full', 'Refused: cannot write /dev/full: No space left on device')

    def test_a_failing_save_leaves_the_old_file(self):
        # A file system that is full for new files: here, one whose limit for a file is reached.
        path = self.script('precious\n', 'old')
        command = f'ulimit -f 0; trap "" XFSZ; printf "1\\n:save {path}\\n2\\n" | "{CONSOLE}" --heap={HEAP}'
        done = subprocess.run(['bash', '-c', command], capture_output=True, text=True, check=False, timeout=60)
        self.assertIn('Refused: cannot write', done.stdout)
        self.assertTrue(done.stdout.endswith('2\n'))
        self.assertEqual(path.read_text(encoding='utf-8'), 'precious\n')
        self.assertEqual(sorted(each.name for each in self.directory.iterdir()), ['old'])

    def test_saving_where_nothing_can_be_saved(self):
        self.refused(f':save {self.directory}/none/file', 'No such file or directory')
        self.refused(f':save {self.directory}', 'Is a directory')
        self.refused(':save', ':save takes a file')

    def test_a_saved_file_keeps_its_permissions(self):
        path = self.script('old', 'private')
        path.chmod(0o600)
        run(text=f'1\n:save {path}\n')
        self.assertEqual(path.stat().st_mode & 0o777, 0o600)
        self.assertIn('# expect: 1', path.read_text(encoding='utf-8'))

    def test_loading(self):
        path = self.script('x = [1]\nx[7]\nx\n')
        done = run(text=f':load {path}\nx.size()\n')
        self.assertEqual(done.stdout, 'IndexException: Index out of bounds\n[1]\n1\n')
        self.refused(f':load {self.directory}/missing', 'cannot read', 'No such file')
        self.refused(f':load {self.directory}', 'Is a directory')

    def test_a_script_that_loads_itself(self):
        path = self.directory / 'self.vorn'
        path.write_text(f':load {path}\n', encoding='utf-8')
        self.refused(f':load {path}', 'without end')

    def test_a_plot_into_a_file(self):
        path = self.directory / 'sum.svg'
        done = run(text=f'n = 7\n:plot range(n).sumInt() over n up to 100 to {path}\nn\n')
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertTrue(done.stdout.endswith('\n7\n'))
        self.assertEqual(done.stdout.count('o') > 3, True)
        text = path.read_text(encoding='utf-8')
        self.assertTrue(text.startswith('<svg '))
        self.assertEqual(text.count('<circle'), 5)
        import xml.etree.ElementTree
        xml.etree.ElementTree.fromstring(text)

    # ---- Input that nobody meant ----

    def test_unclosed_brackets_and_quotes_at_the_end_of_the_input(self):
        done = run(text='1\n[2, (3\n')
        self.assertEqual(done.returncode, 1)
        self.assertIn("Syntax: this '(' is never closed; expected ')'", done.stdout)
        self.refused('"open', 'this " is never closed')
        self.refused("'x", "this ' is never closed")

    def test_a_syntax_error_shows_its_line_and_a_caret_below_the_place(self):
        done = run(text='xs = [1, 2, ?]\n')
        self.assertEqual(done.stdout.splitlines(), ['  xs = [1, 2, ?]', '              ^', "Syntax: '?' means nothing here"])

    def test_the_caret_counts_characters_not_bytes(self):
        done = run(text='"äöü" ?\n')
        self.assertEqual(done.stdout.splitlines()[1], '        ^')

    def test_the_caret_stands_behind_wide_characters(self):
        done = run(text='"東京😀" ?\n')
        self.assertEqual(done.stdout.splitlines()[1], ' ' * (2 + 1 + 6 + 1 + 1) + '^')

    def test_the_end_of_the_input_in_the_middle_of_a_line(self):
        self.assertEqual(run(text='[1, 2]').stdout, '[1, 2]\n')
        self.assertEqual(run(text='').returncode, 0)

    def test_bytes_outside_utf_8(self):
        for text in (b'"\xff"', b'\xc3', b':type \xed\xa0\x80', b'x = "\xf8\x88\x80\x80\x80"', b'\x80\x80'):
            with self.subTest(text=text):
                self.refused(text, 'this byte is no part of UTF-8 text')

    def test_nul_bytes_and_control_characters(self):
        self.refused(b'"a\x00b"', 'U+0000')
        self.refused(b'\x00', 'means nothing here')
        self.refused(b'\x1b[31m', 'means nothing here')

    def test_a_control_character_is_never_sent_to_the_terminal(self):
        done = run(text='class E(x) text "{x}"\nE("\x1b[31m")\n["\x9b"]\n')
        self.assertNotIn('\x1b', done.stdout)
        self.assertNotIn('\x9b', done.stdout)

    def test_lines_of_a_megabyte(self):
        million = 1000 * 1000
        done = run(text='"' + 'a' * million + '"\n')
        self.assertEqual(done.returncode, 0)
        self.assertLess(len(done.stdout), 2000)
        self.assertIn('(1,000,002 characters)', done.stdout)
        if HEAP != 'heap=stress':
            done = run(text='[' + '1, ' * (million // 3) + '].size()\n')
            self.assertEqual(done.stdout, '333333\n')
        self.refused('x' * million, 'there is no variable')
        self.refused('1' * million, 'does not fit Int')
        self.refused('1 + ' * (million // 4), 'Syntax')
        self.refused('x' * million + '?', 'means nothing here')

    def test_nesting_of_100_000_brackets(self):
        for opening, closing in (('[', ']'), ('(', ')'), ('{', '}'), ('xs[', ']'), ('f(', ')')):
            with self.subTest(opening=opening):
                self.refused(opening * 100000 + '1' + closing * 100000, 'nested more than 200 deep')
        self.refused('ArrayList' + '<ArrayList' * 100000 + '>' * 100000 + '()', 'nested more than 200 deep')

    def test_chains_of_100_000_operators(self):
        for link in ('.size()', '[0]', '.x', ' + x', ' * 2', ' == 1', ' in x', '[:]'):
            with self.subTest(link=link):
                self.refused('x = [1]\nx' + link * 100000, 'nested more than 200 deep')

    def test_collections_that_nest_line_by_line(self):
        lines = 'x = [1]\n' + 'x = [x]\n' * 3000
        if HEAP == 'heap=stress':
            self.skipTest('quadratic there')
        done = run(text=lines + 'x\n"alive"\n')
        self.assertTrue(done.stdout.endswith('nested too deep to show\n"alive"\n'), done.stdout[-300:])

    def test_displays_that_double_with_each_level(self):
        done = run(text='x = [1]\n' + 'x = [x, x]\n' * 40 + 'x\nx.toString()\nx.join("")\nclass B(x) text x\nB(x)\n'
                        'x.size()\n', timeout=120)
        self.assertIn('shows too much to be shown', done.stdout)
        self.assertEqual(done.stdout.count('the text would go on and on'), 2)
        self.assertIn('ArrayList(...)', done.stdout)
        self.assertTrue(done.stdout.endswith('\n2\n'))

    def test_objects_that_hold_themselves(self):
        done = run(text='class N(a, b) text fields equals fields\nn = N(1, 2)\nn.a = n\nn.b = n\nm = N(1, 2)\nm.a = m\n'
                        'm.b = m\nn\nn == m\n"alive"\n')
        self.assertTrue(done.stdout.endswith('"alive"\n'), done.stdout[-300:])

    def test_more_memory_than_there_is(self):
        texts = ['[1].repeat(9223372036854775807L)', 'Array<Long>(9223372036854775807L)',
                 'ArrayList.newPrimitiveData(9223372036854775807L, "Long")',
                 'ArrayList<Int>().reserve(9223372036854775807L)']
        # Under a sanitizer the console takes all the memory that there is.
        if not SANITIZED:
            texts += ['[1].repeat(1000000000000L)', 'range(200000000).repeat(100)']
        for text in texts:
            with self.subTest(text=text):
                self.refused(text, 'Refused: ', heap_arguments=('--memory=2048',))
        self.refused('HashSet().reserve(9223372036854775807L)', 'a C++ exception of the native')
        self.refused('range(1000000000)', "range's count must be 0 to ")

    def test_output_that_cannot_be_written(self):
        if not os.path.exists('/dev/full'):
            self.skipTest('no full device')
        with open('/dev/full', 'w', encoding='utf-8') as full:
            done = subprocess.run([CONSOLE], input='[1]\n', stdout=full, stderr=subprocess.PIPE, text=True, check=False,
                                  timeout=60)
        self.assertEqual((done.returncode, done.stderr), (2, 'vorn-console: cannot write the output\n'))

    # ---- Interrupts ----

    def test_an_interrupt_ends_a_script(self):
        # Shows at once more than its buffer holds, catches interrupts by then, and would end by itself in many minutes.
        path = self.script('"long"\n' * 2_000 + 'x = shuffled(1000)\n' + ':time x.sumInt()\n' * 50_000)
        process = subprocess.Popen([CONSOLE, f'--heap={HEAP}', path], stdout=subprocess.PIPE, text=True)
        self.assertNotEqual(process.stdout.readline(), '')
        process.send_signal(signal.SIGINT)
        output, _ = process.communicate(timeout=30)
        self.assertEqual(process.returncode, 1)
        self.assertIn('interrupted', output)

    # ---- Plain surroundings ----

    def test_no_colours_where_no_terminal_is(self):
        self.assertNotIn('\x1b', run(text='1\nx\n:help\n:natives\n').stdout)

    def test_every_topic_of_help(self):
        first = run(text=':help\n').stdout
        topics = first[first.index('tells more: ') + len('tells more: '):].strip().rstrip('.').split(', ')
        self.assertGreater(len(topics), 5)
        for topic in topics:
            done = run(text=f':help {topic}\n')
            self.assertEqual(done.returncode, 0, topic)
            self.assertGreater(len(done.stdout), 100, topic)
        self.assertIn('did you mean values?', run(text=':help value\n').stdout)


if __name__ == '__main__':
    unittest.main()
