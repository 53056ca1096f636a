"""Runs the tests on one fault after another, those first that are likeliest to notice it and quickest to tell."""

import collections
import dataclasses
import itertools
import os
import pathlib
import re
import resource
import signal
import subprocess
import tempfile

SUITES = ('core', 'arraylist', 'array', 'display', 'immutable', 'inline', 'keyed', 'nets', 'runtime', 'user_code', 'kernels', 'sort')

# The suites that are about a directory; the longest name that fits counts.
NEAREST = {
    'collections/core/kernels/sort/': ('sort', 'arraylist'),
    'collections/core/kernels/': ('kernels', 'arraylist'),
    'collections/core/': ('core', 'arraylist'),
    'collections/array/': ('array',),
    'collections/arraylist/': ('arraylist',),
    'collections/display/': ('display',),
    'collections/immutable/': ('immutable',),
    'collections/inline/': ('inline',),
    'collections/keyed/': ('keyed',),
    'collections/': (),
}

# What the quick tests of a suite may take together, and what those may that go to the stress heap, which takes a hundred
# times as long; in milliseconds on the collected heap.
QUICK = 1500
FOR_STRESS = 150
MEMORY = 12 << 30

FAILED = re.compile(r'\[  FAILED  \] ([\w/]+\.[\w/]+)')


@dataclasses.dataclass
class Verdict:
    fault: object
    noticed_by: str = ''
    reached: int = 0

    @property
    def head(self):
        return f'{self.fault.place}:{self.fault.column}: {self.fault.sort}: {self.fault.change}: '

    @property
    def line(self):
        return self.head + (self.noticed_by or f'SURVIVED ({self.reached} tests come by it)')


def noticed_before(report, faults):
    """The verdicts of an earlier run on those of the faults that were noticed there."""
    lines = report.read_text(encoding='utf-8').splitlines() if report.exists() else []
    verdicts = []
    for fault in faults:
        verdict = Verdict(fault)
        ends = [line.removeprefix(verdict.head) for line in lines if line.startswith(verdict.head)]
        if ends and not ends[0].startswith('SURVIVED'):
            verdict.noticed_by = ends[0]
            verdicts.append(verdict)
    return verdicts


class Suites:
    """The test programs, and which test comes by which fault."""

    def __init__(self, programs, log_directory):
        self.programs = pathlib.Path(programs)
        self.logs = pathlib.Path(log_directory)
        self.logs.mkdir(parents=True, exist_ok=True)
        # By the number of a fault: (suite, milliseconds, test).
        self.reaching = collections.defaultdict(list)
        self.all_tests = collections.defaultdict(list)
        self.failing_anyway = []

    def trace(self, suite):
        """Runs a suite without a fault and notes what its tests come by, unless that is known of this very program."""
        trace, kept = self.logs / f'{suite}.trace', self.logs / f'{suite}.failing'
        if kept.exists() and kept.stat().st_mtime > (self.programs / f'{suite}_tests').stat().st_mtime:
            return suite, kept.read_text(encoding='utf-8').split(), trace
        trace.unlink(missing_ok=True)
        status, output = self.run(suite, 'collected', 0, [], 1200, {'VORN_PLANTED_TRACE': str(trace)})
        failing = sorted(set(FAILED.findall(output)))
        if status != 0 and not failing:
            raise SystemExit(f'{suite} ends with {status} without a fault:\n{output[-2000:]}')
        kept.write_text('\n'.join(failing), encoding='utf-8')
        return suite, failing, trace

    def note(self, suite, failing, trace):
        self.failing_anyway += failing
        for line in trace.read_text().splitlines():
            test, milliseconds, *numbers = line.split()
            if test in failing:
                continue
            self.all_tests[suite].append((int(milliseconds), test))
            for number in numbers:
                self.reaching[int(number)].append((suite, int(milliseconds), test))

    def run(self, suite, heap, number, tests, seconds, more_environment=None):
        """The exit status (None after a timeout) and the output of some tests of a suite, of all if none is named."""
        environment = os.environ | {'VORN_TEST_HEAP': f'heap={heap}', 'VORN_PLANTED': str(number)} | (more_environment or {})
        arguments = [str(self.programs / f'{suite}_tests')]
        with tempfile.TemporaryDirectory() as scratch:
            if tests:
                flags = pathlib.Path(scratch) / 'flags'
                flags.write_text('--gtest_filter=' + ':'.join(tests) + '\n--gtest_fail_fast\n')
                arguments.append(f'--gtest_flagfile={flags}')
            output = pathlib.Path(scratch) / 'output'
            with output.open('wb') as stream:
                process = subprocess.Popen(arguments, env=environment, cwd=scratch, stdin=subprocess.DEVNULL, stdout=stream,
                                           stderr=subprocess.STDOUT, start_new_session=True, preexec_fn=limit)
                try:
                    status = process.wait(seconds)
                except subprocess.TimeoutExpired:
                    status = None
                finally:
                    # Its death tests may have children of their own.
                    kill_group(process)
            return status, output.read_text(errors='replace')

    # ---- One fault ---------------------------------------------------------------------------------------------------

    def batches(self, fault):
        """(heap, suite, tests, milliseconds) in the order in which they are run."""
        by_suite = collections.defaultdict(list)
        for suite, milliseconds, test in self.reaching[fault.number]:
            by_suite[suite].append((milliseconds, test))
        nearest = NEAREST[max((place for place in NEAREST if fault.path.startswith(place)), key=len)]
        if not by_suite:
            # A child of a death test may come by it, which leaves no trace.
            for suite in nearest[:1]:
                by_suite[suite] = list(self.all_tests[suite])
        order = sorted(by_suite, key=lambda suite: nearest.index(suite) if suite in nearest else len(nearest))
        quick, slow, stress = [], [], []
        for suite in order:
            tests = sorted(by_suite[suite])
            now = within(tests, QUICK)
            quick.append(('collected', suite, now))
            slow.append(('collected', suite, tests[len(now):]))
            if suite not in ('kernels', 'sort') and (suite in nearest or fault.sort == 'root left out'):
                stress.append(('stress', suite, within(tests, FOR_STRESS)))
        batches = stress + quick + slow if fault.sort == 'root left out' else quick + slow + stress
        return [(heap, suite, [test for _, test in tests], sum(time for time, _ in tests))
                for heap, suite, tests in batches if tests]

    def judge(self, fault):
        verdict = Verdict(fault, reached=len(self.reaching[fault.number]))
        for heap, suite, tests, milliseconds in self.batches(fault):
            allowed = 30 + milliseconds / 100 if heap == 'collected' else 120 + milliseconds / 5
            status, output = self.run(suite, heap, fault.number, tests, allowed)
            if status != 0:
                verdict.noticed_by = f'{suite} ({heap}): {reason(status, output, allowed)}'
                break
        return verdict


def within(tests, milliseconds):
    """The first tests that take no longer together, and one at least."""
    spent = list(itertools.accumulate(time for time, _ in tests))
    return tests[:max(1, sum(time <= milliseconds for time in spent))]


def limit():
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_DATA, (MEMORY, MEMORY))


def kill_group(process):
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()


def reason(status, output, allowed):
    """Which test noticed, and how where it was not by failing."""
    failed = FAILED.search(output)
    if failed:
        return failed.group(1)
    begun = re.findall(r'^\[ RUN      \] (\S+)', output, re.MULTILINE)
    last = begun[-1] if begun else 'before the first test'
    if status is None:
        return f'{last}, did not end within {allowed:.0f} s'
    return f'{last}, ended with {signal.Signals(-status).name if status < 0 else status}'
