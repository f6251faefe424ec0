/// DLLs of the system's names that hand every call on to the program, which exports functions of the same names: so the
/// plug-in's imports reach the notebook that the program holds.
#pragma once

#include "platform/hid.h"

// NOLINTBEGIN(cppcoreguidelines-macro-usage): functions that differ in nothing but the signature
#define ZARN_FORWARD(result, name, parameters, arguments)                                                             \
  extern "C" __declspec(dllexport) result WINAPI name parameters {                                                    \
    static const auto target =                                                                                        \
        reinterpret_cast<decltype(&name)>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(nullptr), #name))); \
    return target arguments;                                                                                          \
  }
// NOLINTEND(cppcoreguidelines-macro-usage)
