/// The door to the platform's management service (WMI over COM) and its value types.
///
/// On Windows this is the platform's own set of headers; elsewhere it is our layer, which declares
/// what we call under the same names and with the same meaning.
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
