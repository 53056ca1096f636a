"""The measured programs: how they are built, started and talked to."""

import os
import pathlib
import re
import subprocess

from workloads import ROOT

BUILT = ROOT / "build/report"
PEERS = ROOT / "bench/peers"
BINARIES = ROOT / "build/bench/bin"


class ProgramFailed(Exception):
    """A program ended, or answered what was not asked."""


# With room for ten million boxed elements, whatever share of the machine a runtime would take by itself.
JAVA_EXPORTS = ["--add-exports", "java.management/sun.management=ALL-UNNAMED"]
COMMANDS = {
    "vorn": [str(BINARIES / "report_bench")],
    "vorn counting": [str(BINARIES / "report_memory")],
    "java": ["java", "-Xmx6g", "-XX:+UseSerialGC", *JAVA_EXPORTS, "-cp", str(BUILT / "java"), "Report"],
    "go": [str(BUILT / "go-report")],
    "pypy3": ["pypy3", "-B", str(PEERS / "python/report.py")],
    "python3": ["python3", "-B", str(PEERS / "python/report.py")],
    "node": ["node", "--expose-gc", "--max-old-space-size=6144", str(PEERS / "node/report.mjs")],
}
VERSIONS = {
    "java": ["java", "-version"],
    "go": ["go", "version"],
    "pypy3": ["pypy3", "-c", "import sys; print('.'.join(map(str, sys.pypy_version_info[:3])))"],
    "python3": ["python3", "--version"],
    "node": ["node", "--version"],
}


def run_checked(command, **options):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options)
    if done.returncode != 0:
        raise ProgramFailed(f"{command[0]} failed:\n{done.stdout}")
    return done.stdout


def build_peers(peers):
    """Compiles those that are compiled; what is newer than its sources stays."""
    if "java" in peers:
        sources = sorted(str(path) for path in (PEERS / "java").glob("*.java"))
        (BUILT / "java").mkdir(parents=True, exist_ok=True)
        run_checked(["javac", *JAVA_EXPORTS, "-d", str(BUILT / "java"), *sources])
    if "go" in peers:
        BUILT.mkdir(parents=True, exist_ok=True)
        sources = sorted(str(path) for path in (PEERS / "go").glob("*.go"))
        run_checked(["go", "build", "-o", str(BUILT / "go-report"), *sources],
                    env={**os.environ, "GOFLAGS": "-mod=mod", "GO111MODULE": "off"})


def version_of(name):
    return re.search(r"\d+(\.\d+)+", run_checked(VERSIONS[name])).group()


class Program:
    """A running program that answers requests."""

    def __init__(self, name):
        self.name = name
        self.process = subprocess.Popen(
            COMMANDS[name], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1)

    def ask(self, expected, *words):
        """Sends a request; the words behind the expected first one of the answer."""
        try:
            self.process.stdin.write("\t".join(str(word) for word in words) + "\n")
            self.process.stdin.flush()
            answer = self.process.stdout.readline().rstrip("\n").split("\t")
        except BrokenPipeError:
            answer = [""]
        if answer[0] != expected:
            raise ProgramFailed(f"{self.name} answered {' '.join(answer)!r} to {' '.join(map(str, words))!r}")
        return answer[1:]

    def rows(self):
        """The rows that it knows: (form, workload, kind)."""
        found = set()
        self.process.stdin.write("rows\n")
        self.process.stdin.flush()
        for line in self.process.stdout:
            words = line.rstrip("\n").split("\t")
            if words[0] == "end":
                return found
            found.add(tuple(words[1:4]))
        raise ProgramFailed(f"{self.name} does not tell its rows")

    def status_bytes(self, field):
        """A field of the process's status in the system, such as VmRSS."""
        for line in pathlib.Path(f"/proc/{self.process.pid}/status").read_text(encoding="ascii").splitlines():
            if line.startswith(field + ":"):
                return int(line.split()[1]) * 1024
        raise ProgramFailed(f"{self.name} has no {field}")

    def forget_peak(self):
        pathlib.Path(f"/proc/{self.process.pid}/clear_refs").write_text("5", encoding="ascii")

    def stop(self):
        self.process.stdin.close()
        self.process.stdout.close()
        try:
            self.process.wait(timeout=10)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()

    def __enter__(self):
        return self

    def __exit__(self, *error):
        self.stop()
