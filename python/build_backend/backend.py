"""Builds the wheel of this package: the modules and the two shared libraries (a PEP 517 backend).

The libraries come from the directory that VORN_LIBRARY_PATH names, or else from build/release, which CMake brings up to
date first. The collector (libgc) stays a library of the system, as the C++ library does: hence the wheel is tagged for
this platform and claims no more.
"""

import base64
import hashlib
import os
import re
import subprocess
import sysconfig
import zipfile

_PACKAGE = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
_TREE = os.path.dirname(_PACKAGE)
_LIBRARIES = ('libvorn_runtime.so', 'libvorn_collections.so')

# Entries bear no time, so that the same files make the same wheel.
_TIME = (1980, 1, 1, 0, 0, 0)


class UnsupportedOperation(Exception):
    """Told to the frontend through the hook's own name for it."""


def get_requires_for_build_wheel(config_settings=None):
    return []


def _version():
    with open(os.path.join(_TREE, 'CMakeLists.txt'), encoding='utf-8') as file:
        return re.search(r'^project\(vorn_collections VERSION ([\d.]+)', file.read(), re.MULTILINE).group(1)


def _metadata():
    return '\n'.join((
        'Metadata-Version: 2.1', 'Name: vorn', f'Version: {_version()}',
        'Summary: The collections of the vorn language: lists, maps, sets, arrays and tuples',
        'Requires-Python: >=3.9', 'Classifier: Operating System :: POSIX :: Linux',
        'Description-Content-Type: text/plain', '',
        'Lists, maps, sets, arrays and tuples of the vorn language, which behave as those of Python do.', ''))


def _tag():
    return f'py3-none-{re.sub("[-.]", "_", sysconfig.get_platform())}'


def _library_directory():
    given = os.environ.get('VORN_LIBRARY_PATH')
    if given:
        return given
    for command in (('cmake', '--preset', 'release'),
                    ('cmake', '--build', 'build/release', '--target', 'vorn_runtime_shared')):
        subprocess.run(command, cwd=_TREE, check=True)
    return os.path.join(_TREE, 'build', 'release', 'lib')


def _libraries():
    """The libraries under the names by which they are looked for: (name, contents) of each."""
    directory = _library_directory()
    for library in _LIBRARIES:
        plain = os.path.join(directory, library)
        if not os.path.exists(plain):
            raise FileNotFoundError(f'{directory} has no {library}')
        versioned = re.compile(re.escape(library) + r'\.\d+')
        names = [name for name in sorted(os.listdir(directory))
                 if versioned.fullmatch(name) and os.path.samefile(os.path.join(directory, name), plain)]
        with open(plain, 'rb') as file:
            contents = file.read()
        if library == _LIBRARIES[0] and b'$ORIGIN' not in contents:
            raise ValueError(f'{plain} does not look for its neighbour beside itself: take those of the build tree')
        yield (names or [library])[0], contents


def _entries():
    """What the wheel holds apart from its own records: (name, contents, mode) of each file."""
    modules = os.path.join(_PACKAGE, 'vorn')
    for name in sorted(os.listdir(modules)):
        if name.endswith('.py'):
            with open(os.path.join(modules, name), 'rb') as file:
                yield f'vorn/{name}', file.read(), 0o644
    for name, contents in _libraries():
        yield f'vorn/lib/{name}', contents, 0o755


def _records():
    yield 'METADATA', _metadata()
    yield 'WHEEL', f'Wheel-Version: 1.0\nGenerator: vorn\nRoot-Is-Purelib: false\nTag: {_tag()}\n'


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    name = f'vorn-{_version()}.dist-info'
    os.mkdir(os.path.join(metadata_directory, name))
    for record, text in _records():
        with open(os.path.join(metadata_directory, name, record), 'w', encoding='utf-8') as file:
            file.write(text)
    return name


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    version = _version()
    wheel = f'vorn-{version}-{_tag()}.whl'
    info = f'vorn-{version}.dist-info'
    entries = [*_entries(), *((f'{info}/{name}', text.encode(), 0o644) for name, text in _records())]
    listing = ''
    with zipfile.ZipFile(os.path.join(wheel_directory, wheel), 'w', zipfile.ZIP_DEFLATED) as archive:
        for name, contents, mode in entries:
            digest = base64.urlsafe_b64encode(hashlib.sha256(contents).digest()).rstrip(b'=').decode()
            listing += f'{name},sha256={digest},{len(contents)}\n'
            _write(archive, name, contents, mode)
        _write(archive, f'{info}/RECORD', f'{listing}{info}/RECORD,,\n'.encode(), 0o644)
    return wheel


def _write(archive, name, contents, mode):
    entry = zipfile.ZipInfo(name, _TIME)
    entry.external_attr = (0o100000 | mode) << 16
    entry.compress_type = zipfile.ZIP_DEFLATED
    archive.writestr(entry, contents)


def build_sdist(sdist_directory, config_settings=None):
    raise UnsupportedOperation('the libraries are built from the whole tree, which no archive of this directory holds')
