# What the preset `mutants` adds to a build whose sources have planted faults. Nothing else includes it.

# Narrowing and comparisons are not what the sources say any more. The tests take less time to run than to optimise.
add_compile_options(-w -Wno-narrowing)

function(watch_planted_faults)
  foreach(library vorn_collections_objects vorn_runtime_objects)
    target_compile_options(${library} PRIVATE -O1)
  endforeach()
  foreach(suite core arraylist array display immutable inline keyed nets runtime user_code kernels sort)
    target_sources(${suite}_tests PRIVATE ${CMAKE_SOURCE_DIR}/tools/mutants/reached.cpp)
    # Nothing of it may be missing where the suite's own sources are joined.
    set_source_files_properties(${CMAKE_SOURCE_DIR}/tools/mutants/reached.cpp TARGET_DIRECTORY ${suite}_tests
                                PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endforeach()
endfunction()
cmake_language(DEFER CALL watch_planted_faults)
