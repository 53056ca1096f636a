#!/usr/bin/env python3
"""Checks what the two shared libraries export and what they need.

    check_exports.py LIBVORN_COLLECTIONS.SO LIBVORN_RUNTIME.SO

- The collections library exports exactly what its public headers declare: the natives, with VORN_NATIVE, and the
  helpers of other modules, with VORN_EXPORT. Nothing else in the library bears either mark.
- Apart from the C and C++ libraries it needs nothing but operations that the headers of core/port declare: it has no
  hidden dependency.
- The runtime library exports every function of the embedding API's header, which has a function for boxing and one for
  unboxing each row of the table of primitive types, in the row's own type of C.
- Both export what abi.txt lists, which is that of the number in their SONAMEs, and nothing else: what programs that were
  linked to an earlier release need, and what the two use of each other. So whatever is exported or no longer exported is
  a line of difference there.
- The runtime library provides all of those that are needed, and needs nothing but what the collections library exports
  and the collector's GC_ functions.
"""

import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PUBLIC_HEADERS = ROOT / "collections/include"
RUNTIME_HEADER = ROOT / "runtime/include/vorn/runtime.h"
ABI = ROOT / "tests/packaging/abi.txt"
KINDS = ROOT / "collections/core/kinds.def"
PORT_HEADERS = sorted((ROOT / "collections/core/port").glob("*.h"))

COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
PREPROCESSOR = re.compile(r"^[ \t]*#(?:[^\n\\]|\\\n|\\.)*", re.MULTILINE)
# The name that a mark declares: the last word before the parameters, an initialiser or the end.
NATIVE = re.compile(r"\bVORN_NATIVE\b[^;(){}=]*?\b(\w+)\s*\(")
HELPER = re.compile(r"\bVORN_EXPORT\b[^;(){}=]*?\b(\w+)\s*\(")
EXPORTED_VARIABLE = re.compile(r"\bVORN_EXPORT\s+extern\b[^;(){}=]*?\b(\w+)\s*(?:\[[^\]]*\])?\s*;")
EMBEDDING = re.compile(r"\bVORN_RUNTIME_EXPORT\b([^;(){}=]*?)\b(\w+)\s*\(([^()]*)\)")
KIND_ROW = re.compile(r"^VORN_PRIMITIVE_KIND\(\d+, (\w+), ([\w:]+),", re.MULTILINE)
CHARACTER_ROW = re.compile(r"^VORN_CHARACTER_TYPE\((\w+), (\w+)\)", re.MULTILINE)
MARK = re.compile(r"\bVORN_(?:NATIVE|EXPORT)\b|\bvisibility\s*\(\s*\"default\"")
VARIABLE = re.compile(r"\bextern\s[^;(){}]*?\b(\w+)\s*;")
FUNCTION = re.compile(r"\b(\w+)\s*\([^(){};]*\)\s*(?:const\s*)?(?:noexcept\s*)?;")

# Instantiations of standard templates, which no visibility setting of ours hides because namespace std is visible.
STANDARD_LIBRARY = re.compile(r"^(?:[\w:<>*& ,]+ )?(?:std|__gnu_cxx)::")
# Weak references that the compiler's start-up code puts into every library.
START_UP = {"__cxa_finalize", "__gmon_start__", "_ITM_deregisterTMCloneTable", "_ITM_registerTMCloneTable"}


def code_of(path):
    """The text of a source without comments and preprocessor lines."""
    return PREPROCESSOR.sub("", COMMENT.sub(" ", path.read_text(encoding="utf-8")))


def demangled(symbol):
    return subprocess.run(["c++filt", symbol], check=True, capture_output=True, text=True).stdout.strip()


def name_of(symbol):
    """The unqualified function or variable name of a symbol."""
    # A function that returns a std::string bears the tag of the library's string type.
    return demangled(symbol).split("(")[0].split("::")[-1].removesuffix("[abi:cxx11]")


class Library:
    """The dynamic symbols of a shared library, without those that come from or go to the C and C++ libraries."""

    def __init__(self, path):
        self.exported = set()
        self.needed = set()
        dynamic = subprocess.run(["readelf", "-d", path], check=True, capture_output=True, text=True).stdout
        self.soname = re.search(r"SONAME.*\[(.*)\]", dynamic)[1]
        listing = subprocess.run(
            ["nm", "-D", "--with-symbol-versions", path], check=True, capture_output=True, text=True)
        for line in listing.stdout.splitlines():
            *_, kind, symbol = line.split()
            if kind in "Uw":
                # A symbol of a system library carries its version.
                if "@" not in symbol and symbol not in START_UP:
                    self.needed.add(symbol)
            elif not (kind in "WVu" and STANDARD_LIBRARY.match(demangled(symbol))):
                self.exported.add(symbol.split("@")[0])


