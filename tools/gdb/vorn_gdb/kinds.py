"""The kinds of unboxed elements, as the types file has them from the library's table: a kind that is added there is
known here."""

import gdb

from .memory import Unknown, enumeration, type_named
from .texts import character


class Kind:
    """A row of the table."""

    def __init__(self, value, name, element_type, is_boolean):
        self.value = value
        self.name = name
        self.element_type = element_type
        self.width = element_type.sizeof
        self._is_boolean = is_boolean

    def decode(self, data, type_name):
        """One element, kept under the name of a type."""
        if self._is_boolean:
            return 'true' if any(data) else 'false'
        if self.element_type.code == gdb.TYPE_CODE_FLT:
            return gdb.Value(data, self.element_type)
        number = int.from_bytes(data, 'little', signed=self.element_type.is_signed)
        return character(number) if type_name in _character_types() else number


def _character_types():
    return enumeration('vorn::debugger::CharacterKinds')


def kinds():
    """The table: value -> Kind."""
    families = enumeration('vorn::debugger::KindFamilies')
    boolean = enumeration('vorn::collections::KindFamily')['Boolean']
    elements = {field.name: field.type.strip_typedefs() for field in type_named('vorn::debugger::KindElements').fields()}
    return {value: Kind(value, name, elements[name], families[name] == boolean)
            for name, value in enumeration('vorn::debugger::KindNumbers').items()}


def kind_of(value):
    """The kind of a number; none for that of handles."""
    value = int(value)
    if value == 0:
        return None
    kind = kinds().get(value)
    if kind is None:
        raise Unknown(f'corrupt: there is no kind {value}')
    return kind
