/// Files that zarnctl leaves behind.
#pragma once

#include <filesystem>
#include <string>

namespace zarnctl {

/// Writes a file that must not be there yet, whole or not at all. Throws Complaint.
void WriteNewFile(const std::filesystem::path& path, const std::string& text);

}  // namespace zarnctl
