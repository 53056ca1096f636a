"""Shows the records of vorn.collections and its runtime in gdb as what they hold.

`register` makes the printers known to gdb, for one of the program's files or for all of them, and defines the commands:

    vorn HANDLE         what a handle stands for
    $vorn(HANDLE)       the same in an expression
    vorn-roots          what is kept alive from outside the heap
    vorn-heap           the heap, its threads and its blocks
    vorn-types FILE     where the types are, if they are not found
"""

import gdb
import gdb.printing
import gdb.types

from . import commands, memory
from .handles import HandlePrinter, holds_handle
from .keys import KeyPrinter
from .lists import ArrayPrinter, LinkedPrinter, ListPrinter
from .names import ClassPrinter, InternedNamePrinter, TypeNamePrinter
from .objects import ObjectPrinter
from .tables import HashTablePrinter, MapPrinter, OrderedTablePrinter, SetPrinter

_PRINTERS = {
    'ListData': ListPrinter,
    'ArrayData': ArrayPrinter,
    'MapData': MapPrinter,
    'SetData': SetPrinter,
    'LinkedHandles': LinkedPrinter,
    'NativeCollectionKey': KeyPrinter,
    'RuntimeTypeName': TypeNamePrinter,
    'RuntimeClass': ClassPrinter,
    'vorn::collections::InternedTypeName': InternedNamePrinter,
    'vorn::collections::HashTable<void*>': HashTablePrinter,
    'vorn::collections::HashTable<NativeMapEntry>': HashTablePrinter,
    'vorn::collections::OrderedTable': OrderedTablePrinter,
    'ObjectRecord': ObjectPrinter,
    'RegisteredObject': ObjectPrinter,
    'StringObject': ObjectPrinter,
    'SizedObject': ObjectPrinter,
    'vorn::runtime::TupleObject': ObjectPrinter,
}


class _Printers(gdb.printing.PrettyPrinter):
    """Chooses the printer of a value; `info pretty-printer` lists what it knows."""

    def __init__(self):
        super().__init__('vorn', [gdb.printing.SubPrettyPrinter(name) for name in [*_PRINTERS, 'vorn::Handle']])

    def __call__(self, value):
        basic = gdb.types.get_basic_type(value.type)
        printer = _PRINTERS.get((basic.tag or '').replace(' *', '*'))
        name = basic.tag
        if printer is None and holds_handle(basic):
            printer, name = HandlePrinter, 'vorn::Handle'
        if printer is None or not self._is_enabled(name):
            return None
        if value.type.strip_typedefs().code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
            value = value.referenced_value()
        return printer(value)

    def _is_enabled(self, name):
        return all(printer.enabled for printer in self.subprinters if printer.name == name)


_defined = False


def register(objfile=None):
    """Registers the printers for an object file, or for every program; defines the commands once."""
    global _defined
    gdb.printing.register_pretty_printer(objfile, _Printers(), replace=True)
    if not _defined:
        commands.define()
        gdb.events.new_objfile.connect(_new_objfile)
        _defined = True
    memory.load_types()


def _new_objfile(event):
    # The libraries come after the program, and the types with them.
    name = event.new_objfile.filename or ''
    if not name.endswith(memory.TYPES_FILE):
        memory.load_types()
