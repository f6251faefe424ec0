#include "ec/rgb_controller_zarn_ec_keyboard.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <vector>

#include "ec/ec_modes.h"
#include "ec/zarn_ec_keyboard_controller.h"

namespace {

constexpr char kKeyboardName[] = "Zarn EC Keyboard Device";

namespace Can = ModeCapability;
constexpr EcModeDifferences kKeyboardModes{
    .direct_capabilities = Can::BrightnessAdjustable | Can::PerLedColors,
    .wave_capabilities = ModeRows::kEffect | Can::DirectionSetA | Can::DirectionSetB | Can::DirectionSetC};

}  // namespace

RGBController_ZarnECKeyboard::RGBController_ZarnECKeyboard(ZarnECKeyboardController* controller)
    : hw_controller(controller) {
  title = kKeyboardName;
  maker_name = "Zarn";
  caption = kKeyboardName;
  hw_kind = DeviceKind::Keyboard;
  mode_list = MakeEcModes(kKeyboardModes);
  RGBController_ZarnECKeyboard::DefineLayout();
}

RGBController_ZarnECKeyboard::~RGBController_ZarnECKeyboard() {
  StopWorker();
  delete hw_controller;
}

void RGBController_ZarnECKeyboard::DefineLayout() {
  AppendZone("Keyboard Backlight zone", static_cast<std::uint32_t>(hw_controller->ZoneCount()));
}

void RGBController_ZarnECKeyboard::WriteColorsToDevice() {
  Quietly([this] { SendColorTable(); });
}

void RGBController_ZarnECKeyboard::WriteZoneToDevice(std::int32_t /*zone_index*/) { WriteColorsToDevice(); }

void RGBController_ZarnECKeyboard::WriteLedToDevice(std::int32_t /*led_index*/) { WriteColorsToDevice(); }

void RGBController_ZarnECKeyboard::WriteModeToDevice() {
  Quietly([this] { ApplyMode(); });
}

void RGBController_ZarnECKeyboard::SendColorTable() {
  std::unique_lock lock(records_lock);
  const std::vector<PackedColor> colors = Colors();
  const auto brightness = static_cast<std::uint8_t>(ColorBrightness());
  lock.unlock();
  hw_controller->SendColors(colors.data(), static_cast<std::uint32_t>(colors.size()), brightness);
}

void RGBController_ZarnECKeyboard::ApplyMode() {
  std::unique_lock lock(records_lock);
  const std::optional<ModeRecord> mode = ActiveMode();
  if (!mode) return;
  // Here a static colour is no effect of the firmware: it is the colour path with all zones alike.
  if (mode->hw_code == kStaticEffect) PaintStatic(*mode);
  lock.unlock();
  if (mode->hw_code == kPerLedModeCode || mode->hw_code == kStaticEffect) return WriteColorsToDevice();

  const PackedColor color = EffectColor(*mode);
  hw_controller->SetMode(static_cast<std::uint8_t>(mode->hw_code), static_cast<std::uint16_t>(mode->speed_setting),
                         ToFirmwareDirection(mode->direction_setting),
                         static_cast<std::uint16_t>(mode->brightness_setting), RedOf(color), GreenOf(color),
                         BlueOf(color));
}

/// Colour and brightness stay in the records as if they had been set LED by LED.
void RGBController_ZarnECKeyboard::PaintStatic(const ModeRecord& mode) {
  std::fill(color_table.begin(), color_table.end(), mode.mode_colors.empty() ? 0 : mode.mode_colors.front());
  mode_list.front().brightness_setting = mode.brightness_setting;
}
