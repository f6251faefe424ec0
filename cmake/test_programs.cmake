# zarn_test_code(<target>): makes test code quick to build. Optimising GoogleTest's templates would take nearly all of
# the time. Checked copies need optimised code, so they are off.
#
# The first target precompiles the headers for all, so it must have no definitions of its own.
option(ZARN_PRECOMPILE "Precompile the headers that tests share" ON)

function(zarn_test_code target)
  target_compile_options(${target} PRIVATE -O0 -U_FORTIFY_SOURCE)
  if(NOT ZARN_PRECOMPILE)
    return()
  endif()
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
  target_compile_options(${target} PRIVATE -fPIE)
  get_property(first GLOBAL PROPERTY ZARN_PRECOMPILED)
  if(first)
    target_precompile_headers(${target} REUSE_FROM ${first})
  else()
    target_precompile_headers(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests/precompiled.h)
    set_property(GLOBAL PROPERTY ZARN_PRECOMPILED ${target})
  endif()
  # Without these ccache keeps no such objects.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(${target} PRIVATE "SHELL:-Xclang -fno-pch-timestamp")
  else()
    target_compile_options(${target} PRIVATE -fpch-preprocess)
  endif()
endfunction()
