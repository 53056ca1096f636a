"""A small data set as a run of the report leaves it, made up for tests: no figure in it was measured."""

SIZES = (1_000, 100_000)


def rows():
    made = []
    for n in SIZES:
        made.append({"workload": "append", "kind": "Int", "n": n,
                     "samples": {"vorn natives": [4.0, 4.2, 4.1], "vorn buffer": [1.0, 1.1, 1.0],
                                 "C++": [1.0, 1.0, 1.1], "Java": [3.0, 3.1, 2.9], "CPython": [20.0, 21.0, 19.0],
                                 "again": [4.4, 4.2, 4.1]},
                     "checksums": {title: "7" for title in ("vorn natives", "vorn buffer", "C++", "Java", "CPython")}})
        made.append({"workload": "map-get", "kind": "String", "n": n,
                     "samples": {"vorn natives": [30.0, 31.0, 32.0], "Abseil": [8.0, 8.1, 8.2],
                                 "Go": [10.0, 11.0, 10.5],
                                 "PyPy": [31.0, 30.0, 32.5], "again": [30.0, 31.5, 32.0]},
                     "checksums": {title: "9" for title in ("vorn natives", "Abseil", "Go", "PyPy")}})
    return made


def figures():
    return {
        "made": "2020-02-29",
        "machine": {"processor": "A processor </script> of <b>tests</b>", "cores": 2, "memory": 8, "system": "Debian"},
        "versions": {"vorn": "0.1.0", "Java": "17"},
        "quick": True, "rounds": 3, "seconds": 61,
        "rows": rows(),
        "memory": {
            "sizes": [
                {"collection": "list of Int", "n": n, "bytes": {"vorn natives": 64 + 4 * n, "Java": 24 + 20 * n}}
                for n in (0, 1, 1_000, 1_000_000)],
            "peaks": [{"collection": "list of Int", "n": 10_000_000, "bytes": {"vorn natives": 9e7, "Java": 4e8}}],
            "allocations": [{"workload": "append", "kind": "Int",
                             "allocations": {"vorn natives": [0.01, 8.0], "Java": [None, 24.0]}}],
        },
    }


if __name__ == "__main__":
    import json
    print(json.dumps(figures()))
