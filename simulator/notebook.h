/// A simulated notebook, made from a profile, which answers like the hardware. Threads: any, several at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "simulator/ec_firmware.h"
#include "simulator/hid_keyboard.h"
#include "simulator/profile.h"

namespace simulator {

/// One exchange that crossed a wire: a call to the firmware, or a feature report to or from a HID keyboard.
struct WireRecord {
  /// The firmware's method, or "SetFeature" or "GetFeature".
  std::string method;
  /// Which HID keyboard, counted from 0; none for the firmware.
  std::optional<std::size_t> hid_keyboard;
  /// What was sent. For a report that is read: its id.
  EcFirmware::Input input;
  /// Why it failed; empty when it did not.
  std::string refusal;
};

class Notebook {
 public:
  explicit Notebook(Profile profile);

  const Profile& profile() const { return profile_; }

  /// Calls the firmware after its latency. Records have the order in which the firmware ran the calls.
  EcFirmware::Answer CallFirmware(const std::string& method, const EcFirmware::Input& input);

  /// Exchanges a report with a HID keyboard. Records have the order in which exchanges began. A failure enters its
  /// record when the exchange ends, unless the record has been taken by then.
  HidKeyboard::Answer SetFeature(std::size_t keyboard, std::uint64_t connection, std::span<const std::uint8_t> report);
  HidKeyboard::Answer GetFeature(std::size_t keyboard, std::uint64_t connection, std::uint8_t report_id);

  KeyboardLights Lights() const { return firmware_.Lights(); }
  std::optional<LightBarLights> LightBar() const { return firmware_.LightBar(); }

  std::size_t HidKeyboardCount() const { return hid_keyboards_.size(); }
  HidKeyboard& HidKeyboardAt(std::size_t index) { return *hid_keyboards_.at(index); }

  /// The SMBIOS structure table: a structure with strings, the OEM structure of type 172 and the end-of-table
  /// structure; empty when the profile has no firmware record.
  std::vector<std::uint8_t> SmbiosTable() const;

  /// What crossed the wire since the last call.
  std::vector<WireRecord> TakeWire();

 private:
  template <typename Exchange>
  HidKeyboard::Answer Record(WireRecord record, const Exchange& exchange);

  const Profile profile_;
  EcFirmware firmware_;
  std::vector<std::unique_ptr<HidKeyboard>> hid_keyboards_;  // the list does not change
  mutable std::mutex lock_;
  std::vector<WireRecord> wire_;  // guarded by lock_
  std::uint64_t taken_ = 0;       // records taken so far; guarded by lock_
};

}  // namespace simulator
