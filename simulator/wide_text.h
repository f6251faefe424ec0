/// What the platform layer has, too, but the simulator knows none: UTF-8, as files and the computer's environment have
/// it, on its way to the platform's wide characters.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace simulator {

/// Throws std::filesystem::filesystem_error for what is no UTF-8.
inline std::wstring WideFromUtf8(std::string_view utf8) {
  const std::filesystem::path text(std::u8string(utf8.begin(), utf8.end()));
  if constexpr (sizeof(wchar_t) == sizeof(char16_t)) return text.wstring();
  // By way of char32_t, because the direct way obeys the process's locale.
  const std::u32string characters = text.u32string();
  return {characters.begin(), characters.end()};
}

}  // namespace simulator
