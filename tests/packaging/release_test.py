"""The source release: what is in it, that it builds without git and compiler cache, and what it says of a machine that
lacks something."""

import re
import tarfile
import unittest

from workspace import COMPILERS, PACKAGES, ROOT, VERSION, Workspace

TARBALL = PACKAGES / f'vorn-collections-{VERSION}.tar.gz'


class ReleaseTest(Workspace):

    def without_git_and_cache(self):
        """An environment in which calling either fails."""
        directory = self.directory / 'forbidden'
        directory.mkdir()
        for program in 'git', 'ccache':
            (directory / program).write_text(f'#!/bin/sh\necho "{program} was called" >&2\nexit 1\n')
            (directory / program).chmod(0o755)
        return {'PATH': f'{directory}:{self.environment["PATH"]}'}

    def refusal(self, *options):
        """What configuring the tree says where it fails, as one line."""
        told = self.run_in('.', 'cmake', '-S', ROOT, '-B', self.directory / 'refused', *options, expect=1)
        return re.sub(r'\s+', ' ', told)

    def collector_headers(self, *version):
        """A directory with as much of the collector's headers as tells a version."""
        headers = self.directory / 'collector/gc'
        headers.mkdir(parents=True)
        (headers / 'gc.h').touch()
        lines = [f'#define GC_TMP_VERSION_{part} {number}\n'
                 for part, number in zip(('MAJOR', 'MINOR', 'MICRO'), version)]
        (headers / 'gc_version.h').write_text(''.join(lines))
        return headers.parent

    # ---- The tarball ----

    def test_the_release_holds_one_directory_of_plain_files_of_one_date_and_owner(self):
        with tarfile.open(TARBALL) as tar:
            members = tar.getmembers()
        names = [member.name for member in members]
        self.assertEqual(names, sorted(names))
        self.assertEqual({name.split('/')[0] for name in names}, {f'vorn-collections-{VERSION}'})
        self.assertEqual({(member.uid, member.gid, member.uname, member.gname) for member in members},
                         {(0, 0, 'root', 'root')})
        self.assertEqual(len({member.mtime for member in members}), 1)
        self.assertEqual({member.mode for member in members}, {0o644, 0o755})
        self.assertTrue(all(member.isfile() for member in members))
        tops = {name.split('/')[1] for name in names}
        self.assertLess({'LICENSE', 'SECURITY.md', 'README.md', 'CMakeLists.txt', 'dev', 'tests'}, tops)
        self.assertFalse({'.git', 'build'} & tops)

    def test_a_release_made_of_the_release_without_git_is_the_same(self):
        tree = self.unpacked_release()
        (tree / 'build').mkdir()
        (tree / 'build/left-over').touch()
        self.run_in(tree, 'packaging/make_tarball', self.directory, **self.without_git_and_cache())
        self.assertEqual((self.directory / TARBALL.name).read_bytes(), TARBALL.read_bytes())

    def test_the_release_builds_without_git_and_compiler_cache(self):
        """Everything that is installed but for the console, and an example, by g++, and a part of it by clang; joined and
        not optimised, for time."""
        tree = self.unpacked_release()
        environment = self.without_git_and_cache()
        quick = ['-DCMAKE_BUILD_TYPE=Debug', '-DCMAKE_CXX_FLAGS_DEBUG=-O0', '-DCMAKE_UNITY_BUILD=ON',
                 '-DCMAKE_UNITY_BUILD_BATCH_SIZE=30', '-DCMAKE_C_COMPILER_LAUNCHER=', '-DCMAKE_CXX_COMPILER_LAUNCHER=']
        for name, target in (('g++', 'text_statistics'), ('clang', 'vorn_runtime_static')):
            with self.subTest(compiler=name):
                c, cxx = COMPILERS[name]
                compilers = [f'-DCMAKE_C_COMPILER={c}', f'-DCMAKE_CXX_COMPILER={cxx}']
                build = tree / f'build/{name}'
                self.run_in(tree, 'cmake', '-B', build, *quick, *compilers, **environment)
                self.run_in(tree, 'cmake', '--build', build, '--target', target, **environment)
        text = self.directory / 'text'
        text.write_text('the cat and the dog\n')
        self.assertIn('the', self.run_in(tree, 'build/g++/bin/text_statistics', text))

    # ---- A machine that lacks something ----

    def test_without_the_collectors_library_the_message_names_its_package(self):
        self.assertIn('libgc, comes with the Debian package libgc-dev',
                      self.refusal('-DCMAKE_IGNORE_PATH=/usr/include'))

    def test_a_collectors_library_that_is_too_old_is_refused(self):
        told = self.refusal(f'-DBDWGC_INCLUDE_DIR={self.collector_headers(7, 6, 4)}')
        self.assertIn('Found unsuitable version "7.6.4", but required is at least "8.2"', told)
        self.assertIn('libgc-dev', told)

    def test_without_the_hash_functions_header_the_message_names_its_package(self):
        self.assertIn('The header xxhash.h was not found (Debian package: libxxhash-dev)',
                      self.refusal('-DCMAKE_IGNORE_PATH=/usr/include',
                                   f'-DBDWGC_INCLUDE_DIR={self.collector_headers(8, 2, 2)}'))

    def test_an_absolute_library_directory_is_refused_since_it_would_not_move(self):
        self.assertIn('CMAKE_INSTALL_LIBDIR has to be relative to the prefix', self.refusal('-DCMAKE_INSTALL_LIBDIR=/usr/lib'))


if __name__ == '__main__':
    unittest.main(verbosity=2)
