# Cross build for 64-bit Windows with Debian's MinGW-w64 (posix threads, for std::thread and
# std::async); ctest runs the programs under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# The programs carry their C and C++ runtime, so Wine (or a bare Windows) needs no DLLs beside
# them.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
find_program(VELMORA_WINE NAMES wine64 wine PATHS /usr/lib/wine NO_CMAKE_FIND_ROOT_PATH)
if(VELMORA_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${VELMORA_WINE})
endif()
