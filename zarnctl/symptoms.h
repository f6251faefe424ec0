/// What hardware tells the doctor.
#pragma once

#include <string>
#include <vector>

namespace zarnctl {

/// What can be done about what is missing, which depends on what is examined. Texts may be empty.
struct Remedies {
  std::string nothing_discovered;
  std::string switches;
  std::string no_log;
  std::string no_hid_devices;
  std::string may_not_open;
  std::string may_not_open_keys;  // where what is typed comes out of the same device
  std::string no_node;
  std::string no_answer;
  std::string no_table;
  std::string no_record;
  std::string no_firmware_class;
};

/// What was seen of the plug-in and of the machine below the platform.
struct Symptoms {
  std::vector<std::string> discovered;         // the devices that the plug-in reports
  std::vector<std::string> log;                // the lines that it logged of its discovery
  std::vector<std::string> device_notes;       // HID devices that the platform does not show as they are, and why
  std::vector<std::string> devices_with_keys;  // paths of HID devices with lights out of which also comes what is typed
};

}  // namespace zarnctl
