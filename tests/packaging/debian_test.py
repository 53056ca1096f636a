"""The Debian packages as dpkg and programs meet them: installed, linked, upgraded, mixed and removed."""

import os
import re
import unittest

from debian_root import DebianRoot, dependencies, fields_of, packages_in
from workspace import ABI, PACKAGES, ROOT, VERSION, Workspace, guide_blocks, next_version

COLLECTIONS, RUNTIME = f'libvorn-collections{ABI}', f'libvorn-runtime{ABI}'
OURS = [COLLECTIONS, 'libvorn-dev', RUNTIME, 'vorn-collections-doc', 'vorn-console']

# Beside each other, the packages depend on these.
SYSTEM = {
    COLLECTIONS: {'libc6', 'libgcc-s1', 'libstdc++6'},
    RUNTIME: {'libc6', 'libgc1', 'libgcc-s1', 'libstdc++6'},
    'libvorn-dev': {'libgc-dev'},
    'vorn-console': {'libc6', 'libedit2', 'libgcc-s1', 'libstdc++6'},
    'vorn-collections-doc': set(),
}
INTERNAL = {RUNTIME: {COLLECTIONS}, 'libvorn-dev': {COLLECTIONS, RUNTIME}, 'vorn-console': {COLLECTIONS, RUNTIME}}


def mismatch(runtime, collections):
    """The line of the guide, with these versions."""
    (line,) = guide_blocks('text')
    versions = iter((runtime, collections))
    return re.sub(r'\d+\.\d+\.\d+', lambda _: next(versions), line.strip()) + '\n'


