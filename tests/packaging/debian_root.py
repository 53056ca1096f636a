"""A scratch root with a package database of its own, in which dpkg installs as it does on a machine."""

import os
import pathlib
import re
import subprocess

import workspace


def fields_of(package):
    """The control fields of a package file."""
    text = subprocess.run(['dpkg-deb', '--field', package], check=True, capture_output=True, text=True).stdout
    return dict(re.findall(r'^([\w-]+): (.*)', text, re.MULTILINE))


def packages_in(directory):
    return sorted(pathlib.Path(directory).glob('*.deb'))


def dependencies(package):
    """Each dependency's name and the rest, such as '(= 0.1.0)'."""
    depends = fields_of(package).get('Depends', '')
    return dict(re.fullmatch(r'(\S+) ?(.*)', one).groups() for one in depends.split(', ')) if depends else {}


class DebianRoot:
    """The root, in whose database stand those packages of this machine that ours depend on."""

    def __init__(self, path, without=()):
        self.path = path
        self.libraries = path / 'usr/lib' / subprocess.run(
            ['dpkg-architecture', '-qDEB_HOST_MULTIARCH'], check=True, capture_output=True, text=True).stdout.strip()
        database = path / 'var/lib/dpkg'
        for directory in 'info', 'updates', 'triggers':
            (database / directory).mkdir(parents=True)
        names = {name for package in packages_in(workspace.PACKAGES) for name in dependencies(package)}
        for name in sorted(names):
            known = subprocess.run(['dpkg-query', '--status', name], capture_output=True, text=True, check=False)
            if known.returncode == 0 and name not in without and 'vorn' not in name:
                # What those depend on in turn is not in this root.
                status = re.sub(r'^(Pre-)?(Depends|Breaks|Conflicts):.*\n', '', known.stdout, flags=re.MULTILINE)
                with (database / 'status').open('a') as file:
                    file.write(status + '\n')
                architecture = re.search(r'^Architecture: (.*)', status, re.MULTILINE)[1]
                same = ':' + architecture if 'Multi-Arch: same' in status else ''
                for record in 'list', 'md5sums':
                    (database / f'info/{name}{same}.{record}').touch()
        self.before = self.files()

    def files(self):
        """What lies in the root, beside dpkg's own records."""
        return sorted(str(path.relative_to(self.path)) for path in self.path.rglob('*')
                      if not path.is_relative_to(self.path / 'var'))

    def dpkg(self, *arguments, expect=0):
        command = ['dpkg', f'--root={self.path}', '--force-script-chrootless', '--log=/dev/null', *map(str, arguments)]
        if os.geteuid() != 0:
            command = ['fakeroot', *command[:1], '--force-not-root', *command[1:]]
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False,
                              env=os.environ | {'LC_ALL': 'C'})
        if expect is not None:
            assert done.returncode == expect, f'{command}\n{done.stdout}'
        return done.stdout

    def installed(self):
        """Our packages with their states and versions."""
        listing = subprocess.run(
            ['dpkg-query', f'--admindir={self.path}/var/lib/dpkg', '-W', '-f', '${Package} ${db:Status-Abbrev}${Version}\n'],
            check=True, capture_output=True, text=True).stdout
        return dict(line.split(' ', 1) for line in listing.splitlines() if 'vorn' in line)
