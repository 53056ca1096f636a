"""The page: one file with its pictures, its library for them and its tables, which needs no network."""

import html
import json
import pathlib

import plots
import tables
import verdicts

HERE = pathlib.Path(__file__).resolve().parent
# Debian's python3-plotly ships it.
PLOTLY = pathlib.Path("/usr/share/python3-plotly/plotly.js")

READING = """
<p>A row is a workload, a kind of element and a size <i>n</i>; every program does the same work, which their
checksums show. A ratio says how many times as long as a peer our quickest form takes: below 1 we are ahead. Behind it
stand the quartiles of the ratios of the single rounds. A row is <b>ahead</b> or <b>behind</b> when the quartiles are on
one side of 1 and the median is more than 5&nbsp;% away from it, <b>equal</b> when all lies within 10&nbsp;%, else
<b>unclear</b>: the spread hides the verdict. The verdict of a row is that against the quickest language for it. Against
the libraries of C++ and C each workload has a limit (1.3 times for bulk work, 1.5 times for tables, 5&nbsp;ns for
single calls).</p>
"""


def embedded(name):
    return (HERE / name).read_text(encoding="utf-8")


def script_safe(text):
    """Inside a script element nothing may look like its end."""
    return text.replace("</", "<\\/").replace("<!--", "<\\!--")


def library():
    return PLOTLY.read_text(encoding="utf-8") if PLOTLY.exists() else ""


def plot_places(figures, wide=False):
    places = "".join(
        f'<section><h3>{html.escape(figure["title"])}</h3>'
        f'<div class="picture" id="{figure["id"]}" style="height:{figure["layout"]["height"]}px"></div></section>'
        for figure in figures)
    return f'<div class="plots{" wide" if wide else ""}">{places}</div>'


def facts(figures, noise):
    machine = figures["machine"]
    versions = ", ".join(f"{name} {version}" for name, version in figures["versions"].items())
    kind = "A quick run" if figures["quick"] else "A full run"
    return (f'<p class="faint">{kind} of {html.escape(figures["made"])}, {figures["rounds"]} rounds in '
            f'{figures["seconds"] // 60} min {figures["seconds"] % 60} s, on {html.escape(machine["processor"])}, '
            f'{machine["cores"]} cores, {machine["memory"]} GB, {html.escape(machine["system"])}. '
            f'{html.escape(versions)}.</p>'
            f'<p class="faint">Noise: the same program beside itself differed by {noise.median:.1%} in the middle of '
            f'all rows, by at most {noise.most:.1%} in nine of ten.</p>')


def tiles(judged, explained):
    counts = verdicts.count_verdicts(judged)
    shown = [(counts[verdict], f"rows {verdict}", verdict) for verdict in
             (verdicts.AHEAD, verdicts.EQUAL, verdicts.BEHIND, verdicts.UNCLEAR)]
    shown.append((sum(row.beyond_limit for row in judged), "beyond the limit to C++ and C", ""))
    shown.append((tables.without_reason(judged, explained), "of these or behind, without a known reason", ""))
    return '<div class="tiles">' + "".join(
        f'<div class="tile {style}"><b>{count}</b>{label}</div>' for count, label, style in shown) + "</div>"


def render(figures, judged, workloads, explained):
    pictures = plots.all_figures(figures, judged, workloads)
    by_identity = {figure["id"]: figure for group in pictures.values() for figure in group}
    memory = figures["memory"]
    body = [
        '<button id="theme">light / dark</button><h1>vorn collections beside their peers</h1>',
        facts(figures, verdicts.noise_of(figures["rows"])), tiles(judged, explained), READING,
        "<h2>Ratios</h2>", plot_places(pictures["ratios"], wide=True),
        "<h2>All rows beside all peers</h2><p>Blue: ahead; yellow: equal; red: behind; grey: unclear.</p>",
        plot_places(pictures["heat"], wide=True),
        "<h2>Where we are behind</h2>", tables.short_rows(judged, explained),
        "<h2>All rows</h2>", tables.all_rows(judged),
        "<h2>Time against size</h2><p>Nanoseconds for an operation.</p>", plot_places(pictures["times"]),
        "<h2>Workloads</h2>", tables.workloads(workloads),
        "<h2>Memory</h2>", plot_places(pictures["memory"]),
        "<h3>Bytes of an empty collection and of one with one element</h3>", tables.small_sizes(memory["sizes"]),
        "<h3>Megabytes taken at most while one collection of ten million is built</h3>", tables.peaks(memory["peaks"]),
        "<h3>Allocations for an element, at n = 1,000</h3>", tables.allocations(memory["allocations"]),
    ]
    return f"""<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>vorn collections beside their peers</title>
<style>{embedded("page.css")}</style>
</head>
<body>
{"".join(body)}
<script type="application/json" id="figures">{script_safe(json.dumps(by_identity))}</script>
<script>{script_safe(library())}</script>
<script>{embedded("page.js")}</script>
</body>
</html>
"""