class DebianTest(Workspace):

    def root(self, **options):
        return DebianRoot(self.directory / 'root', **options)

    def install_all(self, root, directory=PACKAGES):
        root.dpkg('--install', *packages_in(directory))

    # ---- The packages themselves ----

    def test_the_packages_are_these_and_of_this_version(self):
        fields = {fields['Package']: fields for fields in map(fields_of, packages_in(PACKAGES))}
        self.assertEqual(sorted(fields), OURS)
        self.assertEqual({package['Version'] for package in fields.values()}, {VERSION})

    def test_dependencies_name_what_the_programs_are_linked_to_and_each_other_exactly(self):
        for package in packages_in(PACKAGES):
            name = fields_of(package)['Package']
            with self.subTest(package=name):
                depends = dependencies(package)
                ours = {other: rest for other, rest in depends.items() if 'vorn' in other}
                self.assertEqual(ours, {other: f'(= {VERSION})' for other in INTERNAL.get(name, ())})
                self.assertEqual(depends.keys() - ours.keys(), SYSTEM[name])

    def test_every_file_is_roots_and_readable_by_all(self):
        for package in packages_in(PACKAGES):
            for line in self.run_in('.', 'dpkg-deb', '--contents', package).splitlines():
                with self.subTest(line=line):
                    self.assertRegex(line, r'^(drwxr-xr-x|-rw-r--r--|lrwxrwxrwx|-rwxr-xr-x) root/root ')

    def test_the_same_build_gives_the_same_packages(self):
        self.run_in(ROOT, ROOT / 'packaging/make_debs', PACKAGES, self.directory)
        for package in packages_in(PACKAGES):
            self.assertEqual((self.directory / package.name).read_bytes(), package.read_bytes(), package.name)

    # ---- Installing and removing ----

    def test_installing_and_purging_leaves_nothing(self):
        root = self.root()
        self.install_all(root)
        self.assertEqual(root.installed(), {name: f'ii {VERSION}' for name in OURS})
        self.assertEqual(root.dpkg('--audit'), '')
        self.assertIn('usr/bin/vorn-console', root.files())
        root.dpkg('--purge', *OURS)
        self.assertEqual(root.installed(), {})
        self.assertEqual(root.files(), root.before)

    def test_without_the_collectors_library_the_runtime_is_not_configured(self):
        root = self.root(without=('libgc1',))
        told = root.dpkg('--install', *packages_in(PACKAGES), expect=1)
        self.assertRegex(told, rf'{RUNTIME}:\S+ depends on libgc1 .*; however:\n  Package libgc1 is not installed')
        self.assertNotEqual(root.installed()[RUNTIME], f'ii {VERSION}')

    def test_the_console_runs_from_the_package(self):
        root = self.root()
        self.install_all(root)
        console = root.path / 'usr/bin/vorn-console'
        libraries = {'LD_LIBRARY_PATH': str(root.libraries)}
        self.assertEqual(self.run_in('.', console, '--version', **libraries), f'vorn-console {VERSION}\n')
        tour = self.run_in('.', console, '--tour', **libraries)
        self.assertRegex(tour, r'tour: \d+ statements, \d+ expectations, 0 differences\n$')

    def test_the_manual_page_names_every_option(self):
        root = self.root()
        self.install_all(root)
        told = self.run_in('.', root.path / 'usr/bin/vorn-console', '--help', LD_LIBRARY_PATH=str(root.libraries))
        page = self.run_in('.', 'gzip', '-dc', root.path / 'usr/share/man/man1/vorn-console.1.gz').replace('\\-', '-')
        options = re.findall(r'^  (--[\w-]+)', told, re.MULTILINE)
        self.assertGreater(len(options), 5)
        for option in options:
            self.assertRegex(page, rf'(?m)^\.BI? {option}\b')

    # ---- Programs ----

    def test_programs_link_in_every_way(self):
        root = self.root()
        self.install_all(root)
        self.check_all_ways_to_link(root.path / 'usr', root.libraries)

    # ---- Another version ----

    def packages_of_next_version(self):
        """The release with nothing but its version raised, built and packed where it was unpacked."""
        tree = self.unpacked_release()
        top = tree / 'CMakeLists.txt'
        top.write_text(top.read_text().replace(f'VERSION {VERSION} LANGUAGES', f'VERSION {next_version()} LANGUAGES'))
        # All but a few files is what it was, so that a compiler cache has it.
        cache = {'CCACHE_BASEDIR': str(tree), 'CCACHE_NOHASHDIR': '1'}
        self.run_in(tree, 'cmake', '--preset', 'package')
        self.run_in(tree, 'cmake', '--build', 'build/package', **cache)
        self.run_in(tree, 'packaging/make_debs', 'build/package', '.')
        return tree

    def test_upgrade(self):
        newer = self.packages_of_next_version()
        root = self.root()
        self.install_all(root)
        project = self.project('total')
        self.configure(project, root.path / 'usr')
        self.run_in(project, 'cmake', '--build', 'build')
        old_libraries = self.directory / 'old'
        old_libraries.mkdir()
        self.run_in('.', 'cp', '-a', *root.libraries.glob('libvorn_*.so*'), old_libraries)

        with self.subTest('apt would refuse to upgrade a library alone; dpkg does not, and then the runtime does'):
            root.dpkg('--install', *newer.glob(f'{COLLECTIONS}_*.deb'))
            told = self.run_in('.', project / 'build/total', expect=1)
            self.assertEqual(told, mismatch(VERSION, next_version()))

        with self.subTest('all together are upgraded'):
            self.install_all(root, newer)
            self.assertEqual(root.installed(), {name: f'ii {next_version()}' for name in OURS})
            self.assertEqual(root.dpkg('--audit'), '')
            self.assertEqual([name for name in root.files() if VERSION in name], [])
            self.assertEqual(self.run_in('.', root.path / 'usr/bin/vorn-console', '--version',
                                         LD_LIBRARY_PATH=str(root.libraries)), f'vorn-console {next_version()}\n')

        with self.subTest('a program that was linked before runs with the new libraries'):
            self.check_program(project / 'build/total', shared=True)

        for library in 'collections', 'runtime':
            with self.subTest('a runtime beside a library of another version', newer=library):
                self.check_mixture(project / 'build/total', library, root.libraries, old_libraries)

        with self.subTest('a console beside libraries of another version'):
            told = self.run_in('.', root.path / 'usr/bin/vorn-console', expect=2, LD_LIBRARY_PATH=str(old_libraries))
            self.assertEqual(told, f'vorn-console: this is version {next_version()}, '
                                   f'but libvorn_runtime is version {VERSION}\n')

        with self.subTest('nothing of either version is left in the end'):
            root.dpkg('--purge', *OURS)
            self.assertEqual(root.files(), root.before)

    def check_mixture(self, program, newer, new_libraries, old_libraries):
        """The program with one library of the newer version and the other of the older."""
        mixture = self.directory / f'newer-{newer}'
        mixture.mkdir()
        versions = {}
        for library in 'collections', 'runtime':
            soname = f'libvorn_{library}.so.{ABI}'
            directory = new_libraries if library == newer else old_libraries
            versions[library] = next_version() if library == newer else VERSION
            (mixture / soname).symlink_to((directory / soname).resolve())
        told = self.run_in('.', program, expect=1, LD_LIBRARY_PATH=str(mixture))
        self.assertEqual(told, mismatch(versions['runtime'], versions['collections']))


if __name__ == '__main__':
    os.umask(0o022)
    unittest.main(verbosity=2)
