/// What the plug-in drives, as far as zarnctl can see it.
#pragma once

#include <string>
#include <vector>

#include "zarnctl/panel.h"
#include "zarnctl/symptoms.h"

namespace zarnctl {

/// What crossed to the hardware, as far as that can be seen.
struct Exchanges {
  bool none = false;                       // nothing crossed; false where that cannot be seen
  std::vector<std::string> failures = {};  // lines: what the firmware or a HID keyboard refused or did not answer
  std::string doubt = {};  // why there may be more failures; continues a sentence that ends in "the plug-in"
};

/// Where the plug-in's switches stand.
struct SettingsPlaces {
  std::string text = {};                     // several lines: the places, and how to set a switch there
  std::vector<std::string> complaints = {};  // a line for each place that is ignored, with what is wrong there
};

/// A simulated notebook, or this computer. One at a time.
class Hardware {
 public:
  Hardware() = default;
  virtual ~Hardware() = default;
  Hardware(const Hardware&) = delete;
  Hardware& operator=(const Hardware&) = delete;

  /// "the notebook \"Four zones\"", "this computer"
  virtual std::string Name() const = 0;
  /// What is lit. Empty where lights cannot be seen, which is everywhere but on a simulated notebook.
  virtual std::vector<Panel> Panels() const { return {}; }
  /// What crossed since the last call of a Take function, all of it for `device`.
  virtual Exchanges TakeExchanges(const std::string& device) = 0;
  /// Lines: what was refused or not answered since then, while devices were looked for or made. Empty where such a
  /// failure looks the same as a part that the notebook does not have.
  virtual std::vector<std::string> TakeRefusals() = 0;
  virtual SettingsPlaces Settings() const { return {}; }
  virtual Remedies RemediesHere() const = 0;
  /// Adds what only the HID devices' descriptors tell.
  virtual void LookAtDevices(Symptoms& /*symptoms*/) const {}
};

}  // namespace zarnctl
