"""The commands and the convenience function of the debugger's user."""

import gdb

from .guards import with_plain_errors
from .handles import address_of, element, resolved
from .heap import HeapCommand
from .memory import TYPES_FILE, load_types
from .roots import RootsCommand


class _Resolve(gdb.Function):
    """$vorn(HANDLE): what a handle stands for: an object's record, the characters of a text, or the null pointer.

HANDLE is a pointer, an address or a vorn::Handle."""

    def __init__(self):
        super().__init__('vorn')

    @with_plain_errors
    def invoke(self, handle):
        return resolved(handle)


class _Show(gdb.Command):
    """vorn HANDLE: shows what a handle stands for.

HANDLE is an expression: a pointer, an address or a vorn::Handle. Collections show their storage, size, capacity and
lock, then their elements, as many and as deep as `set print elements` and `set print max-depth` allow. Addresses are
printed, so that `vorn ADDRESS` goes further inside.

In expressions, $vorn(HANDLE) is the same: print $vorn(list)->nativeRecord.
See also vorn-roots, vorn-heap and vorn-types."""

    def __init__(self):
        super().__init__('vorn', gdb.COMMAND_DATA, gdb.COMPLETE_EXPRESSION)

    @with_plain_errors
    def invoke(self, argument, from_tty):
        if not argument.strip():
            raise gdb.GdbError('vorn needs a handle; see help vorn')
        shown = element(address_of(gdb.parse_and_eval(argument)))
        print(shown if isinstance(shown, str) else shown.format_string())


class _Types(gdb.Command):
    __doc__ = f"""vorn-types [FILE]: reads the types of the records from FILE.

They are in {TYPES_FILE}, which the build puts beside the libraries and the package beside the printers. There it is
found without this command. FILE has to come from the same build as the libraries."""

    def __init__(self):
        super().__init__('vorn-types', gdb.COMMAND_FILES, gdb.COMPLETE_FILENAME)

    @with_plain_errors
    def invoke(self, argument, from_tty):
        arguments = gdb.string_to_argv(argument)
        if len(arguments) > 1:
            raise gdb.GdbError('vorn-types takes one file')
        if not load_types(*arguments):
            raise gdb.GdbError(f'{arguments[0]} has not the types' if arguments else
                               f'no {TYPES_FILE} beside the printers, the program or its libraries')


def define():
    for command in (_Resolve, _Show, _Types, RootsCommand, HeapCommand):
        command()
