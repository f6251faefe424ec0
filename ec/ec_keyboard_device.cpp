#include "ec/ec_keyboard_device.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "ec/ec_keyboard_controller.h"
#include "ec/ec_modes.h"

namespace {

constexpr char kName[] = "Zarn EC Keyboard Device";
constexpr char kMaker[] = "Zarn";
constexpr char kZoneLabel[] = "Keyboard Backlight zone";

namespace Can = ModeCapability;
constexpr std::uint32_t kEffect = Can::SpeedAdjustable | Can::BrightnessAdjustable;
constexpr std::uint32_t kColoredEffect = kEffect | Can::ModeColors;

constexpr EcModeRow kModes[] = {
    {"Direct", kPerLedModeCode, Can::BrightnessAdjustable | Can::PerLedColors},
    {"STATIC", kStaticEffect, kColoredEffect},
    {"BREATHING", 1, kColoredEffect},
    {"NEON", 2, kEffect},
    {"WAVE", 3, kEffect | Can::DirectionSetA | Can::DirectionSetB | Can::DirectionSetC},
    {"SHIFTING", 4, kColoredEffect | Can::DirectionSetA},
    {"ZOOM", 5, kColoredEffect},
    {"METEOR", 6, kColoredEffect},
    {"TWINKLING", 7, kColoredEffect},
};

}  // namespace

RGBController_ZarnECKeyboard::RGBController_ZarnECKeyboard(ZarnECKeyboardController* controller)
    : hw_controller(controller) {
  title = kName;
  maker_name = kMaker;
  caption = kName;
  hw_kind = DeviceKind::Keyboard;
  mode_list = MakeModes(kModes);
  RGBController_ZarnECKeyboard::DefineLayout();
}

RGBController_ZarnECKeyboard::~RGBController_ZarnECKeyboard() {
  StopWorker();
  delete hw_controller;
}

void RGBController_ZarnECKeyboard::DefineLayout() {
  const auto count = static_cast<std::uint32_t>(hw_controller->ZoneCount());
  ZoneRecord zone;
  zone.label = kZoneLabel;
  zone.zone_kind = ZoneKind::Linear;
  zone.led_total = zone.led_total_min = zone.led_total_max = count;
  std::vector<LedRecord> leds(count);
  for (std::uint32_t i = 0; i < count; ++i) leds[i].label = kZoneLabel + (" " + std::to_string(i + 1));
  AppendZone(std::move(zone), leds);
}

// The worker has nobody to tell of an error, so the slots that push let none out.

void RGBController_ZarnECKeyboard::WriteColorsToDevice() {
  try {
    SendColorTable();
  } catch (...) {
  }
}

void RGBController_ZarnECKeyboard::WriteZoneToDevice(std::int32_t /*zone_index*/) { WriteColorsToDevice(); }

void RGBController_ZarnECKeyboard::WriteLedToDevice(std::int32_t /*led_index*/) { WriteColorsToDevice(); }

void RGBController_ZarnECKeyboard::WriteModeToDevice() {
  try {
    ApplyMode();
  } catch (...) {
  }
}

void RGBController_ZarnECKeyboard::SelectFirstMode() {
  const std::lock_guard lock(records_lock);
  current_mode = 0;
}

void RGBController_ZarnECKeyboard::SendColorTable() {
  std::vector<PackedColor> colors;
  std::uint8_t brightness = 0;
  {
    const std::lock_guard lock(records_lock);
    colors = color_table;
    if (!mode_list.empty()) brightness = static_cast<std::uint8_t>(mode_list.front().brightness_setting);
  }
  hw_controller->SendColors(colors.data(), static_cast<std::uint32_t>(colors.size()), brightness);
}

void RGBController_ZarnECKeyboard::ApplyMode() {
  ModeRecord mode;
  {
    const std::lock_guard lock(records_lock);
    if (current_mode < 0 || static_cast<std::size_t>(current_mode) >= mode_list.size()) return;
    mode = mode_list[static_cast<std::size_t>(current_mode)];
    if (mode.hw_code == kStaticEffect) {
      // A static colour is the colour path with all zones alike, and stays in the records as if set LED by LED.
      std::fill(color_table.begin(), color_table.end(), mode.mode_colors.empty() ? 0 : mode.mode_colors.front());
      mode_list.front().brightness_setting = mode.brightness_setting;
    }
  }
  if (mode.hw_code == kPerLedModeCode || mode.hw_code == kStaticEffect) return WriteColorsToDevice();

  const PackedColor color = EffectColor(mode);
  hw_controller->SetMode(static_cast<std::uint8_t>(mode.hw_code), static_cast<std::uint16_t>(mode.speed_setting),
                         ToFirmwareDirection(mode.direction_setting),
                         static_cast<std::uint16_t>(mode.brightness_setting), RedOf(color), GreenOf(color),
                         BlueOf(color));
}
