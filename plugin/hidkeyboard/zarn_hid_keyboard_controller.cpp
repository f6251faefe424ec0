#include "hidkeyboard/zarn_hid_keyboard_controller.h"

#include <algorithm>
#include <iterator>
#include <mutex>

#include "controller/millisecond_sleep.h"
#include "hid/lighting_hid.h"
#include "log/info_log.h"

using zarn::WRV520::Lighting::kKeyboardId;
using zarn::WRV520::Lighting::LightingHID;

namespace {

/// What a code of the host becomes on the keyboard.
template <typename DeviceCode>
struct Translation {
  std::uint32_t code;
  DeviceCode device_code;
};

constexpr Translation<std::uint8_t> kModes[] = {{0, 2},  {1, 4},  {2, 5},  {3, 7},   {4, 8},   {5, 9},  {6, 10},
                                                {7, 11}, {8, 13}, {9, 14}, {10, 15}, {11, 12}, {15, 1}, {34, 6}};
constexpr Translation<std::uint16_t> kDirections[] = {{0, 2}, {1, 1}, {2, 3}, {3, 4}, {4, 5}, {5, 6}};

/// A code that is not in the table goes to the keyboard as it is, cut.
template <typename DeviceCode, std::size_t kSize>
DeviceCode Translated(const Translation<DeviceCode> (&table)[kSize], std::uint32_t code) {
  const auto* const row = std::ranges::find(table, code, &Translation<DeviceCode>::code);
  return row != std::end(table) ? row->device_code : static_cast<DeviceCode>(code);
}

}  // namespace

ZarnHIDKeyboardController::ZarnHIDKeyboardController() : lighting_id(kKeyboardId) {
  LightingDeviceBaseInfo info;
  if (!LightingHID::GetLightingDeviceBaseInfo(lighting_id, info)) return;
  zone_count = info.zoneCount;
  effect_mask = info.effectMask;
}

ZarnHIDKeyboardController::~ZarnHIDKeyboardController() {
  const std::lock_guard lock(g_lightingDevicesLock);
  LightingHID::CloseLightingDevices();
}

std::uint8_t ZarnHIDKeyboardController::ToDeviceMode(std::uint32_t mode_code) { return Translated(kModes, mode_code); }

std::uint16_t ZarnHIDKeyboardController::ToDeviceDirection(std::uint32_t direction_code) {
  return Translated(kDirections, direction_code);
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
