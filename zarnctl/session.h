/// The plug-in over some hardware, as commands use it.
#pragma once

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "zarn_lighting/host.h"
#include "zarnctl/complaint.h"
#include "zarnctl/hardware.h"

namespace zarnctl {

/// Loads the plug-in and discovers devices when a command first needs them. All may throw Complaint.
class Session {
 public:
  /// The hardware outlives the session. An empty path stands for our own plug-in.
  Session(Hardware& hardware, std::filesystem::path plugin_file)
      : hardware_(hardware), plugin_file_(std::move(plugin_file)) {}

  Hardware& hardware() const { return hardware_; }
  /// Whether firmware or a keyboard refused something while a device was made. The device then shows less than it
  /// could.
  bool refused() const { return refused_; }

  const zarn::host::Discovery& Discovered();
  /// The devices, at least one.
  const std::vector<std::string>& Names();
  /// A device's name, from one typed in any case.
  const std::string& FindName(const std::string& wanted);
  zarn::host::Device Create(const std::string& name);

  /// Sends the active mode and complains of failures. Prints the lights unless `quietly`.
  ExitCode Push(zarn::host::Device& device, const std::string& name, bool quietly = false);
  void Draw(const ControllerRecords& records) const;

 private:
  const zarn::host::Plugin& LoadedPlugin();
  /// Complains of what it has not complained of before: the plug-in tries again and again. Whether there was any
  /// failure.
  bool Tell(const std::vector<std::string>& failures);

  Hardware& hardware_;
  const std::filesystem::path plugin_file_;
  std::optional<zarn::host::Plugin> plugin_;
  std::optional<zarn::host::Discovery> discovery_;
  bool refused_ = false;
  std::set<std::string> told_;
};

/// Whether the device shows colours per LED. The whole-device light runs effects alone, although its description has an
/// LED and a per-LED mode.
inline bool LightsLeds(const std::string& device) { return device != "ZarnECGlobal"; }

}  // namespace zarnctl