def broken_promises(*libraries):
    """What a program linked to an earlier release would miss."""
    promised = ABI.read_text(encoding="utf-8")
    number = re.search(r"number (\d+)", promised)[1]
    for library in libraries:
        name, _, soname_number = library.soname.partition(".so.")
        if soname_number != number:
            yield f"{library.soname}: abi.txt is that of number {number}"
        symbols = re.findall(rf"^{name} (\S+)$", promised, re.MULTILINE)
        if not symbols:
            yield f"{name}: abi.txt promises nothing of it"
        for symbol in symbols:
            if symbol not in library.exported:
                yield f"{demangled(symbol)}: {name} exported it in an earlier release"
        between = re.findall(rf"^between {name} (\S+)$", promised, re.MULTILINE)
        for symbol in between:
            if symbol not in library.exported:
                yield f"{demangled(symbol)}: {name} does not export it any more; the line in abi.txt can go"
        for symbol in sorted(library.exported.difference(symbols, between)):
            yield f"{demangled(symbol)}: exported, but abi.txt has no line '{name} {symbol}'"


def boxing_functions():
    """What the header has to declare for the rows of the table: result and parameters by name."""
    table = KINDS.read_text(encoding="utf-8")
    types = {name: spelling.removeprefix("std::") for name, spelling in KIND_ROW.findall(table)}
    types.update({name: types[kind] for name, kind in CHARACTER_ROW.findall(table)})
    expected = {}
    for name, c_type in types.items():
        if name == "Boolean":
            c_type = "bool"
        # SByte is one word, CodeUnit is two.
        suffix = "code_unit" if name == "CodeUnit" else name.lower()
        expected[f"vorn_box_{suffix}"] = ("void*", f"{c_type} value")
        expected[f"vorn_unbox_{suffix}"] = ("int", f"void* handle, {c_type}* value")
    return expected


def main():
    collections, runtime = Library(sys.argv[1]), Library(sys.argv[2])

    problems = list(broken_promises(collections, runtime))
    natives = set()
    helpers = set()
    for source in sorted((ROOT / "collections").rglob("*")):
        if source.suffix not in (".h", ".hpp", ".cpp", ".inc", ".in"):
            continue
        code = code_of(source)
        if source.is_relative_to(PUBLIC_HEADERS):
            natives.update(NATIVE.findall(code))
            helpers.update(HELPER.findall(code))
            helpers.update(EXPORTED_VARIABLE.findall(code))
        elif source not in PORT_HEADERS and MARK.search(code):
            problems.append(f"{source.relative_to(ROOT)}: exports something itself; that is for the public headers")
    operations = set()
    for header in PORT_HEADERS:
        operations.update(FUNCTION.findall(code_of(header)))
        operations.update(VARIABLE.findall(code_of(header)))

    for native in sorted(natives - collections.exported):
        problems.append(f"{native}: declared in a public header, but not exported")
    exported = {name_of(symbol) for symbol in collections.exported - natives}
    for name in sorted(helpers - exported):
        problems.append(f"{name}: declared in a public header, but not exported")
    for name in sorted(exported - helpers):
        problems.append(f"{name}: exported, but no public header declares it")
    for symbol in sorted(collections.needed):
        if name_of(symbol) not in operations:
            problems.append(f"{demangled(symbol)}: needed by the library, but no declared runtime operation")
        if symbol not in runtime.exported:
            problems.append(f"{demangled(symbol)}: needed by the library, but not exported by the runtime")
    for symbol in sorted(runtime.needed - collections.exported):
        if not symbol.startswith("GC_"):
            problems.append(f"{demangled(symbol)}: needed by the runtime, but not exported by the library")
    embedding = {name: (result.strip(), arguments) for result, name, arguments in
                 EMBEDDING.findall(code_of(RUNTIME_HEADER))}
    for name in sorted(embedding.keys() - runtime.exported):
        problems.append(f"{name}: declared in the embedding API's header, but not exported")
    for name, declaration in boxing_functions().items():
        if embedding.get(name) != declaration:
            problems.append(f"{name}: the table of primitive types asks for {declaration}, the embedding API's header "
                            f"has {embedding.get(name)}")
    if not natives or not helpers or not embedding or not collections.needed:
        problems.append("found no natives, helpers or runtime operations: this script no longer understands them")

    print("\n".join(problems))
    print(f"{len(natives)} natives, {len(helpers)} helpers, {len(collections.needed)} runtime operations needed, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
