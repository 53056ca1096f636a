"""The runtime's threads, as its list of them has them."""

import gdb

from .memory import Unknown, typed, word, word_at


def symbol_address(linkage_name, meaning):
    """The address of a variable of the runtime that only its symbol table names."""
    try:
        return int(gdb.parse_and_eval(f"(unsigned long)&'{linkage_name}'"))
    except gdb.error:
        raise Unknown(f'{meaning} cannot be found: there is no vorn runtime in the program, or its symbols are '
                      'stripped') from None


def attached_threads():
    """The state of each attached thread, and how many states of ended ones there are."""
    at = word_at(symbol_address('_ZN4vorn7runtime12_GLOBAL__N_110firstStateE', "the runtime's list of threads"))
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
