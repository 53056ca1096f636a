# The inline forms as LLVM's intermediate code, where there is a clang to make it: for compilers that are built on LLVM.
find_program(VORN_CLANG clang)
mark_as_advanced(VORN_CLANG)
if(VORN_CLANG)
  set(VORN_BITCODE ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/libvorn_inline.bc)
  file(GLOB bitcode_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/collections/inline/bitcode.c
       ${CMAKE_SOURCE_DIR}/collections/include/vorn/collections/*.h
       ${CMAKE_SOURCE_DIR}/collections/include/vorn/collections/inline/*.h)
  add_custom_command(
    OUTPUT ${VORN_BITCODE} ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/libvorn_inline.ll
    COMMAND ${CMAKE_SOURCE_DIR}/tools/make_inline_bitcode ${VORN_CLANG} "${CMAKE_LIBRARY_ARCHITECTURE}"
            ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}
    DEPENDS ${bitcode_sources} ${CMAKE_SOURCE_DIR}/tools/make_inline_bitcode
    VERBATIM)
  add_custom_target(vorn_inline_bitcode ALL DEPENDS ${VORN_BITCODE})
  install(
    FILES ${VORN_BITCODE} ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/libvorn_inline.ll
    DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT development)
else()
  message(STATUS "Without libvorn_inline.bc: no clang was found")
endif()
