"""What elements, keys and orders are: bench/report/definitions.h for Python."""

MASK = 0xFFFFFFFF
PUT_ORDER = 1
GET_ORDER = 2
ABSENT_NUMBER = -1
ABSENT_TEXT = "absent"


def number_at(index):
    return index * 0x9E3779B1 & 0xFFFFFF


def text_at(index):
    return f"e{number_at(index)}"


def element_at(kind, index):
    number = number_at(index)
    if kind == "Long":
        return number + (1 << 33)
    if kind == "Double":
        return number + 0.5
    if kind == "Byte":
        return number & 127
    if kind == "String":
        return f"e{number}"
    return number


def list_of(kind, n):
    elements = [element_at(kind, index) for index in range(n)]
    return bytearray(elements) if kind == "Byte" else elements


class Item:
    """An object of a program."""

    __slots__ = ("value",)

    def __init__(self, value):
        self.value = value


def char_at(index):
    return "\xe9" if index % 16 == 15 else chr(ord("a") + index % 26)


class Random:
    def __init__(self, seed):
        self.state = (seed * 2654435761 & MASK) | 1

    def next(self):
        state = self.state
        state ^= state << 13 & MASK
        state ^= state >> 17
        state ^= state << 5 & MASK
        self.state = state
        return state


def shuffled_order(n, seed):
    order = list(range(n))
    draw = Random(seed).next
    for i in range(n, 1, -1):
        other = draw() % i
        order[i - 1], order[other] = order[other], order[i - 1]
    return order


def key_of(number):
    return number * 0x9E3779B1 & 0x3FFFFFFF


def keys_in_order(kind, n, seed, present=True):
    """New keys in an order, so that a text is equal to one in a map and not the same object."""
    if kind == "String":
        letter = "k" if present else "n"
        return [f"{letter}{key_of(number)}" for number in shuffled_order(n, seed)]
    if present:
        return [key_of(number) for number in shuffled_order(n, seed)]
    return [-1 - key_of(number) for number in shuffled_order(n, seed)]


def signed(draw):
    return draw - (1 << 32) if draw >> 31 else draw


DRAWN = {
    "Int": signed,
    "Long": lambda draw: signed(draw) << 20,
    "Double": lambda draw: signed(draw) * 0.5,
    "Byte": lambda draw: draw & 127,
    "String": lambda draw: f"k{draw & 0x3FFFFFFF}",
}


def sort_batch(n):
    return max(1, 100_000 // n)


def adversarial(n):
    half = n // 4 * 2
    for index in range(n):
        if index >= 2 * half:
            yield index
        elif index >= half:
            yield 2 * (index - half) + 2
        else:
            yield index + 1 if index % 2 == 0 else half + index


def sort_inputs(kind, pattern, n):
    """The inputs of a repetition, each a list."""
    random = Random(n)
    draw = random.next
    inputs = []
    for _ in range(sort_batch(n)):
        if pattern == "random":
            drawn = DRAWN[kind]
            elements = [drawn(draw()) for _ in range(n)]
        elif pattern == "equal":
            elements = [draw() % 16 for _ in range(n)]
        elif pattern == "reversed":
            elements = list(range(n, 0, -1))
        elif pattern == "adversarial":
            elements = list(adversarial(n))
        else:
            elements = list(range(n))
        if pattern == "nearly":
            for _ in range(n // 100 + 1):
                one, other = draw() % n, draw() % n
                elements[one], elements[other] = elements[other], elements[one]
        inputs.append(elements)
    return inputs


def digest(values):
    result = 0
    for value in values:
        result = (result * 31 + value) & MASK
    return result


def digest_of(kind, elements):
    if kind == "Double":
        return digest(int(element * 2) for element in elements)
    if kind == "String":
        return digest(byte for element in elements for byte in element.encode())
    if kind == "Object":
        return digest(item.value for item in elements)
    return digest(elements)


def digest_of_text(text):
    return digest(text.encode())


def digest_of_digits(text):
    return digest(byte for byte in text.encode() if 48 <= byte <= 57)


def digest_of_number(number):
    return int(number * 2 if isinstance(number, float) else number) & MASK


def digest_of_map(entries):
    return (len(entries) * 31 + sum(entries.values())) & MASK


def digest_of_set(members):
    """Of numbers, or of texts by their lengths."""
    return (len(members) * 31 + sum(len(each) if isinstance(each, str) else each for each in members)) & MASK
