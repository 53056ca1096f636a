"""Runs gdb on the subject and gives what each command shows."""

import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PRINTERS = ROOT / 'tools/gdb/vorn_printers.py'
GDB = os.environ['VORN_GDB']
SUBJECT = os.environ['VORN_SUBJECT']
HEADER = re.compile(r'0x[0-9a-f]+')
MARK = '=====\n'


class Session:
    """One run of gdb for the commands of several tests, since its start takes most of the time. Each test is given what its
    own commands show; what one sets, it has to set back."""

    def __init__(self):
        self._commands = []
        self._shown = []

    def add(self, *commands):
        """A place in the session: give it to shown()."""
        first = len(self._commands)
        self._commands += commands
        return slice(first, len(self._commands))

    def shown(self, place):
        self._shown = self._shown or run(self._commands)
        return self._shown[place]


def skip_without_gdb():
    if not os.path.isfile(GDB):
        print('skipped: gdb is not installed')
        sys.exit(77)


def run(commands, start=(), subject=SUBJECT, heap='heap=plain'):
    """What each of the commands shows once the subject has everything in place; addresses as ADDRESS."""
    call = [GDB, '-batch', '-nx', '-iex', 'set debuginfod enabled off', '-iex', 'set auto-load off',
            '-iex', 'set width 0']
    for command in (*(start or [f'source {PRINTERS}']), 'break stopHere', f'run {heap}', 'frame function main'):
        call += ['-ex', command]
    for command in commands:
        call += ['-ex', f'echo {MARK[:-1]}\\n', '-ex', command]
    done = subprocess.run([*call, subject], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=150,
                          check=False)
    _, *shown = done.stdout.split(MARK)
    if len(shown) != len(commands) or 'Traceback' in done.stdout or 'Python Exception' in done.stdout:
        raise AssertionError(done.stdout)
    return [HEADER.sub('ADDRESS', text.strip()) for text in shown]
