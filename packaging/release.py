"""What a release is: its version, its files and its date. For the programs beside this file."""

import functools
import os
import pathlib
import re
import subprocess

ROOT = pathlib.Path(__file__).resolve().parent.parent
_TOP = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")

VERSION = re.search(r"^project\(vorn_collections VERSION (\S+)", _TOP, re.MULTILINE)[1]
ABI = re.search(r"^set\(VORN_ABI (\d+)\)", _TOP, re.MULTILINE)[1]


def _git(*arguments):
    return subprocess.run(["git", "-C", ROOT, *arguments], check=True, stdout=subprocess.PIPE, text=True).stdout


def _is_checkout():
    return (ROOT / ".git").exists()


def files():
    """The files of the release, sorted: those that git knows, or in an unpacked release all that were not built."""
    if _is_checkout():
        paths = [pathlib.PurePath(name) for name in _git("ls-files", "-z").split("\0") if name]
    else:
        paths = [path.relative_to(ROOT) for path in ROOT.rglob("*") if path.is_file()]
        paths = [path for path in paths if path.parts[0] != "build" and "__pycache__" not in path.parts]
    return sorted(paths, key=str)


@functools.cache
def date():
    """Seconds since the epoch that everything in a release is dated with: SOURCE_DATE_EPOCH, else the last commit's
    date, which an unpacked release bears on all its files."""
    if given := os.environ.get("SOURCE_DATE_EPOCH"):
        return int(given)
    if _is_checkout():
        return int(_git("log", "-1", "--format=%ct"))
    return int((ROOT / "LICENSE").stat().st_mtime)
