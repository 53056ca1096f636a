"""The requests that measured programs answer, by the one that is there without a compiler."""

import pathlib
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tools/report"))

import measure  # noqa: E402
import programs  # noqa: E402
import workloads  # noqa: E402
from columns import COLUMNS  # noqa: E402

TINY = measure.Effort(rounds=2, seconds=0.0005, warm_up=0.0, large_warm_up=0.0, patience=60)


class Python(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.table = {workload.name: workload for workload in workloads.load()}
        cls.program = programs.Program("python3")
        cls.addClassCleanup(cls.program.stop)
        cls.rows = cls.program.rows()

    def test_knows_described_rows_only(self):
        self.assertEqual(measure.undescribed_rows({"python3": self.rows}, self.table.values()), [])
        self.assertGreater(len(self.rows), 40)

    def test_every_row_is_measured_at_ten_elements(self):
        for form, workload, kind in sorted(self.rows):
            with self.subTest(workload=workload, kind=kind):
                row = measure.measure_row(
                    {"CPython": (form, self.program)}, self.table[workload], kind, 10, TINY)
                self.assertEqual(len(row["samples"]["CPython"]), TINY.rounds)
                self.assertTrue(all(time > 0 for time in row["samples"]["CPython"]))
                self.assertRegex(row["checksums"]["CPython"], r"^\d+$")

    def test_a_slow_row_ends_after_the_fewest_rounds(self):
        impatient = TINY._replace(rounds=9, patience=0)
        row = measure.measure_row(
            {"CPython": ("lists", self.program)}, self.table["append"], "Int", 10, impatient)
        self.assertEqual(len(row["samples"]["CPython"]), measure.FEWEST_ROUNDS)

    def test_what_is_large_is_warmed_up_for_longer(self):
        effort = TINY._replace(warm_up=1, large_warm_up=2)
        self.assertEqual([effort.warm_up_for(size) for size in (10, 999_999, 1_000_000, 10_000_000)], [1, 1, 2, 2])

    def test_checksum_of_ten_appended_numbers(self):
        expected = 0
        for i in range(10):
            expected = (expected * 31 + i) % (1 << 32)
        self.assertEqual(self.program.ask("ready", "open", "lists", "append", "Int", 10, 0.0001, 0)[0], str(expected))
        self.program.ask("closed", "close")

    def test_sorted_texts_are_compared_by_their_bytes(self):
        first = self.program.ask("ready", "open", "lists", "sort", "String", 10, 0.0001, 0)[0]
        again = self.program.ask("ready", "open", "lists", "sort", "String", 10, 0.0001, 0)[0]
        self.assertEqual(first, again)
        self.program.ask("closed", "close")

    def test_memory_of_a_list_grows_with_it(self):
        taken = []
        for size in (1, 1_000):
            with programs.Program("python3") as program:
                program.ask("prepared", "memory", "lists", "append", "Object", 10, size)
                taken.append(int(program.ask("built", "build")[0]))
        self.assertGreater(taken[1], taken[0] + 10 * 999 * 8)

    def test_a_program_that_ends_is_told_by_name(self):
        with programs.Program("python3") as program:
            with self.assertRaisesRegex(programs.ProgramFailed, "python3"):
                program.ask("ready", "open", "lists", "no-such-workload", "Int", 10, 0.1, 0)


class Columns(unittest.TestCase):
    def test_each_column_has_a_command(self):
        self.assertLessEqual({column.program for column in COLUMNS}, set(programs.COMMANDS))

    def test_no_title_stands_twice(self):
        titles = [column.title for column in COLUMNS]
        self.assertEqual(len(titles), len(set(titles)))


if __name__ == "__main__":
    unittest.main()
