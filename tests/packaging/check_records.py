#!/usr/bin/env python3
"""Compares the sizes of the records that others know, and the offset and size of each field, with the committed list
records.txt, from the debugging information of records.cpp.

    check_records.py RECORDS_LIBRARY [--update]

What has moved, grown, come or gone is a line of difference each; a record of the embedding API that is not looked at is a
problem too. With --update the list is written anew. Skipped (77) without gdb, as VORN_GDB names it.
"""

import difflib
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
LIST = ROOT / "tests/packaging/records.txt"
RUNTIME_HEADER = ROOT / "runtime/include/vorn/runtime.h"
HEADING = """\
# The records that programs and runtimes know the layout of: the size of each, and of each field its offset and size in
# bytes. Written by tests/packaging/check_records.py --update. A change of the embedding API's or the inline forms' needs a
# new VORN_ABI unless it is behind a struct_size; the others are between the two libraries, which are of one version.
"""
# Runs inside gdb.
SCRIPT = """
import gdb
def show(record, type, base, path):
    for field in type.fields():
        if not hasattr(field, 'bitpos'):
            continue
        offset = base + field.bitpos // 8
        inner = field.type.strip_typedefs()
        name = path if field.is_base_class else f'{path}.{field.name}' if field.name else path
        if inner.code in (gdb.TYPE_CODE_STRUCT, gdb.TYPE_CODE_UNION) and inner.fields():
            show(record, inner, offset, name)
        else:
            print(f'{offset:5} {inner.sizeof:5}  {name}')
every = gdb.lookup_type('(anonymous namespace)::Records')
for member in sorted(every.fields(), key=lambda field: str(field.type.target())):
    record = member.type.target().strip_typedefs()
    name = str(member.type.target()).removeprefix('struct ').removeprefix('union ')
    print(f'{record.sizeof:11}  {name}')
    show(name, record, 0, name)
"""


def layout(library):
    gdb = os.environ.get("VORN_GDB", "gdb")
    try:
        told = subprocess.run([gdb, "-nx", "-batch", library, "-ex", f"python exec({SCRIPT!r})"], check=True,
                              capture_output=True, text=True)
    except FileNotFoundError:
        print("skipped: no gdb")
        sys.exit(77)
    if told.stderr.strip():
        sys.exit(told.stderr)
    return HEADING + told.stdout


def main():
    found = layout(sys.argv[1])
    if sys.argv[2:] == ["--update"]:
        LIST.write_text(found, encoding="utf-8")
    committed = LIST.read_text(encoding="utf-8")
    problems = [line for line in difflib.ndiff(committed.splitlines(), found.splitlines()) if line[0] in "+-"]
    for name in re.findall(r"^typedef (?:struct|union) (\w+)", RUNTIME_HEADER.read_text(encoding="utf-8"), re.MULTILINE):
        if not re.search(rf" {name}$", found, re.MULTILINE):
            problems.append(f"{name}: records.cpp does not look at it")
    print("\n".join(problems))
    print(f"{len(found.splitlines())} lines, {len(problems)} problems")
    return 1 if problems or len(found.splitlines()) < 100 else 0


if __name__ == "__main__":
    sys.exit(main())
