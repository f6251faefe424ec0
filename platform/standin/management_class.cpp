#include "platform/standin/management_class.h"

#include <algorithm>
#include <utility>

#include "platform/standin/text.h"

namespace platform {
namespace {

constexpr wchar_t kInstanceName[] = L"InstanceName";

std::optional<ManagementClass> Firmware() {
  auto firmware = CurrentMachine()->FindFirmwareClass();
  if (!firmware) return std::nullopt;
  ManagementClass definition{std::move(firmware->methods), {}};
  for (Value& name : firmware->instance_names) definition.instances.push_back({{kInstanceName, std::move(name)}});
  return definition;
}

/// The class is there on every machine; its one instance only where there is a table.
std::optional<ManagementClass> RawSmbiosTables() {
  ManagementClass definition;
  if (auto table = CurrentMachine()->ReadSmbiosTable()) {
    definition.instances.push_back({{L"SMBiosData", std::move(table->data)},
                                    {L"SmbiosMajorVersion", std::move(table->major)},
                                    {L"SmbiosMinorVersion", std::move(table->minor)}});
  }
  return definition;
}

constexpr struct {
  std::wstring_view name;
  std::optional<ManagementClass> (*read)();
} kClasses[] = {{L"ZarnGamingFunction", Firmware}, {L"MSSMBios_RawSMBiosTables", RawSmbiosTables}};

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

std::optional<ManagementClass> FindManagementClass(std::wstring_view name) {
  for (const auto& known : kClasses) {
    if (EqualsWithoutCase(known.name, name)) return known.read();
  }
  return std::nullopt;
}

const std::wstring* FindInstance(const ManagementClass& definition, std::wstring_view name) {
  for (const NamedValues& instance : definition.instances) {
    const auto found = instance.find(kInstanceName);
    const auto* text = found != instance.end() ? std::get_if<std::wstring>(&found->second) : nullptr;
    if (text != nullptr && *text == name) return text;
  }
  return nullptr;
}

const FirmwareClass::Method* FindMethod(const std::vector<FirmwareClass::Method>& methods, std::wstring_view name) {
  const auto found =
      std::ranges::find_if(methods, [&](const auto& method) { return EqualsWithoutCase(method.name, name); });
  return found != methods.end() ? &*found : nullptr;
}

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
