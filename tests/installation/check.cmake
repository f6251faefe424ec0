# Installs into an empty place, builds a host against that alone, and runs it and zarnctl there.
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
run(${COMPILER} ${FLAGS} -std=c++20 -I ${place}/include/zarn_lighting ${HOST} -o ${place}/host -ldl)
# Not the HID keyboard: one that is plugged in here would be painted.
run(${place}/host ${library} ZarnECGlobal ZarnECKeyboard)
if(NOT output MATCHES "^[0-9]+ lighting devices\nZarnECGlobal: a description of 711 bytes\n\
ZarnECKeyboard: a description of 689 bytes\n$")
  message(FATAL_ERROR "the host says: ${output}")
endif()
run(${place}/bin/zarnctl --machine one-zone devices)
if(NOT output STREQUAL "ZarnECKeyboard: Zarn EC Keyboard Device, 1 zone, 1 LED, 9 modes\ninterface type 3\n")
  message(FATAL_ERROR "zarnctl says: ${output}")
endif()
