#include "hidkeyboard/rgb_controller_zarn_hid_keyboard.h"

#include <optional>
#include <vector>

#include "controller/mode_rows.h"
#include "controller/zone_storage.h"
#include "hidkeyboard/hid_keyboard_modes.h"
#include "hidkeyboard/zarn_hid_keyboard_controller.h"

RGBController_ZarnHIDKeyboard::RGBController_ZarnHIDKeyboard(ZarnHIDKeyboardController* controller)
    : hw_controller(controller) {
  title = "Zarn HID Keyboard Device";
  maker_name = "zarn";
  caption = "zarn HID Keyboard Device";
  hw_kind = DeviceKind::Keyboard;
  mode_list = MakeHidKeyboardModes(hw_controller->EffectMask());
  RGBController_ZarnHIDKeyboard::DefineLayout();
}

RGBController_ZarnHIDKeyboard::~RGBController_ZarnHIDKeyboard() {
  StopWorker();
  delete hw_controller;
}

void RGBController_ZarnHIDKeyboard::DefineLayout() {
  AppendZone("Keyboard Backlight zone", hw_controller->ZoneCount());
}

void RGBController_ZarnHIDKeyboard::WriteColorsToDevice() try {
  const auto [colors, brightness] = ColorsAndBrightness();
  std::vector<std::uint8_t> bytes;
  bytes.reserve(4 * colors.size());
  for (const PackedColor color : colors) {
    bytes.insert(bytes.end(), {RedOf(color), GreenOf(color), BlueOf(color), std::uint8_t{0}});
  }
  hw_controller->SendColors(bytes.data(), static_cast<std::uint32_t>(colors.size()),
                            static_cast<std::uint16_t>(brightness));
} catch (...) {  // see RGBController
}

void RGBController_ZarnHIDKeyboard::WriteLedToDevice(std::int32_t led_index) try {
  const auto [colors, brightness] = ColorsAndBrightness();
  const PackedColor* const color = EntryAt(colors, led_index);
  if (color == nullptr) return;
  hw_controller->SetMode(kStaticDeviceMode, 0, 0, static_cast<std::uint16_t>(brightness), RedOf(*color),
                         GreenOf(*color), BlueOf(*color), ZoneBit(static_cast<std::uint32_t>(led_index)));
} catch (...) {  // see RGBController
}

void RGBController_ZarnHIDKeyboard::WriteModeToDevice() try {
  const std::optional<ModeRecord> mode = ActiveMode();
  if (!mode) return;
  if (mode->hw_code == kPerLedModeCode) return WriteColorsToDevice();

  // Here "STATIC" is sent like any effect, for all zones at once, and the colour table stays as it is.
  const PackedColor color = EffectColor(*mode);
  hw_controller->SetMode(hw_controller->ToDeviceMode(static_cast<std::uint32_t>(mode->hw_code)),
                         static_cast<std::uint16_t>(mode->speed_setting),
                         hw_controller->ToDeviceDirection(mode->direction_setting),
                         static_cast<std::uint16_t>(mode->brightness_setting), RedOf(color), GreenOf(color),
                         BlueOf(color), AllZones(hw_controller->ZoneCount()));
} catch (...) {  // see RGBController
}
