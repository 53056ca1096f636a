"""The command that tells about the heap."""

import gdb

from .guards import with_plain_errors
from .memory import Unknown, enumerators, read, word, word_at
from .objects import summary
from .texts import limit
from .threads import anchor, attached_threads, thread_title

_HEAPS = {'CollectedHeap': 'collected', 'PlainHeap': 'plain', 'StressHeap': 'stress'}
_STRESS = 'vorn::runtime::(anonymous namespace)::StressHeap'


def _started_heap():
    """The heap's address and name; none before the runtime starts."""
    address = word_at(anchor('vorn_debugger_heap'))
    if address == 0:
        return 0, None
    # The class's name as the C++ runtime keeps it: the word before the virtual functions leads to it.
    described = word_at(word_at(address) - 8)
    class_name = read(word_at(described + 8), 64).split(b'\0')[0].decode(errors='replace')
    name = next((name for ending, name in _HEAPS.items() if ending in class_name), None)
    if name is None:
        raise Unknown(f'corrupt: no heap at {address:#x}')
    return address, name


def _plural(count, noun):
    return f'{count} {noun}{"" if count == 1 else "s"}'


def _free_blocks(state):
    """How many free small blocks a thread holds; unknown when their lists are being changed."""
    count, lists = 0, state['smallBlocks']['lists_']
    first, length = int(lists.address), lists.type.sizeof // 8
    for index in range(length):
        block = word_at(first + 8 * index)
        while block != 0:
            count += 1
            block = word_at(block)
    return count


def _asked(function, result='unsigned long'):
    """What a function of the collector's library answers; it only reads a variable."""
    return int(gdb.parse_and_eval(f'(({result} (*)(void)) {function})()'))


def _collected_usage():
    try:
        size, free = _asked('GC_get_heap_size'), _asked('GC_get_free_bytes')
        return f'in use: {size - free} bytes of {size}, {_plural(_asked("GC_get_gc_no"), "collection")}'
    except gdb.error:
        return 'in use: known in a running process only'


class _StressBlocks:
    """The blocks of the stress heap."""

    def __init__(self, heap):
        try:
            stress = gdb.lookup_type(_STRESS)
        except gdb.error:
            raise Unknown('the blocks are known in debug builds only') from None
        self._heap = gdb.Value(heap).cast(stress.pointer()).dereference()
        self._blocks = self._heap['blocks_']

    def usage(self):
        live, size = int(self._blocks['liveCount_']), int(self._blocks['bytesLive_'])
        collections = int(self._heap['collections_'])
        return f'in use: {_plural(live, "block")}, {size} bytes, {_plural(collections, "collection")}'

    def __iter__(self):
        for index in range(int(self._blocks['liveCount_'])):
            yield self._blocks['blocks_'][int(self._blocks['liveSlots_'][index])]


def _described(block):
    kind = enumerators('vorn::runtime::BlockKind').get(int(block['kind']), 'unknown').lower()
    start = int(block['start'])
    held = ''
    try:
        text = summary(start)
        held = f', {text}' if text.startswith('vorn.') or kind == 'atomic' and text.startswith('"') else ''
    except Unknown:
        pass
    return f'{start:#x}, {int(block["bytes"])} bytes, {kind}{held}'


class HeapCommand(gdb.Command):
    """vorn-heap [blocks | ADDRESS]: the heap of the runtime.

Without an argument: which heap it is, what is in use, and what each thread has allocated. What is in use on the
collected heap its library has to be asked, which takes a running process; three functions that only read variables
are called.

`vorn-heap blocks` lists the live blocks, and `vorn-heap ADDRESS` finds the block that an address lies in: on the stress
heap of a debug build, which alone keeps a table of them. `set print elements` bounds the list."""

    def __init__(self):
        super().__init__('vorn-heap', gdb.COMMAND_DATA, gdb.COMPLETE_EXPRESSION)

    @with_plain_errors
    def invoke(self, argument, from_tty):
        address, name = _started_heap()
        if name is None:
            print('heap: not started')
        elif not argument.strip():
            self._print_usage(address, name)
        elif argument.strip() == 'blocks':
            self._print_blocks(self._blocks(address, name))
        else:
            self._print_block_of(self._blocks(address, name), int(gdb.parse_and_eval(argument)))

    @staticmethod
    def _print_usage(address, name):
        attached, ended = attached_threads()
        blocks = sum(word(state['allocations']) for state in attached + ended)
        size = sum(word(state['bytesAllocated']) for state in attached + ended)
        print(f'heap: {name}')
        if name == 'plain':
            print(f'in use: {_plural(blocks, "block")}, {size} bytes, since nothing is freed')
        elif name == 'collected':
            print(_collected_usage())
        else:
            try:
                print(_StressBlocks(address).usage())
            except Unknown as failure:
                print(f'in use: {failure}')
        print(f'allocated: {_plural(blocks, "block")}, {size} bytes')
        for state in attached:
            own, own_size = word(state['allocations']), word(state['bytesAllocated'])
            free = _free_blocks(state)
            at_hand = f', {_plural(free, "free small block")} at hand' if free else ''
            print(f'  {thread_title(state)[1]}: {_plural(own, "block")}, {own_size} bytes{at_hand}')
        if ended:
            print(f'  ended threads left {_plural(len(ended), "state")}')

    @staticmethod
    def _blocks(address, name):
        if name != 'stress':
            raise Unknown(f'the {name} heap keeps no table of its blocks')
        return _StressBlocks(address)

    @staticmethod
    def _print_blocks(blocks):
        print(blocks.usage())
        for index, block in enumerate(blocks):
            if index == limit():
                print('  ...')
                return
            print(f'  {_described(block)}')

    @staticmethod
    def _print_block_of(blocks, address):
        for block in blocks:
            if int(block['start']) <= address < int(block['start']) + int(block['bytes']):
                print(_described(block))
                return
        print(f'{address:#x} lies in no live block')
