"""What machine and which versions the figures come from."""

import datetime
import os
import platform
import re
import subprocess

import programs
from workloads import ROOT


LANGUAGES = {"java": "Java", "go": "Go", "pypy3": "PyPy", "python3": "CPython", "node": "Node"}


def processor():
    with open("/proc/cpuinfo", encoding="utf-8") as lines:
        for line in lines:
            if line.startswith("model name"):
                return line.split(":", 1)[1].strip()
    return platform.machine()


def memory_gigabytes():
    return round(os.sysconf("SC_PHYS_PAGES") * os.sysconf("SC_PAGE_SIZE") / (1 << 30))


def system():
    with open("/etc/os-release", encoding="utf-8") as lines:
        found = re.search(r'^PRETTY_NAME="(.*)"', lines.read(), re.MULTILINE)
    return found.group(1) if found else platform.platform()


def own_version():
    command = ["git", "describe", "--always", "--dirty"]
    asked = subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=False)
    return asked.stdout.strip() or "a source release"


def compiler():
    return "g++ " + programs.run_checked(["g++", "-dumpfullversion"]).strip()


def libraries():
    versions = {}
    for title, name in (("GLib", "glib-2.0"), ("Abseil", "absl_flat_hash_map"), ("vqsort", "libhwy")):
        asked = subprocess.run(["pkg-config", "--modversion", name], capture_output=True, text=True, check=False)
        versions[title] = asked.stdout.strip() or "unknown"
    return versions


def description(peers):
    return {
        "made": datetime.date.today().isoformat(),
        "machine": {
            "processor": processor(), "cores": os.cpu_count(), "memory": memory_gigabytes(), "system": system()},
        "versions": {"vorn": own_version(), "C++": compiler(), **libraries(),
                     **{LANGUAGES[peer]: programs.version_of(peer) for peer in peers}},
    }
