#include "zarnctl/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <limits>
#include <system_error>

#include "platform/standin/text.h"
#include "zarnctl/complaint.h"

namespace zarnctl {
namespace {

bool ReadWhole(std::string_view text, int base, std::uint32_t& number) {
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number, base);
  if (error == std::errc::result_out_of_range) number = std::numeric_limits<std::uint32_t>::max();
  return error != std::errc::invalid_argument && stopped == end;
}

char LowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::string ColorText(PackedColor color) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "#%02x%02x%02x", RedOf(color), GreenOf(color), BlueOf(color));
  return text.data();
}

PackedColor ReadColor(std::string_view what, std::string_view text) {
  const std::string_view digits = text.starts_with('#') ? text.substr(1) : text;
  std::uint32_t rgb = 0;
  if (digits.size() != 6 || !ReadWhole(digits, 16, rgb)) {
    throw Wrong(std::string(what) + " " + std::string(text) + ": a colour is six hexadecimal digits, RRGGBB");
  }
  return (rgb >> 16 & 0xff) | (rgb & 0xff00) | (rgb & 0xff) << 16;
}

std::string Hexadecimal(std::uint32_t number, int digits) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%0*X", digits, number);
  return text.data();
}

std::string HidDeviceName(const std::wstring& path, std::uint16_t vendor, std::uint16_t product) {
  return platform::ReadableUtf8(path) + " (" + Hexadecimal(vendor, 4) + ":" + Hexadecimal(product, 4) + ")";
}

std::uint32_t ReadNumber(std::string_view what, std::string_view text) {
  std::uint32_t number = 0;
  if (!ReadWhole(text, 10, number)) {
    throw Wrong(std::string(what) + " " + std::string(text) + ": a whole number is needed");
  }
  return number;
}

std::string Counted(std::size_t count, std::string_view noun) {
  return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::string Alternatives(const std::vector<std::string>& names) {
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += i + 1 == names.size() ? " or " : ", ";
    text += names[i];
  }
  return text;
}

std::filesystem::path PathFromUtf8(std::string_view text) { return std::u8string(text.begin(), text.end()); }

std::string Utf8FromPath(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

std::string Harmless(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t units = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char32_t character = units == 1 ? lead : lead & (0x7FU >> units);
    const std::string_view front = text.substr(0, units);
    for (const char unit : front.substr(1)) character = character << 6 | (static_cast<unsigned char>(unit) & 0x3F);
    // Encoding it again gives the same bytes only when it was sound UTF-8.
    const platform::Utf8Character encoded = platform::EncodeUtf8(character);
    const bool sound = front == std::string_view(encoded.units, encoded.size);
    const bool control = character < ' ' || (character >= 0x7F && character < 0xA0);
    shown += sound && !control ? front : "?";
    text.remove_prefix(sound ? units : 1);
  }
  return shown;
}

bool EqualWithoutCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char left, char right) { return LowerCase(left) == LowerCase(right); });
}

}  // namespace zarnctl
