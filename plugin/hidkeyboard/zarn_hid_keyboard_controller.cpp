#include "hidkeyboard/zarn_hid_keyboard_controller.h"

#include <algorithm>
#include <iterator>

#include "base/millisecond_sleep.h"
#include "hid/lighting_hid.h"
#include "hidkeyboard/hid_keyboard_modes.h"
#include "log/info_log.h"

using zarn::WRV520::Lighting::kKeyboardId;
using zarn::WRV520::Lighting::LightingHID;

ZarnHIDKeyboardController::ZarnHIDKeyboardController() : lighting_id(kKeyboardId) {
  LightingDeviceBaseInfo info;
  if (!LightingHID::GetLightingDeviceBaseInfo(lighting_id, info)) return;
  zone_count = info.zoneCount;
  effect_mask = info.effectMask;
}

ZarnHIDKeyboardController::~ZarnHIDKeyboardController() { LightingHID::CloseLightingDevices(); }

std::uint8_t ZarnHIDKeyboardController::ToDeviceMode(std::uint32_t mode_code) { return DeviceCodeOf(mode_code); }

std::uint16_t ZarnHIDKeyboardController::ToDeviceDirection(std::uint32_t direction_code) {
  static constexpr std::uint16_t kDirections[] = {2, 1, 3, 4, 5, 6};
  // A code that is not in the table goes to the keyboard as it is, cut to 16 bits.
  return direction_code < std::size(kDirections) ? kDirections[direction_code]
                                                 : static_cast<std::uint16_t>(direction_code);
}

void ZarnHIDKeyboardController::SendColors(const std::uint8_t* colors, std::uint32_t count, std::uint16_t brightness) {
  for (std::uint32_t zone = 0; zone < std::min(count, kAddressableZones); ++zone, colors += 4) {
    SetMode(kStaticDeviceMode, 0, 0, brightness, colors[0], colors[1], colors[2], ZoneBit(zone));
    SleepMilliseconds(20);
  }
}

void ZarnHIDKeyboardController::SetMode(std::uint8_t mode, std::uint16_t speed, std::uint16_t direction,
                                        std::uint16_t brightness, std::uint8_t red, std::uint8_t green,
                                        std::uint8_t blue, std::uint16_t zone_mask) {
  const InfoLog log(L"ZarnHIDKeyboardController::SetMode");
  log(L"mode=%d, speed=%d, direction=%d, brightness=%d, color=(0x%02X,0x%02X,0x%02X) zone=%02X", mode, speed, direction,
      brightness, red, green, blue, zone_mask);
  LightingHID::SetLightingDeviceUpdateReport(lighting_id, mode, static_cast<std::uint8_t>(speed),
                                             static_cast<std::uint8_t>(direction),
                                             static_cast<std::uint8_t>(brightness), red, green, blue, zone_mask);
}
