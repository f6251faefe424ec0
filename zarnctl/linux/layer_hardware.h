/// Hardware under our own platform layer, where all that crosses can be seen.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/standin/instruments.h"
#include "platform/standin/machine.h"
#include "zarnctl/hardware.h"

namespace zarnctl {

/// One at a time, since the layer has one journal.
class LayerHardware : public Hardware {
 public:
  /// With `trace` every firmware call and every HID report goes to stderr, a line each.
  explicit LayerHardware(bool trace);
  ~LayerHardware() override;

  Exchanges TakeExchanges(const std::string& device) override;
  std::vector<std::string> TakeRefusals() override { return TakeExchanges("").failures; }
  void LookAtDevices(Symptoms& symptoms) const override;

 protected:
  /// "/dev/hidraw0 (1209:0001)"
  static std::string NameOf(const platform::HidDevice& device);

  static constexpr const char* kNoLog =
      "the folder and those above it must be this user's or root's, with nobody else allowed to write there";

 private:
  void Note(const platform::JournalEntry& entry);

  const bool trace_;
  std::mutex lock_;  // the plug-in's threads call, too
  // Guarded by lock_.
  bool none_ = true;
  std::vector<std::string> failures_;
};

}  // namespace zarnctl
