"""The report without its measuring: what figures are taken for, and what is made of them."""

import copy
import html.parser
import json
import pathlib
import re
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path[:0] = [str(ROOT / "tools/report"), str(pathlib.Path(__file__).resolve().parent)]

import canned_figures  # noqa: E402
import columns  # noqa: E402
import measure  # noqa: E402
import page  # noqa: E402
import plots  # noqa: E402
import reasons  # noqa: E402
import summary  # noqa: E402
import tables  # noqa: E402
import verdicts  # noqa: E402
import workloads  # noqa: E402
from verdicts import AHEAD, BEHIND, EQUAL, UNCLEAR, Ratio  # noqa: E402

TABLE = workloads.load()
LIMITS = {workload.name: workload.limit for workload in TABLE}


def judged_rows(rows=None):
    return verdicts.judge_all(canned_figures.rows() if rows is None else rows, LIMITS)


class Verdicts(unittest.TestCase):
    def test_all_of_the_spread_below_one_is_ahead(self):
        self.assertEqual(verdicts.verdict_of(Ratio(0.8, 0.7, 0.99)), AHEAD)

    def test_all_of_the_spread_above_one_is_behind(self):
        self.assertEqual(verdicts.verdict_of(Ratio(1.2, 1.01, 1.4)), BEHIND)

    def test_a_spread_across_one_is_unclear(self):
        self.assertEqual(verdicts.verdict_of(Ratio(0.8, 0.5, 1.02)), UNCLEAR)
        self.assertEqual(verdicts.verdict_of(Ratio(1.2, 0.98, 1.4)), UNCLEAR)

    def test_a_small_spread_about_one_is_equal(self):
        self.assertEqual(verdicts.verdict_of(Ratio(1.0, 0.95, 1.05)), EQUAL)

    def test_nobody_is_ahead_by_less_than_the_close_range(self):
        self.assertEqual(verdicts.verdict_of(Ratio(0.97, 0.96, 0.98)), EQUAL)
        self.assertEqual(verdicts.verdict_of(Ratio(1.03, 1.02, 1.04)), EQUAL)

    def test_one_round_alone_is_unclear(self):
        self.assertEqual(verdicts.verdict_of(verdicts.ratio_of([1.0], [9.0])), UNCLEAR)

    def test_ratios_are_of_the_pairs_of_a_round(self):
        # The machine was half as quick in the second round, for both.
        self.assertEqual(verdicts.ratio_of([1, 2, 1], [2, 4, 2]), Ratio(0.5, 0.5, 0.5))

    def test_ratio_has_the_quartiles(self):
        self.assertEqual(verdicts.ratio_of([1, 2, 3, 4, 5], [1] * 5), Ratio(3, 2, 4))


class Judging(unittest.TestCase):
    def test_our_quickest_form_is_compared_with_the_quickest_of_each_family(self):
        append = judged_rows()[0]
        self.assertEqual((append.own, append.managed, append.native), ("vorn buffer", "Java", "C++"))
        self.assertEqual(append.verdict, AHEAD)
        self.assertFalse(append.beyond_limit)

    def test_the_verdict_is_that_against_the_quickest_language(self):
        get = judged_rows()[1]
        self.assertEqual((get.managed, get.verdict, get.verdicts["PyPy"]), ("Go", BEHIND, EQUAL))

    def test_a_row_of_three_times_its_library_is_beyond_a_limit_of_one_and_a_half(self):
        self.assertTrue(judged_rows()[1].beyond_limit)

    def test_limits_in_nanoseconds_are_differences(self):
        self.assertFalse(verdicts.beyond("5ns", [6.0, 6.0], [1.1, 1.1]))
        self.assertTrue(verdicts.beyond("5ns", [6.2, 6.2], [1.1, 1.1]))

    def test_a_spread_that_reaches_into_the_limit_is_within(self):
        self.assertFalse(verdicts.beyond("x1.5", [1.0, 1.0, 1.8, 2.0, 2.0], [1.0] * 5))

    def test_a_row_that_no_language_has_is_unclear(self):
        rows = canned_figures.rows()[:1]
        rows[0]["samples"] = {title: rows[0]["samples"][title] for title in ("vorn natives", "C++")}
        self.assertEqual(judged_rows(rows)[0].verdict, UNCLEAR)

    def test_a_row_that_we_have_not_is_left_out(self):
        rows = canned_figures.rows()[:1]
        rows[0]["samples"] = {"C++": [1.0], "Java": [1.0]}
        self.assertEqual(judged_rows(rows), [])

    def test_noise_is_what_the_second_process_differs_from_the_first(self):
        noise = verdicts.noise_of(canned_figures.rows()[:1])
        self.assertAlmostEqual(noise.median, 0.0)
        rows = canned_figures.rows()[:1]
        rows[0]["samples"]["again"] = [5.0, 5.25, 5.125]
        self.assertAlmostEqual(verdicts.noise_of(rows).median, 0.2)


