#include "ec/rgb_controller_zarn_ec_global.h"

#include <optional>

#include "ec/ec_modes.h"
#include "ec/zarn_ec_global_controller.h"

namespace {

constexpr char kGlobalName[] = "Zarn Global Device";

namespace Can = ModeCapability;
constexpr EcModeDifferences kGlobalModes{.direct_capabilities = Can::PerLedColors,
                                         .wave_capabilities = ModeRows::kEffect | Can::DirectionSetA};

}  // namespace

RGBController_ZarnECGlobal::RGBController_ZarnECGlobal(ZarnECGlobalController* controller) : hw_controller(controller) {
  title = kGlobalName;
  maker_name = "Zarn";
  caption = kGlobalName;
  hw_kind = DeviceKind::Keyboard;
  mode_list = MakeEcModes(kGlobalModes);
  RGBController_ZarnECGlobal::DefineLayout();
}

RGBController_ZarnECGlobal::~RGBController_ZarnECGlobal() {
  StopWorker();
  delete hw_controller;
}

void RGBController_ZarnECGlobal::DefineLayout() { AppendZone("Global Backlight zone", 1); }

void RGBController_ZarnECGlobal::WriteZoneToDevice(std::int32_t /*zone_index*/) { WriteColorsToDevice(); }

void RGBController_ZarnECGlobal::WriteLedToDevice(std::int32_t /*led_index*/) { WriteColorsToDevice(); }

void RGBController_ZarnECGlobal::WriteModeToDevice() {
  Quietly([this] { ApplyMode(); });
}

void RGBController_ZarnECGlobal::ApplyMode() {
  const std::optional<ModeRecord> mode = ActiveMode();
  if (!mode) return;
  if (mode->hw_code == kPerLedModeCode) return WriteColorsToDevice();

  // Here "STATIC" is an effect of the firmware like the others, with a speed and a brightness of its own.
  const PackedColor color = EffectColor(*mode);
  hw_controller->SetMode(static_cast<std::uint8_t>(mode->hw_code), static_cast<std::uint16_t>(mode->speed_setting),
                         ToFirmwareDirection(mode->direction_setting),
                         static_cast<std::uint16_t>(mode->brightness_setting), RedOf(color), GreenOf(color),
                         BlueOf(color));
}
