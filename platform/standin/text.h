/// Text on its way between the platform's wide characters and UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace platform {

/// One character in UTF-8; `size` is 0 for what is no character: a surrogate, or beyond U+10FFFF.
struct Utf8Character {
  char units[4];
  std::size_t size;
};

Utf8Character EncodeUtf8(char32_t character);

/// Takes the first character off `text`, which is not empty. Where wide characters have 16 bits, a pair of surrogates
/// is one.
char32_t TakeCharacter(std::wstring_view& text);

/// Whether all of `text` could be converted and was appended to `utf8`; at least its beginning was.
bool AppendUtf8(std::wstring_view text, std::string& utf8);
/// `text` for people: '?' stands for what cannot be converted.
std::string ReadableUtf8(std::wstring_view text);

/// Throws std::filesystem::filesystem_error for what is no UTF-8.
std::wstring WideFromUtf8(std::string_view utf8);

/// Only ASCII letters compare without case: the names here have no others.
bool EqualsWithoutCase(std::wstring_view left, std::wstring_view right);

/// An order of names by the same rule, for maps.
struct WithoutCase {
  using is_transparent = void;
  bool operator()(std::wstring_view left, std::wstring_view right) const;
};

}  // namespace platform
