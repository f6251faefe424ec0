/// Files that zarnctl leaves behind.
#pragma once

#include <filesystem>
#include <string>

namespace zarnctl {

/// Writes a new file, whole or not at all. Throws Complaint, also when there is one already.
void WriteNewFile(const std::filesystem::path& path, const std::string& text);

}  // namespace zarnctl
