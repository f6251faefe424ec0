/// What hardware tells the doctor.
#pragma once

#include <string>
#include <vector>

namespace zarnctl {

/// What to do about each thing that is missing. It depends on the hardware. Texts may be empty.
struct Remedies {
  std::string nothing_discovered = {};
  std::string hidden = {};  // continues a line: what this user is not shown; empty when that is nothing
  std::string switches = {};
  std::string no_log = {};
  std::string no_hid_devices = {};
  std::string may_not_open = {};
  std::string may_not_open_keys = {};  // for a device that also sends what is typed
  std::string no_node = {};
  std::string no_answer = {};
  std::string no_table = {};
  std::string no_record = {};
  std::string no_firmware_class = {};
};

/// Something that keeps lights dark, and what to do about it; both empty where nothing does.
struct Trouble {
  std::string what = {};
  std::string remedy = {};
};

/// What was seen of the plug-in and of the hardware.
struct Symptoms {
  std::vector<std::string> discovered = {};    // the devices that the plug-in reports
  std::vector<std::string> log = {};           // the lines that its discovery logged
  std::vector<std::string> device_notes = {};  // HID devices that the platform shows in part or not at all, and why
  Trouble firmware = {};                       // why the firmware's methods cannot be called, where the platform tells
  std::string firmware_note = {};              // what else is to be known of them
  std::vector<std::wstring> devices_with_keys = {};  // paths of HID devices that have lights and send what is typed
};

}  // namespace zarnctl
