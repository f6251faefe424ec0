/// The generic controller of the whole-device light: one zone of one LED and the EC keyboard's nine modes, all of which
/// but the per-LED mode run in the firmware. It has no colour path: colours are kept in the records and sent nowhere.
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
  void DeviceSpareHook() override {}
  void WriteColorsToDevice() override {}
  void WriteZoneToDevice(std::int32_t /*zone_index*/) override { WriteColorsToDevice(); }
  void WriteLedToDevice(std::int32_t /*led_index*/) override { WriteColorsToDevice(); }
  void WriteModeToDevice() override;
  void SelectFirstMode() override { ActivateFirstMode(); }

 private:
  ZarnECGlobalController* const hw_controller;  // owned; see RGBController
};
