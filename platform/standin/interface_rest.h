/// The operations of a COM object that wmi_api.h does not declare: none, since nobody calls them. Tests on the platform
/// itself put the objects behind its real interfaces, with a header of this name that fills in the rest.
#pragma once

#include "platform/standin/wmi_api.h"

namespace platform {

/// `Interface` with every operation that the layer does not offer.
template <typename Interface>
using WithRest = Interface;

/// Answers for an interface that is not the object's own.
inline HRESULT QueryOther(REFIID /*iid*/, void** /*object*/) { return E_NOINTERFACE; }

}  // namespace platform
