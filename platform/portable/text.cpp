#include "platform/portable/text.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>

namespace platform {
namespace {

wchar_t LowerCase(wchar_t character) {
  return character >= L'A' && character <= L'Z' ? character - L'A' + L'a' : character;
}

}  // namespace

Utf8Character EncodeUtf8(wchar_t character) {
  const auto code = static_cast<char32_t>(character);
  const auto lead = [code](std::uint32_t mark, unsigned shift) { return static_cast<char>(mark | (code >> shift)); };
  const auto tail = [code](unsigned shift) { return static_cast<char>(0x80U | ((code >> shift) & 0x3FU)); };
  if (code < 0x80) return {{lead(0, 0)}, 1};
  if (code < 0x800) return {{lead(0xC0, 6), tail(0)}, 2};
  if (code >= 0xD800 && code <= 0xDFFF) return {};
  if (code < 0x10000) return {{lead(0xE0, 12), tail(6), tail(0)}, 3};
  if (code <= 0x10FFFF) return {{lead(0xF0, 18), tail(12), tail(6), tail(0)}, 4};
  return {};
}

bool AppendUtf8(std::wstring_view text, std::string& utf8) {
  for (const wchar_t character : text) {
    const Utf8Character encoded = EncodeUtf8(character);
    if (encoded.size == 0) return false;
    utf8.append(encoded.units, encoded.size);
  }
  return true;
}

std::string ReadableUtf8(std::wstring_view text) {
  std::string utf8;
  for (const wchar_t character : text) {
    if (!AppendUtf8({&character, 1}, utf8)) utf8 += '?';
  }
  return utf8;
}

std::wstring WideFromUtf8(std::string_view utf8) {
  // By way of char32_t, because the direct way obeys the process's locale.
  const std::u32string characters = std::filesystem::path(utf8).u32string();
  return {characters.begin(), characters.end()};
}

bool EqualsWithoutCase(std::wstring_view left, std::wstring_view right) {
  return std::ranges::equal(left, right, {}, LowerCase, LowerCase);
}

}  // namespace platform
