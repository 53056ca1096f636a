"""What the tests of the console's program share."""

import os
import pathlib
import subprocess

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
CONSOLE = os.environ['VORN_CONSOLE']
SANITIZED = os.environ.get('VORN_CONSOLE_SANITIZED') == '1'
HEAP = os.environ.get('VORN_TEST_HEAP', 'heap=collected')


def run(*arguments, text='', timeout=300, **options):
    """Runs the console with a text or bytes as its input; output and errors are decoded, whatever they hold."""
    given = text if isinstance(text, bytes) else text.encode()
    done = subprocess.run([CONSOLE, f'--heap={HEAP}', *map(str, arguments)], input=given, capture_output=True,
                          timeout=timeout, check=False, **options)
    done.stdout = done.stdout.decode('utf-8', 'surrogateescape')
    done.stderr = done.stderr.decode('utf-8', 'surrogateescape')
    return done
