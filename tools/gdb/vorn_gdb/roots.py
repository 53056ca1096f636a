"""The command that lists roots: the slots and ranges from which the collector starts."""

import gdb

from .guards import reason, with_plain_errors
from .handles import is_object
from .memory import Unknown, typed, word, word_at
from .objects import summary
from .texts import limit
from .threads import anchor, attached_threads, thread_title

_WORD = 8


def _held(address):
    """What a word of a root range holds. A range may have words in it that are no handles."""
    try:
        if address != 0 and not is_object(address):
            text = summary(address)
            return text if text.startswith('"') and '\ufffd' not in text and '\\u' not in text else f'{address:#x}'
        return summary(address)
    except Unknown:
        return f'{address:#x}'


def _symbol(address):
    """The name of a variable, where there is one."""
    shown = gdb.execute(f'info symbol {address}', to_string=True).strip()
    return '' if shown.startswith('No symbol') else f' {shown.split(" in section")[0]}'


def _print_words(start, count):
    for index in range(min(count, limit())):
        try:
            print(f'    {_held(word_at(start + index * _WORD))}')
        except Unknown as failure:
            print(f'    {reason(failure)}')
            return
    if count > limit():
        print(f'    ... {count - limit()} more')


def _print_thread(state, title):
    roots = state['roots']
    count, entries = word(roots['count_']), word(roots['entries_'])
    print(f'{title}: {count} root range{"s" if count != 1 else ""}')
    entry_size = 2 * _WORD  # start and length
    for index in range(count):
        start, length = (word_at(entries + index * entry_size + part * _WORD) for part in range(2))
        print(f'  {start:#x}, {length} bytes{_symbol(start)}')
        _print_words(start, length // _WORD)


def _print_recent(state, title):
    """The blocks that a thread was handed, newest first."""
    recent = state['recentBlocks']
    noted, blocks = word(recent['noted_']), recent['blocks_']
    length = blocks.type.sizeof // _WORD
    print(f'{title}: {noted} handed out')
    for age in range(1, min(noted, length, limit()) + 1):
        block = int(blocks[(noted - age) % length])
        print(f'  {_held(block)}' if block else '  nothing')


def _print_global():
    table = typed(anchor('vorn_debugger_roots'), 'vorn::runtime::GlobalRoots')
    slots = word(table['slots_'])
    used = [slot for slot in (word_at(slots + index * _WORD) for index in range(word(table['count_']))) if slot]
    print(f'global: {len(used)} slot{"s" if len(used) != 1 else ""}')
    for slot in used:
        print(f'  {slot:#x}{_symbol(slot)}')
        _print_words(slot, 1)


class RootsCommand(gdb.Command):
    """vorn-roots [THREAD | global | recent]: the roots, from which a collector starts, and what they hold.

Without an argument: the root ranges of every thread of the runtime, the oldest first, and the slots of the whole
process (vorn_root_add). With a number, those of the thread that gdb gives it; with `global`, the slots alone. With
`recent`, the last blocks that each thread was handed, newest first, as many as are noted: of these a heap keeps alive
what its option `recent` says, 16 on the collected heap and none on the stress heap. Stacks and registers, which the
collected heap searches too, are not listed."""

    def __init__(self):
        super().__init__('vorn-roots', gdb.COMMAND_DATA)

    @with_plain_errors
    def invoke(self, argument, from_tty):
        wanted = argument.strip()
        if wanted not in ('', 'global', 'recent') and not wanted.isdigit():
            raise gdb.GdbError('vorn-roots takes the number of a thread, global or recent')
        if wanted == 'recent':
            for state in attached_threads()[0]:
                _print_recent(state, thread_title(state)[1])
            return
        if wanted != 'global':
            self._print_threads(int(wanted) if wanted else None)
        if wanted in ('', 'global'):
            _print_global()

    @staticmethod
    def _print_threads(wanted):
        shown = 0
        for state in attached_threads()[0]:
            number, title = thread_title(state)
            if wanted in (None, number):
                _print_thread(state, title)
                shown += 1
        if wanted is not None and shown == 0:
            raise gdb.GdbError(f'thread {wanted} is not attached to the runtime')
