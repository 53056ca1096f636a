#!/usr/bin/env python3
"""Checks what the pages of documentation say: README.md, CONTRIBUTING.md, CHANGELOG.md, and everything below docs/,
examples/ and python/.

    check_docs.py LIBRARY_DIRECTORY [CONSOLE]

Every block of code names its language, and by that is checked:

- `c` and `cpp`: a whole program, which has a main, is compiled and run. It must print what the first `text` block behind
  it in its section shows, if there is one.
  Commands in `sh` blocks after it that compile it from the tree are run as they stand, and the result must print the
  same. A part of a program is marked: `c fragment` and `cpp fragment` are compiled as the body of a function, after the
  declarations of the header that a comment before them names (`<!-- after docs/fragments/NAME.h -->`); `sketch` is for
  what no compiler can read.
- `sh`: bash can read it. Every `./dev NAME`, here and in the text, is a subcommand.
- `console`: a conversation that the console has in the same way, with all others of its page before it.
- `vorn`: a script of the console, with its expectations.
- `python`: Python can read it. Those of docs/python.md are run by tests/python/check_guide.py.

Links to files and to headings lead somewhere, and the index of docs/ leads to every page there.
"""

import ast
import collections
import doctest
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
INDEX = ROOT / "docs/README.md"
FENCE = re.compile(r"^( *)```([^\n`]*)\n(.*?)^\1```$", re.DOTALL | re.MULTILINE)
LINK = re.compile(r"!?\[[^\]]*\]\(([^()\s]+(?:\([^()\s]*\))?)\)")
HEADING = re.compile(r"^#{1,6} +(.*?) *#*$", re.MULTILINE)
AFTER = re.compile(r"<!-- after (\S+) -->\s*\Z")
DEV = re.compile(r"\./dev ([a-z]\w*)")
ERROR_LINE = re.compile(r"^(?:\w+(?:Exception|Error)|Syntax|Refused): ")
PROMPT = "vorn> "
UNCHECKED = {"text", "cmake", "toml", "json", "go", "rust", "yaml", "gdb"}
COMPILERS = {"c": ("cc", "-std=c11"), "cpp": ("c++", "-std=c++20")}
WARNINGS = ["-Wall", "-Wextra", "-Werror"]
INCLUDES = ["-Icollections/include", "-Iruntime/include"]

Block = collections.namedtuple("Block", "language mark code line before section")


def pages():
    found = [ROOT / name for name in ("README.md", "CONTRIBUTING.md", "CHANGELOG.md", "SECURITY.md")]
    for directory in ("docs", "examples", "python"):
        found += sorted((ROOT / directory).rglob("*.md"))
    return [page for page in found if page.is_file()]


def blocks_of(text):
    outline = FENCE.sub(lambda match: re.sub(r"^#", "-", match[0], flags=re.MULTILINE), text)
    for match in FENCE.finditer(text):
        words = match[2].split()
        code = re.sub(rf"^{match[1]}", "", match[3], flags=re.MULTILINE)
        yield Block(words[0] if words else "", " ".join(words[1:]), code, text.count("\n", 0, match.start()) + 1,
                    text[:match.start()], len(HEADING.findall(outline[:match.start()])))


def prose_of(text):
    """The text without code."""
    return re.sub(r"`[^`\n]*`", "", FENCE.sub("", text))


def anchors_of(page):
    """The anchors of a page's headings, as they are made where such pages are shown."""
    seen = collections.Counter()
    anchors = set()
    for heading in HEADING.findall(FENCE.sub("", page.read_text(encoding="utf-8"))):
        plain = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading)
        slug = re.sub(r"[^\w\- ]", "", plain.lower()).replace(" ", "-")
        anchors.add(f"{slug}-{seen[slug]}" if seen[slug] else slug)
        seen[slug] += 1
    return anchors


