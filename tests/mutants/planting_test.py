"""Faults are found where they belong, written so that the program stays what it is, and make the difference they name.

Plants all faults at once in sample.cpp, compiles it, and runs it without a fault and with each.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
SAMPLE = pathlib.Path(__file__).resolve().parent / 'sample.cpp'
sys.path.insert(0, str(ROOT / 'tools/mutants'))

try:
    import planting
    import sites
except ImportError as missing:
    print(f'skipped: {missing}; the Debian package is python3-clang-14')
    sys.exit(77)

# By a part of the line on which they stand.
EXPECTED = [
    ('if (number < limit)', 'condition negated', 'number < limit negated'),
    ('if (number < limit)', 'bound moved', '< became <='),
    ('if (number < limit)', 'comparison turned', '< became >'),
    ('if (number < limit)', 'statement left out', 'sum += number; left out'),
    ('if (number < limit)', 'operator exchanged', '+= became -='),
    ('left > 0 && right > 0', 'operator exchanged', '&& became ||'),
    ('return -1', 'statement left out', 'return -1; left out'),
    ('return left * right', 'operator exchanged', '* became /'),
    ('print("below five"', 'constant changed', '5 became 5 + 1'),
    ('return kTwice<kRows + 1>', 'operator exchanged', '* became /'),
]
# What the compiler evaluates: constants, an array's type, a template's arguments.
FORBIDDEN = [
    ('constexpr int kRows', 'constant changed', '3 became 3 + 1'),
    ('static_assert(', 'operator exchanged', '+ became -'),
    ('std::array<int, 4>', 'constant changed', '4 became 4 + 1'),
    ('return kTwice<kRows + 1>', 'operator exchanged', '+ became -'),
    ('return kTwice<kRows + 1>', 'constant changed', '1 became 1 + 1'),
]


def line_of(fault):
    return SAMPLE.read_text(encoding='utf-8').splitlines()[fault.line - 1]


def is_among(faults, text, sort, change):
    return any(text in line_of(fault) and (fault.sort, fault.change) == (sort, change) for fault in faults)


def run(program, number):
    done = subprocess.run([program], env=os.environ | {'VORN_PLANTED': str(number)}, capture_output=True, text=True,
                          check=False)
    return done.returncode, done.stdout


def main():
    problems = []
    with tempfile.TemporaryDirectory() as scratch:
        root = pathlib.Path(scratch)
        file = root / 'collections/sample.cpp'
        file.parent.mkdir()
        shutil.copy(SAMPLE, file)
        finder = sites.Finder(root, root)
        finder.collect(sites.parse(file, ['-std=c++20'], root, root))
        faults = sorted(finder.faults.values(), key=lambda fault: fault.key)
        for number, fault in enumerate(faults, 1):
            fault.number = number
        problems += [f'not found: {one}' for one in EXPECTED if not is_among(faults, *one)]
        problems += [f'is the compiler\'s: {one}' for one in FORBIDDEN if is_among(faults, *one)]

        original = root / 'original'
        subprocess.run(['g++', '-std=c++20', '-o', original, SAMPLE], check=True)
        at_rest = run(original, 0)
        # Two faults of one operator replace the same text: the second of them goes into a program of its own.
        # In the order of their places, the wider ones come first; the other way round it must not matter.
        rest = faults[::-1]
        while rest:
            text, refused = planting.write_faults(SAMPLE.read_bytes(), rest)
            file.write_bytes(b'#include "tools/mutants/planted.h"\n#line 1\n' + text)
            program = root / 'planted'
            subprocess.run(['g++', '-std=c++20', '-w', '-I', ROOT, '-o', program, file], check=True)
            if run(program, 0) != at_rest:
                problems.append(f'without a fault the program is another:\n{run(program, 0)}')
            for fault in rest:
                if fault in refused:
                    continue
                # The constants in main() may change without changing what is printed.
                visible = not line_of(fault).startswith('  print(') or fault.sort != 'constant changed'
                if visible and run(program, fault.number) == at_rest:
                    problems.append(f'makes no difference: {fault}')
            rest = refused
    print(*problems, sep='\n')
    print(f'{len(faults)} faults, {len(problems)} problems')
    return 1 if problems or len(faults) < 30 else 0


if __name__ == '__main__':
    sys.exit(main())
