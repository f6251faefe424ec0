/// The door to the platform's management service (WMI over COM) and its value types. On Windows it leads to the
/// platform's own headers, elsewhere to our layer, which declares what we call with the same names and meaning.
#pragma once

#if defined(_WIN32)

#include "platform/windows.h"

#undef GetObject  // a macro of the graphics headers that would rename IWbemServices::GetObject

#include <oleauto.h>
#include <wbemidl.h>

#undef interface  // a macro of COM's headers for what is a name here

#else

#include "platform/standin/variant.h"
#include "platform/standin/wmi_api.h"

#endif
