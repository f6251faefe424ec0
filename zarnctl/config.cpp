#include "zarnctl/config.h"

#include <algorithm>

#include "log/service_switch.h"
#include "platform/linux/settings.h"
#include "platform/portable/text.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

using platform::Bytes;
using platform::ReadableUtf8;

std::string StateOf(platform::Machine& machine, const ServiceSwitch& service_switch) {
  const auto value = machine.RegistryValue(service_switch.key, service_switch.value);
  if (!value) return "off, not set";
  return *value == Bytes{1, 0, 0, 0} ? "on" : "off";
}

std::string StateOf(const platform::SettingsFile& file) {
  if (!file.complaint.empty()) return "counts for nothing, see above";
  if (!file.is_there) return "not there";
  std::size_t values = 0;
  for (const auto& [key, entries] : file.values) values += entries.size();
  return Counted(values, "value");
}

std::string Example(const ServiceSwitch& service_switch) {
  return "  [registry.'" + ReadableUtf8(service_switch.key) + "']\n  " + ReadableUtf8(service_switch.value) + " = 1\n";
}

std::string SettingsFiles() {
  std::string text = "settings files, of which a later one takes precedence:\n";
  for (const std::filesystem::path& path : platform::SettingsPaths()) {
    text += "  " + path.string() + ": " + StateOf(platform::ReadSettingsFile(path)) + "\n";
  }
  return text + "to turn both switches on, write into one of them:\n" + Example(kLogSwitch) + Example(kHybridSwitch);
}

}  // namespace

std::string ConfigOf(platform::Machine& machine, bool is_this_computer) {
  std::string log_folder =
      ReadableUtf8(machine.EnvironmentVariable(L"PROGRAMDATA").value_or(L"")) + "/OEM/ZarnLightingService/Log";
  std::ranges::replace(log_folder, '\\', '/');
  return "logging: " + StateOf(machine, kLogSwitch) + "\nlog folder: " + log_folder +
         "\nhybrid mode: " + StateOf(machine, kHybridSwitch) + "\n" + (is_this_computer ? SettingsFiles() : "");
}

std::vector<std::string> ComplaintsAboutSettings() {
  std::vector<std::string> complaints;
  for (const std::filesystem::path& path : platform::SettingsPaths()) {
    std::string complaint = platform::ReadSettingsFile(path).complaint;
    if (!complaint.empty()) complaints.push_back(std::move(complaint));
  }
  return complaints;
}

}  // namespace zarnctl
