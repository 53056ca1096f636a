"""What every list that can change has to do, whatever its class and its elements: just what a built-in list does."""

import copy
import pickle
import random

import vorn


class ListLaws:
    """Mixed into a test for each class of lists. `elements` are different values, in ascending order."""

    make = None
    elements = (10, 20, 30, 40, 50, 60, 70)
    sortable = True

    def filled(self, count=7):
        """A list and the built-in one that it has to equal."""
        return self.make(self.elements[:count]), list(self.elements[:count])

    def assertSame(self, ours, model):
        self.assertEqual(ours.tolist(), model)
        self.assertEqual(list(ours), model)
        self.assertEqual(len(ours), len(model))
        self.assertTrue(ours == model)
        self.assertFalse(ours != model)

    def both(self, ours, model, act):
        """Does the same to both; both give the same or raise the same class of errors."""
        results = []
        for target in (ours, model):
            try:
                results.append(act(target))
            except (IndexError, ValueError, TypeError) as error:
                builtin = next(each for each in (IndexError, ValueError, TypeError) if isinstance(error, each))
                results.append(builtin)
        left, right = results
        self.assertEqual(left.tolist() if hasattr(left, 'tolist') else left, right)
        self.assertSame(ours, model)

    def test_indexes_from_both_ends(self):
        ours, model = self.filled()
        for index in range(-9, 9):
            with self.subTest(index=index):
                self.both(ours, model, lambda target: target[index])
        for index in (2**31, 2**63 - 1, 2**63, -2**63, -2**63 - 1, 2**100):
            with self.assertRaises(IndexError):
                ours[index]

    def test_an_index_that_is_no_integer_is_a_type_error(self):
        ours, _ = self.filled()
        for index in ('0', 1.0, None, (0, 1)):
            for act in (lambda: ours[index], lambda: ours.__setitem__(index, self.elements[0]),
                        lambda: ours.__delitem__(index)):
                self.assertRaises(TypeError, act)
        self.assertEqual(ours[True], self.elements[1])

    def test_every_slice(self):
        ours, model = self.filled()
        bounds = (None, 0, 3, 7, 9, -1, -8, 2**63)
        for start in bounds:
            for stop in bounds:
                for step in (None, 2, -1, -2, -2**63):
                    part = slice(start, stop, step)
                    if ours[part].tolist() != model[part]:
                        self.fail(f'{part}: {ours[part]} is not {model[part]}')
        self.assertIs(type(ours[1:2]), type(ours))
        self.assertRaises(ValueError, lambda: ours[::0])

    def test_a_slice_is_a_list_of_its_own(self):
        ours, model = self.filled()
        part = ours[1:3]
        part[0] = self.elements[6]
        part.append(self.elements[5])
        self.assertSame(ours, model)

    def test_every_slice_assignment(self):
        bounds = (None, 2, 5, 9, -1)
        for start in bounds:
            for stop in bounds:
                for step in (None, 2, -1):
                    for count in (0, 2, 3):
                        part = slice(start, stop, step)
                        ours, model = self.filled()
                        values = list(self.elements[:count])
                        with self.subTest(part=part, count=count):
                            self.both(ours, model, lambda target: target.__setitem__(part, values))

    def test_slice_assignment_takes_any_iterable(self):
        for values in (lambda: iter(self.elements[:3]), lambda: self.make(self.elements[:3]),
                       lambda: self.elements[:3], lambda: (value for value in self.elements[:3])):
            ours, model = self.filled()
            ours[2:4], model[2:4] = values(), values()
            self.assertSame(ours, model)
        ours, model = self.filled()
        ours[2:4] = ours
        model[2:4] = model
        self.assertSame(ours, model)
        ours[::2] = ours[1::2] + ours[:len(ours) % 2]
        for wrong in (1, None, object()):
            with self.assertRaises(TypeError):
                ours[1:2] = wrong

    def test_an_extended_slice_of_another_size_is_refused_and_changes_nothing(self):
        ours, model = self.filled()
        for count in (0, 1, 3, 7):
            with self.assertRaisesBoth(ValueError, 'ValueException'):
                ours[::4] = self.elements[:count]
        self.assertSame(ours, model)

    def test_every_slice_deletion(self):
        bounds = (None, 2, 5, 9, -1)
        for start in bounds:
            for stop in bounds:
                for step in (None, 2, 3, -2, 2**63):
                    ours, model = self.filled()
                    part = slice(start, stop, step)
                    with self.subTest(part=part):
                        self.both(ours, model, lambda target: target.__delitem__(part))
        ours, _ = self.filled()
        with self.assertRaises(ValueError):
            del ours[::0]

    def test_insert_clamps_its_index(self):
        for index in (-2**62, -9, -7, -1, 0, 1, 6, 7, 8, 2**62):
            ours, model = self.filled()
            with self.subTest(index=index):
                self.both(ours, model, lambda target: target.insert(index, self.elements[3]))

    def test_pop(self):
        ours, model = self.filled()
        for index in (-1, 0, 2, -2, 9, -9):
            self.both(ours, model, lambda target: target.pop(index))
        while model:
            self.both(ours, model, lambda target: target.pop())
        self.both(ours, model, lambda target: target.pop())
        self.both(ours, model, lambda target: target.pop(0))

    def test_remove_index_and_count(self):
        ours, model = self.make(self.elements + self.elements[:4]), list(self.elements + self.elements[:4])
        for value in (self.elements[0], self.elements[6], 'absent', 3.25, None, object(), [], 2**70):
            with self.subTest(value=value):
                self.both(ours, model, lambda target: target.count(value))
                self.both(ours, model, lambda target: target.index(value))
                self.both(ours, model, lambda target: value in target)
                for start, stop in ((1, 9), (-4, 20), (-99, -4), (8, 2), (2**70, 2**71), (-2**70, 2**70)):
                    self.both(ours, model, lambda target: target.index(value, start, stop))
                self.both(ours, model, lambda target: target.remove(value))

    def test_append_and_extend(self):
        ours, model = self.make(), []
        for value in self.elements:
            self.both(ours, model, lambda target: target.append(value))
        self.both(ours, model, lambda target: target.extend(self.elements[1:3]))
        self.both(ours, model, lambda target: target.extend(value for value in self.elements))
        self.both(ours, model, lambda target: target.extend(()))
        ours.extend(ours)
        model.extend(model)
        ours += iter(self.elements)
        model += iter(self.elements)
        self.assertSame(ours, model)
        for wrong in (1, None):
            self.assertRaises(TypeError, ours.extend, wrong)
        self.assertSame(ours, model)

    def test_an_iterator_that_raises_changes_nothing(self):
        def failing():
            yield self.elements[0]
            raise LookupError('from the iterator')
        ours, model = self.filled()
        self.assertRaises(LookupError, ours.extend, failing())
        with self.assertRaises(LookupError):
            ours[1:2] = failing()
        self.assertSame(ours, model)

    def test_plus_and_times(self):
        ours, model = self.filled(3)
        self.assertSame(ours + ours, model + model)
        self.assertSame(ours + model, model + model)
        self.assertSame(model + ours, model + model)
        self.assertIs(type(model + ours), type(ours))
        for times in (-3, 0, 1, 2, 5):
            self.assertSame(ours * times, model * times)
            self.assertSame(times * ours, times * model)
            again, same = self.filled(3)
            again *= times
            same *= times
            self.assertSame(again, same)
        for other in ((1,), 'x', 5, None):
            with self.assertRaises(TypeError):
                ours + other
        for other in (1.5, 'x', None, ours):
            with self.assertRaises(TypeError):
                ours * other
        self.assertSame(ours, model)

    def test_a_size_beyond_memory_is_a_memory_error(self):
        ours, model = self.filled()
        for times in (2**56, 2**60, 2**63 - 1, 2**80):
            with self.assertRaisesBoth(MemoryError, 'MemoryException'):
                ours * times
            with self.assertRaisesBoth(MemoryError, 'MemoryException'):
                ours *= times
        self.assertSame(ours, model)
        self.assertSame(self.make() * 2**80, [])

    def test_clear_reverse_and_copy(self):
        ours, model = self.filled()
        self.both(ours, model, lambda target: target.reverse())
        for twin in (ours.copy(), copy.copy(ours), ours[:]):
            self.assertIsNot(twin, ours)
            self.assertIs(type(twin), type(ours))
            self.assertEqual(twin.synchronized, ours.synchronized)
            twin.clear()
            self.assertSame(twin, [])
        self.assertSame(ours, model)
        self.assertEqual(list(reversed(ours)), list(reversed(model)))

    def test_sort(self):
        if not self.sortable:
            self.skipTest('these elements have no order')
        shuffled = list(self.elements + self.elements)
        random.Random(5).shuffle(shuffled)
        for options in ({}, {'reverse': True}, {'key': repr}, {'key': lambda value: self.elements.index(value) % 2},
                        {'key': lambda value: self.elements.index(value) % 3, 'reverse': True}, {'key': lambda _: 0}):
            ours, model = self.make(shuffled), list(shuffled)
            with self.subTest(options=options):
                self.both(ours, model, lambda target: target.sort(**options))
        self.assertRaises(TypeError, ours.sort, lambda value: value)
        self.assertRaises(TypeError, ours.sort, key=1)

    def test_a_key_that_raises_or_changes_the_list_ends_a_sort(self):
        ours, model = self.filled()

        def failing(_):
            raise LookupError('from the key')

        self.assertRaises(LookupError, ours.sort, key=failing)
        self.assertSame(ours, model)
        self.assertRaises(ValueError, ours.sort, key=lambda value: ours.append(value) or 0)

    def test_comparisons(self):
        ours, model = self.filled(3)
        for other in ([], model, model[:2], list(self.elements[1:3]), list(self.elements[:4])):
            self.assertEqual((ours < other, ours <= other, ours > other, ours >= other, ours == other, ours != other),
                             (model < other, model <= other, model > other, model >= other, model == other,
                              model != other))
            self.assertEqual((other < ours, other == ours), (other < model, other == model))
            self.assertEqual(ours < self.make(other), model < other)
            self.assertEqual(ours == self.make(other), model == other)
        for other in (tuple(model), None, 5, iter(model)):
            self.assertFalse(ours == other)
            self.assertTrue(ours != other)
            with self.assertRaises(TypeError):
                ours < other

    def test_lists_have_no_hash(self):
        self.assertRaises(TypeError, hash, self.make())

    def test_repr_reads_back(self):
        for count in (0, 1, 7):
            ours, model = self.filled(count)
            again = eval(repr(ours), {'vorn': vorn, 'inf': float('inf')})
            self.assertIs(type(again), type(ours))
            self.assertEqual(again.synchronized, ours.synchronized)
            self.assertSame(again, model)

    def test_pickles_and_deep_copies(self):
        ours, model = self.filled()
        for protocol in range(2, pickle.HIGHEST_PROTOCOL + 1):
            again = pickle.loads(pickle.dumps(ours, protocol))
            self.assertIs(type(again), type(ours))
            self.assertEqual(again.synchronized, ours.synchronized)
            self.assertSame(again, model)
        twin = copy.deepcopy(ours)
        twin.clear()
        self.assertSame(ours, model)

    def test_iteration_sees_what_is_appended_and_replaced(self):
        ours, model = self.filled(3)
        for target in (ours, model):
            seen = []
            for value in target:
                if len(seen) < 20:
                    target.append(value)
                seen.append(value)
                if len(seen) == 5:
                    target[5] = self.elements[6]
            target.append(seen[-1])
            target.extend(seen)
        self.assertSame(ours, model)

    def test_iteration_ends_early_when_elements_go(self):
        for act in (lambda target: target.pop(), lambda target: target.pop(0), lambda target: target.clear()):
            seen = []
            for target in self.filled():
                seen.append([])
                for value in target:
                    seen[-1].append(value)
                    act(target)
            self.assertEqual(seen[0], seen[1])
            seen.clear()
            for target in self.filled():
                seen.append([])
                for value in reversed(target):
                    seen[-1].append(value)
                    act(target)
            self.assertEqual(seen[0], seen[1])

    def test_a_long_list_is_iterated_whole(self):
        model = list(self.elements) * 40
        ours = self.make(model)
        self.assertEqual(list(ours), model)
        self.assertEqual(list(reversed(ours)), model[::-1])

    def test_random_operations(self):
        chance = random.Random(type(self).__name__)
        for _ in range(4):
            ours, model = self.make(), []
            for _ in range(60):
                self.one_operation(ours, model, chance)

    def one_operation(self, ours, model, chance):
        value = chance.choice(self.elements)
        index = chance.randint(-len(model) - 2, len(model) + 2)
        part = slice(*(chance.choice((None, chance.randint(-9, 9))) for _ in range(2)),
                     chance.choice((None, None, 1, 2, -1, -2)))
        values = [chance.choice(self.elements) for _ in range(chance.randint(0, 4))]
        self.both(ours, model, chance.choice((
            lambda target: target.append(value), lambda target: target.insert(index, value),
            lambda target: target.extend(values), lambda target: target.pop(index), lambda target: target.remove(value),
            lambda target: target.__setitem__(index, value), lambda target: target.__delitem__(index),
            lambda target: target.__setitem__(part, values), lambda target: target.__delitem__(part),
            lambda target: target.index(value), lambda target: target.reverse(), lambda target: target[part])))
