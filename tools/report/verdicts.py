"""What the figures say: ratios with their spread, and who is ahead. No measuring here, and no printing."""

import statistics
from typing import NamedTuple, Optional

from columns import AGAIN, FAMILIES, MANAGED, NATIVE, OWN

AHEAD, EQUAL, BEHIND, UNCLEAR = "ahead", "equal", "behind", "unclear"

# Nearer than this nobody is ahead.
CLOSE = 0.05
# A spread within this is small enough to call two columns equal.
EQUAL_SPREAD = 0.10


class Ratio(NamedTuple):
    median: float
    low: float  # the quartiles
    high: float


def ratio_of(ours, theirs):
    """How many times as long as theirs ours takes, by the pairs of each round."""
    ratios = [own / other for own, other in zip(ours, theirs)]
    if len(ratios) < 2:
        return Ratio(ratios[0], 0.0, float("inf"))
    low, median, high = statistics.quantiles(ratios, n=4, method="inclusive")
    return Ratio(median, low, high)


def verdict_of(ratio):
    if ratio.high < 1 and ratio.median < 1 - CLOSE:
        return AHEAD
    if ratio.low > 1 and ratio.median > 1 + CLOSE:
        return BEHIND
    if ratio.low > 1 - EQUAL_SPREAD and ratio.high < 1 + EQUAL_SPREAD:
        return EQUAL
    return UNCLEAR


def quickest(samples, family):
    """The title of the family's column with the smallest median; None where it has none."""
    titles = [title for title in samples if FAMILIES.get(title) == family]
    return min(titles, key=lambda title: statistics.median(samples[title]), default=None)


class Judged(NamedTuple):
    """A row and what it says."""
    workload: str
    kind: str
    n: int
    samples: dict
    own: str  # our best form
    own_ns: float
    ratios: dict  # Ratio of our best form to each peer
    verdicts: dict  # by peer
    managed: Optional[str]  # the quickest language
    native: Optional[str]  # the quickest library of C++ or C
    verdict: str  # against the quickest language; unclear where no language has the row
    beyond_limit: bool  # against the quickest library

    @property
    def name(self):
        return f"{self.workload} {self.kind}"

    @property
    def is_short(self):
        """Whether something is to be explained."""
        return self.verdict == BEHIND or self.beyond_limit


def beyond(limit, own, native):
    """Whether all of the spread lies beyond what the workload may take."""
    if limit.startswith("x"):
        return ratio_of(own, native).low > float(limit[1:])
    allowed = float(limit.removesuffix("ns"))
    over = [mine - theirs for mine, theirs in zip(own, native)]
    return (statistics.quantiles(over, n=4, method="inclusive")[0] if len(over) > 1 else over[0]) > allowed


def judge(row, limit):
    """A row as measure.py makes it; None where none of our forms has it."""
    samples = row["samples"]
    own = quickest(samples, OWN)
    if own is None:
        return None
    managed, native = quickest(samples, MANAGED), quickest(samples, NATIVE)
    peers = [title for title in samples if FAMILIES.get(title) in (MANAGED, NATIVE)]
    ratios = {title: ratio_of(samples[own], samples[title]) for title in peers}
    verdicts = {title: verdict_of(ratio) for title, ratio in ratios.items()}
    return Judged(
        row["workload"], row["kind"], row["n"], samples, own, statistics.median(samples[own]), ratios, verdicts,
        managed, native, verdicts[managed] if managed else UNCLEAR,
        native is not None and beyond(limit, samples[own], samples[native]))


def judge_all(rows, limits):
    """`limits` by workload."""
    judged = (judge(row, limits[row["workload"]]) for row in rows)
    return [row for row in judged if row is not None]


class Noise(NamedTuple):
    """How much the same program differs from itself, as parts of one."""
    median: float
    most: float  # nine of ten rows differ less


def noise_of(rows):
    """From the second process of our first form that ran beside the first."""
    differences = []
    for row in rows:
        samples = row["samples"]
        first = next((title for title in samples if FAMILIES.get(title) == OWN), None)
        if first is not None and AGAIN in samples:
            differences.append(abs(ratio_of(samples[first], samples[AGAIN]).median - 1))
    if not differences:
        return Noise(0.0, 0.0)
    differences.sort()
    return Noise(statistics.median(differences), differences[min(len(differences) - 1, len(differences) * 9 // 10)])


def count_verdicts(judged):
    counts = {AHEAD: 0, EQUAL: 0, BEHIND: 0, UNCLEAR: 0}
    for row in judged:
        counts[row.verdict] += 1
    return counts
