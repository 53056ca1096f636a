"""That the debugger shows what the guide says (docs/debugging.md): every command there, in its order. Line breaks, addresses
and counts of blocks may differ."""

import re
import unittest

import gdb_session
from gdb_session import ROOT, run


def normalised(text):
    text = gdb_session.HEADER.sub('ADDRESS', re.sub(r'\d+ (blocks|bytes)', r'N \1', text))
    return ' '.join(text.split())


class GuideTest(unittest.TestCase):

    def test_each_command_shows_what_the_guide_says(self):
        guide = (ROOT / 'docs/debugging.md').read_text(encoding='utf-8')
        blocks = ''.join(re.findall(r'^```gdb\n(.*?)^```$', guide, re.DOTALL | re.MULTILINE))
        exchanges = [exchange.partition('\n') for exchange in blocks.split('(gdb) ')[1:]]
        self.assertGreater(len(exchanges), 8, 'the guide is no longer understood')
        exchanges = [(command, shown) for command, _, shown in exchanges if shown]
        for (command, expected), shown in zip(exchanges, run([command for command, _ in exchanges]), strict=True):
            with self.subTest(command=command):
                self.assertEqual(normalised(shown), normalised(expected))


if __name__ == '__main__':
    gdb_session.skip_without_gdb()
    unittest.main()
