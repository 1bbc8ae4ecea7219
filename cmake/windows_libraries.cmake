# SPDX-License-Identifier: GPL-3.0-or-later
# The libraries that the programs load at run time come along as DLLs in the folders of PLUMETTA_WINDOWS_LIBRARIES.
# Programs and tests stand together in bin, and these beside them: they are looked for there and nowhere else.
set(plumetta_runtime_libraries)
if(WIN32)
  set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
  foreach(library IN LISTS PLUMETTA_WINDOWS_LIBRARIES)
    file(GLOB dlls ${library}/bin/*.dll)
    list(APPEND plumetta_runtime_libraries ${dlls})
  endforeach()
  file(COPY ${plumetta_runtime_libraries} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
endif()
