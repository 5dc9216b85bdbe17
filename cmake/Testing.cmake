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

# pryxa_add_test_program(NAME sources... LIBS libs... [DISPLAYS shapes...])
# One program per subsystem; Wine starts a process slowly, so cases are grouped. A Windows
# program runs in the standard Wine session, or, with DISPLAYS, once in the session of each
# display shape named (scripts/wine-env), as the test NAME_SHAPE.
function(pryxa_add_test_program name)
  cmake_parse_arguments(T "" "" "SOURCES;LIBS;DISPLAYS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBS} gtest)
  if(NOT PRYXA_RUNS_PROGRAMS)
    return()
  endif()
  if(NOT T_DISPLAYS)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT ${PRYXA_TEST_TIMEOUT})
    if(PRYXA_TARGET STREQUAL "windows")
      set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED wine_session
        ENVIRONMENT "PRYXA_BUILD_DIR=${CMAKE_BINARY_DIR}")
    endif()
    return()
  endif()
  foreach(shape IN LISTS T_DISPLAYS)
    pryxa_add_wine_session(${shape})
    add_test(NAME ${name}_${shape} COMMAND ${name})
    set_tests_properties(${name}_${shape} PROPERTIES TIMEOUT ${PRYXA_TEST_TIMEOUT} FIXTURES_REQUIRED wine_session_${shape}
      ENVIRONMENT "PRYXA_BUILD_DIR=${CMAKE_BINARY_DIR};PRYXA_WINE_SHAPE=${shape}")
  endforeach()
endfunction()

# The Xvfb display and wineserver of one display shape, started before the first test that
# needs them and stopped after the last; once per shape.
function(pryxa_add_wine_session shape)
  get_property(added GLOBAL PROPERTY pryxa_wine_session_${shape})
  if(added)
    return()
  endif()
  set_property(GLOBAL PROPERTY pryxa_wine_session_${shape} TRUE)
  foreach(action start stop)
    add_test(NAME wine_session_${action}_${shape}
      COMMAND ${CMAKE_SOURCE_DIR}/scripts/wine-session ${action} ${CMAKE_BINARY_DIR})
    set_tests_properties(wine_session_${action}_${shape} PROPERTIES ENVIRONMENT "PRYXA_WINE_SHAPE=${shape}")
  endforeach()
  set_tests_properties(wine_session_start_${shape} PROPERTIES FIXTURES_SETUP wine_session_${shape} TIMEOUT 300)
  set_tests_properties(wine_session_stop_${shape} PROPERTIES FIXTURES_CLEANUP wine_session_${shape} TIMEOUT 60)
endfunction()
