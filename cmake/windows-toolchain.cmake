set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(_zarn_triple x86_64-w64-mingw32)
# The -posix flavour is the one whose standard library has threads, mutexes and condition variables.
set(CMAKE_C_COMPILER ${_zarn_triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${_zarn_triple}-g++-posix)
set(CMAKE_RC_COMPILER ${_zarn_triple}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${_zarn_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Windows 10 and up. Without NOMINMAX the SDK's macros break std::min and std::max.
set(_zarn_definitions "-DUNICODE -D_UNICODE -D_WIN32_WINNT=0x0A00 -DWIN32_LEAN_AND_MEAN -DNOMINMAX")
set(CMAKE_C_FLAGS_INIT "${_zarn_definitions}")
set(CMAKE_CXX_FLAGS_INIT "${_zarn_definitions}")

# Otherwise every program and DLL needs the compiler's three runtime DLLs beside it.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
