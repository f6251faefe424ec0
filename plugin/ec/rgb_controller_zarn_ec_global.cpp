#include "ec/rgb_controller_zarn_ec_global.h"

#include <optional>

#include "ec/ec_modes.h"
#include "ec/zarn_ec_global_controller.h"

namespace Can = ModeCapability;

RGBController_ZarnECGlobal::RGBController_ZarnECGlobal(ZarnECGlobalController* controller) : hw_controller(controller) {
  title = caption = "Zarn Global Device";
  maker_name = "Zarn";
  hw_kind = DeviceKind::Keyboard;
  mode_list = MakeEcModes(Can::PerLedColors, ModeRows::kEffect | Can::DirectionSetA);
  RGBController_ZarnECGlobal::DefineLayout();
}

RGBController_ZarnECGlobal::~RGBController_ZarnECGlobal() {
  StopWorker();
  delete hw_controller;
}

void RGBController_ZarnECGlobal::DefineLayout() { AppendZone("Global Backlight zone", 1); }

void RGBController_ZarnECGlobal::WriteModeToDevice() try {
  const std::optional<ModeRecord> mode = ActiveMode();
  if (!mode) return;
  if (mode->hw_code == kPerLedModeCode) return WriteColorsToDevice();
  // Here "STATIC" is one of the firmware's effects, with a speed and a brightness.
  RunEffect(*hw_controller, *mode);
} catch (...) {  // see RGBController
}
