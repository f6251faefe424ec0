/// What the plug-in drives, as far as zarnctl can see it.
#pragma once

#include <string>
#include <vector>

#include "zarnctl/panel.h"
#include "zarnctl/symptoms.h"

namespace zarnctl {

/// What crossed to the hardware, as far as that can be seen.
struct Exchanges {
  bool none = false;                  // nothing crossed; false where that cannot be seen
  std::vector<std::string> failures;  // a line for each way in which the firmware or a HID keyboard refused or was mute
  std::string doubt;                  // why there may be more failures than these; ends a sentence about the plug-in
};

/// Where the plug-in's switches stand.
struct SettingsPlaces {
  std::string text;                     // the places, and how to set a switch there, several lines
  std::vector<std::string> complaints;  // a line for each place that counts for nothing, with what is wrong there
};

/// A simulated notebook, or this computer as its system shows it. One at a time.
class Hardware {
 public:
  Hardware() = default;
  virtual ~Hardware() = default;
  Hardware(const Hardware&) = delete;
  Hardware& operator=(const Hardware&) = delete;

  /// "the notebook \"Four zones\"", "this computer"
  virtual std::string Name() const = 0;
  /// What is lit; nothing where lights cannot be looked at.
  virtual std::vector<Panel> Panels() const { return {}; }
  /// What crossed since the last call of this or the next, all of it for the device.
  virtual Exchanges TakeExchanges(const std::string& device) = 0;
  /// A line for each thing that refused or was mute since then, while devices were looked for or made. None where
  /// failures cannot be told from what a notebook just does not have.
  virtual std::vector<std::string> TakeRefusals() = 0;
  virtual SettingsPlaces Settings() const { return {}; }
  /// What to do about what is missing.
  virtual Remedies RemediesHere() const = 0;
  /// Adds what the HID devices' descriptors tell and the platform does not show.
  virtual void LookAtDevices(Symptoms& /*symptoms*/) const {}
};

}  // namespace zarnctl
