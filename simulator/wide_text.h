/// UTF-8, as files and the computer's environment have it, on its way to the platform's wide characters.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace simulator {

/// Throws std::filesystem::filesystem_error for what is no UTF-8.
inline std::wstring WideFromUtf8(std::string_view utf8) {
  // By way of char32_t, because the direct way obeys the process's locale.
  const std::u32string characters = std::filesystem::path(utf8).u32string();
  return {characters.begin(), characters.end()};
}

}  // namespace simulator
