#include "platform/standin/text.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>

namespace platform {
namespace {

wchar_t LowerCase(wchar_t character) {
  return character >= L'A' && character <= L'Z' ? character - L'A' + L'a' : character;
}

}  // namespace

Utf8Character EncodeUtf8(char32_t character) {
  const auto lead = [character](std::uint32_t mark, unsigned shift) {
    return static_cast<char>(mark | (character >> shift));
  };
  const auto tail = [character](unsigned shift) { return static_cast<char>(0x80U | ((character >> shift) & 0x3FU)); };
  if (character < 0x80) return {{lead(0, 0)}, 1};
  if (character < 0x800) return {{lead(0xC0, 6), tail(0)}, 2};
  if (character >= 0xD800 && character <= 0xDFFF) return {};
  if (character < 0x10000) return {{lead(0xE0, 12), tail(6), tail(0)}, 3};
  if (character <= 0x10FFFF) return {{lead(0xF0, 18), tail(12), tail(6), tail(0)}, 4};
  return {};
}

char32_t TakeCharacter(std::wstring_view& text) {
  const auto first = static_cast<char32_t>(text.front());
  text.remove_prefix(1);
  if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
    const char32_t second = text.empty() ? 0 : static_cast<char32_t>(text.front());
    if (first >= 0xD800 && first <= 0xDBFF && second >= 0xDC00 && second <= 0xDFFF) {
      text.remove_prefix(1);
      return 0x10000 + ((first - 0xD800) << 10U) + (second - 0xDC00);
    }
  }
  return first;
}

bool AppendUtf8(std::wstring_view text, std::string& utf8) {
  while (!text.empty()) {
    const Utf8Character encoded = EncodeUtf8(TakeCharacter(text));
    if (encoded.size == 0) return false;
    utf8.append(encoded.units, encoded.size);
  }
  return true;
}

std::string ReadableUtf8(std::wstring_view text) {
  std::string utf8;
  while (!text.empty()) {
    const Utf8Character encoded = EncodeUtf8(TakeCharacter(text));
    utf8 += encoded.size != 0 ? std::string_view(encoded.units, encoded.size) : "?";
  }
  return utf8;
}

std::wstring WideFromUtf8(std::string_view utf8) {
  const std::filesystem::path text(std::u8string(utf8.begin(), utf8.end()));
  if constexpr (sizeof(wchar_t) == sizeof(char16_t)) return text.wstring();
  // By way of char32_t, because the direct way obeys the process's locale.
  const std::u32string characters = text.u32string();
  return {characters.begin(), characters.end()};
}

bool EqualsWithoutCase(std::wstring_view left, std::wstring_view right) {
  return std::ranges::equal(left, right, {}, LowerCase, LowerCase);
}

bool WithoutCase::operator()(std::wstring_view left, std::wstring_view right) const {
  return std::ranges::lexicographical_compare(left, right, {}, LowerCase, LowerCase);
}

}  // namespace platform
