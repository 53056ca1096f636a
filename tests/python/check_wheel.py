"""Builds the wheel of the Python package, installs it with pip in a fresh environment, and runs the suite against it.

The libraries to bundle are in VORN_LIBRARY_PATH. Nothing comes from a network.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import zipfile

TESTS = pathlib.Path(__file__).resolve().parent
ROOT = TESTS.parent.parent

BUILD = '''
import os, sys
sys.path.insert(0, sys.argv[1])
import backend
os.mkdir(sys.argv[2])
backend.build_wheel(sys.argv[2])
'''

SMOKE = '''
import os, sys, vorn
from vorn import _library
assert os.path.dirname(vorn.__file__).startswith(sys.prefix), vorn.__file__
assert _library._library._name.startswith(os.path.dirname(vorn.__file__)), _library._library._name
maps = open('/proc/self/maps').read()
assert os.path.join(os.path.dirname(vorn.__file__), 'lib', 'libvorn_collections') in maps, 'another collections library'
assert vorn.List[int]([2, 1]) == [2, 1]
print(vorn.__version__)
'''


def run(*command, **options):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options)
    if done.returncode != 0:
        sys.exit(f'{" ".join(map(str, command))} ended with {done.returncode}:\n{done.stdout}')
    return done.stdout


def check_contents(wheel, version):
    expected = {f'vorn/{path.name}' for path in (ROOT / 'python/vorn').glob('*.py')}
    expected.update(f'vorn-{version}.dist-info/{name}' for name in ('METADATA', 'WHEEL', 'RECORD'))
    with zipfile.ZipFile(wheel) as archive:
        names = set(archive.namelist())
        libraries = {name for name in names - expected if re.fullmatch(r'vorn/lib/libvorn_\w+\.so[.\d]*', name)}
        record = archive.read(f'vorn-{version}.dist-info/RECORD').decode()
    if names - libraries != expected or len(libraries) != 2:
        sys.exit(f'unexpected contents of the wheel: {sorted(names)}')
    if not re.fullmatch(rf'vorn-{re.escape(version)}-py3-none-linux_\w+\.whl', wheel.name):
        sys.exit(f'unexpected name of the wheel: {wheel.name}')
    if sorted(line.split(',')[0] for line in record.splitlines()) != sorted(names):
        sys.exit('the record of the wheel does not list its files')


def main():
    version = re.search(r'^project\(vorn_collections VERSION ([\d.]+)', (ROOT / 'CMakeLists.txt').read_text(),
                        re.MULTILINE).group(1)
    directory = pathlib.Path(tempfile.mkdtemp())
    environment = {name: value for name, value in os.environ.items() if not name.startswith(('PYTHON', 'PIP_'))}
    environment['PIP_DISABLE_PIP_VERSION_CHECK'] = '1'
    try:
        run(sys.executable, '-m', 'venv', directory / 'venv', env=environment)
        python = directory / 'venv/bin/python'
        wheels = []
        for number in range(2):
            run(python, '-B', '-c', BUILD, ROOT / 'python/build_backend', directory / str(number), env=environment)
            wheels.extend((directory / str(number)).glob('*.whl'))
        if wheels[0].read_bytes() != wheels[1].read_bytes():
            sys.exit('two builds of the wheel differ')
        check_contents(wheels[0], version)

        run(python, '-m', 'pip', 'install', '--no-index', ROOT / 'python', env=environment, cwd=directory)
        del environment['VORN_LIBRARY_PATH']
        installed = run(python, '-c', SMOKE, env=environment, cwd=directory).strip()
        if installed != version:
            sys.exit(f'the installed package is of version {installed}, the tree of {version}')
        suite = subprocess.run([python, '-B', '-m', 'unittest', 'discover', '-s', TESTS, '-p', '*_test.py'],
                               env=environment, cwd=directory, check=False)
        if suite.returncode == 0:
            run(python, '-m', 'pip', 'uninstall', '-y', 'vorn', env=environment, cwd=directory)
            if list((directory / 'venv').rglob('*vorn*')):
                sys.exit('uninstalling leaves something behind')
        return suite.returncode
    finally:
        shutil.rmtree(directory)


if __name__ == '__main__':
    sys.exit(main())
