/// A lighting device as a host knows it: by its packed description, changed only by packets.
///
/// Owns the controller and releases every buffer it is handed. Threads: those of RGBControllerInterface.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "controller/records.h"
#include "controller/rgb_controller_interface.h"

namespace zarnctl {

class Device {
 public:
  explicit Device(std::unique_ptr<RGBControllerInterface> controller) : controller_(std::move(controller)) {}

  /// What the device says of itself now. Throws Complaint when it cannot be read.
  ControllerRecords Describe() const;

  /// Replaces a mode and makes it the active one. Nothing is pushed.
  void SendMode(std::int32_t mode_index, const ModeRecord& mode);
  /// Replaces the colour table. Nothing is pushed.
  void SendColors(const std::vector<PackedColor>& colors);

  /// Applies the active mode before it returns; what the hardware shows then is the last value sent.
  void Push() { controller_->WriteModeToDevice(); }

  /// What the worker does in its own time.
  void Choose(std::int32_t mode_index) { controller_->ChooseMode(mode_index); }
  void RequestColorPush() { controller_->RequestColorPush(); }

 private:
  std::unique_ptr<RGBControllerInterface> controller_;
};

}  // namespace zarnctl
