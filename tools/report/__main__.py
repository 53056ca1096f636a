#!/usr/bin/env python3
"""Makes the report: `./dev report`. Measures, writes build/report/report.json, and from that the page and the summary.

    tools/report [--quick] [--peers=java,go,..] [--only=WORKLOAD,..] [--rounds=N] [--no-memory]
    tools/report --render=FILE.json [--page=PAGE.html]
                                        makes the page and the summary of figures that were measured before
    tools/report --check [--page=PAGE.html]
                                        looks at a page in a browser without a screen

A run of chosen workloads or peers leaves docs/performance.md as it is, and so does --render.
"""

import argparse
import json
import pathlib
import sys
import time

import check_page
import machine
import measure
import memory
import page
import programs
import reasons
import summary
import verdicts
import workloads
from columns import PEERS

REPORT = programs.BUILT / "report.html"
FIGURES = programs.BUILT / "report.json"


def arguments():
    parser = argparse.ArgumentParser(prog="./dev report", allow_abbrev=False)
    parser.add_argument("--quick", action="store_true", help="two sizes of each workload, in five minutes")
    parser.add_argument("--peers", default=",".join(PEERS), help="which languages to measure beside ours")
    parser.add_argument("--only", help="measure these workloads only")
    parser.add_argument("--rounds", type=int, help="how often each column has its turn")
    parser.add_argument("--no-memory", action="store_true", help="measure times only")
    parser.add_argument("--render", metavar="FILE", type=pathlib.Path, help="measure nothing, show these figures")
    parser.add_argument("--check", action="store_true", help="look at the page in a browser without a screen")
    parser.add_argument("--page", metavar="FILE", type=pathlib.Path, default=REPORT, help="the page, elsewhere")
    return parser.parse_args()


def measured(chosen, table, peers, options):
    effort = measure.QUICK if options.quick else measure.FULL
    if options.rounds:
        effort = effort._replace(rounds=options.rounds)
    columns = measure.columns_of(peers)
    programs.build_peers(peers)
    start = time.monotonic()
    known = measure.known_rows(columns)
    undescribed = measure.undescribed_rows(known, table)
    if undescribed:
        raise SystemExit(f"report: not in workloads.tsv: {', '.join(undescribed)}")
    rows = measure.measure_all(columns, known, chosen, effort, options.quick)
    taken = None if options.no_memory else memory.measure_memory(columns, known, chosen, options.quick)
    return {
        **machine.description(peers),
        "quick": options.quick,
        "rounds": effort.rounds,
        "seconds": round(time.monotonic() - start),
        "rows": rows,
        "memory": taken or {"sizes": [], "peaks": [], "allocations": []},
    }


def show(figures, place, partial):
    """Writes the page and the summary and prints what they say. False when programs did not do the same work."""
    table = workloads.load()
    judged = verdicts.judge_all(figures["rows"], {workload.name: workload.limit for workload in table})
    explained = reasons.load()
    place.parent.mkdir(parents=True, exist_ok=True)
    place.write_text(page.render(figures, judged, table, explained), encoding="utf-8")
    text = summary.render(figures, judged, explained)
    place.with_suffix(".md").write_text(text, encoding="utf-8")
    if not partial:
        summary.put_into(workloads.ROOT / "docs/performance.md", text)
    different = measure.mismatches(figures["rows"])
    for line in different:
        print(f"different work: {line}")
    print(f"page: {place}")
    print(summary.last_line(judged, explained, verdicts.noise_of(figures["rows"])))
    return not different


def main():
    options = arguments()
    if options.check:
        return check_page.check(options.page)
    if options.render:
        figures = json.loads(options.render.read_text(encoding="utf-8"))
        return 0 if show(figures, options.page, partial=True) else 1

    peers = [peer for peer in options.peers.split(",") if peer]
    unknown = set(peers) - set(PEERS)
    if unknown:
        raise SystemExit(f"report: no peer {', '.join(sorted(unknown))}; there are {', '.join(PEERS)}")
    table = workloads.load()
    chosen = [workload for workload in table if not options.only or workload.name in options.only.split(",")]
    if not chosen:
        raise SystemExit(f"report: no such workloads: {options.only}")
    try:
        figures = measured(chosen, table, peers, options)
    except programs.ProgramFailed as failure:
        raise SystemExit(f"report: {failure}") from failure
    FIGURES.write_text(json.dumps(figures), encoding="utf-8")
    partial = chosen != table or set(peers) != set(PEERS) or options.no_memory
    return 0 if show(figures, options.page, partial) else 1


if __name__ == "__main__":
    sys.exit(main())
