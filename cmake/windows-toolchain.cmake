set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(_zarn_triple x86_64-w64-mingw32)
# Only the -posix flavour's standard library has threads, mutexes and condition variables.
set(CMAKE_CXX_COMPILER ${_zarn_triple}-g++-posix)
set(CMAKE_RC_COMPILER ${_zarn_triple}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${_zarn_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Otherwise every program and DLL needs three runtime DLLs of the compiler.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
