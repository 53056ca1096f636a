"""The console on a terminal, through a pseudo-terminal: keys, history, completion, signals, colours, window size."""

import fcntl
import os
import pathlib
import pty
import re
import select
import signal
import struct
import subprocess
import tempfile
import termios
import time
import unittest

from console_program import CONSOLE, HEAP

ESCAPE = re.compile(r'\x1b\[[0-9;?]*[A-Za-z]|\x1b[()][A-Z0-9]|\x1b[=>]')
PROMPT = 'vorn> '
SECONDS = 60 if HEAP == 'heap=stress' else 30


class Terminal:
    """A console on a pseudo-terminal of its own."""

    def __init__(self, directory, *arguments, columns=100, **environment):
        surroundings = {'PATH': os.environ['PATH'], 'HOME': str(directory), 'TERM': 'xterm', 'LANG': 'C.UTF-8',
                        **environment}
        surroundings = {name: value for name, value in surroundings.items() if value is not None}
        for name in os.environ:
            if name.endswith('SAN_OPTIONS'):
                surroundings[name] = os.environ[name]
        self.process, self.file = pty.fork()
        if self.process == 0:
            os.execve(CONSOLE, [CONSOLE, f'--heap={HEAP}', *arguments], surroundings)
        self.resize(columns)
        self.raw = b''
        self.status = None

    def resize(self, columns):
        fcntl.ioctl(self.file, termios.TIOCSWINSZ, struct.pack('HHHH', 40, columns, 0, 0))

    def send(self, text):
        os.write(self.file, text.encode() if isinstance(text, str) else text)

    def text(self):
        return ESCAPE.sub('', self.raw.decode('utf-8', 'replace')).replace('\r', '')

    def read(self, seconds):
        """Takes in what has come within the time; false at the end."""
        if not select.select([self.file], [], [], seconds)[0]:
            return True
        try:
            data = os.read(self.file, 65536)
        except OSError:
            data = b''
        self.raw += data
        return bool(data)

    def expect(self, wanted, start=0):
        """Waits until the text is there behind `start`, and gives the place behind it."""
        end = time.monotonic() + SECONDS
        while wanted not in self.text()[start:]:
            if time.monotonic() > end or not self.read(0.1):
                raise AssertionError(f'{wanted!r} did not come:\n{self.text()[start:]!r}')
        return self.text().index(wanted, start) + len(wanted)

    def settle(self):
        """Waits until nothing more comes."""
        size = -1
        while size != len(self.raw):
            size = len(self.raw)
            self.read(0.3)

    def close(self):
        """Waits for the end and gives the exit status."""
        end = time.monotonic() + SECONDS
        while self.status is None:
            self.read(0.05)
            done, status = os.waitpid(self.process, os.WNOHANG)
            if done:
                self.status = os.waitstatus_to_exitcode(status)
            elif time.monotonic() > end:
                os.kill(self.process, signal.SIGKILL)
        while self.read(0) and select.select([self.file], [], [], 0.1)[0]:
            pass
        os.close(self.file)
        return self.status


class TerminalTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)

    def start(self, *arguments, **options):
        terminal = Terminal(self.directory, *arguments, **options)

        def end():
            if terminal.status is None:
                os.kill(terminal.process, signal.SIGKILL)
                os.waitpid(terminal.process, 0)
                os.close(terminal.file)

        self.addCleanup(end)
        terminal.expect('tour> ' if arguments else PROMPT)
        terminal.settle()
        return terminal

    def say(self, terminal, text, shown):
        """Types a line and waits for what it shows and for the next prompt."""
        begin = len(terminal.text())
        terminal.send(text)
        place = terminal.expect(shown, begin)
        terminal.expect(PROMPT, place)
        terminal.settle()
        return terminal.text()[begin:]

    def enter(self, terminal, text):
        """Types a line that shows nothing and waits for the next prompt."""
        begin = len(terminal.text())
        terminal.send(text)
        terminal.expect(PROMPT, terminal.expect('\n', begin))
        terminal.settle()

    def test_a_line_and_its_result(self):
        terminal = self.start()
        self.say(terminal, '[1, 2].size() == 2\r', '\ntrue\n')

    def test_a_line_can_be_edited(self):
        terminal = self.start()
        # Home, an insertion, End, a deleted character, another one.
        self.say(terminal, '1, 2)\x01[\x05\x7f]\r', '\n[1, 2]\n')
        # Left and right arrows.
        self.say(terminal, '[13]\x1b[D\x1b[D, \r', '\n[1, 3]\n')

    def test_characters_of_several_bytes(self):
        terminal = self.start()
        self.say(terminal, '"ä€😀x"\x1b[D\x7f\r', '\n"ä€😀"\n')

    def test_the_last_line_comes_back_with_the_arrow(self):
        terminal = self.start()
        self.say(terminal, '[41, 1]\r', '\n[41, 1]\n')
        self.say(terminal, '\x1b[A.sumInt()\r', '\n42\n')

    def test_history_survives(self):
        terminal = self.start()
        self.say(terminal, '"remember me"\r', '\n"remember me"\n')
        terminal.send('\x04')
        self.assertEqual(terminal.close(), 0)
        again = self.start()
        self.say(again, '\x1b[A\r', '\n"remember me"\n')

    def test_history_survives_the_end_by_a_signal(self):
        terminal = self.start()
        self.say(terminal, '"remember me"\r', '\n"remember me"\n')
        os.kill(terminal.process, signal.SIGKILL)
        terminal.close()
        self.say(self.start(), '\x1b[A\r', '\n"remember me"\n')

    def test_history_goes_where_it_is_told(self):
        path = self.directory / 'elsewhere'
        terminal = self.start(VORN_CONSOLE_HISTORY=str(path))
        self.say(terminal, '[1]\r', '\n[1]\n')
        terminal.send('\x04')
        terminal.close()
        self.assertIn('[1]', path.read_text(encoding='utf-8'))
        self.assertFalse((self.directory / '.vorn_console_history').exists())

    def test_tab_completes_the_only_candidate(self):
        terminal = self.start()
        self.enter(terminal, 'numbers = [3]\r')
        self.say(terminal, 'numb\t.sumF\t)\r', '\n3.0\n')
        self.say(terminal, ':typ\tnumb\t[0]\r', '\nvorn.Int\n')

    def test_tab_lists_several_candidates(self):
        terminal = self.start()
        self.enter(terminal, 'xs = [3, 4]\r')
        terminal.send('xs.remov\t\t')
        place = terminal.expect('remove    removeAt')
        terminal.expect('vorn> xs.remove', place)
        terminal.settle()
        self.say(terminal, '(3)\r', '\ntrue\n')

    def test_an_open_bracket_goes_on_in_the_next_line(self):
        terminal = self.start()
        terminal.send('[1,\r')
        terminal.expect('  ... ')
        self.say(terminal, '2]\r', '\n[1, 2]\n')

    def test_ctrl_c_drops_the_line_and_not_the_shell(self):
        terminal = self.start()
        terminal.send('"never run"')
        terminal.settle()
        terminal.send('\x03')
        terminal.expect('^C\n' + PROMPT)
        terminal.settle()
        shown = self.say(terminal, '[5]\r', '\n[5]\n')
        self.assertNotIn('never run', shown)
        self.assertNotIn('\n"never run"\n', terminal.text())

    def test_ctrl_c_drops_a_statement_of_several_lines(self):
        terminal = self.start()
        terminal.send('[1,\r')
        terminal.expect('  ... ')
        terminal.settle()
        terminal.send('\x03')
        terminal.settle()
        self.say(terminal, '[7]\r', '\n[7]\n')

    def test_an_interrupt_by_signal_drops_the_line(self):
        terminal = self.start()
        terminal.send('"never run"')
        terminal.settle()
        os.kill(terminal.process, signal.SIGINT)
        terminal.settle()
        self.say(terminal, '[5]\r', '\n[5]\n')

    def test_ctrl_c_stops_a_measurement(self):
        terminal = self.start()
        self.enter(terminal, 'x = shuffled(5000)\r')
        terminal.send(':plot y.sortNew() over n with y = shuffled(n) up to 10000000\r')
        time.sleep(1)
        begin = len(terminal.text())
        terminal.send('\x03')
        place = terminal.expect('interrupted', begin)
        terminal.expect(PROMPT, place)
        terminal.settle()
        self.say(terminal, '[5]\r', '\n[5]\n')

    def test_ctrl_d_leaves(self):
        terminal = self.start()
        terminal.send('\x04')
        self.assertEqual(terminal.close(), 0)

    def test_ctrl_d_within_a_line_does_not_leave(self):
        terminal = self.start()
        self.say(terminal, '[123]\x01\x1b[C\x04\r', '\n[23]\n')

    def test_quit_leaves(self):
        terminal = self.start()
        terminal.send(':quit\r')
        self.assertEqual(terminal.close(), 0)

    def test_the_terminal_is_as_it_was_afterwards(self):
        terminal = self.start()
        before = termios.tcgetattr(terminal.file)
        self.say(terminal, '[1]\r', '\n[1]\n')
        terminal.send('\x04')
        terminal.close
        while terminal.read(0.2) and os.waitpid(terminal.process, os.WNOHANG)[0] == 0:
            pass
        terminal.status = 0
        after = termios.tcgetattr(terminal.file)
        os.close(terminal.file)
        # The editor has switched echo and line mode off while it waited, and on again.
        self.assertFalse(before[3] & termios.ICANON)
        self.assertTrue(after[3] & termios.ICANON)
        self.assertTrue(after[3] & termios.ECHO)

    def test_colours_on_a_terminal(self):
        terminal = self.start()
        self.say(terminal, '[1]\r', '[1]')
        self.say(terminal, 'nonsense\r', 'there is no variable')
        self.assertIn(b'\x1b[36m[1]\x1b[0m', terminal.raw)
        self.assertIn(b'\x1b[1;34mvorn>\x1b[0m ', terminal.raw)
        self.assertIn(b'\x1b[31m', terminal.raw)

    def test_no_colours_when_they_are_not_wanted(self):
        for environment in ({'NO_COLOR': '1'}, {'TERM': 'dumb'}):
            terminal = self.start(**environment)
            self.say(terminal, '[1]\r', '[1]')
            self.say(terminal, 'nonsense\r', 'there is no variable')
            self.assertNotRegex(terminal.raw, rb'\x1b\[[0-9;]*3[0-9]m')

    def test_the_width_of_the_window_is_that_of_the_chart(self):
        terminal = self.start(columns=50)
        command = ':plot range(n).sumInt() over n up to 100\r'
        axis = re.compile(r'\+-+')
        narrow = self.say(terminal, command, 'grows like')
        terminal.resize(90)
        time.sleep(0.3)
        wide = self.say(terminal, command, 'grows like')
        self.assertEqual(len(axis.search(narrow)[0]), 50 - 9 - 2 + 1)
        self.assertEqual(len(axis.search(wide)[0]), 90 - 9 - 2 + 1)

    def test_a_changed_window_leaves_the_line_as_it_is(self):
        terminal = self.start(columns=100)
        terminal.send('[1, 2, ')
        terminal.settle()
        terminal.resize(60)
        time.sleep(0.3)
        self.say(terminal, '3]\r', '\n[1, 2, 3]\n')

    def test_a_line_longer_than_the_window(self):
        terminal = self.start(columns=40)
        self.say(terminal, '"' + 'abc' * 100 + '".x\r', 'has no field x')

    def test_the_tour_waits_for_its_reader(self):
        terminal = self.start('--tour', columns=120)
        self.assertIn('xs = [3, 1, 2]', terminal.text())
        begin = len(terminal.text())
        terminal.send('\r')
        place = terminal.expect('Enter runs] xs', begin)
        terminal.settle()
        # Other lines are run as ever, and the tour goes on where it was.
        terminal.send('xs.size()\r')
        place = terminal.expect('\n3\n', place)
        terminal.settle()
        terminal.send('\r')
        terminal.expect('\n[3, 1, 2]\n', place)
        terminal.settle()
        terminal.send(':quit\r')
        self.assertEqual(terminal.close(), 0)

    def test_a_tour_can_begin_anew(self):
        terminal = self.start('--tour', columns=120)
        for _ in range(2):
            begin = len(terminal.text())
            terminal.send(':tour\r')
            place = terminal.expect('Enter runs] xs = [3, 1, 2]', begin)
            terminal.expect('tour> ', place)
            terminal.settle()

    def test_the_whole_tour_by_enter_alone(self):
        terminal = self.start('--tour', columns=120)
        end = time.monotonic() + 4 * SECONDS
        while 'That was the tour.' not in terminal.text() and time.monotonic() < end:
            begin = len(terminal.text())
            terminal.send('\r')
            # The next step, or the console's own prompt behind the last one.
            while not re.search(r'(tour|vorn)> $', terminal.text()[begin:]) and time.monotonic() < end:
                terminal.read(0.1)
        self.assertIn('"3, 10, 20, 30, 7"', terminal.text())
        terminal.settle()
        self.say(terminal, 'xs.size()\r', '\n5\n')

    def test_progress_of_a_long_script_that_ctrl_c_ends(self):
        script = self.directory / 'long.vorn'
        script.write_text('x = texts(20000)\n' * 100000, encoding='utf-8')
        terminal = Terminal(self.directory, str(script))
        terminal.expect(' of 100000')
        self.assertRegex(terminal.text(), r'long\.vorn: \d+ of 100000')
        terminal.send('\x03')
        self.assertEqual(terminal.close(), 1)
        self.assertIn('long.vorn: interrupted', terminal.text())

    def test_without_a_terminal_there_is_no_prompt(self):
        done = subprocess.run([CONSOLE, f'--heap={HEAP}'], input='1\n', capture_output=True, text=True, check=False,
                              timeout=60)
        self.assertEqual((done.stdout, done.stderr), ('1\n', ''))


if __name__ == '__main__':
    unittest.main()
