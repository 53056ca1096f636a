"""Where a fault can be planted in C++ sources, found in the syntax tree that clang makes of them.

Every fault is a few insertions into the text that keep its meaning until the fault's number is switched on (planted.h).
So all faults stand in one build, one inside another if need be, and a program is told at its start which one to have.

Left alone is what the compiler evaluates by itself: constants, template arguments, static_assert, case labels, array
bounds. Which faults do not compile, the compiler tells (build.py).
"""

import dataclasses
import json
import pathlib
import re
import shlex

from clang import cindex
from clang.cindex import CursorKind as Kind

ON = '::vorn::planted::'


@dataclasses.dataclass
class Fault:
    """What is planted at a place: the edits are (offset, end, text, rank, size), see planting.py."""
    sort: str
    path: str
    line: int
    column: int
    offset: int
    change: str
    edits: list
    number: int = 0

    @property
    def place(self):
        return f'{self.path}:{self.line}'

    @property
    def key(self):
        return self.path, self.offset, self.sort, self.change


# What each operator becomes: (the fault's sort, what is written instead).
COMPARISONS = {
    '<': [('bound moved', '<='), ('comparison turned', '>')],
    '<=': [('bound moved', '<'), ('comparison turned', '>=')],
    '>': [('bound moved', '>='), ('comparison turned', '<')],
    '>=': [('bound moved', '>'), ('comparison turned', '<=')],
    '==': [('comparison turned', '!=')],
    '!=': [('comparison turned', '==')],
}
ARITHMETIC = {'+': '-', '-': '+', '*': '/', '/': '*', '%': '*', '&': '|', '|': '&', '<<': '>>', '>>': '<<'}
FUNCTORS = {
    '<': 'std::less<>', '<=': 'std::less_equal<>', '>': 'std::greater<>', '>=': 'std::greater_equal<>',
    '==': 'std::equal_to<>', '!=': 'std::not_equal_to<>', '+': 'std::plus<>', '-': 'std::minus<>',
    '*': 'std::multiplies<>', '/': 'std::divides<>', '%': 'std::modulus<>', '&': 'std::bit_and<>',
    '|': 'std::bit_or<>', '<<': f'{ON}ShiftLeft', '>>': f'{ON}ShiftRight',
}

EVALUATED_BY_COMPILER = {
    Kind.STATIC_ASSERT, Kind.ENUM_CONSTANT_DECL, Kind.ALIGNED_ATTR, Kind.TYPE_ALIAS_DECL,
    Kind.TYPE_ALIAS_TEMPLATE_DECL, Kind.TEMPLATE_NON_TYPE_PARAMETER, Kind.TEMPLATE_TYPE_PARAMETER, Kind.TYPEDEF_DECL,
} 
# What a template's argument can be, of what faults are planted in.
ARGUMENTS = {Kind.BINARY_OPERATOR, Kind.UNARY_OPERATOR, Kind.CONDITIONAL_OPERATOR, Kind.INTEGER_LITERAL,
             Kind.CXX_BOOL_LITERAL_EXPR}
LOOPS = {Kind.FOR_STMT, Kind.WHILE_STMT, Kind.DO_STMT, Kind.CXX_FOR_RANGE_STMT}
FUNCTIONS = {Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.DESTRUCTOR, Kind.CONVERSION_FUNCTION,
             Kind.FUNCTION_TEMPLATE, Kind.LAMBDA_EXPR}


class Source:
    """The text of a file and what may be asked of it; offsets are those of the bytes, which are all ASCII or counted."""

    def __init__(self, path, name):
        self.name = name
        self.text = path.read_bytes()

    def slice(self, start, end):
        return self.text[start:end].decode()

    def before(self, offset, length=40):
        return self.text[max(0, offset - length):offset].decode(errors='replace')

    def after(self, offset, length=40):
        return self.text[offset:offset + length].decode(errors='replace')


