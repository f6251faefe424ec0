/// Hardware under our own platform layer, whose journal shows all that crosses.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/standin/instruments.h"
#include "platform/standin/machine.h"
#include "zarnctl/hardware.h"

namespace zarnctl {

// With `trace` every firmware call and every HID report goes to stderr, a line each. Any thread may call.

/// This computer, as Linux shows it.
std::unique_ptr<Hardware> UseThisComputer(bool trace);
/// Puts the notebook of a profile, a TOML file or a shipped profile's name, under the platform layer until the process
/// ends. Throws Complaint or simulator::ProfileError.
std::unique_ptr<Hardware> SimulateNotebook(const std::string& profile, bool trace);

/// What the two share. One at a time, since the layer has one journal.
class LayerHardware : public Hardware {
 public:
  explicit LayerHardware(bool trace);
  ~LayerHardware() override;
  LayerHardware(const LayerHardware&) = delete;
  LayerHardware& operator=(const LayerHardware&) = delete;

  Exchanges TakeExchanges(const std::string& device) override;
  std::vector<std::string> TakeRefusals() override { return TakeExchanges("").failures; }
  void LookAtDevices(Symptoms& symptoms) const override;

 protected:
  static constexpr const char* kNoLog =
      "the folder and those above it must be this user's or root's, with nobody else allowed to write there";

  /// A line for each method that the plug-in wanted and the firmware lacks.
  std::vector<std::string> TakeMissingMethods();

 private:
  void Note(const platform::JournalEntry& entry);

  const bool trace_;
  std::mutex lock_;  // the plug-in's threads call, too
  // Guarded by lock_.
  bool none_ = true;
  std::vector<std::string> failures_;
  std::vector<std::string> missing_methods_;
};

}  // namespace zarnctl
