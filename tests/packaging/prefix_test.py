"""What `cmake --install` leaves: the guide's commands one by one, a prefix that is moved, and prefixes that are wrong."""

import re
import shutil
import sys
import unittest

from debian_root import DebianRoot
from workspace import ABI, PACKAGES, PRINTED, ROOT, VERSION, Workspace, guide_blocks

BUILD = ROOT / 'build/release'


class GuideTest(Workspace):

    def test_every_command_of_the_guide(self):
        """In a directory with the guide's program, /opt/vorn and the root of the packages replaced by scratch ones."""
        project = self.project('total')
        prefix = self.directory / 'opt/vorn'
        root = DebianRoot(self.directory / 'root')
        replacements = {
            # This is what made the packages that are installed here.
            './dev package\n': '',
            'apt install ./build/package/*.deb': f'dpkg --install {PACKAGES}/*.deb',
            "apt purge 'libvorn-*'": f'dpkg --purge libvorn-collections{ABI} libvorn-runtime{ABI} libvorn-dev',
            'dpkg ': f'dpkg --root={root.path} --force-script-chrootless --log=/dev/null ',
            'sudo ': '' if self.run_in('.', 'id', '-u') == '0\n' else 'fakeroot ',
            'cmake --preset': f'cmake -S {ROOT} --preset',
            'build/release': str(BUILD),
            '/opt/vorn': str(prefix),
        }
        blocks = guide_blocks('sh')
        self.assertEqual(len(blocks), 7)
        printed = ''
        for block in blocks:
            for text, replacement in replacements.items():
                block = block.replace(text, replacement)
            printed += self.run_in(project, 'bash', '-euc', block, PKG_CONFIG_PATH=str(prefix / 'lib/pkgconfig'))
        self.assertIn(f'vorn-console {VERSION}\n', printed)
        # By CMake, by pkg-config shared and static.
        self.assertEqual(len(re.findall(rf'^{PRINTED}', printed, re.MULTILINE)), 3, printed)
        self.assertEqual(root.files(), root.before)
        self.assertFalse(prefix.exists(), 'something is left in the prefix')


