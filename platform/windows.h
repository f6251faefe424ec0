/// The platform's main header, for the doors, without its macros for names that we use.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX  // min and max are names of the standard library
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif

#include <windows.h>

#undef interface  // a macro of COM's headers for what is a name here
