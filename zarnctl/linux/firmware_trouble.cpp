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
constexpr const char* kOtherNotebook = "this is no notebook of the family; HID keyboards need none";
constexpr const char* kBrokenFirmware = "nothing is called by guess; an update of the BIOS may mend it";

bool Contains(const fs::path& file, std::string_view text) {
  const auto bytes = platform::ReadFile(file);
  return bytes && std::string_view(reinterpret_cast<const char*>(bytes->data()), bytes->size()).find(text) !=
                      std::string_view::npos;
}

Trouble TroubleWithSearch(const platform::FirmwareOnBus& firmware) {
  switch (firmware.state) {
    case FirmwareSearch::NoBus:
      return {"this kernel has no WMI bus", "'sudo modprobe wmi-bmof' loads it; cloud kernels have none at all"};
    case FirmwareSearch::NoDevices:
      return {"the firmware has no management device (PNP0C14)", kOtherNotebook};
    case FirmwareSearch::NoBlobs:
      return {"the firmware does not describe its classes", kOtherNotebook};
    case FirmwareSearch::NotShown:
      return {"the kernel does not show what the firmware describes", "'sudo modprobe wmi-bmof' makes it"};
    case FirmwareSearch::NotAllowed:
      return {"this user may not read what the firmware describes", kAsRoot};
    case FirmwareSearch::Unreadable:
      return {"the firmware's description cannot be read, " + firmware.detail, kBrokenFirmware};
    case FirmwareSearch::NoClass:
      return {"the firmware describes other classes alone", kOtherNotebook};
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
    return {"the kernel's module acpi_call is not installed, which calls the firmware",
            "'sudo apt install acpi-call-dkms linux-headers-amd64', then 'sudo modprobe acpi_call'"};
  }
  if (Contains(places.lockdown, "[integrity]") || Contains(places.lockdown, "[confidentiality]")) {
    return {
        "the kernel's module acpi_call is not loaded, and with Secure Boot the kernel takes none without a known key",
        "'sudo mokutil --import /var/lib/dkms/mok.pub' enrols the key of this computer's modules at the next start; "
        "then 'sudo modprobe acpi_call'"};
  }
  return {
      "the kernel's module acpi_call is not loaded, which calls the firmware",
      "'sudo modprobe acpi_call' loads it, 'echo acpi_call | sudo tee /etc/modules-load.d/zarn.conf' at each start"};
}

}  // namespace

Trouble TroubleWith(const platform::FirmwareOnBus& firmware, const ModulePlaces& places) {
  if (firmware.state != FirmwareSearch::Found) return TroubleWithSearch(firmware);
  std::error_code error;
  if (!fs::exists(places.acpi_call.module, error)) return TroubleWithModule(places);
  if (faccessat(AT_FDCWD, places.acpi_call.module.c_str(), R_OK | W_OK, AT_EACCESS) != 0) {
    return {"this user may not call the firmware", kAsRoot};
  }
  if (platform::KernelIsStrict(places.acpi_call.kernel_options)) {
    return {"the kernel runs with acpi=strict, and its module acpi_call then crashes when a method answers nothing",
            "start the kernel without that option"};
  }
  return {};
}

}  // namespace zarnctl
