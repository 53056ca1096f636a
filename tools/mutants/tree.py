"""A copy of the project whose `collections/` has planted faults, and its build."""

import os
import pathlib
import re
import subprocess

import numbered
import planting
import sites

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
TREE = ROOT / 'build/mutants/tree'
BUILD = TREE / 'build/mutants'
PARTS = ('CMakeLists.txt', 'CMakePresets.json', 'LICENSE', 'bench', 'cmake', 'conformance', 'console', 'docs', 'examples',
         'fuzz', 'packaging', 'python', 'runtime', 'tests', 'tools')

# Only the compiler runs these: a digest of the layout, made at compile time.
NEVER_RUN = {'collections/inline/layout_digest.h'}

INCLUDE = '#include "tools/mutants/{}"\n#line 1\n'


def write_if_changed(path, content):
    """Leaves files alone that are as they should be, so that what was compiled of them stands."""
    if path.exists() and path.read_bytes() == content:
        return
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)


def library_files():
    return [path.relative_to(ROOT).as_posix() for path in sorted((ROOT / 'collections').rglob('*')) if path.is_file()]


def make_tree():
    """Everything but collections/ is what it is here; of that a copy stands from the last time, or is made."""
    TREE.mkdir(parents=True, exist_ok=True)
    for part in PARTS:
        link = TREE / part
        if not link.is_symlink():
            link.symlink_to(os.path.relpath(ROOT / part, TREE))
    here = set(library_files())
    for name in here:
        if not (TREE / name).exists():
            write_if_changed(TREE / name, (ROOT / name).read_bytes())
    for path in (TREE / 'collections').rglob('*'):
        if path.is_file() and path.relative_to(TREE).as_posix() not in here:
            path.unlink()


def configure():
    done = subprocess.run(['cmake', '--preset', 'mutants'], cwd=TREE, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise SystemExit(done.stdout + done.stderr)


def find_faults():
    """All faults that can be planted, and all numbered places, in the order of their places."""
    finders = [sites.Finder(TREE, ROOT), numbered.NumberedFinder(TREE, ROOT)]
    for file, arguments in sites.units_of(BUILD, 'vorn_collections_objects'):
        unit = sites.parse(file, arguments, TREE, ROOT)
        for finder in finders:
            finder.collect(unit)
    return [sorted((fault for fault in finder.faults.values() if fault.path not in NEVER_RUN), key=lambda fault: fault.key)
            for finder in finders]


def plant(faults):
    """Writes the sources with these faults. Gives those that another one stands in the way of."""
    by_file, refused = {}, []
    for fault in faults:
        by_file.setdefault(fault.path, []).append(fault)
    for name in library_files():
        text, left = planting.write_faults((ROOT / name).read_bytes(), by_file.get(name, []))
        refused += left
        # What is included in the middle of another file comes after the include of that one.
        if name.endswith('.cpp') or (name.endswith('.h') and name in by_file):
            special = any(fault.sort in numbered.SORTS for fault in by_file.get(name, []))
            text = INCLUDE.format('planted_sites.h' if special else 'planted.h').encode() + text
        write_if_changed(TREE / name, text)
    return refused


def compile_programs(targets, jobs, log):
    """Compiles. Gives the places (file, line) in the library that the compiler complains about, one for each error."""
    done = subprocess.run(['cmake', '--build', str(BUILD), '-j', str(jobs), '--target', *targets, '--', '-k', '0'],
                          capture_output=True, text=True, check=False)
    output = done.stdout + done.stderr
    log.write_text(output)
    if done.returncode == 0:
        return []
    places = places_of_errors(output)
    if not places:
        raise SystemExit(f'the build failed, and not by a planted fault; see {log}')
    return places


def places_of_errors(output):
    """Where the library's sources are wrong: the places of errors themselves and, where an error stands in a template,
    the innermost place that asked for it."""
    places, asked_for = [], False
    for line in output.splitlines():
        asked_for = asked_for or 'In instantiation of' in line or 'In substitution of' in line
        found = re.match(r'(?:\S*/)?(collections/[^:\s]+):(\d+):', line)
        if found and (asked_for or ' error: ' in line):
            places.append((found.group(1), int(found.group(2))))
            asked_for = False
    return places
