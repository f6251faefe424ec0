/// The calling thread's last error, for the layer's own use.
#pragma once

#include "platform/standin/system_api.h"

namespace platform {

LONG ThreadError() noexcept;
void SetThreadError(LONG error) noexcept;
/// Sets it from a value of errno.
void SetThreadErrorFromErrno(int code) noexcept;

}  // namespace platform
