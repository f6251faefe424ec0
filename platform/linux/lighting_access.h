/// Who may use the hidraw node of a keyboard with lighting controls. Pure, but for the look at one file; any thread.
#pragma once

#include <filesystem>

#include "platform/standin/report_descriptor.h"

namespace platform {

enum class LightingAccess {
  None,            // no lights that feature reports could drive, nor keys beside a lighting collection
  Free,            // lights and no keys: whoever sits at the computer may use it
  SharedWithKeys,  // what is typed comes out of the same node, which is root's unless its owner shares it
  KeysAlone        // a lighting collection without feature reports beside keys: always root's
};

LightingAccess AccessTo(const ReportDescriptor& descriptor);

/// With this file the owner of a computer lets whoever sits at it use such nodes, too, and with them read every key.
inline constexpr const char* kSharedKeyboards = "/etc/zarn/shared-keyboards";

/// Whether the file is there, is root's, and only root can write it.
bool KeyboardsAreShared(const std::filesystem::path& file = kSharedKeyboards);

}  // namespace platform
