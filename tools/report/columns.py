"""The columns of the report: who is measured, and by which program."""

from typing import NamedTuple

OWN, NATIVE, MANAGED = "own", "native", "managed"


class Column(NamedTuple):
    title: str
    family: str  # ours, a library of C++ or C, or a language with a runtime
    program: str
    form: str  # by which the program knows it


COLUMNS = (
    Column("vorn natives", OWN, "vorn", "natives"),
    Column("vorn inline", OWN, "vorn", "inline"),
    Column("vorn buffer", OWN, "vorn", "buffer"),
    Column("C++", NATIVE, "vorn", "C++"),
    Column("GLib", NATIVE, "vorn", "GLib"),
    Column("Abseil", NATIVE, "vorn", "Abseil"),
    Column("vqsort", NATIVE, "vorn", "vqsort"),
    Column("Java", MANAGED, "java", "collections"),
    Column("Java arrays", MANAGED, "java", "arrays"),
    Column("Go", MANAGED, "go", "slices"),
    Column("PyPy", MANAGED, "pypy3", "lists"),
    Column("CPython", MANAGED, "python3", "lists"),
    Column("Node", MANAGED, "node", "arrays"),
    Column("Node typed arrays", MANAGED, "node", "typed arrays"),
)

FAMILIES = {column.title: column.family for column in COLUMNS}
PEERS = ("java", "go", "pypy3", "python3", "node")

# A second process of our own program, measured like any other: what it differs from the first is noise.
AGAIN = "again"
