"""What keeps a corrupt record from ending in a Python traceback, and collections that hold themselves from endless
output."""

import functools

import gdb

from .memory import Unknown

_FAILURES = (Unknown, gdb.error, gdb.MemoryError, ArithmeticError, LookupError, TypeError, ValueError)

# The addresses of the objects that are being shown, outermost first.
_shown = []


def reason(failure):
    """A failure as it is shown in place of a value."""
    return f'<{failure}>' if isinstance(failure, Unknown) else f'<corrupt: {failure}>'


def text_or_reason(function):
    """A function that gives a text, with the reason in its place where it fails. Of a printer that had to give a reason
    the contents are not shown."""
    @functools.wraps(function)
    def guarded(of, *arguments):
        try:
            return function(of, *arguments)
        except _FAILURES as failure:
            if hasattr(of, '__dict__'):
                of.failed = True
            return reason(failure)
    return guarded


def children_or_reason(method):
    """A printer's children, which end with the reason where they fail."""
    @functools.wraps(method)
    def guarded(printer):
        if getattr(printer, 'failed', False):
            return
        count = 0
        try:
            for child in method(printer):
                yield child
                count += 1
        except _FAILURES as failure:
            if printer.display_hint() == 'map' and count % 2 == 0:
                yield '', '...'  # in the place of a key
            yield '', reason(failure)
    return guarded


def with_plain_errors(method):
    """A command whose failures are shown as gdb shows its own, without a word of Python."""
    @functools.wraps(method)
    def guarded(*arguments):
        try:
            return method(*arguments)
        except Unknown as failure:
            raise gdb.GdbError(reason(failure)) from None
        except gdb.error as failure:
            raise gdb.GdbError(str(failure)) from None
    return guarded


def is_shown(address):
    return address in _shown


def while_shown(address, children):
    """The children of an object, which counts as shown until its last one is."""
    _shown.append(address)
    try:
        yield from children
    finally:
        _shown.remove(address)
