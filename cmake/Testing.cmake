# GoogleTest from the sources Debian ships, built with this tree's flags.
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
target_compile_options(gtest PRIVATE -w)
target_compile_options(gtest_main PRIVATE -w)

# A hung test process fails after this many seconds instead of blocking the run.
set(PRYXA_TEST_TIMEOUT 300)

# pryxa_add_test_program(NAME sources... LIBS libs...)
# One program per subsystem; Wine starts a process slowly, so cases are grouped.
function(pryxa_add_test_program name)
  cmake_parse_arguments(T "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBS} gtest)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${PRYXA_TEST_TIMEOUT})
  if(PRYXA_TARGET STREQUAL "windows")
    set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED wine_session
      ENVIRONMENT "PRYXA_BUILD_DIR=${CMAKE_BINARY_DIR}")
  endif()
endfunction()
