# libFuzzer targets (native, clang, with AddressSanitizer and UBSan). The test run fuzzes
# each target for a bounded time on a copy of its seed corpus in the build tree, so the
# repository's corpus is never changed by a run.
set(PRYXA_FUZZ_SECONDS 30 CACHE STRING "How long the test run fuzzes each target")

# pryxa_add_fuzzed_library(NAME LIBRARY SOURCES...)
# LIBRARY's sources again in NAME, instrumented for coverage so that the fuzzer can find
# its way through them, with SOURCES (the fuzz targets' shared code) added.
function(pryxa_add_fuzzed_library name library)
  get_target_property(sources ${library} SOURCES)
  get_target_property(dir ${library} SOURCE_DIR)
  get_target_property(links ${library} LINK_LIBRARIES)
  list(TRANSFORM sources PREPEND ${dir}/)
  add_library(${name} STATIC ${sources} ${ARGN})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
  if(links)
    target_link_libraries(${name} PUBLIC ${links})
  endif()
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer-no-link)
endfunction()

# pryxa_add_fuzzer(NAME SOURCE CORPUS LIBRARY [LIBFUZZER_OPTIONS...])
# The target NAME from SOURCE, fuzzed by the test NAME on corpus/CORPUS with CORPUS.dict.
function(pryxa_add_fuzzer name source corpus library)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE ${library})
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer,address,undefined)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer,address,undefined)

  set(work ${CMAKE_CURRENT_BINARY_DIR}/${name})
  add_test(NAME ${name}_corpus
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${corpus} ${work}/corpus)
  add_test(NAME ${name}_artifacts COMMAND ${CMAKE_COMMAND} -E make_directory ${work}/artifacts)
  set_tests_properties(${name}_corpus ${name}_artifacts PROPERTIES FIXTURES_SETUP ${name})
  add_test(NAME ${name}
    COMMAND ${name} -max_total_time=${PRYXA_FUZZ_SECONDS} -timeout=10 -rss_limit_mb=2048 ${ARGN}
            -dict=${CMAKE_CURRENT_SOURCE_DIR}/${corpus}.dict -artifact_prefix=${work}/artifacts/
            -print_final_stats=1 ${work}/corpus)
  set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED ${name} TIMEOUT 180)
endfunction()
