# SPDX-License-Identifier: MIT
# Options of the build, and the one function through which every library and program takes its
# compiler flags.

option(ULA_BUILD_TESTS "Build the tests" ON)
set(ULA_TESTS all CACHE STRING "Tests to build: all; threads: without what has one thread only; \
foundation: those of the foundation library")
set_property(CACHE ULA_TESTS PROPERTY STRINGS all threads foundation)
option(ULA_BUILD_TOOL "Build the command-line tool" ON)
option(ULA_BUILD_EXAMPLES "Build the examples" ON)
option(ULA_BUILD_BENCHMARKS "Build the benchmarks and their peers" OFF)
option(ULA_BUILD_FUZZERS "Build the fuzz targets (clang only)" OFF)
option(ULA_PRECOMPILE_HEADERS "Compile what most sources include once for all, with clang" OFF)
option(ULA_COMPILE_TOGETHER "Compile a dozen of a library's sources at a time: for one build" OFF)
option(ULA_WARNINGS_AS_ERRORS "Treat warnings as errors" OFF)
set(ULA_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined or thread")

set(CMAKE_UNITY_BUILD_BATCH_SIZE 12)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# An installed tree works wherever it stands.
file(RELATIVE_PATH lib_from_bin /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set(CMAKE_INSTALL_RPATH $ORIGIN $ORIGIN/${lib_from_bin})

add_library(ula-flags INTERFACE)
target_compile_options(ula-flags INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor
                                           -Woverloaded-virtual -Wconversion)
# clang's alone: g++ also looks into the macros of ICU.
target_compile_options(ula-flags INTERFACE
                       $<$<NOT:$<COMPILE_LANG_AND_ID:CXX,GNU>>:-Wsign-conversion>)
if(ULA_COMPILE_TOGETHER)
  # Every source is an included one then, for whose types g++ fears that others see them.
  target_compile_options(ula-flags INTERFACE
                         $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-subobject-linkage>)
endif()
if(ULA_WARNINGS_AS_ERRORS)
  target_compile_options(ula-flags INTERFACE -Werror)
endif()
target_link_options(ula-flags INTERFACE -Wl,--as-needed)

if(ULA_SANITIZE)
  # One flag set for the whole build: a sanitizer needs every object to take part.
  # Reports need lines and no more; the rest of the debug information doubles the time to build.
  add_compile_options(-fsanitize=${ULA_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all -gline-tables-only)
  add_link_options(-fsanitize=${ULA_SANITIZE})
endif()

# ula_target(NAME): warnings and the include root for a target of this project. A program built with
# sanitizers also gets what they are not to report of the system's libraries.
function(ula_target name)
  get_target_property(type ${name} TYPE)
  if(ULA_SANITIZE AND type STREQUAL "EXECUTABLE")
    target_link_libraries(${name} PRIVATE ula-sanitizer-defaults)
    target_link_options(${name} PRIVATE LINKER:--export-dynamic-symbol=dlclose)
  endif()
  if(type STREQUAL "SHARED_LIBRARY")
    set(exports ${PROJECT_SOURCE_DIR}/cmake/exports.map)
    target_link_options(${name} PRIVATE LINKER:--version-script=${exports})
    set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${exports})
    set_target_properties(${name} PROPERTIES UNITY_BUILD ${ULA_COMPILE_TOGETHER})
  endif()
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:ula-flags>)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
endfunction()

# ula_precompile_headers(NAME LANGUAGE HEADER...): what most sources of a target include, compiled
# once where the build is asked to. It hides an include that a source lacks; other builds show it.
# g++ does not know the pragma with which CMake begins such headers.
function(ula_precompile_headers name language)
  if(ULA_PRECOMPILE_HEADERS AND CMAKE_${language}_COMPILER_ID MATCHES Clang)
    list(TRANSFORM ARGN REPLACE "<(.+)>" "$<$<COMPILE_LANGUAGE:${language}>:<\\1$<ANGLE-R>>")
    target_precompile_headers(${name} PRIVATE ${ARGN})
  endif()
endfunction()
