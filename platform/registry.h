/// The door to the platform's registry, of which we only ever read.
#pragma once

#if defined(_WIN32)

#include "platform/windows.h"

#else

#include "platform/standin/registry_api.h"

#endif
