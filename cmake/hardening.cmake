# Makes our mistakes harder to exploit. scripts/binaries checks built files for it.
if(MSVC)
  add_compile_options(/guard:cf)
  add_link_options(/guard:cf)
elseif(MINGW)
  # Debian's linker does all this by default, and a linker that cannot fails here. There is no stack protector, because
  # hosts that link our static library would need this compiler's library.
  add_link_options(LINKER:--dynamicbase,--nxcompat,--high-entropy-va)
else()
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
  add_link_options(LINKER:-z,relro,-z,now,-z,noexecstack)
  add_compile_options(-fstack-protector-strong)
  # Lengths of copies are checked in optimised code alone. Level 3 also checks sizes known only when the program runs.
  set(level 2)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12)
    set(level 3)
  endif()
  add_compile_definitions($<$<CONFIG:Release>:_FORTIFY_SOURCE=${level}>)
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    add_compile_options(-fcf-protection=full -fstack-clash-protection)
    # The mark for a shadow stack, which Debian's start files leave out. They alone can add the one for indirect
    # branches.
    add_link_options(LINKER:-z,shstk)
  endif()
endif()