class SameWork(unittest.TestCase):
    def test_equal_checksums_are_no_mismatch(self):
        self.assertEqual(measure.mismatches(canned_figures.rows()), [])

    def test_a_different_checksum_is_named_with_its_row(self):
        rows = canned_figures.rows()
        rows[2]["checksums"]["Java"] = "8"
        found = measure.mismatches(rows)
        self.assertEqual(len(found), 1)
        self.assertIn("append Int 100000", found[0])


class Reasons(unittest.TestCase):
    def reason(self, line):
        return reasons.reason_for(reasons.parse(line), judged_rows()[1])

    def test_a_reason_for_all_kinds_and_sizes(self):
        self.assertEqual(self.reason("map-get\t*\t*\tbecause\n"), "because")

    def test_a_reason_for_another_size_or_kind_does_not_count(self):
        self.assertEqual(self.reason("map-get\tString\t10,100000\tbecause\n"), reasons.UNKNOWN)
        self.assertEqual(self.reason("map-get\tInt\t*\tbecause\n"), reasons.UNKNOWN)

    def test_comments_are_none(self):
        self.assertEqual(reasons.parse("# map-get\n\n"), [])

    def test_the_committed_reasons_are_for_described_workloads(self):
        described = {workload.name: workload.kinds for workload in TABLE}
        for workload, kind, _, reason in reasons.load():
            self.assertIn(workload, described)
            self.assertIn(kind, ("*", *described[workload]))
            self.assertTrue(reason)


class Workloads(unittest.TestCase):
    def test_sizes_are_all_powers_of_ten_from_the_first_to_the_last(self):
        line = "sum\tlists\tInt,Long\t10\t10000\t10,1000\tx1.3\tadds up"
        self.assertEqual(workloads.parse(line)[0].sizes, (10, 100, 1_000, 10_000))

    def test_the_committed_table_has_each_workload_once_and_known_limits(self):
        names = [workload.name for workload in TABLE]
        self.assertEqual(len(names), len(set(names)))
        for workload in TABLE:
            self.assertRegex(workload.limit, r"^(x\d+(\.\d+)?|\d+ns)$")
            self.assertLessEqual(set(workload.quick_sizes), set(workload.sizes))

    def test_rows_that_the_table_does_not_describe_are_found(self):
        known = {"go": {("slices", "append", "Int"), ("slices", "append", "Text")}}
        self.assertEqual(measure.undescribed_rows(known, TABLE), ["go slices append Text"])


class Summary(unittest.TestCase):
    def text(self, explained=()):
        return summary.render(canned_figures.figures(), judged_rows(), explained)

    def test_each_row_has_a_line_with_its_ratios_and_verdict(self):
        self.assertIn("| append Int | 1,000 | buffer | 1 | Java | 0.34 (0.34 to 0.35) | ahead | C++ |", self.text())

    def test_counts_what_has_no_reason(self):
        self.assertIn("4 rows: 2 ahead, 0 equal, 2 behind, 0 unclear; 2 beyond the limit to C++ and C; "
                      "2 behind or beyond it without a known reason.", self.text().replace("\n", " "))

    def test_a_reason_stands_with_its_rows(self):
        text = self.text(reasons.parse("map-get\t*\t1000\tthe cache misses\n"))
        self.assertIn("- The cache misses: map-get String 1,000.", text)
        self.assertIn("- No reason known yet: map-get String 100,000.", text)

    def test_the_last_line_is_one_line(self):
        line = summary.last_line(judged_rows(), [], verdicts.noise_of(canned_figures.rows()))
        self.assertRegex(line, r"^report: 4 rows: .*; noise 0\.0%, in nine of ten rows at most 0\.0%$")

    def test_only_what_is_between_the_markers_is_replaced(self):
        with tempfile.TemporaryDirectory() as directory:
            path = pathlib.Path(directory) / "performance.md"
            path.write_text(f"before\n{summary.BEGIN}\nold\n{summary.END}\nafter\n", encoding="utf-8")
            summary.put_into(path, "new\n")
            summary.put_into(path, "newer\n")
            self.assertEqual(path.read_text(encoding="utf-8"),
                             f"before\n{summary.BEGIN}\n\nnewer\n\n{summary.END}\nafter\n")

    def test_a_page_without_markers_is_refused(self):
        with tempfile.TemporaryDirectory() as directory:
            path = pathlib.Path(directory) / "performance.md"
            path.write_text("prose\n", encoding="utf-8")
            with self.assertRaises(SystemExit):
                summary.put_into(path, "new\n")
            self.assertEqual(path.read_text(encoding="utf-8"), "prose\n")

    def test_the_committed_page_has_the_markers(self):
        text = (ROOT / "docs/performance.md").read_text(encoding="utf-8")
        self.assertEqual((text.count(summary.BEGIN), text.count(summary.END)), (1, 1))


