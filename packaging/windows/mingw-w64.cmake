# CMake toolchain file: cross-compile for 64-bit Windows with Debian's MinGW-w64
# (posix threading model: std::thread, std::mutex and friends work).
#
# Used by packaging/windows/deps.sh to build Qt, libjpeg-turbo and qpdf, and by the
# program's own Windows build:
#   cmake -S . -B build-win -G Ninja \
#     -DCMAKE_TOOLCHAIN_FILE=packaging/windows/mingw-w64.cmake \
#     -DCMAKE_PREFIX_PATH=<prefix printed by deps.sh>
# The prefix is taken from VELMORA_WIN_PREFIX (cache variable or environment) and
# otherwise from CMAKE_PREFIX_PATH; it becomes a find root, so find_package(),
# find_library() and find_path() look there and in the MinGW sysroot only, never
# in the host's /usr.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(VELMORA_MINGW_TRIPLET x86_64-w64-mingw32)
set(CMAKE_C_COMPILER   ${VELMORA_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${VELMORA_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER  ${VELMORA_MINGW_TRIPLET}-windres)
set(CMAKE_AR           /usr/bin/${VELMORA_MINGW_TRIPLET}-gcc-ar-posix CACHE FILEPATH "")
set(CMAKE_RANLIB       /usr/bin/${VELMORA_MINGW_TRIPLET}-gcc-ranlib-posix CACHE FILEPATH "")

# try_compile() projects re-read this file: hand the prefix on to them.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VELMORA_WIN_PREFIX)
if(NOT VELMORA_WIN_PREFIX AND DEFINED ENV{VELMORA_WIN_PREFIX})
  set(VELMORA_WIN_PREFIX "$ENV{VELMORA_WIN_PREFIX}")
endif()

# Find roots: the MinGW sysroot, the cache prefix, and whatever the caller put in
# CMAKE_PREFIX_PATH (paths already inside a root are not re-rooted by CMake).
list(APPEND CMAKE_FIND_ROOT_PATH /usr/${VELMORA_MINGW_TRIPLET})
if(VELMORA_WIN_PREFIX)
  list(APPEND CMAKE_FIND_ROOT_PATH "${VELMORA_WIN_PREFIX}")
endif()
foreach(_velmora_p IN LISTS CMAKE_PREFIX_PATH)
  list(APPEND CMAKE_FIND_ROOT_PATH "${_velmora_p}")
endforeach()
list(REMOVE_DUPLICATES CMAKE_FIND_ROOT_PATH)

# Programs (moc, rcc, uic, pkg-config, ...) run on the host; libraries, headers and
# CMake packages come from the roots only.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# pkg-config: only the target's .pc files.
if(VELMORA_WIN_PREFIX)
  set(ENV{PKG_CONFIG_LIBDIR} "${VELMORA_WIN_PREFIX}/lib/pkgconfig")
  unset(ENV{PKG_CONFIG_PATH})
endif()