def is_template_argument(text, offset):
    """Whether what begins there stands between the brackets of a template's arguments, whose opening one follows a name
    at once: comparisons have blanks around them."""
    depth = 0
    for at in range(offset - 1, max(0, offset - 400), -1):
        one, before = text[at:at + 1], text[at - 1:at]
        if one in b';{}':
            return False
        if one == b'>' and before not in b' -<=>':
            depth += 1
        elif one == b'<' and (before.isalnum() or before == b'_'):
            if depth == 0:
                return True
            depth -= 1
    return False


class Finder:
    """Walks the units of a build and collects the faults of files below `directory`."""

    def __init__(self, root, originals, directory='collections', left_out=('collections/include/',)):
        self.root = pathlib.Path(root)
        self.originals = pathlib.Path(originals)
        self.directory = directory
        self.left_out = left_out
        self.sources = {}
        self.faults = {}

    def source_at(self, path):
        if path not in self.sources:
            file = pathlib.Path(path)
            name = file.relative_to(self.root).as_posix() if file.is_relative_to(self.root) else ''
            mine = name.startswith(f'{self.directory}/') and not name.startswith(self.left_out)
            self.sources[path] = Source(self.originals / name, name) if mine else None
        return self.sources[path]

    def collect(self, unit):
        for cursor in unit.cursor.get_children():
            if cursor.location.file is not None and self.source_at(cursor.location.file.name) is not None:
                self.walk(cursor, [])

    # ---- The walk ----------------------------------------------------------------------------------------------------

    def walk(self, cursor, above):
        file = cursor.location.file
        if cursor.kind in EVALUATED_BY_COMPILER or file is None:
            return
        source = self.source_at(file.name)
        if source is None:
            return
        if cursor.kind in (Kind.VAR_DECL, Kind.FIELD_DECL) and self.is_constant(source, cursor):
            return
        if cursor.kind in ARGUMENTS and is_template_argument(source.text, span(cursor)[0]):
            return
        self.look_at(source, cursor, above)
        children = list(cursor.get_children())
        if cursor.kind == Kind.CASE_STMT:
            children = children[1:]
        if cursor.kind == Kind.IF_STMT and source.slice(*span(cursor)).startswith('if constexpr'):
            children = [child for child in children if not child.kind.is_expression() or child in children[1:]]
        for child in children:
            self.walk(child, [*above, cursor])

    @staticmethod
    def is_constant(source, cursor):
        head = source.slice(span(cursor)[0], cursor.location.offset)
        line_start = source.before(span(cursor)[0], 60).rpartition('\n')[2]
        return 'constexpr' in head or 'constexpr' in line_start

    def look_at(self, source, cursor, above):
        inside_function = any(one.kind in FUNCTIONS for one in above)
        if not inside_function:
            return
        look = {
            Kind.BINARY_OPERATOR: self.look_at_operator,
            Kind.COMPOUND_ASSIGNMENT_OPERATOR: self.look_at_assignment,
            Kind.UNARY_OPERATOR: self.look_at_step,
            Kind.INTEGER_LITERAL: self.look_at_constant,
            Kind.CXX_BOOL_LITERAL_EXPR: self.look_at_constant,
            Kind.IF_STMT: self.look_at_condition,
            Kind.WHILE_STMT: self.look_at_condition,
            Kind.DO_STMT: self.look_at_condition,
            Kind.FOR_STMT: self.look_at_condition,
            Kind.CONDITIONAL_OPERATOR: self.look_at_condition,
        }.get(cursor.kind)
        if look is not None:
            look(source, cursor, above)
        if above and above[-1].kind in (Kind.COMPOUND_STMT, Kind.IF_STMT, *LOOPS):
            self.look_at_statement(source, cursor, above)

    def add(self, source, cursor, sort, change, edits, at=None):
        line, column = (cursor.extent.start.line, cursor.extent.start.column) if at is None else self.line_of(source, at)
        fault = Fault(sort, source.name, line, column, span(cursor)[0] if at is None else at, change, edits)
        self.faults.setdefault(fault.key, fault)

    @staticmethod
    def line_of(source, offset):
        text = source.text[:offset]
        return text.count(b'\n') + 1, offset - text.rfind(b'\n')

    # ---- Sorts of faults ---------------------------------------------------------------------------------------------

    def operator_between(self, source, cursor):
        """The operands' places and the operator, where text and tree agree (in a macro's text they do not)."""
        children = list(cursor.get_children())
        if len(children) != 2:
            return None
        (start, left_end), (right_start, end) = span(children[0]), span(children[1])
        if not span(cursor)[0] <= start <= left_end <= right_start <= end <= span(cursor)[1]:
            return None
        between = source.slice(left_end, right_start)
        found = re.fullmatch(r'\s*(\S{1,3})\s*', between)
        return (found.group(1), start, left_end, right_start, end) if found else None

    def look_at_operator(self, source, cursor, _above):
        found = self.operator_between(source, cursor)
        if found is None:
            return
        operator, start, left_end, right_start, end = found
        place = left_end + source.slice(left_end, right_start).index(operator)
        size = end - start

        def exchange(sort, other):
            head = f'{ON}swapped<{FUNCTORS[operator]}, {FUNCTORS[other]}>(@, '
            self.add(source, cursor, sort, f'{operator} became {other}',
                     [(start, start, head, 'open', size), (left_end, right_start, ', ', 'replace', size),
                      (end, end, ')', 'close', size)], place)

        for sort, other in COMPARISONS.get(operator, []):
            exchange(sort, other)
        if operator in ARITHMETIC:
            exchange('operator exchanged', ARITHMETIC[operator])
        if operator in ('&&', '||'):
            other = '||' if operator == '&&' else '&&'
            part = f'({ON}on(@) != static_cast<bool>('
            self.add(source, cursor, 'operator exchanged', f'{operator} became {other}',
                     [(start, start, f'({ON}on(@) != ({part}', 'open', size),
                      (left_end, right_start, f')) {operator} {part}', 'replace', size),
                      (end, end, '))))', 'close', size)], place)

    def look_at_assignment(self, source, cursor, _above):
        found = self.operator_between(source, cursor)
        if found is None or found[0][:-1] not in ARITHMETIC:
            return
        operator, start, left_end, right_start, end = found
        plain, other = operator[:-1], ARITHMETIC[operator[:-1]]
        size = end - start
        self.add(source, cursor, 'operator exchanged', f'{operator} became {other}=',
                 [(start, start, f'{ON}assigned<{FUNCTORS[plain]}, {FUNCTORS[other]}>(@, ', 'open', size),
                  (left_end, right_start, ', ', 'replace', size), (end, end, ')', 'close', size)])

    def look_at_step(self, source, cursor, _above):
        start, end = span(cursor)
        text = source.slice(start, end)
        names = {'++': ('increment', '--'), '--': ('decrement', '++')}
        if text[:2] in names:
            name, other = names[text[:2]]
            self.add(source, cursor, 'operator exchanged', f'{text[:2]} became {other}',
                     [(start, start + 2, f'{ON}{name}(@, ', 'open', end - start), (end, end, ')', 'close', end - start)])

    def look_at_constant(self, source, cursor, above):
        start, end = span(cursor)
        text = source.slice(start, end)
        if not re.fullmatch(r"[0-9][0-9a-zA-Z']*|true|false", text):
            return
        # Bounds of arrays are constants as often as not.
        if source.before(start, 1) == '[':
            return
        if any(one.kind in (Kind.VAR_DECL,) and one.type.kind == cindex.TypeKind.CONSTANTARRAY for one in above[-1:]):
            return
        change = {'true': 'true became false', 'false': 'false became true'}.get(text, f'{text} became {text} + 1')
        self.add(source, cursor, 'constant changed', change,
                 [(start, start, f'{ON}next(@, ', 'open', end - start), (end, end, ')', 'close', end - start)])

    def look_at_condition(self, source, cursor, _above):
        ends = {Kind.IF_STMT: r'\s*\)', Kind.WHILE_STMT: r'\s*\)', Kind.DO_STMT: r'\s*\)', Kind.FOR_STMT: r'\s*;',
                Kind.CONDITIONAL_OPERATOR: r'\s*\?'}
        begins = {Kind.IF_STMT: r'(if \(|;)\s*$', Kind.WHILE_STMT: r'while \($', Kind.DO_STMT: r'while \($',
                  Kind.FOR_STMT: r';\s*$', Kind.CONDITIONAL_OPERATOR: ''}
        for child in cursor.get_children():
            if not child.kind.is_expression():
                continue
            start, end = span(child)
            if re.search(begins[cursor.kind], source.before(start)) and re.match(ends[cursor.kind], source.after(end)):
                self.add(source, child, 'condition negated', f'{shorten(source.slice(start, end))} negated',
                         [(start, start, f'({ON}on(@) != static_cast<bool>(', 'open', end - start),
                          (end, end, '))', 'close', end - start)])
                return

    def look_at_statement(self, source, cursor, above):
        start, end = span(cursor)
        text = source.slice(start, end)
        parent = above[-1]
        if parent.kind != Kind.COMPOUND_STMT and (not re.search(r'(\)|else|\]\])\s*$', source.before(start, 80))):
            return
        after = re.match(r'\s*;', source.after(end))
        if after is None or cursor.kind in (Kind.DECL_STMT, Kind.NULL_STMT, Kind.DO_STMT, Kind.COMPOUND_STMT):
            return
        if cursor.kind == Kind.RETURN_STMT:
            # Where something comes after it: the body of an if, and not of one that the compiler decides.
            conditional = next((one for one in reversed(above) if one.kind == Kind.IF_STMT), None)
            inner = parent.kind == Kind.IF_STMT or (parent.kind == Kind.COMPOUND_STMT and len(above) > 1
                                                    and above[-2].kind == Kind.IF_STMT)
            if not inner or source.slice(*span(conditional)).startswith('if constexpr') or ' else' in source.slice(
                    *span(conditional)):
                return
        elif not (cursor.kind.is_expression() or cursor.kind in (Kind.BREAK_STMT, Kind.CONTINUE_STMT)):
            return
        end += after.end()
        self.add(source, cursor, 'statement left out', f'{shorten(text)}; left out',
                 [(start, start, f'{{ if (!{ON}on(@)) ', 'open', end - start + 1), (end, end, ' }', 'close', end - start + 1)])


