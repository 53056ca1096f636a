"""Interned type names and classes."""

import gdb

from .guards import text_or_reason
from .memory import Unknown, typed, view_text


def type_name(name):
    """The text of a RuntimeTypeName; empty for the empty name."""
    address = int(name['name'])
    return view_text(typed(address, 'vorn::collections::InternedTypeName')['text']) if address else ''


def class_name(address):
    """The full name of a class descriptor."""
    if not address:
        raise Unknown('no class')
    try:
        return view_text(typed(address, 'RuntimeClass')['fullName'])
    except gdb.MemoryError:
        raise Unknown(f'no class: {address:#x} cannot be read') from None


class TypeNamePrinter:
    """A RuntimeTypeName: the name it points at."""

    def __init__(self, value):
        self._value = value

    @text_or_reason
    def to_string(self):
        return f'"{type_name(self._value)}"'


class InternedNamePrinter:
    """The interned name itself."""

    def __init__(self, value):
        self._value = value

    @text_or_reason
    def to_string(self):
        return f'"{view_text(self._value["text"])}"'


class ClassPrinter:
    """A class descriptor."""

    def __init__(self, value):
        self._value = value

    @text_or_reason
    def to_string(self):
        return f'class {view_text(self._value["fullName"])}'
