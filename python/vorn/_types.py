"""The types of elements: names, ranges and formats."""

import array


class Primitive:
    """A type whose values lists keep unboxed. `format` is that of the modules struct and array."""

    __slots__ = ('name', 'format', 'width', 'least', 'greatest', 'encoded')

    def __init__(self, name, item_format, width, least=None, greatest=None):
        self.name, self.format, self.width, self.least, self.greatest = name, item_format, width, least, greatest
        self.encoded = name.encode()

    @property
    def is_integer(self):
        return self.least is not None

    @property
    def is_floating(self):
        return self.format in 'fd'

    def holds(self, value):
        """Whether a list of the type takes the integer: of ULong only what is no negative number as a Long."""
        return self.least <= value <= min(self.greatest, 2**63 - 1)


def _integer(name, item_format, bits, signed):
    low = -2**(bits - 1) if signed else 0
    return Primitive(name, item_format, bits // 8, low, low + 2**bits - 1)


PRIMITIVES = {each.name: each for each in (
    _integer('SByte', 'b', 8, True), _integer('Byte', 'B', 8, False),
    _integer('Short', 'h', 16, True), _integer('UShort', 'H', 16, False),
    _integer('Int', 'i', 32, True), _integer('UInt', 'I', 32, False),
    _integer('Long', 'q', 64, True), _integer('ULong', 'Q', 64, False),
    Primitive('Float', 'f', 4), Primitive('Double', 'd', 8), Primitive('Boolean', '?', 1), Primitive('Char', 'I', 4),
    Primitive('CodeUnit', 'H', 2))}

INT, LONG, DOUBLE = (PRIMITIVES[_name] for _name in ('Int', 'Long', 'Double'))

if any(array.array(each.format.replace('?', 'B')).itemsize != each.width for each in PRIMITIVES.values()):
    raise ImportError('the integers of this platform have other widths than those of the language')


class Char(str):
    """One character. It is a str, but the language tells it from a String: as a key of a map the two differ."""

    __slots__ = ()

    def __new__(cls, character):
        if isinstance(character, int):
            character = chr(character)
        if len(character) != 1 or '\ud800' <= character <= '\udfff':
            raise ValueError(f'not one Unicode scalar value: {character!r}')
        return super().__new__(cls, character)

    def __repr__(self):
        return f'vorn.Char({str(self)!r})'

    def __str__(self):
        return str.__str__(self)

    def __reduce__(self):
        return (Char, (str.__str__(self),))


class CodeUnit(int):
    """A unit of UTF-16. It is an int, but no number to the language: as a key of a map it differs from both."""

    __slots__ = ()

    def __new__(cls, unit):
        unit = super().__new__(cls, unit)
        if not 0 <= unit <= 0xFFFF:
            raise ValueError(f'not a code unit: {int(unit)}')
        return unit

    def __repr__(self):
        return f'vorn.CodeUnit({int(self)})'

    def __reduce__(self):
        return (CodeUnit, (int(self),))


_PYTHON_TYPES = {int: 'Long', float: 'Double', bool: 'Boolean', str: 'String', object: 'Object', Char: 'Char',
                 CodeUnit: 'CodeUnit'}
_SPELLINGS = {'Long': 'int', 'Double': 'float', 'Boolean': 'bool', 'String': 'str', 'Object': 'object'}


def type_argument(argument):
    """The language's name of a type argument: a type of Python's, a collection class of this package, or a name."""
    name = _PYTHON_TYPES.get(argument) if isinstance(argument, type) else argument
    if name is None:
        name = getattr(argument, 'language_name', None)
    if not isinstance(name, str):
        raise TypeError(f'not a type of elements: {argument!r}')
    name = name.strip()
    name = name[len('vorn.'):] if name.startswith('vorn.') and '.' not in name[len('vorn.'):] else name
    if not name or '\0' in name or name.count('<') != name.count('>'):
        raise ValueError(f'not a name of a type: {argument!r}')
    return name


def spelling(name):
    """How a type argument is written in Python."""
    return _SPELLINGS.get(name) or repr(name)
