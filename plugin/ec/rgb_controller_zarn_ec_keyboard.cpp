#include "ec/rgb_controller_zarn_ec_keyboard.h"

#include <algorithm>
#include <mutex>
#include <optional>

#include "ec/ec_modes.h"
#include "ec/zarn_ec_keyboard_controller.h"

namespace Can = ModeCapability;

RGBController_ZarnECKeyboard::RGBController_ZarnECKeyboard(ZarnECKeyboardController* controller)
    : hw_controller(controller) {
  title = caption = "Zarn EC Keyboard Device";
  maker_name = "Zarn";
  hw_kind = DeviceKind::Keyboard;
  mode_list = MakeEcModes(Can::BrightnessAdjustable | Can::PerLedColors,
                          ModeRows::kEffect | Can::DirectionSetA | Can::DirectionSetB | Can::DirectionSetC);
  RGBController_ZarnECKeyboard::DefineLayout();
}

RGBController_ZarnECKeyboard::~RGBController_ZarnECKeyboard() {
  StopWorker();
  delete hw_controller;
}

void RGBController_ZarnECKeyboard::DefineLayout() {
  AppendZone("Keyboard Backlight zone", static_cast<std::uint32_t>(hw_controller->ZoneCount()));
}

void RGBController_ZarnECKeyboard::WriteColorsToDevice() try {
  const auto [colors, brightness] = ColorsAndBrightness();
  hw_controller->SendColors(colors.data(), static_cast<std::uint32_t>(colors.size()),
                            static_cast<std::uint8_t>(brightness));
} catch (...) {  // see RGBController
}

void RGBController_ZarnECKeyboard::WriteModeToDevice() try {
  std::unique_lock lock(records_lock);
  const std::optional<ModeRecord> mode = ActiveMode();
  if (!mode) return;
  // Here "STATIC" is no effect of the firmware: the colour table goes out with all zones alike.
  if (mode->hw_code == kStaticEffect) PaintStatic(*mode);
  lock.unlock();
  if (mode->hw_code == kPerLedModeCode || mode->hw_code == kStaticEffect) return WriteColorsToDevice();
  RunEffect(*hw_controller, *mode);
} catch (...) {  // see RGBController
}

/// Colour and brightness stay in the records as if they had been set LED by LED.
void RGBController_ZarnECKeyboard::PaintStatic(const ModeRecord& mode) {
  std::fill(color_table.begin(), color_table.end(), mode.mode_colors.empty() ? 0 : mode.mode_colors.front());
  mode_list.front().brightness_setting = mode.brightness_setting;
}
