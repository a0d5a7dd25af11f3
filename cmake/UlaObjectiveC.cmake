# SPDX-License-Identifier: MIT
# Objective-C++ on GNUstep. Only clang compiles it: g++ has neither fast enumeration nor literals
# nor @autoreleasepool in a .mm file. Include this file where languages may be enabled.
include_guard(GLOBAL)

# C++ may be g++'s all the same. Left to itself CMake would take it for these, too.
find_program(CMAKE_C_COMPILER clang REQUIRED)
find_program(CMAKE_OBJC_COMPILER clang REQUIRED)
find_program(CMAKE_OBJCXX_COMPILER clang++ REQUIRED)
enable_language(C OBJC OBJCXX)
set(CMAKE_OBJCXX_STANDARD ${CMAKE_CXX_STANDARD})
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_VISIBILITY_PRESET hidden)
set(CMAKE_OBJC_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)

find_program(GNUSTEP_CONFIG gnustep-config REQUIRED)
find_program(ULA_GCC gcc REQUIRED)
find_package(Threads REQUIRED)

# ula_gnustep_words(VARIABLE OPTION): the words of gnustep-config's answer.
function(ula_gnustep_words variable option)
  execute_process(COMMAND ${GNUSTEP_CONFIG} ${option} OUTPUT_VARIABLE text
                  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(words UNIX_COMMAND "${text}")
  set(${variable} ${words} PARENT_SCOPE)
endfunction()

# ula_gnustep_includes(VARIABLE FLAG...): the include folders among the flags that exist, with the
# folder of GCC's compiler headers, where the runtime's objc/objc.h lies.
function(ula_gnustep_includes variable)
  set(flags ${ARGN})
  list(FILTER flags INCLUDE REGEX "^-I/")
  list(TRANSFORM flags REPLACE "^-I" "")
  execute_process(COMMAND ${ULA_GCC} -print-file-name=include/objc/objc.h
                  OUTPUT_VARIABLE objc_header OUTPUT_STRIP_TRAILING_WHITESPACE)
  cmake_path(GET objc_header PARENT_PATH objc_folder)
  cmake_path(GET objc_folder PARENT_PATH gcc_folder)
  set(folders ${gcc_folder})
  foreach(folder IN LISTS flags)
    if(IS_DIRECTORY ${folder})
      list(APPEND folders ${folder})
    endif()
  endforeach()
  set(${variable} ${folders} PARENT_SCOPE)
endfunction()

ula_gnustep_words(ULA_OBJC_FLAGS --objc-flags)
ula_gnustep_includes(ULA_OBJC_INCLUDES ${ULA_OBJC_FLAGS})
# Optimisation, debug information, dependencies and warnings are the build's own business.
list(FILTER ULA_OBJC_FLAGS EXCLUDE REGEX "^-(I|M|W|O|g)")
ula_gnustep_words(ULA_GNUSTEP_BASE_LIBS --base-libs)
ula_gnustep_words(ULA_GNUSTEP_GUI_LIBS --gui-libs)

add_library(ula-gnustep INTERFACE)
target_include_directories(ula-gnustep SYSTEM INTERFACE ${ULA_OBJC_INCLUDES})
target_compile_options(
  ula-gnustep INTERFACE "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:${ULA_OBJC_FLAGS}>"
                        $<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:-Wno-objc-protocol-method-implementation>)
list(FILTER ULA_GNUSTEP_BASE_LIBS INCLUDE REGEX "^-l")
list(FILTER ULA_GNUSTEP_GUI_LIBS INCLUDE REGEX "^-l")
target_link_libraries(ula-gnustep INTERFACE ${ULA_GNUSTEP_BASE_LIBS} Threads::Threads)
add_library(ula-gnustep-gui INTERFACE)
target_link_libraries(ula-gnustep-gui INTERFACE ${ULA_GNUSTEP_GUI_LIBS} ula-gnustep)

# ula_objcxx_target(NAME [GUI]): lets a target have .mm sources. It gets GNUstep's flags and
# libraries (with GUI, AppKit's too) and the personality that makes C++ exceptions work in them.
function(ula_objcxx_target name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "GUI" "" "")
  # As an Objective-C++ library CMake would link it without a soname.
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_link_libraries(${name} PRIVATE ula-objc-personality
                                        $<IF:$<BOOL:${arg_GUI}>,ula-gnustep-gui,ula-gnustep>)
endfunction()
