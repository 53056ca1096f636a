"""The summary in docs/performance.md, between two markers, and the line that a run ends with."""

import textwrap

import tables
import verdicts
from reasons import UNKNOWN, reason_for

BEGIN = "<!-- What follows is made by ./dev report. -->"
END = "<!-- What ./dev report makes ends here. -->"

# Shown in the summary; the page has all sizes.
SIZES = (1_000, 10_000, 100_000, 1_000_000)


def shown_rows(judged):
    """Two sizes of each workload: a thousand, and the largest up to a million."""
    largest = {}
    for row in judged:
        if row.n in SIZES:
            largest[row.name] = max(largest.get(row.name, 0), row.n)
    return [row for row in judged if row.n in (1_000, largest.get(row.name))]


def beside(row, peer):
    if peer is None:
        return "", ""
    ratio = row.ratios[peer]
    return peer, f"{ratio.median:.2f} ({ratio.low:.2f} to {ratio.high:.2f})"


def row_line(row):
    managed, native = beside(row, row.managed), beside(row, row.native)
    limit = "beyond" if row.beyond_limit else "within" if row.native else ""
    own = row.own.removeprefix("vorn ")
    return (f"| {row.name} | {row.n:,} | {own} | {row.own_ns:.3g} | {managed[0]} | {managed[1]} | {row.verdict} "
            f"| {native[0]} | {native[1]} | {limit} |")


def counted(judged, explained):
    counts = verdicts.count_verdicts(judged)
    beyond = sum(row.beyond_limit for row in judged)
    return (f"{len(judged)} rows: {counts['ahead']} ahead, {counts['equal']} equal, {counts['behind']} behind, "
            f"{counts['unclear']} unclear; {beyond} beyond the limit to C++ and C; "
            f"{tables.without_reason(judged, explained)} behind or beyond it without a known reason")


def last_line(judged, explained, noise):
    spread = f"{noise.median:.1%}, in nine of ten rows at most {noise.most:.1%}"
    return f"report: {counted(judged, explained)}; noise {spread}"


def wrapped(text, indent=""):
    return textwrap.fill(text, 120, subsequent_indent=indent, break_on_hyphens=False, break_long_words=False)


def memory_lines(memory):
    most = max((row["n"] for row in memory["sizes"]), default=0)
    rows = [row for row in memory["sizes"] if row["n"] == most > 0]
    if not rows:
        return []
    titles = [title for title in tables.TITLES if any(title in row["bytes"] for row in rows)]
    lines = ["", "### Memory", "",
             f"Bytes for an element, of {most:,}; objects and texts that were there before do not count.", "",
             "| collection | " + " | ".join(titles) + " |", "|---|" + "---|" * len(titles)]
    for row in rows:
        cells = (f"{row['bytes'][title] / row['n']:.1f}" if title in row["bytes"] else "" for title in titles)
        lines.append(f"| {row['collection']} | " + " | ".join(cells) + " |")
    return lines


def reason_lines(judged, explained):
    short = [row for row in judged if row.is_short]
    if not short:
        return []
    by_reason = {}
    for row in short:
        by_reason.setdefault(reason_for(explained, row), []).append(f"{row.name} {row.n:,}")
    lines = ["", "### Where we are behind", ""]
    for reason, names in sorted(by_reason.items(), key=lambda item: item[0] == UNKNOWN):
        lines.append(wrapped(f"- {reason[0].upper() + reason[1:]}: {', '.join(names)}.", "  "))
    return lines


def origin(figures):
    machine, noise = figures["machine"], verdicts.noise_of(figures["rows"])
    kind = "quick run" if figures["quick"] else "run"
    return wrapped(
        f"{figures['made']}, a {kind} of {figures['rounds']} rounds on {machine['processor']}, "
        f"{machine['cores']} cores, {machine['memory']} GB, {machine['system']}: "
        + ", ".join(f"{name} {version}" for name, version in figures["versions"].items())
        + f". The same program beside itself differed by {noise.median:.1%} in the middle of all rows, by at most "
        f"{noise.most:.1%} in nine of ten.")


HEADINGS = ("workload", "n", "our quickest form", "ns", "quickest language", "ratio", "verdict", "quickest library",
            "ratio", "limit")


def render(figures, judged, explained):
    lines = [
        origin(figures), "",
        wrapped(counted(judged, explained) + "."), "",
        "| " + " | ".join(HEADINGS) + " |", "|" + "---|" * len(HEADINGS),
        *(row_line(row) for row in shown_rows(judged)),
        *reason_lines(judged, explained),
        *memory_lines(figures["memory"]),
    ]
    return "\n".join(lines) + "\n"


def put_into(path, text):
    """Replaces what stands between the markers and leaves the rest of the page."""
    page = path.read_text(encoding="utf-8")
    before, begin, rest = page.partition(BEGIN)
    _, end, after = rest.partition(END)
    if not begin or not end:
        raise SystemExit(f"report: {path} has not the two markers between which the figures stand")
    path.write_text(f"{before}{BEGIN}\n\n{text}\n{END}{after}", encoding="utf-8")
