/// Marks the functions that a host finds by name. On Windows the names come from the module
/// definition file alone, so that they stay undecorated and nothing else is exported.
#pragma once

#if defined(_WIN32)
#define ZARN_EXPORT
#else
#define ZARN_EXPORT __attribute__((visibility("default")))
#endif
