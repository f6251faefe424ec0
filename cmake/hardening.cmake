# Makes a mistake of ours harder to use for others. scripts/binaries reads off the built files what of it is there.
if(MSVC)
  add_compile_options(/guard:cf)
  add_link_options(/guard:cf)
elseif(MINGW)
  # The linker has these by default; one that has not fails here, instead of leaving them out. No stack protector: hosts
  # that link our static library would need this compiler's library for it.
  add_link_options(LINKER:--dynamicbase,--nxcompat,--high-entropy-va)
else()
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
  add_link_options(LINKER:-z,relro,-z,now,-z,noexecstack)
  add_compile_options(-fstack-protector-strong)
  # Only an optimising compiler checks the lengths of copies.
  add_compile_definitions($<$<CONFIG:Release>:_FORTIFY_SOURCE=2>)
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    add_compile_options(-fcf-protection=full -fstack-clash-protection)
  endif()
endif()
