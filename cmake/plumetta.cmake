# SPDX-License-Identifier: GPL-3.0-or-later
# Compiler settings that every target shares, and the one way in which a floor of the house is declared.

add_library(plumetta_options INTERFACE)
# C++ alone: the compiler of Windows resources, which takes its own options, sees these too.
target_compile_options(plumetta_options INTERFACE
                       "$<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wshadow;-Wnon-virtual-dtor;-Werror=return-type>")
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 sees overlapping copies in std::string's operator+ where there are none.
  target_compile_options(plumetta_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
endif()
# One rounding an operation, whatever the processor: results are the same bits everywhere.
target_compile_options(plumetta_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-ffp-contract=off>)
if(PLUMETTA_WERROR)
  target_compile_options(plumetta_options INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT WIN32 AND NOT PLUMETTA_SANITIZE)
  # Needs the dynamic linker's help, which Windows doesn't offer and the sanitizers don't bear.
  target_compile_definitions(plumetta_options INTERFACE PLUMETTA_CPU_VARIANTS)
endif()
if(PLUMETTA_SANITIZE)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # With the sanitizers' own code in it, a std::variant looks uninitialised to GCC 12.
    target_compile_options(plumetta_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-maybe-uninitialized>)
  endif()
  target_compile_options(plumetta_options INTERFACE -fsanitize=${PLUMETTA_SANITIZE} -fno-omit-frame-pointer
                         -fno-sanitize-recover=all)
  target_link_options(plumetta_options INTERFACE -fsanitize=${PLUMETTA_SANITIZE})
endif()
if(PLUMETTA_FUZZ)
  target_compile_options(plumetta_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(WIN32)
  target_compile_definitions(plumetta_options INTERFACE _WIN32_WINNT=0x0A00 UNICODE= _UNICODE= NOMINMAX
                             WIN32_LEAN_AND_MEAN)
endif()
find_package(Threads REQUIRED)
include(${CMAKE_CURRENT_LIST_DIR}/windows_resources.cmake)

# plumetta_floor(NAME LINKS...): the library of src/NAME from its own sources, resting on the floors it may use.
function(plumetta_floor name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp)
  if(name STREQUAL "platform")
    if(WIN32)
      file(GLOB system CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/platform/windows/*.cpp)
    else()
      file(GLOB system CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/platform/posix/*.cpp)
    endif()
    list(APPEND sources ${system})
  endif()
  add_library(plumetta_${name} STATIC ${sources})
  target_include_directories(plumetta_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(plumetta_${name} PUBLIC plumetta_options ${ARGN})
endfunction()
