/// The generic controller of the whole-device light: one zone of one LED, and modes of the same names as the EC
/// keyboard's. All but the per-LED mode run in the firmware. Colours stay in the records and are sent nowhere.
#pragma once

#include "controller/rgb_controller.h"

class ZarnECGlobalController;

class RGBController_ZarnECGlobal final : public RGBController {
 public:
  /// Takes `controller` over unless it throws (std::bad_alloc, std::system_error).
  explicit RGBController_ZarnECGlobal(ZarnECGlobalController* controller);
  RGBController_ZarnECGlobal(const RGBController_ZarnECGlobal&) = delete;
  RGBController_ZarnECGlobal& operator=(const RGBController_ZarnECGlobal&) = delete;
  ~RGBController_ZarnECGlobal() override;

  void DefineLayout() override;
  void WriteColorsToDevice() override {}
  void WriteModeToDevice() override;

 private:
  ZarnECGlobalController* const hw_controller;  // owned; see RGBController
};
