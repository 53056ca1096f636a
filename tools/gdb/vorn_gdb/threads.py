"""The runtime's threads, as its list of them has them."""

import gdb

from .memory import Unknown, typed, word, word_at


def anchor(name):
    """What a variable points at that the runtime exports for debuggers, in libraries without a symbol table too."""
    try:
        return word_at(int(gdb.parse_and_eval(f"(unsigned long)&'{name}'")))
    except gdb.error:
        raise Unknown('there is no vorn runtime in the program') from None


def attached_threads():
    """The state of each attached thread, and how many states of ended ones there are."""
    at = word_at(anchor('vorn_debugger_threads'))
    attached, ended = [], []
    while at != 0:
        state = typed(at, 'vorn::runtime::ThreadState')
        (attached if word(state['inUse']) & 0xFF else ended).append(state)
        at = int(state['next'])
    return attached[::-1], ended


def thread_title(state):
    """A runtime thread by the number that gdb gives it."""
    handle = int(state['thread'])
    for thread in gdb.selected_inferior().threads():
        try:
            if int.from_bytes(thread.handle(), 'little') == handle:
                return thread.num, f'thread {thread.num}'
        except gdb.error:
            continue
    return None, f'thread {handle:#x}'
