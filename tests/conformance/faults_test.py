"""Runtimes with one planted fault each: a check that names the operation fails, and without a fault none does.

    faults_test.py VORN_CONFORMANCE_WITH_FAULTS FAULT...
"""

import os
import subprocess
import sys


def failed_checks(program, fault, *options):
    """The subjects of the checks that fail, and what the program printed."""
    done = subprocess.run([program, *options], env=os.environ | {'VORN_FAULT': fault}, capture_output=True, text=True,
                          check=False)
    failed = [line.removeprefix('FAILED   ') for line in done.stdout.splitlines() if line.startswith('FAILED   ')]
    if done.returncode != min(len(failed), 100):
        sys.exit(f'{fault}: status {done.returncode} for {len(failed)} failed checks\n{done.stdout}{done.stderr}')
    return failed, done.stdout


def main():
    program, *faults = sys.argv[1:]
    problems = []
    failed, printed = failed_checks(program, '')
    if failed:
        problems.append(f'without a fault:\n{printed}')
    for fault in faults:
        failed, printed = failed_checks(program, fault, f'--only={fault}:', '--seconds=20')
        naming = [line for line in failed if line.startswith(f'{fault}: ')]
        if not naming or ' -- ' not in naming[0]:
            problems.append(f'{fault}: no failed check names it:\n{printed}')
        else:
            print(naming[0])
    print('\n'.join(problems))
    print(f'{len(faults)} faults, {len(problems)} problems')
    return 1 if problems or len(faults) < 12 else 0


if __name__ == '__main__':
    sys.exit(main())
