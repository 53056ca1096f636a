"""The tables of the page. A cell's data-value is what it is sorted by."""

import html

from columns import COLUMNS, OWN
from reasons import UNKNOWN, reason_for

PEER_TITLES = [column.title for column in COLUMNS if column.family != OWN]
TITLES = [column.title for column in COLUMNS]


def cell(text, value=None, style=""):
    value = html.escape(str(text if value is None else value))
    return f'<td class="{style}" data-value="{value}">{text}</td>'


def text_cell(text, style="text"):
    return cell(html.escape(text), text, style)


def empty_cell():
    return '<td data-value=""></td>'


def table(headings, rows, tall=False):
    """Headings that begin with "<" are of texts."""
    if not rows:
        return '<p class="faint">Not measured.</p>'
    head = "".join(f'<th class="text">{html.escape(name[1:])}</th>' if name.startswith("<") else
                   f"<th>{html.escape(name)}</th>" for name in headings)
    body = "".join(f"<tr>{''.join(row)}</tr>" for row in rows)
    return (f'<div class="table{" tall" if tall else ""}"><table><thead><tr>{head}</tr></thead>'
            f"<tbody>{body}</tbody></table></div>")


def ratio_cell(row, peer):
    ratio = row.ratios.get(peer)
    if ratio is None:
        return empty_cell()
    spread = f"{ratio.low:.2f}–{ratio.high:.2f}"
    return cell(f"{ratio.median:.2f} <small>{spread}</small>", ratio.median, row.verdicts[peer])


def name_cells(row):
    return [text_cell(row.workload), text_cell(row.kind), cell(f"{row.n:,}", row.n)]


def present(judged):
    return [title for title in PEER_TITLES if any(title in row.ratios for row in judged)]


def all_rows(judged):
    peers = present(judged)
    rows = [[*name_cells(row), text_cell(row.own), cell(f"{row.own_ns:.3g}", row.own_ns),
             cell(row.verdict, row.verdict, row.verdict), *(ratio_cell(row, peer) for peer in peers)] for row in judged]
    return table(["<workload", "<kind", "n", "<our quickest form", "its ns", "verdict", *peers], rows, tall=True)


def short_rows(judged, explained):
    """The rows that are behind the quickest language or beyond their limit, and why."""
    rows = []
    for row in judged:
        if row.is_short:
            rows.append([*name_cells(row), cell(row.verdict, row.verdict, row.verdict),
                         *(peer_cells(row, row.managed)), *(peer_cells(row, row.native)),
                         text_cell("beyond" if row.beyond_limit else "within" if row.native else ""),
                         text_cell(reason_for(explained, row), "reason")])
    if not rows:
        return "<p>Nowhere.</p>"
    return table(["<workload", "<kind", "n", "verdict", "<quickest language", "ratio", "<quickest library", "ratio",
                  "<limit", "<reason"], rows)


def peer_cells(row, peer):
    return [text_cell(peer), ratio_cell(row, peer)] if peer else [empty_cell(), empty_cell()]


def without_reason(judged, explained):
    return sum(row.is_short and reason_for(explained, row) == UNKNOWN for row in judged)


def workloads(described):
    return table(["<workload", "<group", "<kinds", "<limit", "<what it does"], [
        [text_cell(each.name), text_cell(each.group), text_cell(", ".join(each.kinds)), text_cell(each.limit),
         text_cell(each.what, "reason")] for each in described])


# ---- Memory ----------------------------------------------------------------------------------------------------------

def by_title(first_cells, values, shown):
    """The row of a table with a column for each title; `shown(value)` is text and sort value."""
    return [*first_cells, *(cell(*shown(values[title])) if title in values else empty_cell() for title in TITLES)]


def small_sizes(sizes):
    rows = [by_title([text_cell(row["collection"]), cell(str(row["n"]))], row["bytes"],
                     lambda size: (f"{size:,.0f}", size)) for row in sizes if row["n"] <= 1]
    return table(["<collection", "n", *TITLES], rows)


def peaks(rows):
    return table(["<collection", "n", *TITLES], [
        by_title([text_cell(row["collection"]), cell(f"{row['n']:,}", row["n"])], row["bytes"],
                 lambda size: (f"{size / 1e6:,.0f}", size)) for row in rows])


def allocations(rows):
    def shown(value):
        blocks, size = value
        count = "" if blocks is None else f"{blocks:.2f} × "
        return f"{count}{size:.1f} B", size
    return table(["<workload", "<kind", *TITLES], [
        by_title([text_cell(row["workload"]), text_cell(row["kind"])], row["allocations"], shown)
        for row in rows if row["allocations"]], tall=True)
