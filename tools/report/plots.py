"""The pictures of the page, as plotly.js takes them: plain data, drawn in the browser. Colours that depend on light and
dark are set there."""

import statistics

from columns import COLUMNS, MANAGED, NATIVE, OWN
from verdicts import AHEAD, BEHIND, EQUAL, UNCLEAR

COLOURS = {
    "vorn natives": "#0b5fa5", "vorn inline": "#3d9be9", "vorn buffer": "#7cc4ff",
    "C++": "#2e7d32", "GLib": "#9ccc65", "Abseil": "#00897b", "vqsort": "#827717",
    "Java": "#e65100", "Java arrays": "#ffb74d", "Go": "#8e24aa", "PyPy": "#c2185b", "CPython": "#f06292",
    "Node": "#6d4c41", "Node typed arrays": "#bcaaa4",
}
DASHES = {OWN: "solid", NATIVE: "dash", MANAGED: "dot"}
MARKERS = {OWN: "circle", NATIVE: "square", MANAGED: "diamond"}
VERDICT_COLOURS = {BEHIND: "#d1495b", UNCLEAR: "#b8b8b8", EQUAL: "#f2c14e", AHEAD: "#2a7fb8"}
VERDICT_ORDER = (BEHIND, UNCLEAR, EQUAL, AHEAD)
ROW_HEIGHT = 20  # of a bar or a field, in pixels


def figure(identity, title, data, layout, height=420):
    return {"id": identity, "title": title, "data": data, "layout": {**layout, "height": height}}


def line(column, sizes, values, unit):
    return {
        "type": "scatter", "mode": "lines+markers", "name": column.title, "x": sizes, "y": values,
        "line": {"color": COLOURS[column.title], "dash": DASHES[column.family],
                 "width": 3 if column.family == OWN else 1.5},
        "marker": {"symbol": MARKERS[column.family], "size": 6},
        "hovertemplate": f"{column.title}<br>n = %{{x:,}}: %{{y:.3~g}} {unit}<extra></extra>",
    }


def log_axes(title):
    return {
        "xaxis": {"type": "log", "title": {"text": "n"}, "dtick": 1},
        "yaxis": {"type": "log", "title": {"text": title}},
        "legend": {"orientation": "h", "y": -0.25},
    }


def time_plots(rows, workloads):
    """Nanoseconds for an operation against n, one picture for each workload and kind."""
    figures = []
    for workload in workloads:
        for kind in workload.kinds:
            own = sorted((row for row in rows if (row["workload"], row["kind"]) == (workload.name, kind)),
                         key=lambda row: row["n"])
            data = []
            for column in COLUMNS:
                points = [(row["n"], statistics.median(row["samples"][column.title]))
                          for row in own if column.title in row["samples"]]
                if points:
                    data.append(line(column, [n for n, _ in points], [round(ns, 4) for _, ns in points], "ns"))
            if data:
                figures.append(figure(f"time-{workload.name}-{kind}", f"{workload.name}, {kind}", data, log_axes("ns")))
    return figures


def memory_plots(sizes):
    """Bytes for an element against n, one picture for each collection."""
    figures = []
    for collection in dict.fromkeys(row["collection"] for row in sizes):
        own = [row for row in sizes if row["collection"] == collection and row["n"] > 0]
        data = []
        for column in COLUMNS:
            points = [(row["n"], row["bytes"][column.title] / row["n"]) for row in own if column.title in row["bytes"]]
            if any(value > 0 for _, value in points):
                data.append(line(column, [n for n, _ in points], [round(value, 3) for _, value in points], "bytes"))
        if data:
            identity = "memory-" + collection.replace(" ", "-")
            figures.append(figure(identity, collection, data, log_axes("bytes an element")))
    return figures


def names_of(judged):
    return [f"{row.name} {row.n:,}" for row in judged]


def ratio_bars(judged):
    """Our best form against the quickest language and library: at a thousand, and at the most up to a million."""
    figures = []
    for size in sorted({1_000, max((row.n for row in judged if row.n <= 1_000_000), default=1_000)}):
        rows = [row for row in judged if row.n == size][::-1]  # the first one on top
        if not rows:
            continue
        data = []
        for label, attribute, colour in (("the quickest language", "managed", "#e65100"),
                                         ("the quickest library of C++ or C", "native", "#2e7d32")):
            chosen = [row for row in rows if getattr(row, attribute)]
            ratios = [row.ratios[getattr(row, attribute)] for row in chosen]
            data.append({
                "type": "bar", "orientation": "h", "name": label, "y": [row.name for row in chosen],
                "x": [round(ratio.median, 4) for ratio in ratios], "marker": {"color": colour},
                "error_x": {"type": "data", "symmetric": False, "thickness": 1, "width": 2,
                            "array": [round(min(ratio.high, 1e6) - ratio.median, 4) for ratio in ratios],
                            "arrayminus": [round(ratio.median - ratio.low, 4) for ratio in ratios]},
                "customdata": [getattr(row, attribute) for row in chosen],
                "hovertemplate": "%{y}: %{x:.3~g} times %{customdata}<extra></extra>",
            })
        layout = {
            "barmode": "group", "bargap": 0.3, "legend": {"orientation": "h", "y": 1.02, "yanchor": "bottom"},
            "xaxis": {"type": "log", "title": {"text": "times as long as the peer (less is better)"}, "side": "bottom"},
            "yaxis": {"automargin": True, "tickfont": {"size": 10}, "dtick": 1},
            "shapes": [{"type": "line", "x0": 1, "x1": 1, "y0": 0, "y1": 1, "yref": "paper", "line": {"width": 1.5}}],
        }
        figures.append(figure(f"ratios-{size}", f"Ratios at n = {size:,}", data, layout, 120 + ROW_HEIGHT * len(rows)))
    return figures


def verdict_scale():
    """A colour for each verdict, in steps."""
    colours = [VERDICT_COLOURS[verdict] for verdict in VERDICT_ORDER]
    return [[(i + edge) / len(colours), colour] for i, colour in enumerate(colours) for edge in (0, 1)]


def heat_map(judged):
    rows = judged[::-1]
    peers = [column.title for column in COLUMNS if any(column.title in row.ratios for row in rows)]
    values, texts = [], []
    for row in rows:
        values.append([VERDICT_ORDER.index(row.verdicts[peer]) if peer in row.verdicts else None for peer in peers])
        texts.append([f"{row.verdicts[peer]}: {row.ratios[peer].median:.2f} "
                      f"({row.ratios[peer].low:.2f} to {row.ratios[peer].high:.2f})"
                      if peer in row.ratios else "" for peer in peers])
    data = [{
        "type": "heatmap", "x": peers, "y": names_of(rows), "z": values, "text": texts, "xgap": 1, "ygap": 1,
        "zmin": -0.5, "zmax": len(VERDICT_ORDER) - 0.5, "colorscale": verdict_scale(), "showscale": False,
        "hovertemplate": "%{y} beside %{x}<br>%{text}<extra></extra>",
    }]
    layout = {
        "xaxis": {"side": "top", "tickangle": -60, "automargin": True, "dtick": 1},
        "yaxis": {"automargin": True, "tickfont": {"size": 9}, "dtick": 1},
    }
    return figure("heat-map", "All rows beside all peers", data, layout, 160 + 15 * len(rows))


def all_figures(figures, judged, workloads):
    return {
        "ratios": ratio_bars(judged),
        "heat": [heat_map(judged)] if judged else [],
        "times": time_plots(figures["rows"], workloads),
        "memory": memory_plots(figures["memory"]["sizes"]),
    }
