"""Runs the text statistics program and compares its figures with an independent computation."""

import collections
import hashlib
import os
import re
import statistics
import string
import subprocess
import tempfile
import unittest

PROGRAM = os.environ['VORN_TEXT_STATISTICS']
GPL = '/usr/share/common-licenses/GPL-3'
GPL_SHA256 = '3972dc9744f6499f0f9b2dbf76696f2ae7ad8af9b23dde66d6af86c9dfb36986'
WATCHED = ('the', 'freedom', 'zebra')


def words_of(data):
    """The words of a file: a regular expression over its bytes, in place of the program's own scanner."""
    return [word.lower() for word in re.findall(rb"[A-Za-z0-9\x80-\xff]+(?:'[A-Za-z0-9\x80-\xff]+)*", data)]


def characters_of(data):
    """Code points, each byte outside UTF-8 counting as one."""
    return len(data.decode('utf-8', 'surrogateescape'))


def printed(word):
    """How a word appears in the report, where bytes outside UTF-8 are replaced one by one."""
    return re.sub('[\udc80-\udcff]', '\ufffd', word.decode('utf-8', 'surrogateescape'))


def run(*arguments, heap=None, stdout=subprocess.PIPE):
    environment = dict(os.environ)
    environment.pop('VORN_HEAP', None)
    if heap is not None:
        environment['VORN_HEAP'] = heap
    return subprocess.run([PROGRAM, *arguments], stdout=stdout, stderr=subprocess.PIPE, encoding='utf-8',
                          env=environment, timeout=120, check=False)


class TextStatisticsTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.directory = tempfile.TemporaryDirectory()
        self.addCleanup(self.directory.cleanup)

    def write(self, data):
        path = os.path.join(self.directory.name, 'text')
        with open(path, 'wb') as file:
            file.write(data)
        return path

    def line(self, report, label):
        """The rest of the only line that starts with the label."""
        found = [line.strip()[len(label):].strip() for line in report.splitlines() if line.strip().startswith(label)]
        self.assertEqual(len(found), 1, f'{label!r} in\n{report}')
        return found[0]

    def check_report(self, data, report, watched=WATCHED):
        words = words_of(data)
        lengths = [characters_of(word) for word in words]
        figures = report[:report.index('\n\n')]
        self.assertEqual(self.line(figures, 'bytes  '), str(len(data)))
        self.assertEqual(self.line(figures, 'characters  '), str(characters_of(data)))
        self.assertEqual(self.line(figures, 'words  '), str(len(words)))
        if words:
            self.assertEqual(self.line(figures, 'all words  '), f'{sum(lengths)} characters')
            self.check_lengths(words, lengths, figures)
        else:
            self.assertEqual(len(figures.splitlines()), 4)
        for word in watched:
            positions = [i for i, each in enumerate(words) if each == word.encode()]
            expected = [len(positions), positions[0] if positions else -1, positions[-1] if positions else -1]
            found = re.search(rf'^  {re.escape(word)} +(\d+) +(-?\d+) +(-?\d+)$', report, re.MULTILINE)
            self.assertIsNotNone(found, word)
            self.assertEqual([int(figure) for figure in found.groups()], expected, word)
        self.check_distribution(lengths, report)
        self.check_parts(words, report)
        self.check_index(words, report)
        self.check_arrays(data, report)
        self.check_displays(words, report)
        last = [printed(word) for word in words[:-6:-1]]
        self.assertEqual(re.findall(r'words\[-\d\] = ([^ \n]+) ', report), last)
        self.assertEqual(re.findall(r'recent\[-\d\] = ([^ \n]+)$', report, re.MULTILINE), last)
        self.check_changes(words, watched[0], report)
        self.check_errors(report)
        self.check_storage(words, watched[0], report)

    def check_lengths(self, words, lengths, figures):
        greatest, mean = max(lengths), statistics.fmean(lengths)
        first = lengths.index(greatest)
        self.assertEqual(self.line(figures, 'longest word  '),
                         f'{greatest} characters: {printed(words[first])} '
                         f'(position {first}, {lengths.count(greatest)} of that length)')
        self.assertAlmostEqual(float(self.line(figures, 'mean length')), mean, delta=0.005001)
        self.assertEqual(float(self.line(figures, 'median length')), statistics.median(lengths))
        ratio, all_together = re.fullmatch(r'([\d.]+) times the mean length \(all together ([\d.]+)\)',
                                           self.line(figures, 'longest word is')).groups()
        self.assertAlmostEqual(float(ratio), greatest / mean, delta=0.005001)
        self.assertEqual(all_together, '1.00')

    def check_distribution(self, lengths, report):
        ordered = sorted(lengths)
        shares = re.findall(r'^ +(\d+)% of the words have at most +(\d+) characters$', report, re.MULTILINE)
        counts = re.findall(r'^ +(\d+) words have at most +(\d+) characters$', report, re.MULTILINE)
        self.assertEqual([(int(share), int(length)) for share, length in shares],
                         [(share, ordered[(len(ordered) * share + 99) // 100 - 1]) for share in (25, 50, 75, 90, 99)]
                         if ordered else [])
        self.assertEqual([(int(count), int(bound)) for count, bound in counts],
                         [(sum(length <= bound for length in ordered), bound) for bound in (3, 6, 9, 12)]
                         if ordered else [])

    def check_parts(self, words, report):
        def words_after(label):
            # Words may hold every kind of blank but this one.
            found = [line for line in report.split('\n') if line.startswith('  ' + label)]
            self.assertEqual(len(found), 1, label)
            return [word for word in found[0][2 + len(label):].split(' ') if word]

        def all_printed(some):
            return [printed(word) for word in some]

        self.assertEqual(words_after('words[:5] '), all_printed(words[:5]))
        self.assertEqual(words_after('words[-1:-6:-1] '), all_printed(words[-1:-6:-1]))
        self.assertEqual(words_after('words[::1000] '), all_printed(words[::1000]))
        self.assertCountEqual(words_after('words[:10] shuffled '), all_printed(words[:10]))
        ordered = sorted(words[:10])
        self.assertEqual(words_after('and sorted '), all_printed(ordered))
        self.assertEqual(words_after('with three at [1:1] '),
                         all_printed(ordered[:1]) + ['first', 'second', 'third'] + all_printed(ordered[1:]))
        self.assertEqual(words_after('(a + b + recent) * 3 '), [str(9 * min(5, len(words))), 'words'])

    def block(self, report, title):
        """The lines below a heading, up to the next empty one."""
        lines = report.split('\n')
        self.assertEqual(lines.count(title), 1, title)
        begin = lines.index(title) + 1
        return lines[begin:lines.index('', begin)]

    def check_index(self, words, report):
        counts = collections.Counter(words)
        lines = self.block(report, 'Distinct words')
        self.assertEqual(lines[0].split(), [str(len(counts)), 'distinct', 'words'])
        self.assertEqual(lines[1].split(), [str(list(counts.values()).count(1)), 'occur', 'once'])
        frequent = sorted(counts, key=lambda word: (-counts[word], word))[:20]
        self.assertEqual(lines[2:2 + len(frequent)], [f'  {counts[word]:9} {printed(word)}' for word in frequent])
        rest = lines[2 + len(frequent):]
        if not words:
            self.assertEqual(rest, [])
            return
        ordered = sorted(counts)
        begin, end = ordered[:3], ordered[max(3, len(ordered) - 3):]
        expected = [f'{printed(word)} first at {words.index(word)}' for word in begin]
        expected += ['...'] * (len(ordered) > 6)
        expected += [f'{printed(word)} first at {words.index(word)}' for word in end]
        self.assertEqual(rest[0], 'In alphabetical order')
        self.assertEqual([re.sub(' +(first at \\d+)$', r' \1', line[2:]) for line in rest[1:]], expected)

    def check_arrays(self, data, report):
        text = re.sub('[\udc80-\udcff\0]', '\ufffd', data.decode('utf-8', 'surrogateescape'))
        lines = self.block(report, 'The text as arrays')
        self.assertEqual([line.split()[0] for line in lines],
                         [str(count) for count in (len(data), len(text), len(text.encode('utf-16-le')) // 2,
                                                   len(text.encode()), sum(c in string.ascii_letters for c in text))])
        letters = collections.Counter(c.lower() for c in text if c in string.ascii_letters)
        self.assertEqual(re.findall(r'([a-z]) (\d+)', lines[4].split(':', 1)[1]),
                         [(letter, str(letters[letter])) for letter in sorted(letters)])

    def check_displays(self, words, report):
        def quoted(word):
            return '"' + printed(word) + '"'

        lines = {name.strip(): text for name, text in
                 (re.fullmatch(r'  (.{14}) (.*)', line).groups() for line in self.block(report, 'Displays'))}
        some = words[:4]
        listed = ', '.join(map(quoted, some))
        synchronised = 's:[' if some else '['
        first = dict.fromkeys(some)
        entries = [f'{quoted(word)}: {len(word)}' for word in first]
        ascending = [f'{quoted(word)}: {len(word)}' for word in sorted(first)]
        expected = {
            'ArrayList': f'[{listed}]',
            'ArrayListSync': f'{synchronised}{listed}]',
            'LinkedList': f'l:[{listed}]',
            'LinkedListSync': f'ls:[{listed}]',
            'of Int': f'[{", ".join(str(characters_of(word)) for word in some)}]',
            'ImmutableList': f'i:[{listed}]',
            'Tuple': f'({listed}{"," if len(some) == 1 else ""})',
            'Map': '{' + ', '.join(entries) + '}',
            'HashMapSync': 's:{' + ', '.join(entries) + '}',
            'SortedMap': 't:{' + ', '.join(ascending) + '}',
            'SortedMapSync': 'ts:{' + ', '.join(ascending) + '}',
            # Elements of sets show as they are.
            'HashSet': '{' + ', '.join(map(printed, first)) + '}',
            'HashSetSync': 's:{' + ', '.join(map(printed, first)) + '}',
            'holding itself': f'[{listed}{", " if some else ""}[...]]',
            'joined': ' | '.join(printed(word) for word in words[-5:]),
        }
        self.assertEqual({name: lines[name] for name in expected}, expected)
        letters = collections.Counter(c for word in words for c in printed(word) if c in string.ascii_lowercase)
        self.assertEqual(lines['Array'], f'f:[{", ".join(str(letters[c]) for c in string.ascii_lowercase)}]')

    def check_changes(self, words, watched, report):
        position = min(len(words), 1)
        count = len(words)
        held = watched.encode() in words
        self.assertRegex(self.line(report, f'insert "inserted" at {position}'),
                         rf'^{count} -> {count + 1} +words\[{position}\] = inserted$')
        self.assertRegex(self.line(report, f'remove at {position}'),
                         rf'^{count + 1} -> {count} +' + ('the text' if b'inserted' in words else 'gone'))
        self.assertRegex(self.line(report, f'remove the first "{watched}"'),
                         rf'^{count} -> {count - held} +' + ('removed$' if held else 'not in the list$'))

    def check_errors(self, report):
        self.assertEqual(self.line(report, 'read words[size]'), 'IndexException: Index out of bounds')
        self.assertEqual(self.line(report, 'add the number 42 to words'),
                         'TypeError: ArrayList<String> cannot accept vorn.Int')
        self.assertEqual(self.line(report, 'add the text "42" to lengths'),
                         'TypeError: ArrayList<Int> cannot accept vorn.String')
        self.assertEqual(self.line(report, 'add to null'), 'NullException: Cannot call ArrayList.add() on null')

    def check_storage(self, words, removed, report):
        count = len(words)
        rows = {row[0]: row[1:] for row in re.findall(
            r'^  (\w+) +vorn\.collections\.(\S+) +(boxed|linked|unboxed \w+) +(\d+) +(\d+) +(\d+)$', report,
            re.MULTILINE)}
        expected = {
            'words': ('ArrayList<String>', 'boxed', count - (removed.encode() in words), 8, 4),
            'lengths': ('ArrayList<Int>', 'unboxed Int' if count else 'boxed', count, 4 if count else 8, 32),
            'ratios': ('ArrayList<Double>', 'unboxed Double' if count else 'boxed', count, 8, 16),
            'recent': ('LinkedList<String>', 'linked', min(count, 5), 24, None),
        }
        self.assertEqual(set(rows), set(expected))
        for name, (class_name, elements, size, width, inline) in expected.items():
            found_class, found_elements, found_size, capacity, found_width = rows[name]
            self.assertEqual((found_class, found_elements, int(found_size), int(found_width)),
                             (class_name, elements, size, width), name)
            if inline is None:
                self.assertEqual(int(capacity), size)
            elif count:
                # Capacities double from the inline room; the list of words held one more for a while.
                needed = count + 1 if name == 'words' else count
                while inline < needed:
                    inline *= 2
                self.assertEqual(int(capacity), inline, name)

    def check_text(self, data, *watched, heap=None):
        done = run(self.write(data), *watched, heap=heap)
        self.assertEqual((done.returncode, done.stderr), (0, ''))
        self.check_report(data, done.stdout, watched or WATCHED)

    @unittest.skipUnless(os.path.exists(GPL), f'{GPL} is not installed')
    def test_the_default_text(self):
        with open(GPL, 'rb') as file:
            data = file.read()
        done = run()
        self.assertEqual((done.returncode, done.stderr), (0, ''))
        self.check_report(data, done.stdout)
        self.assertEqual(run(GPL).stdout, done.stdout)

    @unittest.skipUnless(os.path.exists(GPL), f'{GPL} is not installed')
    def test_the_whole_report_of_the_default_text(self):
        with open(GPL, 'rb') as file:
            if hashlib.sha256(file.read()).hexdigest() != GPL_SHA256:
                self.skipTest(f'{GPL} is another edition than the one that the expected report is of')
        with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), 'text_statistics.expected'),
                  encoding='utf-8') as file:
            self.assertEqual(run().stdout, file.read())

    def test_words(self):
        self.check_text(b"The cat, the DOG and 2 zebras; isn't it? 'Quoted' words' end. rock''n''roll'\n")

    def test_one_word(self):
        self.check_text(b'freedom')

    def test_an_even_number_of_words(self):
        self.check_text(b'a bb ccc ddddddd')

    def test_words_of_equal_length(self):
        self.check_text(b'one two six ten ' * 100)

    def test_other_words_to_look_for(self):
        self.check_text('Über den Größen; über alles'.encode(), 'den', 'alles', 'absent')

    def test_the_inserted_word_may_occur_in_the_text(self):
        self.check_text(b'already inserted before')

    def test_characters_outside_ascii(self):
        self.check_text('naïve café — κόσμε 東京 😀 \u00a0 end'.encode())

    def test_bytes_outside_utf_8(self):
        self.check_text(b'good \xff\xfe bad\xc3 \xe2\x82 \xc0\xaf \xed\xa0\x80 \xf4\x90\x80\x80 \x80 '
                        b'\xf0\x9f\x98\x80 end')

    def test_nul_bytes(self):
        self.check_text(b'one\x00two\x00\x00three')

    def test_an_empty_file(self):
        self.check_text(b'')

    def test_a_file_without_words(self):
        self.check_text(b" ' -- ... ''' \n\t!\n")

    def test_a_long_word(self):
        self.check_text(b'short ' + b'x' * 100000 + b' words')

    def test_many_words(self):
        self.check_text(b' '.join(b'word%d' % (i * i % 1009) for i in range(50000)), 'word0', 'word1008')

    def test_on_the_other_heaps(self):
        data = b'the zebra and the freedom of the long long list of words, kept alive by its slots ' * 4
        for heap in ('heap=plain', 'heap=stress', 'heap=stress,one-in=3,seed=5', 'heap=stress,stacks=1'):
            with self.subTest(heap=heap):
                self.check_text(data, heap=heap)

    def test_files_that_cannot_be_read(self):
        missing = os.path.join(self.directory.name, 'missing')
        for path, reason in ((missing, 'No such file or directory'), (self.directory.name, 'Is a directory')):
            with self.subTest(path=path):
                done = run(path)
                self.assertEqual((done.returncode, done.stdout), (1, ''))
                self.assertEqual(done.stderr, f'text_statistics: cannot read {path}: {reason}\n')

    @unittest.skipIf(os.geteuid() == 0, 'root may read every file')
    def test_a_file_without_permission(self):
        path = self.write(b'secret')
        os.chmod(path, 0)
        done = run(path)
        self.assertEqual((done.returncode, done.stdout), (1, ''))
        self.assertEqual(done.stderr, f'text_statistics: cannot read {path}: Permission denied\n')

    def test_an_unknown_heap(self):
        done = run(self.write(b'text'), heap='heap=none')
        self.assertEqual((done.returncode, done.stdout), (1, ''))
        self.assertRegex(done.stderr, r'\Atext_statistics: [^\n]+\n\Z')

    @unittest.skipUnless(os.path.exists('/dev/full'), 'no full device')
    def test_output_that_cannot_be_written(self):
        with open('/dev/full', 'w', encoding='utf-8') as full:
            done = run(self.write(b'text'), stdout=full)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr, 'text_statistics: cannot write the report\n')


if __name__ == '__main__':
    unittest.main()
