"""Requires that the fuzzers call everything that the two shared libraries offer: the natives, the functions for other
modules of the runtime, and the embedding API.

    reach_test.py COLLECTIONS_LIBRARY RUNTIME_LIBRARY OBJECT_FILE...
"""

import os
import re
import subprocess
import sys

# What answers the same whatever is done, or is there for a debugger to look at. Suites of their own test them.
EXCEPTIONS = {
    "vorn_collections_version",
    "vorn_runtime_version",
    "vorn_debugger_heap",
    "vorn_debugger_roots",
    "vorn_debugger_threads",
}


def symbols(options, files):
    output = subprocess.run(["nm", *options, *files], check=True, capture_output=True, text=True).stdout
    return {line.split()[-1].split("@")[0] for line in output.splitlines() if line.strip() and not line.endswith(":")}


def offered(library):
    """The functions of the library's public headers, which are not the runtime's own port."""
    names = symbols(["-D", "--defined-only"], [library])
    if "runtime" in os.path.basename(library):
        return {name for name in names if re.match(r"vorn_[a-z]", name)}
    return {
        name
        for name in names
        if name.startswith(("vorn_collections_", "Vorn_"))
        or name.endswith("_walk")
        or name.endswith("_walk_on")
        or re.search(
            r"arrayLogicalSize|clearArrayStorage|resizeArrayStorage|copyArrayStorage|arrayReadI64|arrayReadF64"
            r"|arraySlotToObject|Vorn_readByteArrayData|Vorn_writeByteArrayData|snapshotListObjectValues|tryMapLookup"
            r"|valueToDisplayString",
            name,
        )
    }


def main():
    collections, runtime, *objects = sys.argv[1:]
    called = symbols(["--undefined-only"], [name for argument in objects for name in argument.split(";")])
    wanted = offered(collections) | offered(runtime)
    wanted -= EXCEPTIONS
    missing = sorted(wanted - called)
    print(f"{len(wanted)} functions are offered, {len(wanted) - len(missing)} of them called by some fuzzer")
    for name in missing:
        print(f"no fuzzer calls {name}")
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main())
