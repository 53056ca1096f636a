"""Runs every example of the guide to the Python package and compares what it prints (docs/python.md)."""

import doctest
import pathlib
import re
import sys

GUIDE = pathlib.Path(__file__).resolve().parent.parent.parent / 'docs/python.md'
BLOCK = re.compile(r'^```(\w*)\n(.*?)^```$', re.MULTILINE | re.DOTALL)
# Blocks of other languages are commands of a shell, which other tests give.
NOT_RUN = {'sh'}


def main():
    text = GUIDE.read_text(encoding='utf-8')
    runner = doctest.DocTestRunner()
    examples = 0
    names = {}
    for block in BLOCK.finditer(text):
        language, code = block.groups()
        line = text.count('\n', 0, block.start()) + 1
        if language in NOT_RUN:
            continue
        if language != 'python' or '>>>' not in code:
            print(f'{GUIDE.name}:{line}: a block that nobody runs')
            return 1
        test = doctest.DocTestParser().get_doctest(code, names, GUIDE.name, str(GUIDE), line)
        examples += len(test.examples)
        runner.run(test, clear_globs=False)
        names = test.globs
    print(f'{examples} examples, {runner.failures} failures')
    return 1 if runner.failures or examples < 40 else 0


if __name__ == '__main__':
    sys.exit(main())
