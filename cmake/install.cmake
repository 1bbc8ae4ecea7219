# SPDX-License-Identifier: GPL-3.0-or-later
# What an installation holds. tools/package makes the packages of both systems out of it.
include(GNUInstallDirs)
set(programs plumetta-cli)
if(TARGET plumetta)
  list(APPEND programs plumetta)
endif()

if(WIN32)
  # Everything in one folder: the programs look beside themselves for the libraries that they load at run time.
  install(TARGETS ${programs} RUNTIME DESTINATION .)
  install(FILES ${plumetta_runtime_libraries} DESTINATION .)
  install(FILES LICENSE DESTINATION . RENAME LICENSE.txt)
  install(FILES README.md DESTINATION .)
  install(DIRECTORY resources/skins DESTINATION .)
  foreach(library IN LISTS PLUMETTA_WINDOWS_LIBRARIES)
    if(EXISTS ${library}/copyright)
      get_filename_component(name ${library} NAME)
      string(REGEX REPLACE "-[0-9].*" "" name ${name})
      install(FILES ${library}/copyright DESTINATION licences RENAME ${name}.txt)
    endif()
  endforeach()
  return()
endif()

install(TARGETS ${programs} RUNTIME)
install(FILES README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES packaging/debian/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY resources/skins DESTINATION ${CMAKE_INSTALL_DATADIR}/plumetta)
install(FILES resources/plumetta.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(DIRECTORY resources/hicolor DESTINATION ${CMAKE_INSTALL_DATADIR}/icons)
install(FILES resources/plumetta.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES resources/plumetta.mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME plumetta.xml)
install(FILES resources/plumetta.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME plumetta)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR Plumetta)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Plumetta developers <developers@plumetta.invalid>")
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "audio editor")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Opens sound files, shows them as waves, and cuts, mixes and processes them
with undo and redo, plays and records. Markers, loops and a volume envelope
are kept in the file. What the window does, plumetta-cli does from a shell.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded at run time, by those who open or save such files.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libmp3lame0, libvorbisfile3, libwavpack1")
# Whoever makes a package builds the programs; the tests need not be built for it.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
include(CPack)
