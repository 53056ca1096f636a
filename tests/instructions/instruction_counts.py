"""Counts the instructions that the kernels take on their paths, in the emulator, and holds the vector path to no more than
the plain one takes. Prints the table of docs/architectures.md.

    instruction_counts.py EMULATOR... one_kernel
"""

import subprocess
import sys

PLAIN, NEON = 0, 4
KINDS = {'Byte': 2, 'Short': 3, 'Int': 5, 'Long': 7, 'Float': 9, 'Double': 10, 'Boolean': 11}
WIDTHS = {'Byte': 1, 'Short': 2, 'Int': 4, 'Long': 8, 'Float': 4, 'Double': 8, 'Boolean': 1}
OPERATIONS = {
    'sum': ('Byte', 'Short', 'Int', 'Long', 'Boolean'),
    'first': ('Byte', 'Short', 'Int', 'Long', 'Double', 'Boolean'),
    'last': ('Byte', 'Short', 'Int', 'Long', 'Double'),
    'count': ('Byte', 'Short', 'Int', 'Long', 'Double'),
    'reverse': ('Byte', 'Short', 'Int', 'Long'),
}
# In bytes; between them lies a whole number of every path's blocks.
SHORTER, LONGER = 8192, 40960
# Elements of a short range.
FEW = 20


def instructions(program, path, operation, kind, count):
    """All that a run executes. The emulator logs each block of code that it runs, and here a block is one instruction."""
    emulator, (binary,) = program[:-1], program[-1:]
    command = [*emulator, '-singlestep', '-d', 'nochain,exec', binary, str(path), operation, str(KINDS[kind]),
               str(count)]
    with subprocess.Popen(command, stderr=subprocess.PIPE) as process:
        count = sum(chunk.count(b'\n') for chunk in iter(lambda: process.stderr.read(1 << 20), b''))
    if process.returncode != 0:
        sys.exit(f'{command} failed: {process.returncode}')
    return count


def per_element(program, path, operation, kind):
    shorter, longer = SHORTER // WIDTHS[kind], LONGER // WIDTHS[kind]
    return (instructions(program, path, operation, kind, longer)
            - instructions(program, path, operation, kind, shorter)) / (longer - shorter)


def for_few(program, path, operation, kind):
    """Of a whole call on a short range."""
    return instructions(program, path, operation, kind, FEW) - instructions(program, path, 'nothing', kind, FEW)


def main():
    program = sys.argv[1:]
    worse = []
    print(f'| Operation | Kind | plain, an element | NEON, an element | plain, {FEW} elements | NEON, {FEW} elements |')
    print('|---|---|---|---|---|---|')
    for operation, kinds in OPERATIONS.items():
        for kind in kinds:
            plain, neon = (per_element(program, path, operation, kind) for path in (PLAIN, NEON))
            plain_few, neon_few = (for_few(program, path, operation, kind) for path in (PLAIN, NEON))
            print(f'| {operation} | {kind} | {plain:.2f} | {neon:.2f} | {plain_few} | {neon_few} |', flush=True)
            if neon > plain:
                worse.append(f'{operation} {kind}')
    if worse:
        sys.exit(f'more instructions than on the plain path: {", ".join(worse)}')


main()
