/// The lighting plug-in, loaded as a service loads it: by the system's loader, its exports found by name.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "controller/rgb_controller_interface.h"
#include "platform/library.h"

namespace zarnctl {

/// What the machine has, by the plug-in's own discovery.
struct Discovery {
  std::vector<std::string> names;  // as many as the plug-in counted
  std::uint32_t interface_type = 0;
  std::string hardware_id;  // empty unless the HID keyboard is alone
  std::string usage_page;   // likewise, in hexadecimal
};

/// Stays loaded to the end of the process, whatever becomes of this object: the diagnostic log that the plug-in opens
/// lives as long, and a library loaded again would start another one.
class Plugin {
 public:
  /// Loads `file`, or, when it is empty, the plug-in that the program was built or installed with. Throws Complaint.
  explicit Plugin(const std::filesystem::path& file);

  /// Asks for the devices; comes before any of them is created. Throws Complaint.
  Discovery Discover() const;

  /// Creates a device by its name. Throws Complaint, and what the factories throw.
  std::unique_ptr<RGBControllerInterface> CreateDevice(const std::string& name) const;

 private:
  void* Find(const std::string& name) const;
  template <typename Controller>
  std::unique_ptr<RGBControllerInterface> Create(const std::string& name) const;

  platform::Library library_;
};

}  // namespace zarnctl
