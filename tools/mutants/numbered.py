"""The places that keep handles alive, exclude other threads, ask again after user code, and make room before a change:
each is found by the name of what does it, and left out."""

import re

from clang.cindex import CursorKind as Kind

from sites import FUNCTIONS, LOOPS, ON, Finder, shorten, span

ROOT, LOCK, AGAIN, ROOM = 'root left out', 'lock left out', 'read of before user code', 'reservation left out'
CHECK = 'check after user code left out'
SORTS = (ROOT, LOCK, AGAIN, CHECK, ROOM)

ROOTS = re.compile(r'(RootedHandle|RootedRange|RootedVector<.*>|HandleVector)$')
LOCKS = re.compile(r'((List|Array|Set|Map)DataLock|RecordLock<.*>)$')
# What a record says of itself, which user code can change.
STATES = {'objectCount', 'logicalSize', 'arrayLogicalSize', 'isUnboxed', 'elementType'}
CHANGE_COUNTERS = {'changes', 'changes_', 'changesBefore'}
RESERVATIONS = {'reserve', 'makeRoom', 'vorn_collections_ArrayList_reserve'}
# Where user code runs in the library, by the names of what leads to it.
USER_CODE = re.compile(r'\b(matches|listValuesEqual|compareListValues|sortHandles\w*|findFirstObject|NativeCollectionKeyEqual'
                       r'|orderOfKeys|appendHandle|appendLanguageText|appendValue\w*|sortFunction|handleAt|less)\(')

# The mechanisms themselves.
MECHANISMS = ('collections/core/port/roots.h', 'collections/core/record_lock.h', 'collections/core/pending_error_watch.h')


class NumberedFinder(Finder):
    """Finds the numbered places in the same walk."""

    def look_at(self, source, cursor, above):
        if source.name in MECHANISMS:
            return
        if cursor.kind in (Kind.VAR_DECL, Kind.FIELD_DECL):
            self.look_at_declaration(source, cursor, above)
        elif cursor.kind in (Kind.CALL_EXPR, Kind.MEMBER_REF_EXPR, Kind.OVERLOADED_DECL_REF, Kind.UNEXPOSED_EXPR):
            self.look_at_read(source, cursor, above)
        elif cursor.kind == Kind.BINARY_OPERATOR:
            self.look_at_check(source, cursor)
        if above and above[-1].kind in (Kind.COMPOUND_STMT, Kind.IF_STMT, *LOOPS) and cursor.kind.is_expression():
            self.look_at_reservation(source, cursor)

    def look_at_declaration(self, source, cursor, above):
        start, end = span(cursor)
        after = re.match(r'\s*;', source.after(end))
        if after is None:
            return
        kind, name = cursor.type.spelling.removeprefix('const '), cursor.spelling
        kind = kind.rpartition('::')[2] if '<' not in kind else kind
        size = end - start
        if ROOTS.search(kind):
            behind = end + after.end()
            guard = f' const {ON}Unrooted planted@(@, {name});'
            if cursor.kind == Kind.FIELD_DECL:
                guard = f' {ON}Unrooted<decltype({name})> planted@{{@, {name}}};'
            self.add(source, cursor, ROOT, shorten(source.slice(start, end)), [(behind, behind, guard, 'close', size)])
        elif LOCKS.search(kind) and cursor.kind == Kind.VAR_DECL:
            text = source.slice(start, end)
            open_, close = start + text.index('('), start + text.rindex(')')
            self.add(source, cursor, LOCK, f'{self.function_name(above)}: {shorten(text)}',
                     [(open_ + 1, open_ + 1, f'{ON}unlocked(@, ', 'open', size), (close, close, ')', 'close', size)])

    @staticmethod
    def function_name(above):
        return next((one.spelling for one in reversed(above) if one.kind in FUNCTIONS and one.spelling), '')

    def look_at_read(self, source, cursor, above):
        start, end = span(cursor)
        text = source.slice(start, end)
        if re.fullmatch(r'[\w.>()-]*\braised\(\)', text):
            self.add(source, cursor, CHECK, text, [(start, start, f'(!{ON}on(@) && ', 'open', end - start),
                                                  (end, end, ')', 'close', end - start)])
            return
        name = re.fullmatch(r'(?:[\w.]|->|::)*?(\w+)(\(\w*\))?', text)
        if name is None or name.group(1) not in STATES or source.after(end, 1) == '(' or not re.search(r'\W', text):
            return
        if re.match(r'\s*=[^=]', source.after(end)):
            return
        scope = next((one for one in reversed(above) if one.kind in FUNCTIONS or one.kind in LOOPS), None)
        if scope is None:
            return
        scope_start, scope_end = span(scope)
        scope_text = source.slice(scope_start, scope_end)
        # In a loop what comes behind it in the text comes before it in time.
        user_code = USER_CODE.search(scope_text if scope.kind in LOOPS else source.slice(scope_start, start))
        if user_code is None:
            return
        declaration = f'const auto planted@ = {text};'
        size = end - start
        use = [(start, start, f'{ON}stale(@, planted@, ', 'open', size), (end, end, ')', 'close', size)]
        if scope.kind in LOOPS:
            around = scope_end + (1 if source.after(scope_end, 1) == ';' else 0)
            edits = [(scope_start, scope_start, f'{{ {declaration} ', 'open', around - scope_start),
                     (around, around, ' }', 'close', around - scope_start)]
        else:
            body = next(child for child in scope.get_children() if child.kind == Kind.COMPOUND_STMT)
            at = span(body)[0] + 1
            edits = [(at, at, f' {declaration}', 'close', 0)]
        self.add(source, cursor, AGAIN, f'{self.function_name(above)}: {text}', edits + use)

    def look_at_check(self, source, cursor):
        found = self.operator_between(source, cursor)
        if found is None or found[0] not in ('==', '!='):
            return
        operator, start, left_end, right_start, end = found
        names = set(re.findall(r'\w+', source.slice(start, left_end) + ' ' + source.slice(right_start, end)))
        if not names & CHANGE_COUNTERS and not re.search(r'[.>]element\(\)', source.slice(start, end)):
            return
        head = f'({ON}on(@) || (' if operator == '==' else f'(!{ON}on(@) && ('
        self.add(source, cursor, CHECK, shorten(source.slice(start, end)),
                 [(start, start, head, 'open', end - start), (end, end, '))', 'close', end - start)])

    def look_at_reservation(self, source, cursor):
        start, end = span(cursor)
        text = source.slice(start, end)
        name = re.match(r'(?:[\w.]|->|::)*?(\w+)\(', text)
        after = re.match(r'\s*;', source.after(end))
        if name is None or after is None:
            return
        if name.group(1) in RESERVATIONS:
            end += after.end()
            self.add(source, cursor, ROOM, shorten(text),
                     [(start, start, f'{{ if (!{ON}on(@)) ', 'open', end - start), (end, end, ' }', 'close', end - start)])
        room = re.fullmatch(r'materializePrimitiveList\((.*), (.+)\)', text)
        if room:
            at = start + room.start(2)
            self.add(source, cursor, ROOM, text, [(at, at, f'{ON}on(@) ? 0 : ', 'open', end - at)])
