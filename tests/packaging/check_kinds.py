#!/usr/bin/env python3
"""Checks that what cannot be made of the table of kinds has a row for each: what is installed by itself, which knows no
private file. These are the functions of the C API that box and unbox a type, the rows of the C++ types that stand for
elements, and those of the Python package.

Prints one line per row that is missing or says something else than the table, and exits 1 when there is one.
"""

import importlib.util
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
TABLE = "collections/core/kinds.def"
C_API = "runtime/include/vorn/runtime.h"
CPP_ELEMENTS = "runtime/include/vorn/cpp/elements.hpp"
PYTHON_TYPES = "python/vorn/_types.py"


def read(name):
    return (ROOT / name).read_text(encoding="utf-8")


def rows(macro):
    for row in re.findall(rf"^{macro}\((.*)\)$", read(TABLE), re.MULTILINE):
        yield [part.strip() for part in row.split(",")]


def types():
    """Each type's name, the width of an element in bytes, its family, and its element as C has it, if C has it."""
    kinds = {}
    for _, name, element, width, family, _ in rows("VORN_PRIMITIVE_KIND"):
        element = "bool" if family == "Boolean" else element.removeprefix("std::")
        if "::" in element:
            element = None
        kinds[name] = name, int(width), family, element
    yield from kinds.values()
    for name, kind in rows("VORN_CHARACTER_TYPE"):
        yield name, kinds[kind][1], "Character", kinds[kind][3]


def function_name(name):
    return re.sub(r"(?<=[a-z])(?=[A-Z])", "_", name).lower()


def c_api(name, element):
    header = read(C_API)
    name = function_name(name)
    for declaration in f"void* vorn_box_{name}(TYPE value);", f"int vorn_unbox_{name}(void* handle, TYPE* value);":
        pattern = re.escape(f"VORN_RUNTIME_EXPORT {declaration}").replace("TYPE", element or r"\w+")
        if not re.search(f"^{pattern}$", header, re.MULTILINE):
            yield C_API, f"no `VORN_RUNTIME_EXPORT {declaration.replace('TYPE', element or 'TYPE')}`"


def cpp_elements(name):
    function = function_name(name)
    row = (rf"struct primitive_row<[\w:]+> : boxing<&vorn_box_{function}, &vorn_unbox_{function}> {{\n"
           rf'  static constexpr const char\* name = "{name}";')
    if not re.search(row, read(CPP_ELEMENTS)):
        yield CPP_ELEMENTS, f"no specialisation of primitive_row with vorn_box_{function} and the name \"{name}\""


def python_types():
    found = importlib.util.spec_from_file_location("types_of_elements", ROOT / PYTHON_TYPES)
    module = importlib.util.module_from_spec(found)
    found.loader.exec_module(module)
    return module.PRIMITIVES


def python_type(primitive, width, family, element):
    if primitive is None:
        yield PYTHON_TYPES, "no row in PRIMITIVES"
        return
    if primitive.width != width:
        yield PYTHON_TYPES, f"a width of {primitive.width} bytes instead of {width}"
    if primitive.is_integer != (family == "Integer") or primitive.is_floating != (family == "Floating"):
        yield PYTHON_TYPES, f"the format '{primitive.format}' and range do not fit the family {family}"
    elif primitive.is_integer:
        least = 0 if element.startswith("u") else -2**(8 * width - 1)
        if (primitive.least, primitive.greatest) != (least, least + 2**(8 * width) - 1):
            yield PYTHON_TYPES, f"a range of {primitive.least} to {primitive.greatest}, which is not that of {element}"


def main():
    sys.dont_write_bytecode = True
    in_python = python_types()
    found = list(types())
    problems = [(file, name, problem) for name, width, family, element in found
                for file, problem in (*c_api(name, element), *cpp_elements(name),
                                      *python_type(in_python.get(name), width, family, element))]
    problems += [(PYTHON_TYPES, name, f"a row in PRIMITIVES that {TABLE} does not have")
                 for name in sorted(set(in_python) - {name for name, *_ in found})]
    for file, name, problem in problems:
        print(f"{file}: {name}: {problem}")
    print(f"{len(found)} types, {len(problems)} problems")
    return 1 if problems or not found else 0


if __name__ == "__main__":
    sys.exit(main())
