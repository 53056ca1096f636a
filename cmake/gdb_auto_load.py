"""Loads the printers of the vorn collections whenever gdb meets the library that this file is named after."""

import os
import runpy
import sys

# This file lies somewhere below PREFIX/share/gdb/auto-load, the printers in PREFIX/share/vorn/gdb.
_printers = os.path.join(__file__.split('/gdb/auto-load/')[0], 'vorn', 'gdb')
if _printers not in sys.path:
    sys.path.insert(0, _printers)
runpy.run_path(os.path.join(_printers, 'vorn_printers.py'))
