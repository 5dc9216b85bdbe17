# x86 (32-bit) Windows, the architecture of the suite's programs. No emulator: this
# machine's kernel cannot run 32-bit code, so the products are built and checked, not run.
set(MINGW_TRIPLE i686-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR x86)
include(${CMAKE_CURRENT_LIST_DIR}/MinGW.cmake)
