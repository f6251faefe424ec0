/// Why the firmware's methods cannot be called on this computer.
#pragma once

#include <filesystem>

#include "platform/linux/acpi_call.h"
#include "platform/linux/firmware_class.h"
#include "zarnctl/symptoms.h"

namespace zarnctl {

/// Where a Linux system tells why a module of the kernel is missing.
struct ModulePlaces {
  platform::AcpiCallPlaces acpi_call = {};
  std::filesystem::path modules = "/lib/modules";  // with a folder for each kernel
  std::filesystem::path lockdown = "/sys/kernel/security/lockdown";
};

/// The first thing that is in the way, from the search for the class to the right to call it.
Trouble TroubleWith(const platform::FirmwareOnBus& firmware, const ModulePlaces& places);

}  // namespace zarnctl
