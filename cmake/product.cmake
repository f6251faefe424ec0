# The plug-in is made of one object library per folder, so that tests and fuzzers can link what the exports hide.
include_guard()

# On Windows the platform is what the linker knows it by; elsewhere it is our layer.
add_library(zarn_platform_door INTERFACE)
if(WIN32)
  target_link_libraries(zarn_platform_door INTERFACE wbemuuid ole32 oleaut32 dbghelp advapi32 hid setupapi)
else()
  target_link_libraries(zarn_platform_door INTERFACE zarn_platform)
endif()

function(zarn_product_library name)
  add_library(${name} OBJECT ${ARGN})
  set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT WIN32)
    # Symbols that are unique in the process would keep the library loaded for ever, and its destructors never run.
    target_compile_options(${name} PRIVATE -fno-gnu-unique)
  endif()
endfunction()
