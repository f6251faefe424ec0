#include "zarnctl/linux/firmware_trouble.h"

#include <fcntl.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <string_view>
#include <system_error>

#include "platform/linux/read_file.h"

namespace zarnctl {
namespace {

namespace fs = std::filesystem;
using platform::FirmwareSearch;

constexpr const char* kAsRoot = "run as root: 'sudo zarnctl doctor'";
constexpr const char* kNotHere =
    "lights of an embedded controller cannot be reached here; a HID keyboard works without it";
constexpr const char* kBrokenFirmware =
    "nothing is called by guess; report it with the files /sys/bus/wmi/devices/*/bmof";

bool Contains(const fs::path& file, std::string_view text) {
  const auto bytes = platform::ReadFile(file);
  return bytes && std::string_view(reinterpret_cast<const char*>(bytes->data()), bytes->size()).find(text) !=
                      std::string_view::npos;
}

Trouble TroubleWithSearch(const platform::FirmwareOnBus& firmware) {
  switch (firmware.state) {
    case FirmwareSearch::NoBus:
      return {"this kernel has no WMI bus",
              "'sudo modprobe wmi-bmof' loads it; a cloud kernel has none: 'sudo apt install linux-image-amd64', then "
              "restart"};
    case FirmwareSearch::NoDevices:
      return {"the firmware has no management device (PNP0C14)", kNotHere};
    case FirmwareSearch::NoBlobs:
      return {"the firmware does not describe its classes", kNotHere};
    case FirmwareSearch::NotShown:
      return {"the kernel does not show what the firmware describes", "'sudo modprobe wmi-bmof' makes it show that"};
    case FirmwareSearch::NotAllowed:
      return {"this user may not read what the firmware describes", kAsRoot};
    case FirmwareSearch::Unreadable:
      return {"the firmware's description cannot be read, " + firmware.detail, kBrokenFirmware};
    case FirmwareSearch::NoClass:
      return {"the firmware describes other classes alone", kNotHere};
    case FirmwareSearch::NoGuid:
      return {"the firmware describes it, but has its GUID " + firmware.detail + " elsewhere or nowhere",
              kBrokenFirmware};
    case FirmwareSearch::Found:
      break;
  }
  return {};
}

Trouble TroubleWithModule(const ModulePlaces& places) {
  utsname kernel = {};
  uname(&kernel);
  if (!Contains(places.modules / kernel.release / "modules.dep", "/acpi_call.ko")) {
    return {"the module acpi_call, which calls it, is not installed for this kernel",
            "'sudo apt install acpi-call-dkms linux-headers-$(uname -r) && sudo dkms autoinstall', then 'sudo modprobe "
            "acpi_call'"};
  }
  if (Contains(places.lockdown, "[integrity]") || Contains(places.lockdown, "[confidentiality]")) {
    return {
        "the module acpi_call, which calls it, is not loaded, and Secure Boot keeps out modules of unknown keys",
        "'sudo modprobe acpi_call'; if the key was rejected: 'sudo mokutil --import /var/lib/dkms/mok.pub', choose a "
        "password, restart, choose Enroll MOK there and type it"};
  }
  return {
      "the module acpi_call, which calls it, is not loaded",
      "'sudo modprobe acpi_call' loads it, 'echo acpi_call | sudo tee /etc/modules-load.d/zarn.conf' at each start"};
}

}  // namespace

Trouble TroubleWith(const platform::FirmwareOnBus& firmware, const ModulePlaces& places) {
  if (firmware.state != FirmwareSearch::Found) return TroubleWithSearch(firmware);
  std::error_code error;
  if (!fs::exists(places.acpi_call.call_file, error)) return TroubleWithModule(places);
  if (faccessat(AT_FDCWD, places.acpi_call.call_file.c_str(), R_OK | W_OK, AT_EACCESS) != 0) {
    return {"this user may not call the firmware", kAsRoot};
  }
  if (platform::KernelIsStrict(places.acpi_call.command_line)) {
    return {"the kernel runs with acpi=strict, and the module acpi_call then crashes when a method answers nothing",
            "start the kernel without that option"};
  }
  return {};
}

}  // namespace zarnctl
