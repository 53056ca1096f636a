"""Faults that change nothing that a test could see, and why: explained.txt."""

import pathlib

FILE = pathlib.Path(__file__).resolve().parent / 'explained.txt'


def read():
    """(file, sort, change, text of the line): the reason. Lines have no numbers, which every change moves."""
    explained, key = {}, None
    for line in FILE.read_text(encoding='utf-8').splitlines():
        if not line or line.startswith('#'):
            continue
        if line.startswith('    '):
            explained[key] = line.strip()
        else:
            key = tuple(part.strip() for part in line.split(' | ', 3))
            if len(key) != 4:
                raise SystemExit(f'{FILE}: not four parts: {line}')
    return explained


def key_of(fault):
    text = (FILE.parent.parent.parent / fault.path).read_text(encoding='utf-8').splitlines()[fault.line - 1]
    return fault.path, fault.sort, fault.change, text.strip()


def without_explained(verdicts):
    explained = read()
    return [verdict for verdict in verdicts if key_of(verdict.fault) not in explained]
