#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "log/service_switch.h"
#include "platform/linux/lighting_access.h"
#include "platform/linux/linux_machine.h"
#include "platform/linux/settings.h"
#include "platform/standin/machine.h"
#include "platform/standin/report_descriptor.h"
#include "platform/standin/text.h"
#include "zarnctl/linux/firmware_trouble.h"
#include "zarnctl/linux/layer_hardware.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

using platform::SettingsFile;

/// "/etc/zarn/settings.toml: 2 values"
std::string Described(const SettingsFile& file) {
  if (!file.complaint.empty()) return file.complaint + "; nothing in it counts";
  const std::string name = file.path.string() + ": ";
  if (file.state == SettingsFile::State::NotThere) return name + "not there";
  std::size_t values = 0;
  for (const auto& [key, entries] : file.values) values += entries.size();
  std::size_t unknown = values;
  for (const auto& [key, value] : {kLogSwitch, kHybridSwitch}) {
    if (platform::FindValue(file.values, key, value)) --unknown;
  }
  return name + Counted(values, "value") + (unknown != 0 ? ", of which " + std::to_string(unknown) + " not known" : "");
}

std::string Example(const ServiceSwitch& service_switch) {
  return "  [registry.'" + platform::ReadableUtf8(service_switch.key) + "']\n  " +
         platform::ReadableUtf8(service_switch.value) + " = 1\n";
}

class ThisComputer final : public LayerHardware {
 public:
  using LayerHardware::LayerHardware;

  std::string Name() const override { return "this computer"; }

  SettingsPlaces Settings() const override {
    SettingsPlaces places{.text = "settings files, of which a later one takes precedence:\n"};
    for (const std::filesystem::path& path : platform::SettingsPaths()) {
      const SettingsFile file = platform::ReadSettingsFile(path);
      places.text += "  " + Harmless(Described(file)) + "\n";
      if (!file.complaint.empty()) places.complaints.push_back(file.complaint);
    }
    places.text += "to turn logging on, write into one of them:\n" + Example(kLogSwitch) +
                   "to have a HID keyboard reported beside the embedded controller's devices, and not without them:\n" +
                   Example(kHybridSwitch);
    return places;
  }

  Remedies RemediesHere() const override {
    std::error_code error;
    const bool has_nodes = std::filesystem::exists("/sys/class/hidraw", error);
    const bool has_table = std::filesystem::exists("/sys/firmware/dmi/tables/DMI", error);
    const auto firmware = platform::FindFirmwareOnBus(platform::LinuxPlaces().wmi_devices).state;
    return {.nothing_discovered = "'zarnctl doctor' tells why, --machine drives a simulated notebook",
            .hidden = firmware == platform::FirmwareSearch::NotAllowed
                          ? "; an embedded controller's lights are shown to root alone: 'sudo zarnctl devices'"
                          : "",
            .switches = "'zarnctl config' shows where it is set",
            .no_log = kNoLog,
            .no_hid_devices =
                has_nodes ? "plug the keyboard in" : "this kernel has no hidraw: /sys/class/hidraw is missing",
            .may_not_open = "plug it in again once the package's udev rule is installed, or run as root",
            .may_not_open_keys =
                std::string("what is typed comes out of it, too, so it is root's: run as root, or let whoever "
                            "sits here use it and read every key: 'sudo install -Dm644 /dev/null ") +
                platform::kSharedKeyboards + "', then plug it in again or restart",
            .no_node = "plug it in again; a container must be given its node in /dev",
            .no_answer = "plug it in again",
            .no_table = has_table
                            ? "run as root, to whom alone the kernel shows it"
                            : "this computer's kernel has none in /sys/firmware/dmi; a HID keyboard works without it",
            .no_record = "this is no notebook of the family; a HID keyboard works without it"};
  }

  void LookAtDevices(Symptoms& symptoms) const override {
    LayerHardware::LookAtDevices(symptoms);
    const platform::FirmwareOnBus firmware = platform::FindFirmwareOnBus(platform::LinuxPlaces().wmi_devices);
    symptoms.firmware = TroubleWith(firmware, {});
    if (!firmware.driver.empty()) {
      symptoms.firmware_note = "the kernel's driver " + firmware.driver + " uses it, too, and may change the lights";
    }
    for (const platform::HidDevice& device : platform::CurrentMachine()->HidDevices()) {
      const auto access = AccessTo(platform::ParseReportDescriptor(device.report_descriptor));
      if (access != platform::LightingAccess::LightsAndKeys) continue;
      symptoms.devices_with_keys.push_back(device.path);
      if (platform::KeyboardsAreShared()) {
        symptoms.device_notes.push_back(HidDeviceName(device.path, device.vendor, device.product) +
                                        ": whoever sits at this computer can also read what is typed on it, as " +
                                        platform::kSharedKeyboards + " allows");
      }
    }
  }
};

}  // namespace

std::unique_ptr<Hardware> UseThisComputer(bool trace) { return std::make_unique<ThisComputer>(trace); }

}  // namespace zarnctl
