# Checks that compilers put into programs, and protections that loaders take from their headers.
include(CheckCXXCompilerFlag)

# The standard library's own checks of indexes, iterators and empty containers, where speed is nobody's concern.
if(CMAKE_BUILD_TYPE STREQUAL "Debug")
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()

# What is shipped: canaries behind arrays in frames, no jump of a large frame over the page that guards the stack, and
# checked forms of the C library's functions, which need optimised code. Left out is what made hot natives take more by
# count of their instructions: -fstack-protector-strong, whose canaries stand in every frame that has roots (up to 23 %), and
# -fcf-protection (an instruction a call, 1 to 3 %).
foreach(flag -fstack-protector -fstack-clash-protection)
  string(MAKE_C_IDENTIFIER "VORN_TAKES${flag}" known)
  check_cxx_compiler_flag(${flag} ${known})
  if(${known})
    add_compile_options($<$<CONFIG:Release>:${flag}>)
  endif()
endforeach()
add_compile_options($<$<CONFIG:Release>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)

# Addresses that the loader fills in are read-only before the first function runs, and no stack can be executed.
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
