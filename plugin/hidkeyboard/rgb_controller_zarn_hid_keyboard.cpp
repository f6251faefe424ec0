#include "hidkeyboard/rgb_controller_zarn_hid_keyboard.h"

#include <mutex>
#include <optional>
#include <vector>

#include "controller/mode_rows.h"
#include "hidkeyboard/hid_keyboard_modes.h"
#include "hidkeyboard/zarn_hid_keyboard_controller.h"

namespace {

/// The first `count` zones in the mask of an update, or all that it has bits for.
std::uint16_t AllZones(std::uint32_t count) {
  return static_cast<std::uint16_t>(count > kAddressableZones ? 0xFFFFU : (1U << count) - 1);
}

}  // namespace

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

void RGBController_ZarnHIDKeyboard::WriteColorsToDevice() {
  Quietly([this] { SendColorTable(); });
}

void RGBController_ZarnHIDKeyboard::WriteZoneToDevice(std::int32_t /*zone_index*/) { WriteColorsToDevice(); }

void RGBController_ZarnHIDKeyboard::WriteLedToDevice(std::int32_t led_index) {
  Quietly([this, led_index] { SendLed(led_index); });
}

void RGBController_ZarnHIDKeyboard::WriteModeToDevice() {
  Quietly([this] { ApplyMode(); });
}

void RGBController_ZarnHIDKeyboard::SendColorTable() {
  std::unique_lock lock(records_lock);
  const std::vector<PackedColor> colors = Colors();
  const auto brightness = static_cast<std::uint16_t>(ColorBrightness());
  lock.unlock();

  std::vector<std::uint8_t> bytes;
  bytes.reserve(4 * colors.size());
  for (const PackedColor color : colors) {
    bytes.insert(bytes.end(), {RedOf(color), GreenOf(color), BlueOf(color), std::uint8_t{0}});
  }
  hw_controller->SendColors(bytes.data(), static_cast<std::uint32_t>(colors.size()), brightness);
}

void RGBController_ZarnHIDKeyboard::SendLed(std::int32_t led_index) {
  const auto led = static_cast<std::uint32_t>(led_index);  // a negative one lies beyond the end, too
  std::unique_lock lock(records_lock);
  if (led >= color_table.size()) return;
  const PackedColor color = color_table[led];
  const auto brightness = static_cast<std::uint16_t>(ColorBrightness());
  lock.unlock();
  hw_controller->SetMode(kStaticDeviceMode, 0, 0, brightness, RedOf(color), GreenOf(color), BlueOf(color),
                         ZoneBit(led));
}

void RGBController_ZarnHIDKeyboard::ApplyMode() {
  const std::optional<ModeRecord> mode = ActiveMode();
  if (!mode) return;
  if (mode->hw_code == kPerLedModeCode) return WriteColorsToDevice();

  // Here "STATIC" is an update like any effect's, for all zones at once; it leaves the colour table alone.
  const PackedColor color = EffectColor(*mode);
  hw_controller->SetMode(hw_controller->ToDeviceMode(static_cast<std::uint32_t>(mode->hw_code)),
                         static_cast<std::uint16_t>(mode->speed_setting),
                         hw_controller->ToDeviceDirection(mode->direction_setting),
                         static_cast<std::uint16_t>(mode->brightness_setting), RedOf(color), GreenOf(color),
                         BlueOf(color), AllZones(hw_controller->ZoneCount()));
}
