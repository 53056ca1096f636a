"""Reading the memory of the program, and the types to read it by.

The libraries carry no type information; that is in a file of its own, vorn_types.debug, made by the same build. It is
looked for beside this package and beside the libraries and the program, and given to gdb once."""

import os

import gdb

TYPES_FILE = 'vorn_types.debug'
_MARK = 'vorn::debugger::Types'


class Unknown(Exception):
    """What cannot be shown, with the reason: records that are corrupt, memory that cannot be read, missing types."""


def type_named(name):
    try:
        return gdb.lookup_type(name)
    except gdb.error:
        raise Unknown(f'{TYPES_FILE} of this build is not loaded: no type {name}, see help vorn-types') from None


def read(address, length):
    """Bytes of the program."""
    if address < 0 or address + length > 1 << 64:
        raise Unknown(f'{length} bytes at {address:#x} cannot be read')
    try:
        return gdb.selected_inferior().read_memory(address, length).tobytes()
    except (gdb.MemoryError, OverflowError):
        raise Unknown(f'{length} bytes at {address:#x} cannot be read') from None


def word_at(address):
    return int.from_bytes(read(address, 8), 'little')


def typed(address, type_name):
    """The value of a type at an address."""
    return gdb.Value(address).cast(type_named(type_name).pointer()).dereference()


def word(value):
    """The first word of a value, whatever its type: what an atomic holds, without knowing how."""
    return word_at(int(value.address))


def view_text(view):
    """The text of a std::string_view."""
    length = int(view['_M_len'])
    if length > 4096:
        raise Unknown(f'a name of {length} bytes')
    return read(int(view['_M_str']), length).decode(errors='replace')


def enumeration(type_name):
    """An enumeration: name without its scope -> value."""
    return {field.name.split('::')[-1]: field.enumval for field in type_named(type_name).fields()}


def enumerators(type_name):
    """An enumeration in which no value has two names: value -> name."""
    return {value: name for name, value in enumeration(type_name).items()}


def constant(name):
    """A constant of the tables."""
    return enumeration('vorn::debugger::Constants')[name]


def have_types():
    try:
        gdb.lookup_type(_MARK)
        return True
    except gdb.error:
        return False


def _places():
    """Where a types file may be: beside the package, beside each file of the program, in the lib/ next to its bin/."""
    yield os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    for objfile in gdb.objfiles():
        if objfile.filename and objfile.is_valid():
            directory = os.path.dirname(os.path.realpath(objfile.filename))
            yield directory
            yield os.path.join(directory, 'vorn')
            yield os.path.join(os.path.dirname(directory), 'lib')


def load_types(path=None):
    """Gives gdb a types file; without a path the first one that is found, unless it has one. Whether it has one."""
    if path is None:
        if have_types():
            return True
        found = (os.path.join(place, TYPES_FILE) for place in _places())
        path = next((candidate for candidate in found if os.path.isfile(candidate)), None)
        if path is None:
            return False
    quoted = path.replace('\\', '\\\\').replace('"', '\\"')
    gdb.execute(f'add-symbol-file "{quoted}" -o 0', from_tty=False, to_string=True)
    return have_types()
