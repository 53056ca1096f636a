# What `cmake --install` puts where. Everything finds its neighbours by relative paths, so that a prefix can be moved. The
# components are what the Debian packages are made of (packaging/debian/control).
include(CMakePackageConfigHelpers)

foreach(directory BINDIR LIBDIR INCLUDEDIR DATADIR)
  if(IS_ABSOLUTE ${CMAKE_INSTALL_${directory}})
    message(FATAL_ERROR "CMAKE_INSTALL_${directory} has to be relative to the prefix, so that the prefix can be moved")
  endif()
endforeach()

set(vorn_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vorn_collections)

# ---- Libraries and headers -------------------------------------------------------------------------------------------

foreach(library collections runtime)
  set_target_properties(vorn_${library}_shared PROPERTIES EXPORT_NAME ${library} INSTALL_RPATH "$ORIGIN")
  install(
    TARGETS vorn_${library}_shared
    EXPORT vorn_collections-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${library} NAMELINK_COMPONENT development)
  install(
    DIRECTORY ${CMAKE_SOURCE_DIR}/${library}/include/
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development
    FILES_MATCHING
    PATTERN "*.h"
    PATTERN "*.hpp")
endforeach()
install(DIRECTORY ${VORN_GENERATED_INCLUDES}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

# The runtime's archive is exported apart, because whoever does without it needs no libgc. Programs link it through a
# target that the configuration file makes, in one group with the other archive, since the two call each other.
set_target_properties(vorn_collections_static PROPERTIES EXPORT_NAME collections_static)
set_target_properties(vorn_runtime_static PROPERTIES EXPORT_NAME runtime_archive)
install(
  TARGETS vorn_collections_static
  EXPORT vorn_collections-targets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(
  TARGETS vorn_runtime_static
  EXPORT vorn_collections-archive-targets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)

# ---- CMake's package -------------------------------------------------------------------------------------------------

# Before 1.0 a minor version may change what sources compile against; from then on only a major one.
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(vorn_compatibility SameMinorVersion)
else()
  set(vorn_compatibility SameMajorVersion)
endif()
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/vorn_collections-config.cmake.in ${CMAKE_BINARY_DIR}/vorn_collections-config.cmake
  INSTALL_DESTINATION ${vorn_cmake_dir}
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(
  ${CMAKE_BINARY_DIR}/vorn_collections-config-version.cmake COMPATIBILITY ${vorn_compatibility})
install(
  FILES ${CMAKE_BINARY_DIR}/vorn_collections-config.cmake ${CMAKE_BINARY_DIR}/vorn_collections-config-version.cmake
        ${CMAKE_CURRENT_LIST_DIR}/FindBDWGC.cmake
  DESTINATION ${vorn_cmake_dir}
  COMPONENT development)
foreach(targets vorn_collections-targets vorn_collections-archive-targets)
  install(
    EXPORT ${targets}
    NAMESPACE vorn::
    DESTINATION ${vorn_cmake_dir}
    COMPONENT development)
endforeach()

# ---- pkg-config ------------------------------------------------------------------------------------------------------

file(RELATIVE_PATH vorn_prefix_from_pkgconfig ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" vorn_prefix_from_pkgconfig ${vorn_prefix_from_pkgconfig})
foreach(library collections runtime)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/vorn_${library}.pc.in ${CMAKE_BINARY_DIR}/vorn_${library}.pc @ONLY)
  install(
    FILES ${CMAKE_BINARY_DIR}/vorn_${library}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
endforeach()

# ---- The console -----------------------------------------------------------------------------------------------------

if(TARGET vorn_console)
  file(RELATIVE_PATH vorn_libraries_from_bin ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(vorn_console PROPERTIES INSTALL_RPATH "$ORIGIN/${vorn_libraries_from_bin}")
  install(TARGETS vorn_console RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT console)
  install(
    FILES ${CMAKE_SOURCE_DIR}/console/vorn-console.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    COMPONENT console)
endif()

# ---- The debugger's printers -----------------------------------------------------------------------------------------

# Their package and the types they read by are installed where they are made (tools/gdb). gdb loads by itself what lies
# below its auto-load directory under the library's own path; that is fixed when the prefix is chosen, which may be as
# late as the installation.
file(GLOB vorn_printers CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tools/gdb/*.py)
install(
  FILES ${vorn_printers}
  DESTINATION ${CMAKE_INSTALL_DATADIR}/vorn/gdb
  COMPONENT development)
install(
  FILES ${CMAKE_CURRENT_LIST_DIR}/gdb_auto_load.py
  DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}
  RENAME libvorn_collections.so.${PROJECT_VERSION}-gdb.py
  COMPONENT development)

# ---- Documents -------------------------------------------------------------------------------------------------------

set(vorn_doc_dir ${CMAKE_INSTALL_DATADIR}/doc/vorn-collections)
install(
  FILES ${CMAKE_SOURCE_DIR}/LICENSE ${CMAKE_SOURCE_DIR}/README.md ${CMAKE_SOURCE_DIR}/CHANGELOG.md
        ${CMAKE_SOURCE_DIR}/CONTRIBUTING.md ${CMAKE_SOURCE_DIR}/SECURITY.md
  DESTINATION ${vorn_doc_dir}
  COMPONENT documentation)
file(GLOB vorn_documents CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/docs/*.md)
install(
  FILES ${vorn_documents}
  DESTINATION ${vorn_doc_dir}/docs
  COMPONENT documentation)
