#!/usr/bin/env python3
"""Compiles, links and runs the C program of README.md by the commands that stand there, and compares what it prints.

    check_readme.py LIBRARY_DIRECTORY

The commands are run from the root of the repository with the library directory and the file names replaced.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent


def blocks(readme, language):
    return re.findall(rf"^```{language}\n(.*?)^```$", readme, re.DOTALL | re.MULTILINE)


def main():
    library_directory = str(pathlib.Path(sys.argv[1]).resolve())
    readme = (ROOT / "README.md").read_text(encoding="utf-8")
    (program,) = blocks(readme, "c")
    (expected,) = blocks(readme, "text")
    commands = [block for block in blocks(readme, "sh") if block.startswith("cc embed.c")]
    if len(commands) != 2:
        print(f"README.md has {len(commands)} commands that start with 'cc embed.c', not 2")
        return 1

    failures = 0
    with tempfile.TemporaryDirectory() as directory:
        source = pathlib.Path(directory) / "embed.c"
        binary = pathlib.Path(directory) / "embed"
        source.write_text(program, encoding="utf-8")
        for command in commands:
            runnable = re.sub(r"(\$PWD/)?build/release/lib", library_directory, command)
            runnable = runnable.replace("embed.c -o embed", f"{source} -o {binary} -std=c11 -Wall -Wextra -Werror")
            binary.unlink(missing_ok=True)
            subprocess.run(["sh", "-c", runnable], cwd=ROOT, check=True)
            environment = {name: value for name, value in os.environ.items() if name != "LD_LIBRARY_PATH"}
            printed = subprocess.run([binary], check=True, capture_output=True, text=True, env=environment).stdout
            if printed != expected:
                failures += 1
                print(f"{command}prints\n{printed}instead of\n{expected}")
    print(f"{len(commands)} ways of linking, {failures} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
