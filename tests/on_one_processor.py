#!/usr/bin/env python3
"""on_one_processor.py DIRECTORY COMMAND...: runs the command on one processor, on which no other such command runs.

Lock files in the directory tell which processors are taken. When all are, the command runs wherever the system puts it.
"""

import fcntl
import os
import sys


def take_processor(directory):
    for processor in sorted(os.sched_getaffinity(0)):
        lock = os.open(os.path.join(directory, f"processor-{processor}.lock"), os.O_CREAT | os.O_RDWR, 0o666)
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            os.close(lock)
            continue
        os.set_inheritable(lock, True)  # held until the command has ended
        os.sched_setaffinity(0, {processor})
        return


def main():
    directory, command = sys.argv[1], sys.argv[2:]
    take_processor(directory)
    os.execv(command[0], command)


main()
