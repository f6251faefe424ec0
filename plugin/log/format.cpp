#include "log/format.h"

#include <array>
#include <cwchar>

void FormatWide(wchar_t* buffer, std::size_t size, const wchar_t* format, std::va_list arguments) noexcept {
  buffer[0] = L'\0';
  std::vswprintf(buffer, size, format, arguments);
  buffer[size - 1] = L'\0';  // a runtime that runs out of room may leave the buffer full and unterminated
}

std::wstring Formatted(const wchar_t* format, ...) {
  std::array<wchar_t, 64> buffer{};
  std::va_list arguments;
  va_start(arguments, format);
  FormatWide(buffer.data(), buffer.size(), format, arguments);
  va_end(arguments);
  return buffer.data();
}
