# Cross-compiles for aarch64 with Debian's compiler, against the libraries that tools/make_sysroot puts in
# build/aarch64-root, and runs the programs in qemu's emulation of a user's process.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

set(CMAKE_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/aarch64-root)
cmake_path(NORMAL_PATH CMAKE_SYSROOT)
set(CMAKE_FIND_ROOT_PATH ${CMAKE_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The emulator keeps a record of every page that a program reserves. The stress heap reserves as much as it gets, and does
# with less: without a limit that record takes 6 GB and seven seconds in each run.
find_program(VORN_EMULATOR qemu-aarch64-static REQUIRED)
find_program(VORN_LIMITER prlimit REQUIRED)
mark_as_advanced(VORN_EMULATOR VORN_LIMITER)
set(CMAKE_CROSSCOMPILING_EMULATOR ${VORN_LIMITER} --as=137438953472 ${VORN_EMULATOR} -L ${CMAKE_SYSROOT})
