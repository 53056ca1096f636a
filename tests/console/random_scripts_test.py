"""Random scripts, run by the console and by an independent evaluation of the same expressions in Python.

The model knows lists (declared for Int, or for nothing), arrays of Int, maps, sorted maps and sets of integers and texts,
with the rules of the language for indexes, slices, declared types and displays. Each script states what the model says as expectations, so
that the console itself finds what differs. The seed is fixed; VORN_SCRIPT_SEED and VORN_SCRIPT_COUNT choose others.
"""

import os
import pathlib
import random
import tempfile
import unittest

from console_program import run

SEED = int(os.environ.get('VORN_SCRIPT_SEED', '20240601'))
COUNT = int(os.environ.get('VORN_SCRIPT_COUNT', '40'))
STATEMENTS = 60

BOUNDS = 'IndexException: Index out of bounds'


class Raised(Exception):
    """What the language raises."""


def spelled(value):
    """A value as it is typed, and, for these values, as it is displayed."""
    if value is None:
        return 'null'
    return f'"{value}"' if isinstance(value, str) else str(value)


def type_name(value):
    return {int: 'vorn.Int', str: 'vorn.String', type(None): 'null'}[type(value)]


class ModelList:
    """A list: its elements and the type that it is declared for, "Int" or none."""

    def __init__(self, elements, declared=None):
        self.elements = list(elements)
        self.declared = declared

    def display(self):
        return '[' + ', '.join(map(spelled, self.elements)) + ']'

    def accept(self, value):
        if self.declared == 'Int' and not isinstance(value, int):
            raise Raised(f'TypeError: ArrayList<Int> cannot accept {type_name(value)}')

    def checked(self, index):
        at = index + len(self.elements) if index < 0 else index
        if not 0 <= at < len(self.elements):
            raise Raised(BOUNDS)
        return at

    # Each of the following is a native; the result is what the console shows, None for nothing.

    def add(self, value):
        self.accept(value)
        self.elements.append(value)

    def add_at(self, index, value):
        if not 0 <= index <= len(self.elements):
            raise Raised(BOUNDS)
        self.accept(value)
        self.elements.insert(index, value)

    def add_all(self, values):
        for value in values:
            self.accept(value)
        self.elements.extend(values)

    def remove_at(self, index):
        del self.elements[self.checked(index)]

    def remove(self, value):
        if value not in self.elements:
            return 'false'
        self.elements.remove(value)
        return 'true'

    def read(self, index):
        return spelled(self.elements[self.checked(index)])

    def store(self, index, value):
        if index == len(self.elements):
            return self.add(value)
        at = self.checked(index)
        self.accept(value)
        self.elements[at] = value
        return None

    def count(self, value):
        return str(self.elements.count(value))

    def index_of(self, value, start):
        begin = max(start, 0)
        found = [i for i in range(begin, len(self.elements)) if self.elements[i] == value]
        return str(found[0] if found else -1)

    def last_index_of(self, value, start):
        begin = start if 0 <= start < len(self.elements) else len(self.elements) - 1
        found = [i for i in range(begin, -1, -1) if self.elements[i] == value]
        return str(found[0] if found else -1)

    def contains(self, value):
        return 'true' if value in self.elements else 'false'

    def slice(self, start, stop, step):
        if step == 0:
            raise Raised('Exception: slice step cannot be zero')
        return ModelList(self.elements[slice(start, stop, step)]).display()

    def assign_slice(self, start, stop, step, values):
        if step == 0:
            raise Raised('Exception: slice step cannot be zero')
        begin, end, _ = slice(start, stop, step).indices(len(self.elements))
        positions = range(begin, end, step)
        if step == 1 and len(values) != len(positions):
            if end < begin:
                raise Raised('IndexException: Invalid slice assignment range')
            self.elements[begin:end] = values
            return
        if len(values) != len(positions):
            raise Raised('ValueException: extended slice assignment requires the same number of values')
        for at, value in zip(positions, values):
            self.elements[at] = value

    def join(self, separator):
        return '"' + separator.join('null' if each is None else str(each) for each in self.elements) + '"'

    def sort(self):
        self.elements.sort()

    def total(self):
        if None in self.elements:
            raise Raised('TypeError: sum does not support null values')
        return str(sum(self.elements))


