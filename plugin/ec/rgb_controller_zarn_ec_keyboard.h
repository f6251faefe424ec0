/// The generic controller of the EC keyboard: one zone of up to four LEDs, and nine modes. The per-LED mode and
/// "STATIC" send the colour table; the others run in the firmware.
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
  void WriteColorsToDevice() override;
  void WriteModeToDevice() override;

 private:
  void PaintStatic(const ModeRecord& mode);

  ZarnECKeyboardController* const hw_controller;  // owned; see RGBController
};
