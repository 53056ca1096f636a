#!/usr/bin/env python3
"""Links libvorn_inline.bc into a small module of a compiler and runs what comes of it.

    bitcode_test.py DIRECTORY-OF-LIBRARIES

- After linking and optimising, no form is called any more, nor is there one left: they are inlined. The native of each is,
  as what they fall back to.
- The optimised module is compiled, linked to the shared libraries and run, on plain receivers and on others.
- The text is the same code as the bitcode.

Exits with 77, which counts as skipped, where clang or LLVM's tools are not installed.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

TOOLS = ("clang", "llvm-link", "opt", "llvm-dis")
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

# What a compiler emits: a loop that sums a list of Int by its elements and appends the sum, and a lookup.
MODULE = """
declare i64 @vorn_proven_ArrayList_size(i8*)
declare i64 @vorn_proven_ArrayList_getInt(i8*, i64, i32)
declare void @vorn_inline_ArrayList_addInt(i8*, i64)
declare i8* @vorn_proven_Map__get_integer(i8*, i64)
declare void @vorn_inline_check()

define void @start() {
  call void @vorn_inline_check()
  ret void
}

define i64 @append_sum(i8* %list) {
entry:
  br label %head
head:
  %i = phi i64 [ 0, %entry ], [ %next, %body ]
  %sum = phi i64 [ 0, %entry ], [ %more, %body ]
  %size = call i64 @vorn_proven_ArrayList_size(i8* %list)
  %within = icmp slt i64 %i, %size
  br i1 %within, label %body, label %done
body:
  %element = call i64 @vorn_proven_ArrayList_getInt(i8* %list, i64 %i, i32 5)
  %more = add i64 %sum, %element
  %next = add i64 %i, 1
  br label %head
done:
  call void @vorn_inline_ArrayList_addInt(i8* %list, i64 %sum)
  ret i64 %sum
}

define i8* @look_up(i8* %map, i64 %key) {
  %value = call i8* @vorn_proven_Map__get_integer(i8* %map, i64 %key)
  ret i8* %value
}
"""

PROGRAM = """
#include <stdio.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/map.h>
#include <vorn/runtime.h>

void start(void);
long long append_sum(void* list);
void* look_up(void* map, long long key);

int main(void) {
  start();
  const char* const classes[] = {"ArrayList<Int>", "ArrayListSync<Int>", "LinkedList"};
  for (int i = 0; i < 3; ++i) {
    void* list = vorn_object_new(classes[i]);
    for (int j = 1; j <= 100; ++j) vorn_collections_ArrayList_addInt(list, j);
    const long long sum = append_sum(list);
    printf("%lld %lld\\n", sum, vorn_collections_ArrayList_getInt(list, 100));
  }
  printf("%lld\\n", append_sum(NULL));
  void* map = vorn_object_new("Map");
  void* value = vorn_box_int(7);
  vorn_collections_Map_put(map, vorn_box_long(42), value);
  printf("%d %d\\n", look_up(map, 42) == value, look_up(map, 43) == NULL);
  return 0;
}
"""

EXPECTED = "5050 5050\n" * 3 + "0\n1 1\n"


def run(*command):
    result = subprocess.run(command, capture_output=True, text=True)
    if result.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))} failed:\n{result.stderr}")
    return result.stdout


def called(code):
    return set(re.findall(r"(?:call|invoke)\b[^@\n]*@(\w+)\(", code))


def main():
    missing = [tool for tool in TOOLS if shutil.which(tool) is None]
    if missing:
        print(f"skipped: {', '.join(missing)} not found (Debian packages clang and llvm)")
        return 77
    libraries = pathlib.Path(sys.argv[1])
    bitcode = libraries / "libvorn_inline.bc"
    problems = []
    with tempfile.TemporaryDirectory() as name:
        work = pathlib.Path(name)
        (work / "module.ll").write_text(MODULE, encoding="utf-8")
        (work / "main.c").write_text(PROGRAM, encoding="utf-8")
        run("llvm-link", "--only-needed", "--internalize", "-o", work / "linked.bc", work / "module.ll", bitcode)
        run("opt", "-O2", "-S", "-o", work / "optimised.ll", work / "linked.bc")
        optimised = (work / "optimised.ll").read_text(encoding="utf-8")
        calls = called(optimised)
        forms = re.compile(r"vorn_(?:proven|inline)_(?:ArrayList|Map)_")
        for left in sorted(filter(forms.match, calls | set(re.findall(r"define [^@\n]*@(\w+)\(", optimised)))):
            problems.append(f"{left} is still there")
        for native in ("vorn_collections_ArrayList_getInt", "vorn_collections_ArrayList_addInt",
                       "vorn_inline_find_integer", "vorn_inline_require"):
            if native not in calls:
                problems.append(f"{native} is not called")

        includes = [f"-I{directory}" for directory in (ROOT / "collections/include", ROOT / "runtime/include")]
        run("clang", "-O2", "-Wno-override-module", *includes, "-o", work / "program", work / "main.c",
            work / "optimised.ll", f"-L{libraries}", f"-Wl,-rpath,{libraries}", "-lvorn_collections", "-lvorn_runtime")
        printed = run(work / "program")
        if printed != EXPECTED:
            problems.append(f"the program printed {printed!r} instead of {EXPECTED!r}")

        text = run("llvm-dis", "-o", "-", bitcode)
        shipped = (libraries / "libvorn_inline.ll").read_text(encoding="utf-8")
        defined = re.compile(r"^define .*@(\w+)\(", re.MULTILINE)
        if sorted(defined.findall(text)) != sorted(defined.findall(shipped)):
            problems.append("libvorn_inline.ll defines other functions than libvorn_inline.bc")
    for problem in problems:
        print(problem)
    if not problems:
        print("the forms are inlined, and what comes of it runs")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
