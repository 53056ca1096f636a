"""Texts of the program as they are shown: quoted, escaped, and cut where `set print elements` says."""

import codecs

import gdb

from .memory import Unknown, read

_PAGE = 4096
_ESCAPES = {'"': '\\"', '\\': '\\\\', '\n': '\\n', '\r': '\\r', '\t': '\\t', '\0': '\\0'}


def limit():
    """How many characters or elements of one thing are shown."""
    wanted = gdb.parameter('print elements')
    return wanted if wanted else 1 << 20


def quoted(data, is_whole):
    """Bytes of UTF-8 as a text in quotation marks, with dots behind one that is cut."""
    shown = data.decode(errors='replace')
    cut = not is_whole or len(shown) > limit()
    escaped = ''.join(_ESCAPES.get(c) or (c if c.isprintable() else f'\\u{{{ord(c):X}}}') for c in shown[:limit()])
    return f'"{escaped}"' + ('...' if cut else '')


def text_of_length(address, length):
    """A text whose length is known."""
    wanted = min(length, 4 * limit())
    return quoted(read(address, wanted), wanted == length)


def _of_handle(address, data, is_whole):
    """The bytes of a bare text; they have to be UTF-8, as what passes for a handle may be anything."""
    try:
        codecs.getincrementaldecoder('utf-8')().decode(data, final=is_whole)
    except UnicodeDecodeError:
        raise Unknown(f'no handle: at {address:#x} is neither an object nor a text') from None
    return quoted(data, is_whole)


def bare_text(address):
    """A text that ends at a NUL."""
    data = b''
    while len(data) <= 4 * limit():
        at = address + len(data)
        try:
            data += read(at, _PAGE - at % _PAGE)
        except Unknown:
            if not data:
                raise Unknown(f'no handle: {address:#x} cannot be read') from None
            raise Unknown(f'a text at {address:#x} that does not end') from None
        if b'\0' in data:
            return _of_handle(address, data[:data.index(b'\0')], True)
    return _of_handle(address, data[:4 * limit()], False)


def character(number):
    """A code point or code unit in quotation marks; the number alone when it is no character."""
    if 0 <= number < 0x110000 and not 0xD800 <= number < 0xE000:
        c = chr(number)
        if c == "'":
            return "'\\''"
        if c in _ESCAPES and c != '"':
            return f"'{_ESCAPES[c]}'"
        return f"'{c}'" if c.isprintable() else f"'\\u{{{number:X}}}'"
    return f'{number:#x}'
