"""Many threads of Python, on heaps that collect all the time."""

import gc
import sys
import threading
import unittest

import vorn

from support import HEAP, VornTest

THREADS = 4
ROUNDS = 40 if 'stress' in HEAP else 400


class ThreadsTest(VornTest):

    def setUp(self):
        # Threads take turns within operations, not only between them.
        self.interval = sys.getswitchinterval()
        sys.setswitchinterval(1e-6)
        self.addCleanup(sys.setswitchinterval, self.interval)

    def on_threads(self, work):
        """Runs work(number) on threads that nobody has attached; what one of them raises is raised here."""
        raised = []

        def run(number):
            try:
                work(number)
            except BaseException as error:
                raised.append(error)

        threads = [threading.Thread(target=run, args=(number,)) for number in range(THREADS)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join(100)
            self.assertFalse(thread.is_alive())
        if raised:
            raise raised[0]

    def test_threads_with_collections_of_their_own(self):
        def work(number):
            ours, model, texts = vorn.List(), [], vorn.Map()
            for round_ in range(ROUNDS):
                value = f'{number}:{round_}'
                ours.append(value)
                model.append(value)
                texts[value] = vorn.List([round_, (round_, value)])
                self.assertEqual(texts[value], [round_, (round_, value)])
            self.assertEqual(ours.tolist(), model)
            self.assertEqual(list(texts), model)
            self.assertEqual([each[0] for each in texts.values()], list(range(ROUNDS)))
        self.on_threads(work)

    def test_threads_share_a_synchronised_list(self):
        ours = vorn.List[int](synchronized=True)
        self.on_threads(lambda number: [ours.append(number) for _ in range(ROUNDS)])
        self.assertEqual([ours.count(number) for number in range(THREADS)], [ROUNDS] * THREADS)

    def test_threads_share_a_list_as_they_share_a_built_in_one(self):
        ours, others, names = vorn.List(), vorn.Map(), vorn.Set()

        def work(number):
            for round_ in range(ROUNDS):
                ours.append((number, str(round_)))
                others[number, round_] = str(number)
                names.add(f'{number % 2}:{round_}')
                ours.tolist() if round_ % 50 == 0 else None

        self.on_threads(work)
        self.assertEqual(sorted(map(tuple, ours)),
                         sorted((number, str(round_)) for number in range(THREADS) for round_ in range(ROUNDS)))
        self.assertEqual((len(others), len(names)), (THREADS * ROUNDS, 2 * ROUNDS))

    def test_no_append_is_lost_among_threads(self):
        ours = vorn.List[int]()
        self.on_threads(lambda number: [ours.append(number) for _ in range(20 * ROUNDS)])
        self.assertEqual([ours.count(number) for number in range(THREADS)], [20 * ROUNDS] * THREADS)

    def test_threads_pop_what_others_push(self):
        ours, taken = vorn.LinkedList(synchronized=True), [[] for _ in range(THREADS)]

        def work(number):
            for round_ in range(ROUNDS):
                ours.append(f'text {round_}')
                if round_ % 2:
                    taken[number].append(ours[0])

        self.on_threads(work)
        self.assertEqual(len(ours), THREADS * ROUNDS)
        self.assertTrue(all(value.startswith('text ') for values in taken for value in values))

    def test_one_object_for_each_handle_among_threads(self):
        outer = vorn.List([vorn.List([number]) for number in range(8)])
        seen = [[] for _ in range(THREADS)]

        def work(number):
            for round_ in range(ROUNDS):
                inner = outer[round_ % 8]
                self.assertEqual(inner, [round_ % 8])
                seen[number].append(inner)

        self.on_threads(work)
        self.assertEqual(len({id(inner) for values in seen for inner in values}), 8)

    def test_objects_are_released_on_other_threads_and_by_the_collection_of_cycles(self):
        class Node:
            pass

        def work(number):
            for round_ in range(ROUNDS // 4):
                node = Node()
                node.self, node.held = node, vorn.List([number, round_])
                handed_over.append(node.held)
                if len(handed_over) > 3:
                    self.assertEqual(len(handed_over.pop(0)), 2)
                if round_ % 10 == 0:
                    gc.collect()

        handed_over = []
        self.on_threads(work)

    def test_views_among_threads(self):
        ours = vorn.List[int](range(100))

        def work(number):
            for _ in range(ROUNDS):
                with ours.memoryview() as shown:
                    self.assertEqual(shown[number], number)
                try:
                    ours.append(0)
                    ours.pop()
                except BufferError:
                    pass

        self.on_threads(work)
        self.assertEqual(ours[:50], list(range(50)))
        ours.append(1)

    def test_errors_belong_to_their_thread(self):
        def work(number):
            for round_ in range(ROUNDS):
                with self.assertRaisesBoth(IndexError, 'IndexException'):
                    vorn.List([number])[round_ + 1]
        self.on_threads(work)


if __name__ == '__main__':
    unittest.main()
