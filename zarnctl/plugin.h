/// The lighting plug-in, loaded as a service loads it: by the system's loader, its exports found by name.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "controller/rgb_controller_interface.h"
#include "simulator/notebook.h"

namespace zarnctl {

/// Stays loaded to the end of the process, whatever becomes of this object: the diagnostic log that the plug-in opens
/// lives as long, and a library loaded again would start another one.
class Plugin {
 public:
  /// Loads `file`, or, when it is empty, the plug-in that the program was built or installed with. Throws Complaint.
  explicit Plugin(const std::filesystem::path& file);

  /// Creates a device by its name. Throws Complaint, and what the factories throw.
  std::unique_ptr<RGBControllerInterface> CreateDevice(const std::string& name) const;

  /// The address of an export; throws Complaint when there is none of that name.
  void* Find(const char* name) const;

 private:
  void* library_;
};

/// The names of the lighting devices that `notebook` has.
std::vector<std::string> DeviceNames(const simulator::Notebook& notebook);

}  // namespace zarnctl
