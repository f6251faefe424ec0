#include "zarnctl/config.h"

#include <array>
#include <utility>

#include "log/service_switch.h"
#include "platform/linux/settings.h"
#include "platform/standin/text.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

using platform::SettingsFile;

constexpr std::array kSwitches = {kLogSwitch, kHybridSwitch};

/// How many values of the file are switches.
std::size_t KnownValues(const SettingsFile& file) {
  std::size_t known = 0;
  for (const ServiceSwitch& each : kSwitches) known += platform::FindValue(file.values, each.key, each.value) ? 1 : 0;
  return known;
}

/// "/etc/zarn/settings.toml: 2 values"
std::string Described(const SettingsFile& file) {
  if (!file.complaint.empty()) return file.complaint + "; nothing in it counts";
  const std::string name = file.path.string() + ": ";
  if (file.state == SettingsFile::State::NotThere) return name + "not there";
  std::size_t values = 0;
  for (const auto& [key, entries] : file.values) values += entries.size();
  const std::size_t unknown = values - KnownValues(file);
  return name + Counted(values, "value") + (unknown != 0 ? ", of which " + std::to_string(unknown) + " not known" : "");
}

std::string Example(const ServiceSwitch& service_switch) {
  return "  [registry.'" + platform::ReadableUtf8(service_switch.key) + "']\n  " +
         platform::ReadableUtf8(service_switch.value) + " = 1\n";
}

}  // namespace

std::string SettingsPlaces() {
  std::string text = "settings files, of which a later one takes precedence:\n";
  for (const std::filesystem::path& path : platform::SettingsPaths()) {
    text += "  " + Harmless(Described(platform::ReadSettingsFile(path))) + "\n";
  }
  return text + "to turn logging on, write into one of them:\n" + Example(kLogSwitch) +
         "to have a HID keyboard reported beside the embedded controller's devices, and not without them:\n" +
         Example(kHybridSwitch);
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