class Checker:

    def __init__(self, libraries, console, directory):
        self.libraries = pathlib.Path(libraries).resolve()
        self.console = console
        self.directory = pathlib.Path(directory)
        self.problems = []
        self.counts = collections.Counter()
        self.subcommands = set(DEV.findall(subprocess.run([ROOT / "dev", "help"], check=True, capture_output=True,
                                                          text=True).stdout))
        self.environment = {name: value for name, value in os.environ.items()
                            if name not in ("LD_LIBRARY_PATH", "VORN_CONSOLE_HISTORY")}

    def check(self, page):
        self.page = page
        text = page.read_text(encoding="utf-8")
        self.check_links(text)
        for name in sorted(set(DEV.findall(text)) - self.subcommands):
            self.fail(1, f"./dev has no subcommand {name}")
        self.program = None  # the last one: its source and what it prints
        conversation = []
        blocks = list(blocks_of(text))
        for number, block in enumerate(blocks):
            self.counts[block.language] += 1
            if block.language in COMPILERS:
                self.check_code(block, blocks[number + 1:])
            elif block.language == "sh":
                self.check_shell(block)
            elif block.language == "console":
                conversation.append(block)
            elif block.language == "vorn":
                self.run_script(block.code, block.line)
            elif block.language == "python":
                self.check_python(block)
            elif block.language not in UNCHECKED:
                self.fail(block.line, f"a block of code in '{block.language}', which nothing checks")
        self.compile_fragments(block for block in blocks if block.language in COMPILERS and block.mark == "fragment")
        if conversation:
            self.run_script(self.script_of(conversation), conversation[0].line)

    def fail(self, line, message):
        self.problems.append(f"{self.page.relative_to(ROOT)}:{line}: {message}")

    # ---- Links

    def check_links(self, text):
        for target in LINK.findall(prose_of(text)):
            if re.match(r"[a-z]+:", target):
                continue
            self.counts["links"] += 1
            path, _, anchor = target.partition("#")
            page = (self.page.parent / path).resolve() if path else self.page
            line = text[:text.index(target)].count("\n") + 1
            if not page.exists():
                self.fail(line, f"no such file: {target}")
            elif anchor and (page.suffix != ".md" or anchor not in anchors_of(page)):
                self.fail(line, f"no such heading: {target}")

    def check_index(self):
        self.page = INDEX
        linked = {(INDEX.parent / target.partition("#")[0]).resolve()
                  for target in LINK.findall(prose_of(INDEX.read_text(encoding="utf-8")))}
        for page in sorted(INDEX.parent.glob("*.md")):
            if page != INDEX and page not in linked:
                self.fail(1, f"does not lead to {page.name}")

    # ---- Programs

    def check_code(self, block, following):
        if block.mark == "sketch":
            self.counts["sketches"] += 1
        elif block.mark not in ("", "fragment"):
            self.fail(block.line, f"'{block.mark}' is neither fragment nor sketch")
        elif not block.mark and not re.search(r"\bmain\(", block.code):
            self.fail(block.line, "neither a program nor marked as a fragment or a sketch")
        elif not block.mark:
            self.run_program(block, following)

    def compile_fragments(self, fragments):
        """Those of a page, at once for each header, which takes longer than they do. The compiler names their lines."""
        sources = {}
        for block in fragments:
            header = AFTER.search(block.before)
            if header is None:
                self.fail(block.line, "a fragment without a comment that names the header to compile it after")
                continue
            source = sources.setdefault((block.language, header[1]), [f'#include "{header[1]}"\n'])
            name = f"fragment_{block.line}"
            source.append(f'void {name}(void);\nvoid {name}(void) {{\n'
                          f'#line {block.line + 1} "{self.page.relative_to(ROOT)}"\n{block.code}}}\n')
        for (language, header), source in sources.items():
            compiler, standard = COMPILERS[language]
            # What a fragment computes it need not use.
            done = self.call([compiler, standard, *WARNINGS, "-Wno-unused", *INCLUDES, "-I.", "-fsyntax-only", "-x",
                              "c++" if language == "cpp" else "c", "-"], input="".join(source))
            if done.returncode != 0:
                self.fail(1, f"fragments do not compile after {header}:\n{done.stderr}")

    def run_program(self, block, following):
        expected = next((other for other in following if other.language in ("text", "c", "cpp")), None)
        shows_output = expected is not None and expected.language == "text" and expected.section == block.section
        if not shows_output:
            self.counts["programs whose output is not shown"] += 1
        source = self.directory / f"{self.page.stem}_{block.line}.{block.language}"
        source.write_text(block.code, encoding="utf-8")
        self.program = source, expected.code if shows_output else None
        compiler, standard = COMPILERS[block.language]
        self.build_and_run(block.line, [compiler, standard, *WARNINGS, *INCLUDES, source, "-o", source.with_suffix(""),
                                        f"-I{self.libraries.parent}/generated/include", f"-L{self.libraries}",
                                        "-lvorn_collections", "-lvorn_runtime", f"-Wl,-rpath,{self.libraries}"])

    def build_and_run(self, line, command):
        source, expected = self.program
        source.with_suffix("").unlink(missing_ok=True)
        done = self.call(command)
        if done.returncode != 0:
            self.fail(line, f"does not compile:\n{done.stderr}")
            return
        printed = self.call([source.with_suffix("")])
        if printed.returncode != 0 or expected not in (None, printed.stdout):
            self.fail(line, f"ends with status {printed.returncode} and prints\n{printed.stdout}{printed.stderr}"
                            f"instead of\n{expected}")

    def check_shell(self, block):
        done = self.call(["bash", "-n"], input=block.code)
        if done.returncode != 0:
            self.fail(block.line, f"no shell commands:\n{done.stderr}")
        for command in re.findall(r"^(?:cc|c\+\+) (?:.*\\\n)*.*$", block.code, re.MULTILINE):
            if "build/release/lib" not in command:
                continue
            self.counts["commands"] += 1
            if self.program is None:
                self.fail(block.line, "compiles a program that this page does not show")
                continue
            source = self.program[0]
            command = re.sub(r"(\$PWD/)?build/release/lib", str(self.libraries), command)
            command, replaced = re.subn(r"^(\S+) \w+\.\w+ -o \w+", rf"\1 {source} -o {source.with_suffix('')}", command)
            if replaced != 1:
                self.fail(block.line, "a command that does not begin as `cc FILE -o PROGRAM`")
                continue
            self.build_and_run(block.line, ["sh", "-c", command])

    def check_python(self, block):
        examples = doctest.DocTestParser().get_examples(block.code)
        try:
            ast.parse("".join(example.source for example in examples) if examples else block.code)
        except SyntaxError as error:
            self.fail(block.line, f"no Python: {error}")

    # ---- The console

    def script_of(self, conversation):
        """The script whose expectations are what the conversations show."""
        lines = []
        for block in conversation:
            if not block.code.startswith(PROMPT):
                self.fail(block.line, f"a conversation that does not begin with '{PROMPT}'")
            for exchange in block.code.split(PROMPT)[1:]:
                statement, *shown = exchange.rstrip("\n").split("\n")
                lines.append(statement)
                for line in shown or [""]:
                    word = "expect error" if ERROR_LINE.match(line) else "expect"
                    lines.append(f"# {word}: {line}".rstrip().replace("*", "\\*"))
        return "\n".join(lines) + "\n"

    def run_script(self, script, line):
        if not self.console:
            self.counts["not run, since there is no console"] += 1
            return
        path = self.directory / f"{self.page.stem}_{line}.vorn"
        path.write_text(script, encoding="utf-8")
        done = self.call([self.console, path])
        if done.returncode != 0:
            self.fail(line, f"the console differs:\n{done.stdout}{done.stderr}")

    def call(self, command, **options):
        return subprocess.run(command, cwd=ROOT, env=self.environment, capture_output=True, text=True, check=False,
                              **options)


def main():
    with tempfile.TemporaryDirectory() as directory:
        console = pathlib.Path(sys.argv[2]).resolve() if len(sys.argv) > 2 else None
        checker = Checker(sys.argv[1], console, directory)
        found = pages()
        for page in found:
            checker.check(page)
        checker.check_index()
    print("\n".join(checker.problems))
    counted = ", ".join(f"{count} {name}" for name, count in sorted(checker.counts.items()))
    print(f"{len(found)} pages: {counted}, {len(checker.problems)} problems")
    return 1 if checker.problems else 0


if __name__ == "__main__":
    sys.exit(main())
