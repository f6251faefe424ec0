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
  void WriteZoneToDevice(std::int32_t zone_index) override;
  void WriteLedToDevice(std::int32_t led_index) override;
  void WriteModeToDevice() override;
  void SelectFirstMode() override { ActivateFirstMode(); }

 private:
  void ApplyMode();

  // Owned, but bare: when the constructor throws the destructor does not run, and the host keeps what it handed in.
  ZarnECGlobalController* const hw_controller;
};
