/// The generic controller of the HID keyboard: one zone with a LED for each lighting zone, and the modes that the
/// keyboard supports. Colours go out zone by zone, and a single LED can be sent alone.
#pragma once

#include "controller/rgb_controller.h"

class ZarnHIDKeyboardController;

class RGBController_ZarnHIDKeyboard final : public RGBController {
 public:
  /// Takes `controller` over unless it throws (std::bad_alloc, std::system_error).
  explicit RGBController_ZarnHIDKeyboard(ZarnHIDKeyboardController* controller);
  RGBController_ZarnHIDKeyboard(const RGBController_ZarnHIDKeyboard&) = delete;
  RGBController_ZarnHIDKeyboard& operator=(const RGBController_ZarnHIDKeyboard&) = delete;
  ~RGBController_ZarnHIDKeyboard() override;

  void DefineLayout() override;
  void WriteColorsToDevice() override;
  void WriteLedToDevice(std::int32_t led_index) override;
  void WriteModeToDevice() override;

 private:
  ZarnHIDKeyboardController* const hw_controller;  // owned; see RGBController
};
