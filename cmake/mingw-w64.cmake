# SPDX-License-Identifier: GPL-3.0-or-later
# Windows, 64 bits, from any Debian machine. PLUMETTA_WINDOWS_LIBRARIES lists the folders of the libraries that
# tools/windows/libraries has built; everything is linked statically, so that an executable needs nothing but
# the DLLs of Windows itself.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The posix variant: the other one has no std::thread.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_AR x86_64-w64-mingw32-gcc-ar-posix)
set(CMAKE_RANLIB x86_64-w64-mingw32-gcc-ranlib-posix)

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PLUMETTA_WINDOWS_LIBRARIES)
set(CMAKE_FIND_ROOT_PATH ${PLUMETTA_WINDOWS_LIBRARIES} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_FIND_LIBRARY_SUFFIXES .a)

set(pkgconfig_folders)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
foreach(library IN LISTS PLUMETTA_WINDOWS_LIBRARIES)
  list(APPEND pkgconfig_folders ${library}/lib/pkgconfig)
  # wx-config names the libraries that wxWidgets rests on without their folders.
  string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -L${library}/lib")
  if(EXISTS ${library}/bin/wx-config)
    set(wxWidgets_CONFIG_EXECUTABLE ${library}/bin/wx-config CACHE FILEPATH "wxWidgets for Windows")
  endif()
endforeach()

# Without this, pkg-config would offer the libraries of the machine that builds.
list(JOIN pkgconfig_folders ":" pkgconfig_path)
set(ENV{PKG_CONFIG_LIBDIR} "${pkgconfig_path}")
set(ENV{PKG_CONFIG_PATH} "")

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/windows/wine-run)
