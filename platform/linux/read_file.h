/// The kernel's files, which do not tell their size and may fail to be read although they are there.
#pragma once

#include <filesystem>
#include <optional>

#include "platform/portable/machine.h"

namespace platform {

/// All of it; nothing when it cannot be opened or read to its end.
std::optional<Bytes> ReadFile(const std::filesystem::path& file);

}  // namespace platform
