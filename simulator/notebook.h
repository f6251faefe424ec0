/// A notebook that is not there: what a profile describes, as one object that answers like the hardware.
///
/// Threads: any, several at once.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "simulator/ec_firmware.h"
#include "simulator/profile.h"

namespace simulator {

/// One call that crossed the wire to the firmware.
struct WireRecord {
  std::string method;
  EcFirmware::Input input;
  EcFirmware::Answer answer;
};

class Notebook {
 public:
  explicit Notebook(Profile profile);

  const Profile& profile() const { return profile_; }

  /// Calls the firmware, after its latency, and keeps a record of it. The records stand in the order in which the
  /// firmware ran the calls.
  EcFirmware::Answer CallFirmware(const std::string& method, const EcFirmware::Input& input);

  KeyboardLights Lights() const { return firmware_.Lights(); }

  /// The SMBIOS structure table: a structure with strings, the OEM structure of type 172 and the end-of-table
  /// structure; empty when the profile has no firmware record.
  std::vector<std::uint8_t> SmbiosTable() const;

  /// What crossed the wire since the last call.
  std::vector<WireRecord> TakeWire();

 private:
  const Profile profile_;
  EcFirmware firmware_;
  mutable std::mutex lock_;
  std::vector<WireRecord> wire_;  // guarded by lock_
};

}  // namespace simulator
