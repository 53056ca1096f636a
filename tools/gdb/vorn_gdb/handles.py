"""Handles: what a void* of the language stands for."""

import gdb

from .memory import Unknown, read, type_named, typed, word_at
from .texts import bare_text

_PATTERN = 0x00F8F8F8F8F8F8FF
_ADDRESS_BITS = 0x0007070707070700
_MAGIC_BYTES = 0x00FFFFFFFFFFFFFF
_ALIGNMENT = 16
_FACTOR = 0x9E3779B97F4A7C15


def is_object(address):
    """Whether an object lies at an address, as hasObjectMagic of object_layout.h decides it. Not for unreadable ones."""
    if address == 0 or address % _ALIGNMENT != 0 or read(address, 1) != b'\xff':
        return False
    expected = (address * _FACTOR & _ADDRESS_BITS) | _PATTERN
    return word_at(address) & _MAGIC_BYTES == expected


def object_at(address):
    type_named('vorn::debugger::Types')  # one message, whatever types the program may have itself
    return typed(address, 'ObjectRecord')


def element(handle):
    """A handle within a collection: an object, a text in quotation marks, null, or why it is none of these."""
    address = int(handle)
    if address == 0:
        return 'null'
    try:
        return object_at(address) if is_object(address) else bare_text(address)
    except Unknown as failure:
        return f'<{failure}>'


def address_of(value):
    """The address that a value names as a handle: a pointer, a number, or an object of the C++ API that holds one."""
    value_type = value.type.strip_typedefs()
    if value_type.code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
        return address_of(value.referenced_value())
    if value_type.code in (gdb.TYPE_CODE_PTR, gdb.TYPE_CODE_INT):
        return int(value) & 0xFFFFFFFFFFFFFFFF
    if value_type.code == gdb.TYPE_CODE_STRUCT:
        if value_type.tag == 'ObjectRecord' or any(f.is_base_class and f.name == 'ObjectRecord'
                                                   for f in value_type.fields()):
            return int(value.address)
        members = [field for field in value_type.fields() if hasattr(field, 'bitpos')]
        if members:
            return address_of(value[members[0]])
    raise Unknown(f'a value of type {value.type} is no handle')


class HandlePrinter:
    """A vorn::Handle, or a class that is nothing but one, as what it holds."""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        try:
            return element(address_of(self._value))
        except (Unknown, gdb.error) as failure:
            return f'<{failure}>'


def holds_handle(value_type):
    """Whether a class of the C++ API is a vorn::Handle, or has one for its only member or base."""
    value_type = value_type.strip_typedefs()
    if value_type.code != gdb.TYPE_CODE_STRUCT or not (value_type.tag or '').startswith('vorn::'):
        return False
    if value_type.tag == 'vorn::Handle':
        return True
    members = [field for field in value_type.fields() if hasattr(field, 'bitpos')]
    return len(members) == 1 and holds_handle(members[0].type)


def resolved(value):
    """A handle as a value for gdb's expressions: the object's record, the characters of a text, or the null pointer."""
    address = address_of(value)
    if address == 0:
        return gdb.Value(0).cast(type_named('void').pointer())
    if is_object(address):
        return object_at(address)
    characters = gdb.Value(address).cast(type_named('char').pointer())
    try:
        return characters.string(errors='replace')
    except gdb.MemoryError:
        raise Unknown(f'no handle: {address:#x} cannot be read') from None
