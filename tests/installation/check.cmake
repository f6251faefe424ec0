# Installs into an empty place, builds the example hosts against that alone, and runs them and zarnctl there.
set(place ${BUILD}/tests/installation)
file(REMOVE_RECURSE ${place})
separate_arguments(FLAGS UNIX_COMMAND "${FLAGS}")

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}: ${result}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${place})
file(GLOB_RECURSE library ${place}/*/libzarn_lighting.so)

# What hosts include compiles alone, in every standard that they may have.
file(GLOB headers ${place}/include/zarn_lighting/*.h)
if(NOT headers)
  message(FATAL_ERROR "there are no headers in ${place}/include/zarn_lighting")
endif()
foreach(header IN LISTS headers)
  foreach(standard 17 20 2b)
    run(${COMPILER} -std=c++${standard} -fsyntax-only -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
        -I ${place}/include -include ${header} -x c++ /dev/null)
  endforeach()
endforeach()
file(GLOB_RECURSE host_library ${place}/*/libzarn_host.a)

# expect_host(<source> <output> <library>...). Not the HID keyboard: one that is plugged in here would be painted.
function(expect_host source expected)
  run(${COMPILER} ${FLAGS} -std=c++17 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -I ${place}/include
      ${EXAMPLES}/${source} -o ${place}/host ${ARGN} -ldl)
  run(${place}/host ${library} ZarnECGlobal ZarnECKeyboard)
  if(NOT output MATCHES "^[0-9]+ lighting devices\n${expected}$")
    message(FATAL_ERROR "${source} says: ${output}")
  endif()
endfunction()
expect_host(host.cpp "ZarnECGlobal: 9 modes\nZarnECKeyboard: 9 modes\n" ${host_library})
expect_host(bare_host.cpp
  "ZarnECGlobal: a description of 711 bytes\nZarnECKeyboard: a description of 689 bytes\n")
run(${place}/bin/zarnctl --machine one-zone devices)
if(NOT output STREQUAL "ZarnECKeyboard: Zarn EC Keyboard Device, 1 zone, 1 LED, 9 modes\ninterface type 3\n")
  message(FATAL_ERROR "zarnctl says: ${output}")
endif()