class PrefixTest(Workspace):

    def setUp(self):
        super().setUp()
        self.prefix = self.installed('prefix')

    def installed(self, name):
        prefix = self.directory / name
        self.run_in('.', 'cmake', '--install', BUILD, '--prefix', prefix)
        return prefix

    def moved(self):
        moved = self.directory / 'elsewhere' / 'with a space'
        moved.parent.mkdir()
        return self.prefix.rename(moved)

    # ---- A prefix that is moved ----

    def test_programs_link_in_every_way_after_a_move(self):
        moved = self.prefix.rename(self.directory / 'moved')
        self.check_all_ways_to_link(moved, moved / 'lib')

    def test_the_console_runs_after_a_move(self):
        moved = self.moved()
        self.assertEqual(self.run_in('.', moved / 'bin/vorn-console', '--version'), f'vorn-console {VERSION}\n')
        script = self.directory / 'script.vorn'
        script.write_text('[3, 1, 2].sortNew()  # expect: [1, 2, 3]\n')
        self.assertIn('0 differences', self.run_in('.', moved / 'bin/vorn-console', script))

    def test_the_runtime_finds_the_library_beside_it_after_a_move(self):
        """As an interpreter loads it, which has no path of its own for either."""
        program = 'import ctypes, sys; print(ctypes.CDLL(sys.argv[1]).vorn_runtime_start(None))'
        self.assertEqual(self.run_in('.', sys.executable, '-c', program, self.moved() / 'lib/libvorn_runtime.so'), '1\n')

    def test_archives_that_need_each_other_in_either_order_link(self):
        """The program asks for nothing of the runtime itself; only the collections do, which need the runtime first and
        which it needs."""
        project = self.project('natives', 'vorn::runtime_static')
        (project / 'total.c').write_text('#include <vorn/collections/array_list.h>\n'
                                         'int main(void) { return (int)vorn_collections_ArrayList_size(0); }\n')
        self.configure(project, self.prefix)
        self.run_in(project, 'cmake', '--build', 'build')
        self.run_in(project, 'build/total')
        flags = self.run_in('.', 'pkg-config', '--static', '--cflags', '--libs', 'vorn_runtime',
                            PKG_CONFIG_PATH=str(self.prefix / 'lib/pkgconfig'))
        self.run_in(project, 'cc', 'total.c', '-o', 'total', '-static', *flags.split())
        self.run_in(project, './total')

    def test_a_cxx_project_links_each_target_after_a_move_to_a_path_with_a_space(self):
        moved = self.moved()
        for target in 'runtime', 'runtime_static':
            project = self.project(target, f'vorn::{target}', f'find_package(vorn_collections REQUIRED COMPONENTS {target})')
            (project / 'total.c').rename(project / 'total.cpp')
            lists = project / 'CMakeLists.txt'
            lists.write_text(lists.read_text().replace('total.c)', 'total.cpp)').replace('LANGUAGES C)', 'LANGUAGES CXX)'))
            self.configure(project, moved)
            self.run_in(project, 'cmake', '--build', 'build')
            self.check_program(project / 'build/total', shared=target == 'runtime')

    def test_no_installed_file_holds_the_prefix_or_the_tree(self):
        for path in self.prefix.rglob('*'):
            if path.is_file():
                content = path.read_bytes()
                self.assertNotIn(str(self.prefix).encode(), content, path)
                self.assertNotIn(str(ROOT).encode() + b'/', content, path)

    # ---- What is installed ----

    def test_the_library_alone_leaves_only_the_runtimes_operations_open(self):
        """As a program with a runtime of its own would link it."""
        for target in 'collections', 'collections_static':
            project = self.project(target, f'vorn::{target}')
            (project / 'total.c').write_text('#include <vorn/collections/array_list.h>\n'
                                             'int main(void) { return (int)vorn_collections_ArrayList_size(0); }\n')
            self.configure(project, self.prefix)
            told = self.run_in(project, 'cmake', '--build', 'build', expect=1, LC_ALL='C')
            missing = set(re.findall(r"undefined reference to `(\w+)", told))
            self.assertTrue(missing, told)
            self.assertEqual({name for name in missing if name.startswith(('vorn_', 'GC_', 'pthread'))}, set())

    def test_every_installed_header_stands_alone(self):
        told = self.run_in(ROOT, 'tools/check_public_headers', self.prefix / 'include')
        headers = [path for path in self.prefix.rglob('*') if path.suffix in ('.h', '.hpp')]
        self.assertIn(f'{len(headers)} headers, 0 failures', told)
        sources = [path for directory in ('collections', 'runtime') for path in (ROOT / directory / 'include').rglob('*')]
        self.assertEqual(sorted(path.name for path in headers),
                         sorted(path.name.removesuffix('.in') for path in sources if path.suffix in ('.h', '.hpp', '.in')))

    def test_a_component_alone(self):
        for component, file in (('collections', f'lib/libvorn_collections.so.{VERSION}'),
                                ('runtime', f'lib/libvorn_runtime.so.{VERSION}'),
                                ('development', 'include/vorn/runtime.h'), ('console', 'bin/vorn-console'),
                                ('documentation', 'share/doc/vorn-collections/docs/installing.md')):
            prefix = self.directory / component
            self.run_in('.', 'cmake', '--install', BUILD, '--prefix', prefix, '--component', component)
            self.assertTrue((prefix / file).exists(), file)
            self.assertEqual((prefix / 'bin').exists(), component == 'console')

    def test_printers_are_loaded_by_the_debugger(self):
        gdb = shutil.which('gdb')
        self.assertTrue(gdb, 'gdb is missing')
        project = self.project('total')
        self.configure(project, self.prefix)
        self.run_in(project, 'cmake', '--build', 'build')
        share = self.prefix / 'share'
        automatic = ['-iex', f'add-auto-load-safe-path {share}', '-iex',
                     f'add-auto-load-scripts-directory {share}/gdb/auto-load']
        for title, options in (('by itself', automatic), ('by hand', ['-ex', f'source {share}/vorn/gdb/vorn_printers.py'])):
            with self.subTest(loaded=title):
                told = self.run_in(project, gdb, '-batch', '-nx', '-iex', 'set debuginfod enabled off', *options,
                                   '-ex', 'break vorn_runtime_stop', '-ex', 'run', '-ex', 'info pretty-printer',
                                   '-ex', 'vorn-heap', 'build/total')
                self.assertRegex(told, r'(?m)^  vorn\n(    .*\n)*    ListData$')
                self.assertRegex(told, r'(?m)^heap: collected$')
                self.assertNotIn('Traceback', told)

    # ---- Prefixes that are wrong ----

    def test_a_prefix_that_points_nowhere(self):
        told = self.configure(self.project('total'), self.directory / 'nowhere', expect=1)
        self.assertIn('Could not find a package configuration file provided by "vorn_collections"', told)

    def test_a_version_that_is_not_there(self):
        major, minor, patch = map(int, VERSION.split('.'))
        for asked in f'{major}.{minor + 1}', f'{major + 1}.0', f'{major}.{minor}.{patch + 1}', '0.0':
            with self.subTest(asked=asked):
                project = self.project(asked, find=f'find_package(vorn_collections {asked} REQUIRED)')
                told = self.configure(project, self.prefix, expect=1)
                self.assertIn(f'compatible with requested version "{asked}"', told)
                self.assertIn(f'version: {VERSION}', told)

    def test_a_component_that_does_not_exist(self):
        find = 'find_package(vorn_collections REQUIRED COMPONENTS runtime shared)'
        told = self.configure(self.project('total', find=find), self.prefix, expect=1)
        self.assertIn("it has no component 'shared'; there are collections, collections_static, runtime, runtime_static",
                      told)

    def test_without_the_collectors_library_only_the_static_runtime_is_missing(self):
        hidden = '-DCMAKE_DISABLE_FIND_PACKAGE_BDWGC=ON'
        static = 'find_package(vorn_collections REQUIRED COMPONENTS runtime_static)'
        told = self.configure(self.project('static', 'vorn::runtime_static', static), self.prefix, hidden, expect=1)
        self.assertIn('libgc 8.2 or later (Debian package: libgc-dev)', told)
        shared = self.project('shared')
        told = self.configure(shared, self.prefix, hidden)
        self.assertIn('without vorn::runtime_static, which needs libgc 8.2 (Debian package: libgc-dev)', told)
        self.run_in(shared, 'cmake', '--build', 'build')

    def test_headers_of_another_version(self):
        header = self.prefix / 'include/vorn/collections/version.h'
        header.write_text(header.read_text().replace(f'"{VERSION}"', '"0.0.7"'))
        told = self.configure(self.project('total'), self.prefix, expect=1)
        self.assertIn(f'its libraries are of version {VERSION}, its headers in {self.prefix}/include of 0.0.7', told)

    def test_headers_that_are_missing(self):
        shutil.rmtree(self.prefix / 'include')
        told = self.configure(self.project('total'), self.prefix, expect=1)
        self.assertIn(f'there are no headers in {self.prefix}/include', told)

    def test_a_library_of_another_version(self):
        library = self.prefix / f'lib/libvorn_runtime.so.{VERSION}'
        library.rename(library.with_suffix('.9'))
        told = self.configure(self.project('total'), self.prefix, expect=1)
        self.assertIn(f'references the file "{library}" but this file does not exist', told)

    def test_pkg_config_refuses_packages_of_two_versions(self):
        package = self.prefix / 'lib/pkgconfig/vorn_collections.pc'
        package.write_text(package.read_text().replace(f'Version: {VERSION}', 'Version: 0.0.7'))
        told = self.run_in('.', 'pkg-config', '--libs', 'vorn_runtime', expect=1, PKG_CONFIG_PATH=str(package.parent))
        self.assertIn(f"'vorn_collections = {VERSION}'", told)
        self.assertIn('0.0.7', told)


if __name__ == '__main__':
    unittest.main(verbosity=2)
