#!/usr/bin/env python3
"""Checks that the stress program calls everything that it is about.

    natives_test.py STRESS_PROGRAM

Every native that the public headers declare, and every function of the embedding API but those that are about the whole
process, is an operation of some topic.
"""

import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests/packaging"))

import check_exports  # noqa: E402
# It ends the use of the runtime by all threads.
OF_THE_PROCESS = {"vorn_runtime_stop"}


def declared():
    """The natives and the functions of the embedding API, as the headers name them."""
    natives = set()
    for header in sorted((check_exports.PUBLIC_HEADERS / "vorn/collections").glob("*.h")):
        natives.update(check_exports.NATIVE.findall(check_exports.code_of(header)))
    embedding = {name for _, name, _ in
                 check_exports.EMBEDDING.findall(check_exports.code_of(check_exports.RUNTIME_HEADER))}
    return natives, embedding - OF_THE_PROCESS


def main():
    told = subprocess.run([sys.argv[1], "--natives"], check=True, capture_output=True, text=True).stdout.split()
    called = set(told) | {f"vorn_collections_{name}" for name in told}
    natives, embedding = declared()
    missing = sorted((natives | embedding) - called)
    for name in missing:
        print(f"{name}: no operation of the stress program calls it")
    print(f"{len(natives)} natives, {len(embedding)} functions of the embedding API, {len(missing)} not called")
    if len(natives) < 100 or len(embedding) < 50:
        sys.exit("this script no longer understands the headers")
    sys.exit(1 if missing else 0)


if __name__ == "__main__":
    main()