def span(cursor):
    return cursor.extent.start.offset, cursor.extent.end.offset


def shorten(text):
    text = ' '.join(text.split())
    return text if len(text) <= 60 else text[:57] + '...'


def parse(file, arguments, root, originals, directory='collections'):
    """The syntax tree of a unit. It may include sources of a copy at `root` in which faults are planted already: clang is
    to read what the originals say."""
    unsaved = [(str(root / path.relative_to(originals)), path.read_text())
               for path in sorted((originals / directory).rglob('*')) if path.is_file()]
    unit = cindex.Index.create().parse(str(file), args=arguments, unsaved_files=unsaved)
    wrong = [str(found) for found in unit.diagnostics if found.severity >= cindex.Diagnostic.Error]
    if wrong:
        raise SystemExit(f'{file}: ' + '\n'.join(wrong[:5]))
    return unit


def units_of(build, wanted):
    """The files that a build compiles for the library, with what clang needs of their options."""
    for entry in json.loads((pathlib.Path(build) / 'compile_commands.json').read_text()):
        if wanted not in entry.get('output', entry['command']):
            continue
        words = shlex.split(entry['command'])
        kept = [word for word in words if word.startswith(('-I', '-std', '-D', '-m'))]
        # Paths of system headers come as two words.
        kept += [word for pair in zip(words, words[1:]) if pair[0] == '-isystem' for word in pair]
        yield entry['file'], kept
