/// What a device's handle stands for, and the calls that hand out handles.
#pragma once

#include <memory>
#include <string>

#include "platform/standin/hid_api.h"
#include "platform/standin/hid_interfaces.h"
#include "platform/standin/platform_call.h"

namespace platform {

/// The interface that an open handle stands for; null for one that is not open.
std::shared_ptr<const HidInterface> InterfaceOf(HANDLE handle);

/// A handle as the journal has it: by the path it opened.
std::string DescribedHandle(HANDLE handle);

/// The arguments of a call that has none but the handle.
inline auto AskedOf(HANDLE handle) {
  return [handle] { return std::vector{DescribedHandle(handle)}; };
}

/// A call that answers INVALID_HANDLE_VALUE when it fails.
inline Call<HANDLE> HandleCall(const char* name, LONG last_error) {
  return {.name = name,
          .failure = INVALID_HANDLE_VALUE,
          .out_of_memory = INVALID_HANDLE_VALUE,
          .answer_text = [](HANDLE handle) { return std::string(handle == INVALID_HANDLE_VALUE ? "invalid" : "done"); },
          .last_error = last_error};
}

}  // namespace platform
