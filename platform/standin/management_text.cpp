#include "platform/standin/management_text.h"

#include "platform/standin/text.h"

namespace platform {
namespace {

std::optional<std::wstring> Unescape(std::wstring_view escaped) {
  std::wstring name;
  for (std::size_t i = 0; i < escaped.size(); ++i) {
    if (escaped[i] == L'"') return std::nullopt;
    if (escaped[i] == L'\\' && (++i == escaped.size() || escaped[i] != L'\\')) return std::nullopt;
    name += escaped[i];
  }
  return name;
}

std::wstring_view TakeWord(std::wstring_view& text) {
  constexpr std::wstring_view kBlanks = L" \t\r\n";
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  const std::wstring_view word = text.substr(0, text.find_first_of(kBlanks));
  text.remove_prefix(word.size());
  return word;
}

}  // namespace

std::optional<ObjectPath> ParseObjectPath(std::wstring_view path) {
  constexpr std::wstring_view kKey = L".InstanceName=\"";
  const std::size_t dot = path.find(L'.');
  if (dot == std::wstring_view::npos || dot == 0) return std::nullopt;
  const std::wstring_view rest = path.substr(dot);
  if (rest.size() <= kKey.size() || !EqualsWithoutCase(rest.substr(0, kKey.size()), kKey) || rest.back() != L'"') {
    return std::nullopt;
  }
  auto name = Unescape(rest.substr(kKey.size(), rest.size() - kKey.size() - 1));
  if (!name) return std::nullopt;
  return ObjectPath{std::wstring(path.substr(0, dot)), *std::move(name)};
}

std::optional<std::wstring> ParseSelectAll(std::wstring_view query) {
  for (const std::wstring_view expected : {L"SELECT", L"*", L"FROM"}) {
    if (!EqualsWithoutCase(TakeWord(query), expected)) return std::nullopt;
  }
  const std::wstring_view class_name = TakeWord(query);
  if (class_name.empty() || !TakeWord(query).empty()) return std::nullopt;
  return std::wstring(class_name);
}

}  // namespace platform
