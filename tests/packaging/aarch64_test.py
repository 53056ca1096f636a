"""The Debian packages for aarch64: what they say of themselves, what is in them, and programs against them, which run in
the emulator."""

import os
import re
import unittest

from debian_root import dependencies, fields_of, packages_in
from workspace import ABI, PRINTED, ROOT, VERSION, Workspace

PACKAGES = ROOT / 'build/package-aarch64'
SYSROOT = ROOT / 'build/aarch64-root'
LIBRARIES = 'usr/lib/aarch64-linux-gnu'
RUNTIME, COLLECTIONS = f'libvorn-runtime{ABI}', f'libvorn-collections{ABI}'

# What packages of this architecture depend on beside each other. Names alone would be right on any: the versions come
# from the other architecture's own records.
SYSTEM = {
    COLLECTIONS: {'libc6', 'libgcc-s1', 'libstdc++6'},
    RUNTIME: {'libc6', 'libgc1', 'libgcc-s1', 'libstdc++6'},
    'libvorn-dev': {'libgc-dev'},
    'vorn-console': {'libc6', 'libedit2', 'libgcc-s1', 'libstdc++6'},
}


class Aarch64Test(Workspace):

    def setUp(self):
        super().setUp()
        self.root = self.directory / 'root'
        for package in packages_in(PACKAGES):
            self.run_in('.', 'dpkg-deb', '--extract', package, self.root)

    def emulated(self, *command):
        return self.run_in('.', 'qemu-aarch64-static', '-L', SYSROOT, '-E', f'LD_LIBRARY_PATH={self.root / LIBRARIES}',
                           *command)

    def test_every_package_but_the_documentation_is_for_arm64(self):
        architectures = {fields_of(package)['Package']: fields_of(package)['Architecture']
                         for package in packages_in(PACKAGES)}
        self.assertEqual(architectures, dict.fromkeys(SYSTEM, 'arm64') | {'vorn-collections-doc': 'all'})
        self.assertEqual([package.name for package in packages_in(PACKAGES) if '_amd64' in package.name], [])

    def test_dependencies_name_what_the_programs_are_linked_to(self):
        for package in packages_in(PACKAGES):
            name = fields_of(package)['Package']
            depends = dependencies(package)
            ours = {other for other in depends if 'vorn' in other}
            with self.subTest(package=name):
                self.assertEqual(depends.keys() - ours, SYSTEM.get(name, set()))
                self.assertEqual({depends[other] for other in ours} - {f'(= {VERSION})'}, set())
                for other in depends.keys() & {'libc6', 'libgc1', 'libstdc++6', 'libedit2'}:
                    self.assertRegex(depends[other], r'^\(>= \S+\)$')

    def test_all_code_is_of_this_processor_and_lies_in_its_own_directory(self):
        looked_at = 0
        for path in self.root.rglob('*'):
            if path.is_symlink() or not path.is_file():
                continue
            with self.subTest(path=path):
                self.assertNotIn('x86_64', str(path))
                if path.read_bytes()[:4] == b'\x7fELF' or path.suffix == '.a':
                    looked_at += 1
                    machines = re.findall(r'Machine: +(.*)', self.run_in('.', 'readelf', '-h', path))
                    self.assertEqual(set(machines), {'AArch64'})
                    self.assertIn(path.parent.relative_to(self.root).parts[:3],
                                  [('usr', 'bin'), tuple(LIBRARIES.split('/'))])
        # Two shared libraries, two static ones, the console, and the debugger's types.
        self.assertEqual(looked_at, 6)

    def test_the_console_runs_from_the_package(self):
        console = self.root / 'usr/bin/vorn-console'
        self.assertEqual(self.emulated(console, '--version'), f'vorn-console {VERSION}\n')
        self.assertRegex(self.emulated(console, '--tour'), r'tour: \d+ statements, \d+ expectations, 0 differences\n$')

    def test_programs_link_shared_and_static(self):
        for target in 'vorn::runtime', 'vorn::runtime_static':
            with self.subTest(target=target):
                project = self.project(target.replace(':', ''), target)
                self.configure(project, self.root / 'usr', f'-DCMAKE_TOOLCHAIN_FILE={ROOT / "cmake/aarch64.cmake"}',
                               f'-Dvorn_collections_DIR={self.root / LIBRARIES / "cmake/vorn_collections"}')
                self.run_in(project, 'cmake', '--build', 'build')
                self.assertEqual(self.emulated(project / 'build/total'), PRINTED)


if __name__ == '__main__':
    os.umask(0o022)
    unittest.main(verbosity=2)
