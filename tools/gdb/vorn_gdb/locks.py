"""The lock of a record."""

from .memory import typed


def lock_state(record):
    """What is said of a synchronised record; nothing of another."""
    flag = int(record['synchronized'])
    if flag == 0:
        return ''
    address = int(record['mutex'])
    if address == 0:
        return ', synchronised <without a mutex>'
    mutex = typed(address, 'pthread_mutex_t')['__data']
    owner, depth = int(mutex['__owner']), int(mutex['__count'])
    if int(mutex['__lock']) == 0:
        return ', synchronised, unlocked'
    times = f' {depth} times' if depth > 1 else ''
    return f', synchronised, locked{times} by LWP {owner}'
