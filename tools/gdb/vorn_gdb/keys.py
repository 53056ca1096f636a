"""Keys of maps and sets."""

import struct

from .guards import text_or_reason
from .memory import constant, enumerators
from .texts import character, quoted, text_of_length


def _signed(word):
    return word - (1 << 64) if word >> 63 else word


def _short_text(key, words):
    data = b''.join(word.to_bytes(8, 'little') for word in words)
    length = int(key['shortLength'])
    if length > len(data):
        return f'<corrupt: a short text of {length} bytes>'
    return quoted(data[:length], True)


def _object_text(address):
    """An object behind a key in one line."""
    from .objects import summary  # objects show maps, which show keys
    return summary(address)


_FORMS = {
    'Null': lambda key, words: 'null',
    'Integer': lambda key, words: f'{_signed(words[0])}',
    'Unsigned': lambda key, words: f'{words[0]}',
    'Floating': lambda key, words: f'{struct.unpack("<d", words[0].to_bytes(8, "little"))[0]!r}',
    'Boolean': lambda key, words: 'true' if words[0] else 'false',
    'Char': lambda key, words: f'Char {character(words[0])}',
    'CodeUnit': lambda key, words: f'CodeUnit {character(words[0])}',
    'ShortText': _short_text,
    'LongText': lambda key, words: text_of_length(words[0], words[1]),
    'Identity': lambda key, words: f'identity of {_object_text(words[0])}',
    'Sequence': lambda key, words: f'contents of {_object_text(words[0])}',
    'Instance': lambda key, words: f'hooks of {_object_text(words[0])}',
}


class KeyPrinter:
    """A NativeCollectionKey by its form."""

    def __init__(self, value):
        self._value = value

    @text_or_reason
    def to_string(self):
        tag = int(self._value['tag'])
        if tag == constant('vacantTag'):
            return '<vacant>'
        form = _FORMS.get(enumerators('NativeCollectionKey::Tag').get(tag))
        if form is None:
            return f'<corrupt: there is no key form {tag}>'
        words = [int(self._value['words'][i]) for i in range(2)]
        return form(self._value, words)
