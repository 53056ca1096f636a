"""Why rows are behind, as bench/report/reasons.tsv explains them."""

from workloads import ROOT

TABLE = ROOT / "bench/report/reasons.tsv"
UNKNOWN = "no reason known yet"


def parse(text):
    """[(workload, kind, sizes, reason)]; a kind or sizes of "*" are all."""
    found = []
    for line in text.splitlines():
        if line and not line.startswith("#"):
            workload, kind, sizes, reason = line.split("\t")
            found.append((workload, kind, None if sizes == "*" else {int(size) for size in sizes.split(",")}, reason))
    return found


def load():
    return parse(TABLE.read_text(encoding="utf-8"))


def reason_for(reasons, row):
    for workload, kind, sizes, reason in reasons:
        if workload == row.workload and kind in ("*", row.kind) and (sizes is None or row.n in sizes):
            return reason
    return UNKNOWN
