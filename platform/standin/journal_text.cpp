#include "platform/standin/journal_text.h"

#include <cstdio>
#include <type_traits>
#include <variant>

#include "platform/standin/text.h"
#include "platform/standin/variant_value.h"

namespace platform {
namespace {

struct Describer {
  std::string operator()(std::monostate /*empty*/) const { return "empty"; }
  std::string operator()(const Null& /*null*/) const { return "null"; }
  std::string operator()(const std::wstring& text) const { return ReadableUtf8(text); }
  std::string operator()(const Bytes& bytes) const { return Described(std::span<const std::uint8_t>(bytes)); }
  std::string operator()(std::integral auto number) const { return std::to_string(number); }
};

}  // namespace

std::string Described(const Value& value) { return std::visit(Describer{}, value); }

std::string Described(const NamedValues& values) {
  std::string text;
  for (const auto& [name, value] : values) {
    text += (text.empty() ? "" : ", ") + ReadableUtf8(name) + "=" + Described(value);
  }
  return text;
}

std::string Described(std::span<const std::uint8_t> bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    char digits[4];
    std::snprintf(digits, sizeof(digits), text.empty() ? "%02x" : " %02x", byte);
    text += digits;
  }
  return text;
}

std::string Described(const VARIANT* value) {
  if (value == nullptr) return "null";
  const auto known = ValueOf(*value);
  return known ? Described(*known) : "type " + std::to_string(value->vt);
}

std::string Described(const wchar_t* text) { return text != nullptr ? ReadableUtf8(text) : "null"; }

std::string Described(const char* text) { return text != nullptr ? text : "null"; }

std::string Listed(const std::vector<std::string>& parts) {
  std::string list;
  for (const std::string& part : parts) {
    if (!list.empty() && !part.empty()) list += ", ";
    list += part;
  }
  return list;
}

std::string CodeText(HRESULT code) {
  char text[16];
  std::snprintf(text, sizeof(text), "0x%08X", static_cast<std::uint32_t>(code));
  return text;
}

}  // namespace platform
