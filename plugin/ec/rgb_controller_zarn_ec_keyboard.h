/// The generic controller of the EC keyboard: one zone of up to four LEDs and nine modes, of which the per-LED mode and
/// "STATIC" take the colour path and the others run in the firmware.
#pragma once

#include "controller/rgb_controller.h"

class ZarnECKeyboardController;

class RGBController_ZarnECKeyboard final : public RGBController {
 public:
  /// Takes `controller` over unless it throws (std::bad_alloc, std::system_error).
  explicit RGBController_ZarnECKeyboard(ZarnECKeyboardController* controller);
  RGBController_ZarnECKeyboard(const RGBController_ZarnECKeyboard&) = delete;
  RGBController_ZarnECKeyboard& operator=(const RGBController_ZarnECKeyboard&) = delete;
  ~RGBController_ZarnECKeyboard() override;

  void DefineLayout() override;
  void DeviceSpareHook() override {}
  void WriteColorsToDevice() override;
  void WriteZoneToDevice(std::int32_t /*zone_index*/) override { WriteColorsToDevice(); }
  void WriteLedToDevice(std::int32_t /*led_index*/) override { WriteColorsToDevice(); }
  void WriteModeToDevice() override;
  void SelectFirstMode() override { ActivateFirstMode(); }

 private:
  void PaintStatic(const ModeRecord& mode);

  ZarnECKeyboardController* const hw_controller;  // owned; see RGBController
};