class ModelArray(ModelList):
    """An array of Int: a list whose size stays, and whose values must fit."""

    def __init__(self, elements):
        super().__init__(elements, 'Int')

    def display(self):
        return 'f:' + super().display()

    def accept(self, value):
        if not isinstance(value, int):
            raise Raised('TypeError: Invalid array element type')

    def store(self, index, value):
        at = self.checked(index)
        self.accept(value)
        self.elements[at] = value

    def slice(self, start, stop, step):
        return 'f:' + super().slice(start, stop, step)

    def assign_slice(self, start, stop, step, values):
        if step == 0:
            raise Raised('Exception: slice step cannot be zero')
        if len(values) != len(range(*slice(start, stop, step).indices(len(self.elements)))):
            raise Raised('ValueException: fixed array slice assignment requires the same number of values')
        super().assign_slice(start, stop, step, values)


class Generator:
    """Writes one script and keeps the model in step."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.lines = []
        self.lists = {}
        self.arrays = {}
        self.maps = {}
        self.sets = {}

    def say(self, source, action):
        try:
            shown = action()
        except Raised as error:
            self.lines.append(f'{source}  # expect error: {error}')
            return
        self.lines.append(f'{source}  # expect: {shown}'.rstrip() if shown is not None else f'{source}  # expect:')

    # ---- Parts of statements ----

    def integer(self):
        return self.random.choice([0, 1, 2, 3, -1, self.random.randint(-1000, 1000), 2147483647, -2147483648])

    def value(self, mixed=True):
        kinds = [self.integer] * 3 + ([lambda: self.random.choice(['a', 'b', 'text', ''])] * 2 + [lambda: None]
                                      if mixed else [])
        return self.random.choice(kinds)()

    def index(self, size):
        return self.random.randint(-size - 2, size + 2)

    def bound(self, size):
        return self.random.choice([None, self.index(size), self.index(size)])

    def step(self):
        return self.random.choice([None, None, 1, 2, -1, -2, 3, 0])

    def slice_text(self, start, stop, step):
        text = ':'.join('' if each is None else str(each) for each in (start, stop))
        return text + ('' if step is None and self.random.random() < 0.5 else f':{"" if step is None else step}')

    # ---- Statements ----

    def new_list(self):
        name = self.random.choice('xyz')
        form = self.random.randrange(3)
        if form == 0:
            elements = [self.value(mixed=False) for _ in range(self.random.randint(1, 7))]
            self.lists[name] = ModelList(elements, 'Int')
            self.lines.append(f'{name} = [{", ".join(map(spelled, elements))}]')
        elif form == 1:
            self.lists[name] = ModelList([], 'Int')
            self.lines.append(f'{name} = ArrayList<Int>()')
        else:
            self.lists[name] = ModelList([])
            self.lines.append(f'{name} = ArrayList()')

    def on_list(self):
        name, model = self.random.choice(list(self.lists.items()))
        size = len(model.elements)
        value, index = self.value(), self.index(size)
        other_name, other = self.random.choice(list(self.lists.items()))
        given = [self.value() for _ in range(self.random.randint(0, 3))]
        start, stop, step = self.bound(size), self.bound(size), self.step()
        text = self.slice_text(start, stop, step)
        separator = self.random.choice([', ', '-', ''])
        statements = [
            (f'{name}', model.display),
            (f'{name}.add({spelled(value)})', lambda: model.add(value)),
            (f'{name}.add({spelled(value)})', lambda: model.add(value)),
            (f'{name}.addAt({index}, {spelled(value)})', lambda: model.add_at(index, value)),
            (f'{name}.addAll(({", ".join(map(spelled, given))}{"," if len(given) == 1 else ""}))',
             lambda: model.add_all(given)),
            (f'{name}.removeAt({index})', lambda: model.remove_at(index)),
            (f'{name}.remove({spelled(value)})', lambda: model.remove(value)),
            (f'{name}[{index}]', lambda: model.read(index)),
            (f'{name}[{index}] = {spelled(value)}', lambda: model.store(index, value)),
            (f'{name}.count({spelled(value)})', lambda: model.count(value)),
            (f'{name}.indexOf({spelled(value)}, {index})', lambda: model.index_of(value, index)),
            (f'{name}.lastIndexOf({spelled(value)}, {index})', lambda: model.last_index_of(value, index)),
            (f'{spelled(value)} in {name}', lambda: model.contains(value)),
            (f'{name}[{text}]', lambda: model.slice(start, stop, step if step is not None else 1)),
            (f'{name}.join("{separator}")', lambda: model.join(separator)),
            (f'{name}.reverse()', model.elements.reverse),
            (f'{name}.size()', lambda: str(size)),
            (f'{name} == {other_name}', lambda: 'true' if model.elements == other.elements else 'false'),
        ]
        if model.declared is None and size < 60:
            statements.append((f'{name}[{text}] = {ModelList(given).display()}',
                               lambda: model.assign_slice(start, stop, step if step is not None else 1, given)))
        # Displays of more than a thousand characters are cut, which other tests look at.
        if size + len(other.elements) < 60:
            statements.append((f'{name} + {other_name}',
                               lambda: ModelList(model.elements + other.elements).display()))
        if size * index < 60:
            statements.append((f'{name} * {index}', lambda: ModelList(model.elements * max(index, 0)).display()))
        if size + len(other.elements) < 60:
            statements.append((f'{name}.addAll({other_name})', lambda: model.add_all(list(other.elements))))
        if all(isinstance(each, int) for each in model.elements):
            statements.append((f'{name}.sort()', model.sort))
        if all(isinstance(each, (int, type(None))) for each in model.elements):
            statements.append((f'{name}.sumInt()', model.total))
        self.say(*self.random.choice(statements))

    def on_array(self):
        name = self.random.choice('ab')
        if name not in self.arrays or self.random.random() < 0.1:
            self.arrays[name] = ModelArray([self.integer() for _ in range(self.random.randint(0, 6))])
            self.lines.append(f'{name} = Array<Int>({ModelList(self.arrays[name].elements).display()})')
        model = self.arrays[name]
        size = len(model.elements)
        value, index = self.value(), self.index(size)
        start, stop, step = self.bound(size), self.bound(size), self.step()
        values = [self.integer() for _ in range(self.random.randint(0, 3))]
        text = self.slice_text(start, stop, step)
        self.say(*self.random.choice([
            (f'{name}', model.display),
            (f'{name}[{index}]', lambda: model.read(index)),
            (f'{name}[{index}] = {spelled(value)}', lambda: model.store(index, value)),
            (f'{name}.count({spelled(value)})', lambda: model.count(value)),
            (f'{name}.indexOf({spelled(value)}, {index})', lambda: model.index_of(value, index)),
            (f'{name}.lastIndexOf({spelled(value)}, {index})', lambda: model.last_index_of(value, index)),
            (f'{spelled(value)} in {name}', lambda: model.contains(value)),
            (f'{name}[{text}]', lambda: model.slice(start, stop, step if step is not None else 1)),
            (f'{name}[{text}] = {ModelList(values).display()}',
             lambda: model.assign_slice(start, stop, step if step is not None else 1, values)),
            (f'{name}.reverse()', model.elements.reverse),
            (f'{name}.sort()', model.sort),
            (f'{name}.sumI64Fast()', model.total),
            (f'{name} + {ModelList(values).display()}', lambda: ModelArray(model.elements + values).display()),
            (f'{name} == Array<Int>({ModelList(values).display()})',
             lambda: 'true' if model.elements == values else 'false'),
            (f'{name}.size()', lambda: str(size)),
        ]))

    def on_map(self):
        name = self.random.choice('mno')
        # Keys of a sorted map are of one type here: how types are ordered among each other is not in the model.
        in_order = name == 'o'
        if name not in self.maps:
            self.maps[name] = {}
            self.lines.append(f'{name} = {"SortedMap" if in_order else "Map"}()')
        model = self.maps[name]
        key = self.random.choice([7, -3, 0, 1, 2, 10] if in_order else [0, 1, 2, 'a', 'b', 'c'])
        value = self.value()

        def read():
            if key not in model:
                raise Raised('KeyException: Key not found')
            return spelled(model[key])

        def remove():
            present = key in model
            model.pop(key, None)
            return 'true' if present else 'false'

        def display():
            entries = sorted(model.items(), key=lambda entry: entry[0]) if in_order else model.items()
            return ('t:{' if in_order else '{') + ', '.join(f'{spelled(k)}: {spelled(v)}' for k, v in entries) + '}'

        self.say(*self.random.choice([
            (f'{name}[{spelled(key)}] = {spelled(value)}', lambda: model.__setitem__(key, value)),
            (f'{name}.put({spelled(key)}, {spelled(value)})', lambda: model.__setitem__(key, value)),
            (f'{name}[{spelled(key)}]', read),
            (f'{name}._get({spelled(key)})', lambda: spelled(model.get(key))),
            (f'{name}.tryGet({spelled(key)})',
             lambda: f'({"true" if key in model else "false"}, {spelled(model.get(key))})'),
            (f'{spelled(key)} in {name}', lambda: 'true' if key in model else 'false'),
            (f'{name}.remove({spelled(key)})', remove),
            (f'{name}', display),
            (f'{name}.size()', lambda: str(len(model))),
            (f'{name}.containsValue({spelled(value)})', lambda: 'true' if value in model.values() else 'false'),
        ]))

    def on_set(self):
        name = self.random.choice('st')
        if name not in self.sets:
            self.sets[name] = {}
            self.lines.append(f'{name} = HashSet()')
        model = self.sets[name]
        value = self.random.choice([0, 1, 2, 'a', 'b', None])

        def remove():
            present = value in model
            model.pop(value, None)
            return 'true' if present else 'false'

        def display():
            return '{' + ', '.join('null' if each is None else str(each) for each in model) + '}'

        self.say(*self.random.choice([
            (f'{name}.add({spelled(value)})', lambda: model.setdefault(value) and None),
            (f'{name}.remove({spelled(value)})', remove),
            (f'{spelled(value)} in {name}', lambda: 'true' if value in model else 'false'),
            (f'{name}.count({spelled(value)})', lambda: '1' if value in model else '0'),
            (f'{name}', display),
            (f'{name}.size()', lambda: str(len(model))),
        ]))

    def script(self):
        self.new_list()
        while len(self.lines) < STATEMENTS:
            self.random.choice([self.on_list] * 8 + [self.on_array] * 3 + [self.on_map] * 3 + [self.on_set] * 2 + [self.new_list])()
        return '\n'.join(self.lines) + '\n'


class RandomScriptsTest(unittest.TestCase):
    def test_the_console_shows_what_the_model_says(self):
        with tempfile.TemporaryDirectory() as directory:
            paths = []
            for number in range(COUNT):
                path = pathlib.Path(directory) / f'seed_{SEED + number}.vorn'
                path.write_text(Generator(SEED + number).script(), encoding='utf-8')
                paths.append(path)
            done = run(*paths)
            self.assertEqual((done.returncode, done.stderr), (0, ''), done.stdout)
            self.assertEqual(done.stdout.count(' 0 differences'), COUNT)

    def test_a_wrong_model_is_found_out(self):
        with tempfile.TemporaryDirectory() as directory:
            path = pathlib.Path(directory) / 'wrong.vorn'
            script = Generator(SEED).script().replace(': true', ': false').replace('# expect: 0', '# expect: 7')
            path.write_text(script, encoding='utf-8')
            self.assertEqual(run(path).returncode, 1)


if __name__ == '__main__':
    unittest.main()
