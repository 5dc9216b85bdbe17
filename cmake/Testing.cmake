# GoogleTest from the sources Debian ships, built with this tree's flags.
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
target_compile_options(gtest PRIVATE -w)
target_compile_options(gtest_main PRIVATE -w)

# A hung test process fails after this many seconds instead of blocking the run.
set(PRYXA_TEST_TIMEOUT 300)

# Test programs run natively, or through the toolchain's emulator (Wine for x86-64). The
# x86 toolchain has none, because this machine cannot run 32-bit code: its test programs
# are built, and the binaries are checked as files (tests/CMakeLists.txt).
if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
  set(PRYXA_RUNS_PROGRAMS OFF)
else()
  set(PRYXA_RUNS_PROGRAMS ON)
endif()

# pryxa_add_test_program(NAME sources... LIBS libs...)
# One program per subsystem; Wine starts a process slowly, so cases are grouped.
function(pryxa_add_test_program name)
  cmake_parse_arguments(T "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBS} gtest)
  if(NOT PRYXA_RUNS_PROGRAMS)
    return()
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${PRYXA_TEST_TIMEOUT})
  if(PRYXA_TARGET STREQUAL "windows")
    set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED wine_session
      ENVIRONMENT "PRYXA_BUILD_DIR=${CMAKE_BINARY_DIR}")
  endif()
endfunction()
