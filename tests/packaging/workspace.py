"""What the tests of packages and installations share: the tree under test, a scratch directory, the guide's program."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PACKAGES = ROOT / 'build/package'
GUIDE = (ROOT / 'docs/installing.md').read_text(encoding='utf-8')
TOP = (ROOT / 'CMakeLists.txt').read_text(encoding='utf-8')
VERSION = re.search(r'^project\(vorn_collections VERSION (\S+)', TOP, re.MULTILINE)[1]
ABI = re.search(r'^set\(VORN_ABI (\d+)\)', TOP, re.MULTILINE)[1]
COMPILERS = {'g++': ('gcc', 'g++'), 'clang': ('clang', 'clang++')}
PRINTED = '42\n'


def guide_blocks(language):
    return re.findall(rf'^ *```{language}\n(.*?)^ *```$', GUIDE, re.DOTALL | re.MULTILINE)


def next_version():
    """The patch release that follows."""
    major, minor, patch = map(int, VERSION.split('.'))
    return f'{major}.{minor}.{patch + 1}'


class Workspace(unittest.TestCase):
    """A test in a directory of its own, away from the tree and without what the caller's environment would add."""
    maxDiff = None

    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix='vorn-packaging-')
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name).resolve()
        hidden = ('LD_LIBRARY_PATH', 'LD_PRELOAD', 'PKG_CONFIG_PATH', 'CMAKE_PREFIX_PATH', 'CC', 'CXX', 'VORN_TEST_HEAP')
        self.environment = {name: value for name, value in os.environ.items() if name not in hidden}
        # The locale stays what it is: a compiler cache tells builds of two locales apart.
        self.environment['CMAKE_GENERATOR'] = 'Ninja'

    def run_in(self, directory, *command, expect=0, **environment):
        """Runs a command that ends with the expected status, and gives what it prints, errors included."""
        done = subprocess.run([str(part) for part in command], cwd=directory, env=self.environment | environment,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, timeout=600)
        if expect is not None:
            self.assertEqual(done.returncode, expect, f'{command}\n{done.stdout}')
        return done.stdout

    def project(self, name, target='vorn::runtime', find='find_package(vorn_collections 0.1 REQUIRED)'):
        """The guide's program and its CMake project in a new directory, changed as asked for."""
        (cmake,), (program,) = guide_blocks('cmake'), guide_blocks('c')
        directory = self.directory / name
        directory.mkdir()
        (directory / 'total.c').write_text(program)
        cmake = cmake.replace('find_package(vorn_collections 0.1 REQUIRED)', find)
        (directory / 'CMakeLists.txt').write_text(cmake.replace('vorn::runtime', target))
        return directory

    def configure(self, project, prefix, *options, expect=0, build='build'):
        text = self.run_in(project, 'cmake', '-B', build, f'-DCMAKE_PREFIX_PATH={prefix}', *options, expect=expect)
        # CMake breaks its messages into lines.
        return re.sub(r'\s+', ' ', text)

    def needed(self, program):
        """The shared libraries that a program asks the loader for."""
        return re.findall(r'NEEDED.*\[(.*)\]', self.run_in('.', 'readelf', '-d', program))

    def check_program(self, program, shared, **environment):
        self.assertEqual(self.run_in(program.parent, program, **environment), PRINTED)
        ours = sorted(name for name in self.needed(program) if 'vorn' in name)
        self.assertEqual(ours, [f'libvorn_collections.so.{ABI}', f'libvorn_runtime.so.{ABI}'] if shared else [])

    def check_all_ways_to_link(self, prefix, libraries):
        """CMake and pkg-config, shared and static, g++ and clang."""
        pkgconfig = {'PKG_CONFIG_PATH': str(libraries / 'pkgconfig')}
        for name, (compiler, _) in COMPILERS.items():
            for target in 'vorn::runtime', 'vorn::runtime_static':
                with self.subTest(compiler=name, target=target):
                    project = self.project(f'{name}-{target.replace(":", "")}', target)
                    self.configure(project, prefix, f'-DCMAKE_C_COMPILER={compiler}')
                    self.run_in(project, 'cmake', '--build', 'build')
                    self.check_program(project / 'build/total', shared=target == 'vorn::runtime')
            for static in [], ['--static']:
                with self.subTest(compiler=name, pkg_config=static):
                    project = self.project(f'{name}-pkg-config{"-static" if static else ""}')
                    flags = self.run_in(project, 'pkg-config', *static, '--cflags', '--libs', 'vorn_runtime', **pkgconfig)
                    link = ['-static'] if static else []
                    self.run_in(project, compiler, 'total.c', '-o', 'total', *link, *flags.split())
                    self.check_program(project / 'total', shared=not static, LD_LIBRARY_PATH=str(libraries))

    def unpacked_release(self):
        self.run_in(self.directory, 'tar', '-xf', PACKAGES / f'vorn-collections-{VERSION}.tar.gz')
        return self.directory / f'vorn-collections-{VERSION}'
