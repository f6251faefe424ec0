/// For DLLs with names of the system's. They pass each call on to the function of that name that the program exports,
/// so the plug-in's imports reach the program's notebook.
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
