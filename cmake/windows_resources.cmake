# SPDX-License-Identifier: GPL-3.0-or-later

# plumetta_windows_resources(TARGET): the manifest (UTF-8 code page, long paths, DPI awareness, visual styles) and the
# version of an executable for Windows; for one with a window (WIN32_EXECUTABLE) also the icon and what wxWidgets needs.
# Nothing elsewhere.
function(plumetta_windows_resources target)
  if(NOT WIN32)
    return()
  endif()
  get_target_property(has_window ${target} WIN32_EXECUTABLE)
  set(window 0)
  set(description "Plumetta, command line")
  if(has_window)
    set(window 1)
    set(description "Plumetta audio editor")
  endif()
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/resources/windows/plumetta.rc.in ${script} @ONLY)
  set_source_files_properties(
    ${script} PROPERTIES OBJECT_DEPENDS
    "${PROJECT_SOURCE_DIR}/resources/windows/plumetta.manifest;${PROJECT_SOURCE_DIR}/resources/plumetta.ico")
  target_sources(${target} PRIVATE ${script})
endfunction()
