/// The firmware class ZarnGamingFunction, as this computer's firmware publishes it on the kernel's WMI bus.
///
/// The bus shows an object for each GUID of each management device of the firmware, and says by which method it is
/// reached. What the methods are called, which numbers they have and what they take stands in the device's description,
/// a binary MOF. Nothing is guessed: a method counts only if the description names it and the same device has the
/// class's GUID.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/linux/binary_mof.h"

namespace platform {

/// Where the search ended, in the order of its steps. Of several devices the one counts that led furthest. Found does
/// not mean that the methods can be called.
enum class FirmwareSearch {
  NoBus,       // the kernel has none
  NoDevices,   // the firmware has no management device
  NoBlobs,     // none of them describes its classes
  NotShown,    // the kernel's module that shows descriptions is not loaded
  NoClass,     // none names the class
  NotAllowed,  // they are root's to read
  Unreadable,  // one cannot be read, and no other names the class
  NoGuid,      // the class is there, but its device has no object with its GUID
  Found
};

struct FirmwareOnBus {
  FirmwareSearch state = FirmwareSearch::NoBus;
  std::string detail = {};                   // of Unreadable: the file and what is wrong with it; of NoGuid: the GUID
  std::string acpi_method = {};              // "\\_SB.WMI0.WMZG", which runs all methods of the class
  std::vector<std::wstring> instances = {};  // named as Windows names them, "ACPI\PNP0C14\0_0"
  std::vector<MofMethod> methods = {};
  std::string driver = {};  // a kernel driver that uses the class as well; as a rule empty
};

/// Reads `objects`, the folder of the bus's objects. Takes some milliseconds. Any thread.
FirmwareOnBus FindFirmwareOnBus(const std::filesystem::path& objects);

}  // namespace platform
