"""Loads the printers of vorn.collections into gdb from where this file stands:

    (gdb) source tools/gdb/vorn_printers.py
    (gdb) help vorn

The installed library is followed by a file like this one, which gdb reads by itself. docs/debugging.md is the guide.
"""

import os
import sys

import gdb

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import vorn_gdb  # noqa: E402: found through the line above

vorn_gdb.register(gdb.current_objfile())
