/// Who may use the hidraw node of a keyboard with lighting controls. Pure, but for the look at one file; any thread.
#pragma once

#include <filesystem>

#include "platform/standin/report_descriptor.h"

namespace platform {

enum class LightingAccess {
  None,              // nothing to light, and no keys beside a lighting collection
  Lights,            // lights and no keys: whoever sits at the computer may use it
  LightsAndKeys,     // what is typed comes out of it: root's, unless the computer's owner shares such nodes
  KeysWithoutLights  // a lighting collection without feature reports, and keys: always root's
};

LightingAccess AccessTo(const ReportDescriptor& descriptor);

/// With this file a computer's owner lets whoever sits at it use LightsAndKeys, and so read every key.
inline constexpr const char* kSharedKeyboards = "/etc/zarn/shared-keyboards";

/// Whether the file is there, and root owns it and its folder and alone can write them.
bool KeyboardsAreShared(const std::filesystem::path& file = kSharedKeyboards);

}  // namespace platform
