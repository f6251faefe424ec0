/// What a COM object of the layer has beside the operations declared here: nothing, since it is all that is called.
///
/// Tests on the platform itself put the objects behind its real interfaces. They have a header of this name that fills
/// in the rest of those.
#pragma once

#include "platform/standin/wmi_api.h"

namespace platform {

/// `Interface` with every operation that the layer does not offer.
template <typename Interface>
using WithRest = Interface;

/// Answers for an interface that is not the object's own.
inline HRESULT QueryOther(REFIID /*iid*/, void** /*object*/) { return E_NOINTERFACE; }

}  // namespace platform
