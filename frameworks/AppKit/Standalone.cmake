# SPDX-License-Identifier: MIT
# What the folder needs when it is configured by itself: GNUstep, and the function that stands in
# for the runtime's personality so that C++ exceptions work in .mm files.
if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/../Exceptions/CMakeLists.txt)
  include(UlaObjectiveC)
  add_subdirectory(../Exceptions Exceptions)
  return()
endif()

set(CMAKE_OBJCXX_COMPILER ${CMAKE_CXX_COMPILER})
enable_language(OBJCXX)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_VISIBILITY_PRESET hidden)

file(
  WRITE ${CMAKE_CURRENT_BINARY_DIR}/Personality.cpp
  "#include <unwind.h>\n"
  "#define ARGUMENTS int v, _Unwind_Action a, _Unwind_Exception_Class c, _Unwind_Exception* e, \\\n"
  "                  _Unwind_Context* x\n"
  "extern \"C\" _Unwind_Reason_Code __gxx_personality_v0(ARGUMENTS);\n"
  "extern \"C\" _Unwind_Reason_Code __gnu_objc_personality_v0(ARGUMENTS) {\n"
  "    return __gxx_personality_v0(v, a, c, e, x);\n}\n")
add_library(ula-objc-personality OBJECT ${CMAKE_CURRENT_BINARY_DIR}/Personality.cpp)

execute_process(COMMAND gcc -print-file-name=include OUTPUT_VARIABLE gcc_include
                OUTPUT_STRIP_TRAILING_WHITESPACE)
execute_process(COMMAND gnustep-config --objc-flags OUTPUT_VARIABLE objc_flags
                OUTPUT_STRIP_TRAILING_WHITESPACE)
separate_arguments(objc_flags UNIX_COMMAND "${objc_flags}")
list(FILTER objc_flags EXCLUDE REGEX "^-(I|M|W|O|g)")
add_library(ula-gnustep-gui INTERFACE)
target_include_directories(ula-gnustep-gui SYSTEM INTERFACE ${gcc_include} /usr/include/GNUstep)
target_compile_options(ula-gnustep-gui INTERFACE "$<$<COMPILE_LANGUAGE:OBJCXX>:${objc_flags}>")
target_link_libraries(ula-gnustep-gui INTERFACE gnustep-gui gnustep-base objc)

function(ula_objcxx_target name)
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_link_libraries(${name} PRIVATE ula-objc-personality ula-gnustep-gui)
endfunction()
