# Finds the garbage collector's library, libgc, for the build and for programs that link the runtime's static library:
# BDWGC_FOUND, BDWGC_VERSION and the target BDWGC::BDWGC.
find_path(BDWGC_INCLUDE_DIR gc/gc.h)
find_library(BDWGC_LIBRARY gc)
mark_as_advanced(BDWGC_INCLUDE_DIR BDWGC_LIBRARY)

if(BDWGC_INCLUDE_DIR AND EXISTS ${BDWGC_INCLUDE_DIR}/gc/gc_version.h)
  set(BDWGC_VERSION "")
  file(STRINGS ${BDWGC_INCLUDE_DIR}/gc/gc_version.h _bdwgc_numbers REGEX "define GC_TMP_VERSION_(MAJOR|MINOR|MICRO) ")
  foreach(_bdwgc_line IN LISTS _bdwgc_numbers)
    if(_bdwgc_line MATCHES "_(MAJOR|MINOR|MICRO) +([0-9]+)")
      set(_bdwgc_${CMAKE_MATCH_1} ${CMAKE_MATCH_2})
    endif()
  endforeach()
  set(BDWGC_VERSION ${_bdwgc_MAJOR}.${_bdwgc_MINOR}.${_bdwgc_MICRO})
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(
  BDWGC
  REQUIRED_VARS BDWGC_LIBRARY BDWGC_INCLUDE_DIR
  VERSION_VAR BDWGC_VERSION
  REASON_FAILURE_MESSAGE "the garbage collector's library, libgc, comes with the Debian package libgc-dev")

if(BDWGC_FOUND AND NOT TARGET BDWGC::BDWGC)
  add_library(BDWGC::BDWGC UNKNOWN IMPORTED)
  set_target_properties(BDWGC::BDWGC PROPERTIES IMPORTED_LOCATION ${BDWGC_LIBRARY}
                                                INTERFACE_INCLUDE_DIRECTORIES ${BDWGC_INCLUDE_DIR})
endif()