class Reader(html.parser.HTMLParser):
    """The elements of a page, and whether all are closed."""

    VOID = {"meta", "br", "link", "img"}

    def __init__(self):
        super().__init__()
        self.open = []
        self.identities = []
        self.sources = []

    def handle_starttag(self, tag, attributes):
        if tag not in self.VOID:
            self.open.append(tag)
        for name, value in attributes:
            if name == "id":
                self.identities.append(value)
            if name in ("src", "href"):
                self.sources.append(value)

    def handle_endtag(self, tag):
        assert self.open and self.open[-1] == tag, f"</{tag}> closes {self.open[-3:]}"
        self.open.pop()


class Page(unittest.TestCase):
    def setUp(self):
        library, page.library = page.library, lambda: "/* the library */"
        self.addCleanup(setattr, page, "library", library)
        self.text = page.render(canned_figures.figures(), judged_rows(), TABLE, [])
        self.reader = Reader()
        self.reader.feed(self.text)

    def embedded_figures(self):
        return json.loads(re.search(r'id="figures">(.*?)</script>', self.text).group(1))

    def test_all_elements_are_closed_and_no_identity_stands_twice(self):
        self.assertEqual(self.reader.open, [])
        self.assertEqual(len(self.reader.identities), len(set(self.reader.identities)))

    def test_nothing_comes_from_elsewhere(self):
        self.assertEqual(self.reader.sources, [])

    def test_each_picture_has_its_place(self):
        self.assertLessEqual(set(self.embedded_figures()), set(self.reader.identities))
        self.assertIn("time-append-Int", self.embedded_figures())
        self.assertIn("memory-list-of-Int", self.embedded_figures())
        self.assertIn("heat-map", self.embedded_figures())

    def test_what_looks_like_markup_in_a_name_is_escaped(self):
        self.assertIn("&lt;/script&gt; of &lt;b&gt;tests&lt;/b&gt;", self.text)
        self.assertEqual(page.script_safe('"</script>"'), '"<\\/script>"')

    def test_a_row_behind_stands_with_its_missing_reason(self):
        self.assertIn(reasons.UNKNOWN, tables.short_rows(judged_rows(), []))
        self.assertNotIn(reasons.UNKNOWN, tables.short_rows(judged_rows(), reasons.parse("map-get\t*\t*\twhy\n")))

    def test_without_memory_and_rows_there_is_a_page_too(self):
        figures = canned_figures.figures()
        figures["rows"], figures["memory"] = [], {"sizes": [], "peaks": [], "allocations": []}
        self.assertIn("Not measured", page.render(figures, [], TABLE, []))


class Plots(unittest.TestCase):
    def test_each_column_has_a_colour(self):
        self.assertEqual(set(plots.COLOURS), {column.title for column in columns.COLUMNS})

    def test_times_are_medians_by_size(self):
        figure = plots.time_plots(canned_figures.rows(), TABLE)[0]
        natives = next(line for line in figure["data"] if line["name"] == "vorn natives")
        self.assertEqual((natives["x"], natives["y"]), ([1_000, 100_000], [4.1, 4.1]))

    def test_memory_is_for_an_element_and_not_of_empty_collections(self):
        figure = plots.memory_plots(canned_figures.figures()["memory"]["sizes"])[0]
        self.assertEqual(figure["data"][0]["x"], [1, 1_000, 1_000_000])
        self.assertEqual(figure["data"][0]["y"], [68.0, 4.064, 4.0])

    def test_heat_map_has_a_field_for_each_row_and_peer_and_none_where_a_peer_has_not_the_row(self):
        heat = plots.heat_map(judged_rows())["data"][0]
        self.assertEqual(len(heat["z"]), 4)
        field = heat["z"][heat["y"].index("append Int 1,000")]
        self.assertEqual(field[heat["x"].index("Java")], plots.VERDICT_ORDER.index(AHEAD))
        self.assertIsNone(field[heat["x"].index("Go")])

    def test_figures_are_plain_data(self):
        figures = plots.all_figures(canned_figures.figures(), judged_rows(), TABLE)
        self.assertEqual(json.loads(json.dumps(figures)), copy.deepcopy(figures))


if __name__ == "__main__":
    unittest.main()
